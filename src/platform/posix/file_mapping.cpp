// A window that moves over the file: of an address space that others need too, a large file takes no more.
//
// Nothing is asked to be there in advance. The system notices that the bytes are taken in order and reads ahead, and
// each fault brings 16 pages; advice and populating were measured, and gain nothing.

#include "platform/file_mapping.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

using namespace zel;

namespace {

constexpr std::size_t WindowSize = std::size_t{16} << 20;
// No page of a system is larger, so that this may be where a window begins.
constexpr std::int64_t Alignment = 1 << 16;

}  // namespace

std::int64_t FileMapping::Size() const noexcept {
    struct stat status;
    return fstat(fileno(_stream), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

const char* FileMapping::At(std::int64_t offset, std::size_t size) noexcept {
    const auto ends = [&] { return static_cast<std::size_t>(offset - _begin) + size; };
    if (_window == nullptr || offset < _begin || ends() > WindowSize) {
        Unmap();
        _begin = offset - offset % Alignment;
        if (ends() > WindowSize) return nullptr;
        void* const window = mmap(nullptr, WindowSize, PROT_READ, MAP_SHARED, fileno(_stream), _begin);
        if (window == MAP_FAILED) return nullptr;
        _window = static_cast<char*>(window);
    }
    return _window + (offset - _begin);
}

bool FileMapping::MoveStream(std::int64_t offset) const noexcept {
    return lseek(fileno(_stream), offset, SEEK_SET) == offset;
}

void FileMapping::Unmap() noexcept {
    if (_window != nullptr) munmap(std::exchange(_window, nullptr), WindowSize);
}
