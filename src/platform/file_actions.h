// Looking at, making and deleting single files and directories. Paths are path values; see native_path.h.
#ifndef PLATFORM_FILE_ACTIONS_H
#define PLATFORM_FILE_ACTIONS_H

#include <cstddef>

namespace zel {

enum class PathKind {
    Missing,  // also when the system refuses to tell
    Directory,
    File,  // everything else
};

// Links are followed.
PathKind KindOf(const char* path) noexcept;

// Delete a file, never a directory; a link goes itself. False when it is still there or never was. The Unicode form
// takes UTF-8 on both targets.
bool RemoveFile(const char* path) noexcept;
bool RemoveFileUnicode(const char* path) noexcept;

// Makes one directory (Linux: mode 0777 less the umask). False when it could not be made, also because it is there.
bool MakeDirectory(const char* path) noexcept;

constexpr std::size_t TemporaryPathSize = 4096;

// Creates an empty file in the system's directory for temporary files (Linux: TMPDIR, or /tmp when that is not set) and
// writes its name. The name begins with `prefix` (Windows keeps three letters) and was nobody's before, in whichever
// process or thread; on Linux only the user may open the file. Nothing is left behind on failure.
bool MakeTemporaryFile(const char* prefix, char (&path)[TemporaryPathSize]) noexcept;

}  // namespace zel

#endif
