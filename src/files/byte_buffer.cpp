// A growing array of bytes in which the NUL after the bytes always has room.

#include "files/byte_buffer.h"

#include <algorithm>

#include "base/failure_report.h"

using namespace zel;

bool ByteBuffer::Append(std::string_view bytes) noexcept {
    if (bytes.size() >= Capacity() - Size() && !Reserve(Size() + bytes.size() + 1)) return false;
    _bytes.Append(bytes.data(), bytes.size());
    Data()[Size()] = '\0';
    return true;
}

bool ByteBuffer::Reserve(std::size_t capacity) noexcept {
    constexpr std::size_t FirstCapacity = 256;
    if (_bytes.Reserve(std::max(capacity, FirstCapacity))) return true;
    ReportAllocFailure("ByteBuffer", std::max({capacity, Capacity() * 2, FirstCapacity}));
    return false;
}
