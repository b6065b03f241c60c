// /proc names the program of a process; programs are named by plain paths, so a directory needs no more than its form.

#include "platform/process_image.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/native_path.h"

using namespace zel;

bool zel::ReadProcessImage(int pid, char (&path)[ImagePathSize]) noexcept {
    static constexpr char Deleted[] = " (deleted)";
    constexpr std::size_t DeletedLength = sizeof Deleted - 1;
    char link[32];
    char target[4096 + sizeof Deleted];
    std::snprintf(link, sizeof link, "/proc/%d/exe", pid);
    const ssize_t length = readlink(link, target, sizeof target - 1);
    if (length <= 0) return false;
    auto size = static_cast<std::size_t>(length);
    if (size > DeletedLength && std::memcmp(target + size - DeletedLength, Deleted, DeletedLength) == 0)
        size -= DeletedLength;
    if (size >= ImagePathSize) size = ImagePathSize - 1;
    std::memcpy(path, target, size);
    path[size] = '\0';
    ToPathValue(path);
    return true;
}

bool zel::MakeImagePrefix(const char* directory, char*& prefix) noexcept {
    if (directory[0] != '\0' && directory[1] == ':') directory += 2;
    const std::size_t size = std::strlen(directory);
    prefix = AllocateArray<char>(size + 2);
    if (prefix == nullptr) {
        ReportAllocFailure("ImagePrefix", size + 2);
        return false;
    }
    std::memcpy(prefix, directory, size);
    std::memcpy(prefix + size, "\\", 2);
    return true;
}
