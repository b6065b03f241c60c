// What several files of this folder ask of a file.
#ifndef PLATFORM_WINDOWS_FILE_LOOK_H
#define PLATFORM_WINDOWS_FILE_LOOK_H

#include <windows.h>

#include "platform/windows/handle.h"

namespace zel {

// Opens a file or directory that is there and keeps nobody from anything; links are followed. The error of a failure is
// the system's last one.
inline Handle OpenToLook(const char* path, DWORD access) noexcept {
    constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return Handle(CreateFileA(path, access, ShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

// Whether there is something of that path that has all of these attributes; links are not followed.
inline bool HasAttributes(const char* path, DWORD wanted) noexcept {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) == wanted;
}

}  // namespace zel

#endif
