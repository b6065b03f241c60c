// No file is mapped here; the header says why.

#include "platform/file_mapping.h"

std::int64_t platform::FileMapping::Size() const noexcept {
    return -1;
}

const char* platform::FileMapping::At(std::int64_t, std::size_t) noexcept {
    return nullptr;
}

bool platform::FileMapping::MoveStream(std::int64_t) const noexcept {
    return true;
}

void platform::FileMapping::Unmap() noexcept {}
