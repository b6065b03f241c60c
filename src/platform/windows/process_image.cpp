// Programs are named by the kernel's device paths, so the drive of a directory is turned into its device.

#include "platform/process_image.h"

#include <windows.h>
//
#include <psapi.h>

#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/windows/handle.h"

using namespace zel;

bool zel::ReadProcessImage(int pid, char (&path)[ImagePathSize]) noexcept {
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, static_cast<DWORD>(pid)));
    if (!process.IsOpen()) return false;
    const DWORD length = GetProcessImageFileNameA(process.Get(), path, ImagePathSize);
    path[ImagePathSize - 1] = '\0';
    return length != 0;
}

bool zel::MakeImagePrefix(const char* directory, char*& prefix) noexcept {
    const bool hasDrive = directory[0] != '\0' && directory[1] == ':';
    const char device[3] = {directory[0], ':', '\0'};
    char target[2048];
    // A network path begins with two backslashes, of which the device brings one along.
    if (QueryDosDeviceA(hasDrive ? device : "UNC", target, sizeof target) == 0) return false;
    const char* const rest = directory + (hasDrive ? 2 : 1);
    const std::size_t targetSize = std::strlen(target);
    const std::size_t restSize = std::strlen(rest);
    const std::size_t size = targetSize + restSize + 2;
    prefix = AllocateArray<char>(size);
    if (prefix == nullptr) {
        ReportAllocFailure("ImagePrefix", size);
        return false;
    }
    std::memcpy(prefix, target, targetSize);
    std::memcpy(prefix + targetSize, rest, restSize);
    std::memcpy(prefix + targetSize + restSize, "\\", 2);
    return true;
}
