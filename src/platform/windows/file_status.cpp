// Facts about files by the system's calls for the ANSI code page. The file is opened, so that links are followed.

#include "platform/file_status.h"

#include <windows.h>

#include "platform/paths.h"

namespace {

// Counted in units of 100 nanoseconds since 1601.
std::int64_t ToUnixSeconds(const FILETIME& time) {
    constexpr std::int64_t UnitsPerSecond = 10'000'000;
    constexpr std::int64_t SecondsTo1970 = 11'644'473'600;
    const std::int64_t units = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return units / UnitsPerSecond - SecondsTo1970;
}

}  // namespace

bool platform::ReadFileStatus(const char* path, FileStatus& status) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileA(native.Text(), FILE_READ_ATTRIBUTES, ShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION found;
    const bool told = GetFileInformationByHandle(file, &found);
    CloseHandle(file);
    if (!told) return false;
    const bool isDirectory = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    status.size = isDirectory ? 0 : (static_cast<std::int64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    status.modified = ToUnixSeconds(found.ftLastWriteTime);
    status.isWritable = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) == 0;
    return true;
}
