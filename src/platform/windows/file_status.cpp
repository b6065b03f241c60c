// Facts about files by the system's calls for the ANSI code page. The file is opened, so that links are followed.

#include "platform/file_status.h"

#include <windows.h>

#include "platform/native_path.h"
#include "platform/windows/file_look.h"

using namespace zel;

namespace {

std::int64_t ToUnixSeconds(const FILETIME& time) {
    constexpr std::int64_t TicksPerSecond = 10'000'000;
    constexpr std::int64_t SecondsTo1970 = 11'644'473'600;
    return Ticks(time) / TicksPerSecond - SecondsTo1970;
}

}  // namespace

bool zel::ReadFileStatus(const char* path, FileStatus& status) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    const Handle file = OpenToLook(native.Text(), FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION found;
    if (!file.IsOpen() || !GetFileInformationByHandle(file.Get(), &found)) return false;
    const bool isDirectory = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    status.size = isDirectory ? 0 : (static_cast<std::int64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    status.modified = ToUnixSeconds(found.ftLastWriteTime);
    status.isWritable = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) == 0;
    return true;
}
