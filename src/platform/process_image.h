// The paths of the programs that processes run.
#ifndef PLATFORM_PROCESS_IMAGE_H
#define PLATFORM_PROCESS_IMAGE_H

#include <cstddef>

namespace zel {

inline constexpr std::size_t ImagePathSize = 260;

// The path of the program that a process runs, cut at ImagePathSize - 1 bytes: in device form on Windows, as a path
// value on Linux, where a program that was deleted keeps its name. False when the system does not tell.
bool ReadProcessImage(int pid, char (&path)[ImagePathSize]) noexcept;

// How the paths of programs below a directory begin, with a backslash at the end. `directory` is a path value in normal
// form, neither empty nor a root. False when its drive does not exist or memory ran out. The caller owns
// `prefix`, a block of the heap.
bool MakeImagePrefix(const char* directory, char*& prefix) noexcept;

}  // namespace zel

#endif
