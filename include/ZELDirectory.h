// Listing a directory, and copying one file.
//
// The lowest level of file services: one directory, names as the system stores them, no patterns, no recursion.
// TAFileUtilities.h builds on it.
//
//     ZELDirectoryHandle directory;
//     ZELDirectoryEntry entry;
//     int end = 0;
//     if (ZELOpenDirectory("C:\\temp", &directory) == 0)
//         while (ZELReadDirectory(&directory, &entry, &end) == 0 && end == 0) puts(entry.name);
//
// Paths are 8-bit and may hold backslashes, slashes and a drive prefix on both targets (on Linux "C:" is the root).
// Distinct handles may be used from distinct threads. The calls block as long as the disk does.
#ifndef ZELDIRECTORY_H
#define ZELDIRECTORY_H

#include <cstdint>

#include "ZELExport.h"

class ZELUnicodeString;

// A listing that is open or not; the end of the handle closes it.
struct ZEL_API ZELDirectoryHandle {
    ZELDirectoryHandle() noexcept = default;
    ZELDirectoryHandle(const ZELDirectoryHandle&) = delete;
    ZELDirectoryHandle& operator=(const ZELDirectoryHandle&) = delete;
    ~ZELDirectoryHandle();

    void* listing = nullptr;  // null: not open
};

// What an entry is, links not followed.
enum ZELEntryKind {
    ZELEntryFile = 0,
    ZELEntryDirectory = 1,
    ZELEntryLink = 2,   // a symbolic link, or a mount point of the file system on Windows
    ZELEntryOther = 3,  // device, pipe, socket, or an entry that vanished while it was looked at
};

struct ZELDirectoryEntry {
    char name[1024];  // NUL-terminated, without the directory
    int kind;         // a ZELEntryKind
};

// Opens `path` for listing; links in it are followed. 0 on success; 1 when it is no directory that can be read, when an
// argument is null or empty, or when the handle is open already (it then stays as it is).
ZEL_API int ZELOpenDirectory(const char* path, ZELDirectoryHandle* directory) noexcept;

// Gives the next entry, in the system's order; "." and ".." come like any other.
// 0 with *end 0: `entry` is filled. 0 with *end 1: nothing was left. 1 with *end 0: a name that is too long for the
// entry was passed over, and the listing goes on. 1 with *end 1: the system failed and nothing more will come, the
// handle is not open, or an argument is null. `entry` has an empty name whenever it is not filled.
ZEL_API int ZELReadDirectory(ZELDirectoryHandle* directory, ZELDirectoryEntry* entry, int* end) noexcept;

// 0 when the listing was open and is now closed, else 1.
ZEL_API int ZELCloseDirectory(ZELDirectoryHandle* directory) noexcept;

// What became of a copy.
enum ZELCopyStatus : std::int32_t {
    ZELCopyDone = 0,
    ZELCopyNullArgument = -1,      // an argument is null or empty
    ZELCopySourceUnreadable = -2,  // missing, not permitted, or failing while it was read
    ZELCopySourceNotRegular = -3,  // a directory, a device, a pipe
    ZELCopyTargetExists = -4,      // and was not to be replaced
    ZELCopyTargetUnwritable = -5,  // not permitted, read-only, no regular file, disk full, folder missing
    ZELCopyNoMemory = -6,
};

// Copies the contents and permissions of the file `from` to `to` and returns a ZELCopyStatus; never negative means
// done. The target appears complete or not at all: a failed copy leaves the old target (or none) and nothing half-made.
// With `replaceExisting` 0 an existing target is refused; a read-only target is refused in either case. When both names
// lead to one file, by whatever way, nothing is touched and the copy counts as done. A link is followed on both sides,
// so a target that is a link stays one. A replaced target is a new file: other hard links of it keep the old contents.
ZEL_API std::int32_t ZELFCopy(ZELUnicodeString* from, ZELUnicodeString* to, int replaceExisting) noexcept;

#endif
