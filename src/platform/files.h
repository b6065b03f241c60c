// C streams on files that children do not inherit.
#ifndef PLATFORM_FILES_H
#define PLATFORM_FILES_H

#include <cstdio>

namespace platform {

// Opens `path` (any path value) as an unbuffered text stream for writing, made if missing (Linux: mode 0666 less the
// umask), emptied first unless `append`; in append mode every write goes to the end of that moment. Children do not
// inherit it. Null on failure; closed with fclose.
std::FILE* OpenTextForWriting(const char* path, bool append) noexcept;

}  // namespace platform

#endif
