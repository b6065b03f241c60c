// Files as wholes: C streams that children do not inherit, and the copy.
#ifndef PLATFORM_FILES_H
#define PLATFORM_FILES_H

#include <cstdio>

#include "ZELDirectory.h"

namespace platform {

// Opens `path` (any path value) as an unbuffered text stream for writing, made if missing (mode 0666 less the umask),
// emptied first unless `append`. Children do not inherit it. Null on failure; closed with fclose.
std::FILE* OpenTextForWriting(const char* path, bool append) noexcept;

// Copies contents and permission bits (Windows: attributes) of the regular file `from` to `to`, both any path value, as
// ZELDirectory.h describes: a temporary file of a name of its own in the target's folder takes the bytes and is then
// renamed. It is gone after every failure. Bytes are copied up to the end that the source shows while it is read, so
// files of unknown size, and files that grow or shrink meanwhile, end where reading ends. Pipes and devices are refused
// before they are opened. Interruptions are retried, short reads and writes finished.
ZELCopyStatus CopyWholeFile(const char* from, const char* to, bool replaceExisting) noexcept;

}  // namespace platform

#endif
