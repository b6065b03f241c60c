// Both blocks are allocated at their first use: a listening socket needs neither.

#include "network/socket_buffers.h"

#include <algorithm>
#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

char* AllocateBuffer(std::size_t size) noexcept {
    char* const bytes = AllocateArray<char>(size);
    if (bytes == nullptr) ReportAllocFailure("TASocket", size);
    return bytes;
}

}  // namespace

WriteBuffer::~WriteBuffer() {
    zel::Free(_bytes);
}

bool WriteBuffer::HasMemory() noexcept {
    if (_bytes == nullptr) _bytes = AllocateBuffer(static_cast<std::size_t>(_capacity));
    return _bytes != nullptr;
}

void WriteBuffer::Append(const void* bytes, std::size_t size) noexcept {
    if (size == 0) return;
    std::memcpy(_bytes + _position, bytes, size);
    _position += static_cast<int>(size);
}

ReceiveBuffer::~ReceiveBuffer() {
    zel::Free(_bytes);
}

bool ReceiveBuffer::HasMemory() noexcept {
    if (_bytes == nullptr) _bytes = AllocateBuffer(Capacity);
    return _bytes != nullptr;
}

ReceiveStatus ReceiveBuffer::Fill(Socket& socket, std::int64_t limit) noexcept {
    if (!IsEmpty()) return ReceiveStatus::Received;
    if (_hasEnded) return ReceiveStatus::Ended;
    if (!HasMemory()) return ReceiveStatus::Invalid;
    std::size_t count = 0;
    const ReceiveStatus status = socket.Receive(_bytes, Capacity, limit, count);
    _begin = 0;
    _end = count;
    _hasEnded = status == ReceiveStatus::Ended;
    return status;
}

bool ReceiveBuffer::Read(Socket& socket, std::int64_t limit, void* bytes, std::size_t size) noexcept {
    char* at = static_cast<char*>(bytes);
    while (size > 0) {
        std::size_t count = 0;
        if (IsEmpty() && size >= Capacity && !_hasEnded) {
            // Bytes that would fill the buffer are received in their place, without a copy.
            const ReceiveStatus status = socket.Receive(at, size, limit, count);
            _hasEnded = status == ReceiveStatus::Ended;
            if (status != ReceiveStatus::Received) return false;
        } else {
            if (Fill(socket, limit) != ReceiveStatus::Received) return false;
            count = std::min(size, Arrived().size());
            std::memcpy(at, Arrived().data(), count);
            Skip(count);
        }
        at += count;
        size -= count;
    }
    return true;
}
