// Blocking sockets, with select in front of what has a limit: a select for one socket is not bounded by the size of a
// set here. Listening sockets do not block, since a client that select has seen may be gone when it is accepted.

#include "platform/sockets.h"

#include <winsock2.h>
//
#include <windows.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstdio>

#include "base/deadline.h"

using NativeSocket = SOCKET;
using SocketLength = int;

#include "platform/socket_addresses.h"

using namespace zel;

namespace {

SOCKET ToSystem(std::intptr_t number) noexcept {
    return static_cast<SOCKET>(number);
}

void SetOption(std::intptr_t number, int level, int option, DWORD value) noexcept {
    setsockopt(ToSystem(number), level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

bool SetBlocking(std::intptr_t number, bool isBlocking) noexcept {
    u_long value = isBlocking ? 0 : 1;
    return ioctlsocket(ToSystem(number), FIONBIO, &value) == 0;
}

enum class Wanted { Reading, Connecting };
enum class Found { Ready, Nothing, NotMarked, Failure };

Found Wait(std::intptr_t number, Wanted wanted, const Deadline& deadline) noexcept {
    for (;;) {
        fd_set ready, failed;
        FD_ZERO(&ready);
        FD_ZERO(&failed);
        FD_SET(ToSystem(number), &ready);
        FD_SET(ToSystem(number), &failed);
        const int left = deadline.Left();
        timeval time = {left / 1000, left % 1000 * 1000};
        timeval* const limit = left < 0 ? nullptr : &time;
        const bool isReading = wanted == Wanted::Reading;
        // A connection that fails shows in the third set alone.
        const int found =
            select(0, isReading ? &ready : nullptr, isReading ? nullptr : &ready, isReading ? nullptr : &failed, limit);
        if (found < 0) return Found::Failure;
        if (found > 0) return FD_ISSET(ToSystem(number), &ready) ? Found::Ready : Found::NotMarked;
        if (deadline.Left() == 0) return Found::Nothing;
    }
}

// Closed to children from birth.
std::intptr_t MakeSocket(int family, int type, int protocol) noexcept {
    return static_cast<std::intptr_t>(
        WSASocketW(family, type, protocol, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
}

}  // namespace

bool zel::StartSockets() noexcept {
    // Never ended: the last user of the process is unknown.
    static const bool isStarted = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(1, 1), &data) == 0;
    }();
    return isStarted;
}

void zel::ResolveErrorText(int code, char (&text)[256]) noexcept {
    constexpr DWORD Flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    if (FormatMessageA(Flags, nullptr, static_cast<DWORD>(code), 0, text, sizeof text, nullptr) == 0)
        std::snprintf(text, sizeof text, "error %d", code);
}

Socket Socket::MakeIPv4() noexcept {
    return Socket(MakeSocket(AF_INET, SOCK_STREAM, 0));
}

Socket Socket::Make(const NetworkAddress& address) noexcept {
    if (address.size == 0) return {};
    return Socket(MakeSocket(SystemForm(address)->sa_family, address.type, address.protocol));
}

void Socket::Close() noexcept {
    if (IsOpen()) closesocket(ToSystem(std::exchange(_number, NoSocket)));
    _receiveLimit = -1;
}

bool Socket::Connect(const NetworkAddress& address, std::int64_t limit) noexcept {
    const Deadline deadline(limit);
    if (!SetBlocking(_number, false)) return false;
    if (connect(ToSystem(_number), SystemForm(address), static_cast<int>(address.size)) != 0 &&
        (WSAGetLastError() != WSAEWOULDBLOCK || Wait(_number, Wanted::Connecting, deadline) != Found::Ready))
        return false;
    SetOption(_number, IPPROTO_TCP, TCP_NODELAY, 1);
    return SetBlocking(_number, true);
}

bool Socket::AcceptBothFamilies() noexcept {
    const DWORD off = 0;
    return setsockopt(ToSystem(_number), IPPROTO_IPV6, IPV6_V6ONLY, reinterpret_cast<const char*>(&off), sizeof off) ==
           0;
}

bool Socket::Bind(const NetworkAddress& address) noexcept {
    // Here an address can be bound again at once anyway, and others could bind it beside us without this.
    SetOption(_number, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
    return bind(ToSystem(_number), SystemForm(address), static_cast<int>(address.size)) == 0;
}

bool Socket::Listen(int backlog) noexcept {
    return listen(ToSystem(_number), backlog) == 0 && SetBlocking(_number, false);
}

Socket Socket::Accept(std::int64_t limit, bool& isTimeOut) noexcept {
    const Deadline deadline(limit);
    isTimeOut = false;
    for (;;) {
        Socket client(static_cast<std::intptr_t>(accept(ToSystem(_number), nullptr, nullptr)));
        if (client.IsOpen()) {
            SetHandleInformation(reinterpret_cast<HANDLE>(client._number), HANDLE_FLAG_INHERIT, 0);
            SetOption(client._number, IPPROTO_TCP, TCP_NODELAY, 1);
            return SetBlocking(client._number, true) ? std::move(client) : Socket();
        }
        const int error = WSAGetLastError();
        if (error == WSAECONNRESET) continue;
        if (error != WSAEWOULDBLOCK) return {};
        const Found found = Wait(_number, Wanted::Reading, deadline);
        isTimeOut = found == Found::Nothing;
        if (found != Found::Ready) return {};
    }
}

SendStatus Socket::Send(const Piece* pieces, int count) noexcept {
    WSABUF parts[MaxPieces];
    for (int i = 0; i < count; ++i)
        parts[i] = {static_cast<ULONG>(pieces[i].size), static_cast<char*>(const_cast<void*>(pieces[i].bytes))};
    WSABUF* next = parts;
    WSABUF* const end = parts + count;
    for (;;) {
        while (next != end && next->len == 0) ++next;
        if (next == end) return SendStatus::Sent;
        DWORD sent = 0;
        if (WSASend(ToSystem(_number), next, static_cast<DWORD>(end - next), &sent, 0, nullptr, nullptr) != 0 ||
            sent == 0)
            return SendStatus::Broken;
        while (sent > 0) {
            const ULONG done = std::min<ULONG>(sent, next->len);
            next->buf += done;
            next->len -= done;
            sent -= done;
            if (next->len == 0) ++next;
        }
    }
}

void Socket::LimitSends(std::int64_t limit) noexcept {
    // 0 would mean for ever.
    const std::int64_t milliseconds = limit < 0 ? 0 : std::clamp<std::int64_t>(limit, 1, INT_MAX);
    SetOption(_number, SOL_SOCKET, SO_SNDTIMEO, static_cast<DWORD>(milliseconds));
}

ReceiveStatus Socket::Receive(void* bytes, std::size_t size, std::int64_t limit, std::size_t& count) noexcept {
    count = 0;
    if (limit >= 0) {
        switch (Wait(_number, Wanted::Reading, Deadline(limit))) {
            case Found::Ready:
                break;
            case Found::Nothing:
                return ReceiveStatus::TimedOut;
            case Found::NotMarked:
                return ReceiveStatus::NotReady;
            case Found::Failure:
                return ReceiveStatus::Invalid;
        }
    }
    const int most = static_cast<int>(std::min<std::size_t>(size, INT_MAX));
    const int got = recv(ToSystem(_number), static_cast<char*>(bytes), most, 0);
    if (got <= 0) return ReceiveStatus::Ended;
    count = static_cast<std::size_t>(got);
    return ReceiveStatus::Received;
}
