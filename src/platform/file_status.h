// Facts about one file or directory. Paths are path values; see native_path.h.
#ifndef PLATFORM_FILE_STATUS_H
#define PLATFORM_FILE_STATUS_H

#include <cstdint>

namespace zel {

struct FileStatus {
    std::int64_t size;      // bytes; 0 for a directory
    std::int64_t modified;  // seconds since 1970-01-01 00:00 UTC
    bool isWritable;        // by the caller (Windows: as far as the attributes tell)
};

// Links are followed. False when there is nothing of that path, or the system refuses to tell.
bool ReadFileStatus(const char* path, FileStatus& status) noexcept;

}  // namespace zel

#endif
