// What an entry of a listing is, links not followed.
#ifndef PLATFORM_POSIX_ENTRY_KIND_H
#define PLATFORM_POSIX_ENTRY_KIND_H

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/directories.h"

namespace zel {

inline EntryKind KindOfMode(mode_t mode) noexcept {
    if (S_ISREG(mode)) return EntryKind::File;
    if (S_ISDIR(mode)) return EntryKind::Directory;
    if (S_ISLNK(mode)) return EntryKind::Link;
    return EntryKind::Other;
}

// `type` is what the listing of `folder` tells; some file systems tell nothing, and the entry is then asked itself.
inline EntryKind KindOfEntry(int folder, const char* name, unsigned char type) noexcept {
    if (type != DT_UNKNOWN) return KindOfMode(DTTOIF(type));
    struct stat status;
    return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? KindOfMode(status.st_mode) : EntryKind::Other;
}

}  // namespace zel

#endif
