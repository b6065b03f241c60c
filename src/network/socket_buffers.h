// The bytes that wait to be sent, and those that have arrived.
#ifndef NETWORK_SOCKET_BUFFERS_H
#define NETWORK_SOCKET_BUFFERS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/sockets.h"

namespace zel {

// Bytes that wait to be sent. The memory comes with the first of them.
class WriteBuffer {
public:
    explicit WriteBuffer(int capacity) noexcept : _capacity(capacity) {}
    WriteBuffer(const WriteBuffer&) = delete;
    WriteBuffer& operator=(const WriteBuffer&) = delete;
    ~WriteBuffer();

    int Capacity() const noexcept { return _capacity; }
    int Free() const noexcept { return _capacity - _position; }
    bool IsEmpty() const noexcept { return _position == 0; }
    std::string_view Pending() const noexcept { return {_bytes, static_cast<std::size_t>(_position)}; }

    // False when memory runs out, which is said on standard output.
    bool HasMemory() noexcept;
    // There must be memory, and as much room.
    void Append(const void* bytes, std::size_t size) noexcept;
    void Clear() noexcept { _position = 0; }

private:
    int _capacity;
    int _position = 0;
    char* _bytes = nullptr;
};

// Bytes that arrived and were not read yet: a call to the system returns all that is there. Every wait looks here
// first.
class ReceiveBuffer {
public:
    static constexpr std::size_t Capacity = std::size_t{64} << 10;

    ReceiveBuffer() noexcept = default;
    ReceiveBuffer(const ReceiveBuffer&) = delete;
    ReceiveBuffer& operator=(const ReceiveBuffer&) = delete;
    ~ReceiveBuffer();

    // False when memory runs out, which is said on standard output.
    bool HasMemory() noexcept;
    bool IsEmpty() const noexcept { return _begin == _end; }
    std::string_view Arrived() const noexcept { return {_bytes + _begin, _end - _begin}; }
    void Skip(std::size_t size) noexcept { _begin += size; }

    // Waits for more when nothing is left. Once a connection has ended it stays so. Invalid too without
    // memory.
    ReceiveStatus Fill(Socket& socket, std::int64_t limit) noexcept;
    // Stores exactly `size` bytes, from here and then from the socket; false when it ends or stalls before.
    bool Read(Socket& socket, std::int64_t limit, void* bytes, std::size_t size) noexcept;

private:
    char* _bytes = nullptr;
    std::size_t _begin = 0;
    std::size_t _end = 0;
    bool _hasEnded = false;
};

}  // namespace zel

#endif
