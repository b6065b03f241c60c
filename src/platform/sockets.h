// TCP sockets and addresses. No socket reaches a child process, no send raises a signal, interrupted calls go on with
// what is left of their time, and waits work for any number of descriptors.
//
// Limits are in milliseconds; below 0 there is none.
#ifndef PLATFORM_SOCKETS_H
#define PLATFORM_SOCKETS_H

#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/growing_array.h"

namespace zel {

// Starts the system's socket library at the first call; false when it has none, and then no socket can be made.
bool StartSockets() noexcept;

enum class AddressFamily { None, IPv4, IPv6, Other };

// One address in the system's own form, and which socket it wants.
struct NetworkAddress {
    AddressFamily family = AddressFamily::None;
    int type = 0;
    int protocol = 0;
    unsigned int size = 0;  // of the form in `bytes`; 0: there is none
    alignas(8) unsigned char bytes[128] = {};
};

using AddressList = GrowingArray<NetworkAddress>;

enum class Purpose { Connect, ConnectByIPv4, Listen };

// Asks the system for the addresses of a host and port, in the system's order. A null `host` is this machine's
// loopback, to listen any address. Blocks as long as name servers do. 0, or a code that ResolveErrorText tells.
int ResolveAddresses(const char* host, int port, Purpose purpose, AddressList& list) noexcept;
// The code for a port that no service can have.
extern const int UnknownService;
void ResolveErrorText(int code, char (&text)[256]) noexcept;

// Any address of this machine.
NetworkAddress AnyIPv4Address(int port) noexcept;
// Writes the address in figures, without the port.
bool WriteNumericAddress(const NetworkAddress& address, char (&text)[128]) noexcept;
bool IsLinkLocal(const NetworkAddress& address) noexcept;

struct Piece {
    const void* bytes;
    std::size_t size;
};

enum class SendStatus {
    Sent,
    Broken,      // or nothing could be sent for as long as LimitSends says
    Unreadable,  // the bytes are not there (told on Linux alone)
};

enum class ReceiveStatus {
    Received,
    Ended,  // the peer closed or broke the connection
    TimedOut,
    NotReady,  // the system woke for nothing
    Invalid,   // this is no socket that could be read
};

// Owns a socket. Closing sends in the background what the system still holds.
class Socket {
public:
    // About 1 MiB in blocks of 8 KiB and their headers. With a quarter of it, a large transfer takes 1.2 times as long.
    static constexpr int MaxPieces = 256;

    Socket() noexcept = default;
    Socket(Socket&& other) noexcept { *this = std::move(other); }
    Socket& operator=(Socket&& other) noexcept {
        std::swap(_number, other._number);
        std::swap(_receiveLimit, other._receiveLimit);
        return *this;
    }
    ~Socket() { Close(); }

    // Not open on failure.
    static Socket MakeIPv4() noexcept;
    static Socket Make(const NetworkAddress& address) noexcept;

    bool IsOpen() const noexcept { return _number != NoSocket; }
    // The system's number or handle.
    std::intptr_t Number() const noexcept { return _number; }
    void Close() noexcept;

    // Waits for the connection. After a failure the socket is of no further use.
    bool Connect(const NetworkAddress& address, std::int64_t limit) noexcept;

    // Has an IPv6 socket take IPv4 clients too.
    bool AcceptBothFamilies() noexcept;
    // An address whose last server is gone can be bound again at once. While this socket has it, nobody else gets it.
    bool Bind(const NetworkAddress& address) noexcept;
    bool Listen(int backlog) noexcept;
    // The next client; clients that gave up meanwhile are passed over. Not open on failure, and `isTimeOut` tells
    // whether nobody came in time.
    Socket Accept(std::int64_t limit, bool& isTimeOut) noexcept;

    // This end's port, or 0.
    int Port() const noexcept;

    // Sends all of up to MaxPieces pieces, without delay for small ones. After a failure some may be gone.
    SendStatus Send(const Piece* pieces, int count) noexcept;
    void LimitSends(std::int64_t limit) noexcept;

    // Waits for what comes next and stores up to `size` bytes, their number in `count`, which is 0 without any.
    ReceiveStatus Receive(void* bytes, std::size_t size, std::int64_t limit, std::size_t& count) noexcept;

private:
    static constexpr std::intptr_t NoSocket = -1;
    explicit Socket(std::intptr_t number) noexcept : _number(number) {}

    std::intptr_t _number = NoSocket;
    std::int64_t _receiveLimit = -1;  // what the system was told last; below 0: nothing
};

}  // namespace zel

#endif
