// No file is mapped here; the header says why.

#include "platform/file_mapping.h"

using namespace zel;

std::int64_t FileMapping::Size() const noexcept {
    return -1;
}

const char* FileMapping::At(std::int64_t, std::size_t) noexcept {
    return nullptr;
}

bool FileMapping::MoveStream(std::int64_t) const noexcept {
    return true;
}

void FileMapping::Unmap() noexcept {}
