// Blocking sockets. The limit of a receive is the kernel's own (SO_RCVTIMEO), told when it changes: a request and its
// answer then cost one call each, where a poll in front of each receive costs 15 %. Poll serves what the kernel cannot:
// what is left after an interruption, and connecting and accepting with a limit.

#include "platform/sockets.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "base/deadline.h"
#include "platform/posix/descriptor.h"

using NativeSocket = int;
using SocketLength = socklen_t;

#include "platform/socket_addresses.h"

using namespace zel;

namespace {

void SetOption(std::intptr_t number, int level, int option, int value) noexcept {
    setsockopt(static_cast<int>(number), level, option, &value, sizeof value);
}

void SetLimit(std::intptr_t number, int option, std::int64_t limit) noexcept {
    // 0 would mean for ever.
    const std::int64_t milliseconds = limit < 0 ? 0 : std::max<std::int64_t>(limit, 1);
    const timeval time = {milliseconds / 1000, static_cast<suseconds_t>(milliseconds % 1000 * 1000)};
    setsockopt(static_cast<int>(number), SOL_SOCKET, option, &time, sizeof time);
}

// What poll says of the one descriptor: 0 when the time is over, -1 when there is nothing to wait on.
int Wait(std::intptr_t number, short events, const Deadline& deadline) noexcept {
    for (;;) {
        pollfd entry = {static_cast<int>(number), events, 0};
        const int left = deadline.Left();
        const int found = poll(&entry, 1, left);
        if (found > 0) return (entry.revents & POLLNVAL) != 0 ? -1 : 1;
        if (found == 0 && deadline.Left() == 0) return 0;
        if (found < 0 && errno != EINTR) return -1;
    }
}

SendStatus WhySendFailed() noexcept {
    return errno == EFAULT ? SendStatus::Unreadable : SendStatus::Broken;
}

// Cheaper than gathering one piece: of a small request by some per cent.
SendStatus SendOne(int number, const char* bytes, std::size_t size) noexcept {
    while (size > 0) {
        const ssize_t sent = RetryInterrupted([&] { return send(number, bytes, size, MSG_NOSIGNAL); });
        if (sent <= 0) return WhySendFailed();
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return SendStatus::Sent;
}

}  // namespace

bool zel::StartSockets() noexcept {
    return true;
}

void zel::ResolveErrorText(int code, char (&text)[256]) noexcept {
    std::snprintf(text, sizeof text, "%s", gai_strerror(code));
}

Socket Socket::MakeIPv4() noexcept {
    return Socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

Socket Socket::Make(const NetworkAddress& address) noexcept {
    if (address.size == 0) return {};
    return Socket(socket(SystemForm(address)->sa_family, address.type | SOCK_CLOEXEC, address.protocol));
}

void Socket::Close() noexcept {
    // Not retried: after an interruption the number is free already.
    if (IsOpen()) close(static_cast<int>(std::exchange(_number, NoSocket)));
    _receiveLimit = -1;
}

bool Socket::Connect(const NetworkAddress& address, std::int64_t limit) noexcept {
    const Deadline deadline(limit);
    const int number = static_cast<int>(_number);
    const int flags = fcntl(number, F_GETFL);
    fcntl(number, F_SETFL, flags | O_NONBLOCK);
    if (connect(number, SystemForm(address), address.size) != 0) {
        if (errno != EINPROGRESS && errno != EINTR) return false;
        int error = 0;
        socklen_t size = sizeof error;
        if (Wait(number, POLLOUT, deadline) != 1) return false;
        if (getsockopt(number, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) return false;
    }
    SetOption(number, IPPROTO_TCP, TCP_NODELAY, 1);
    return fcntl(number, F_SETFL, flags) == 0;
}

bool Socket::AcceptBothFamilies() noexcept {
    const int off = 0;
    return setsockopt(static_cast<int>(_number), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off) == 0;
}

bool Socket::Bind(const NetworkAddress& address) noexcept {
    // Here this lets a new server in while connections of the last one fade away, and no two servers at once.
    SetOption(_number, SOL_SOCKET, SO_REUSEADDR, 1);
    return bind(static_cast<int>(_number), SystemForm(address), address.size) == 0;
}

bool Socket::Listen(int backlog) noexcept {
    // Without blocking, since a client that poll has seen may be gone when it is accepted.
    const int number = static_cast<int>(_number);
    return listen(number, backlog) == 0 && fcntl(number, F_SETFL, fcntl(number, F_GETFL) | O_NONBLOCK) == 0;
}

Socket Socket::Accept(std::int64_t limit, bool& isTimeOut) noexcept {
    const Deadline deadline(limit);
    isTimeOut = false;
    for (;;) {
        const int number = accept4(static_cast<int>(_number), nullptr, nullptr, SOCK_CLOEXEC);
        if (number >= 0) {
            SetOption(number, IPPROTO_TCP, TCP_NODELAY, 1);
            return Socket(number);
        }
        if (errno == EINTR || errno == ECONNABORTED || errno == EPROTO) continue;
        if (errno != EAGAIN) return {};
        const int found = Wait(_number, POLLIN, deadline);
        isTimeOut = found == 0;
        if (found != 1) return {};
    }
}

SendStatus Socket::Send(const Piece* pieces, int count) noexcept {
    if (count == 1) return SendOne(static_cast<int>(_number), static_cast<const char*>(pieces->bytes), pieces->size);
    iovec parts[MaxPieces];
    for (int i = 0; i < count; ++i) parts[i] = {const_cast<void*>(pieces[i].bytes), pieces[i].size};
    iovec* next = parts;
    iovec* const end = parts + count;
    for (;;) {
        while (next != end && next->iov_len == 0) ++next;
        if (next == end) return SendStatus::Sent;
        msghdr message = {};
        message.msg_iov = next;
        message.msg_iovlen = static_cast<std::size_t>(end - next);
        const ssize_t sent =
            RetryInterrupted([&] { return sendmsg(static_cast<int>(_number), &message, MSG_NOSIGNAL); });
        if (sent <= 0) return WhySendFailed();
        for (auto left = static_cast<std::size_t>(sent); left > 0;) {
            const std::size_t done = std::min(left, next->iov_len);
            next->iov_base = static_cast<char*>(next->iov_base) + done;
            next->iov_len -= done;
            left -= done;
            if (next->iov_len == 0) ++next;
        }
    }
}

void Socket::LimitSends(std::int64_t limit) noexcept {
    SetLimit(_number, SO_SNDTIMEO, limit);
}

ReceiveStatus Socket::Receive(void* bytes, std::size_t size, std::int64_t limit, std::size_t& count) noexcept {
    count = 0;
    // A limit of the kernel's that is too short does no harm, since the deadline decides.
    if (limit >= 0 && (_receiveLimit < 0 || limit < _receiveLimit)) {
        SetLimit(_number, SO_RCVTIMEO, limit);
        _receiveLimit = limit;
    }
    const Deadline deadline(limit);
    for (;;) {
        const ssize_t got = recv(static_cast<int>(_number), bytes, size, 0);
        if (got > 0) {
            count = static_cast<std::size_t>(got);
            return ReceiveStatus::Received;
        }
        if (got == 0) return ReceiveStatus::Ended;
        if (errno == EBADF || errno == ENOTSOCK) return ReceiveStatus::Invalid;
        if (errno != EINTR && errno != EAGAIN) return ReceiveStatus::Ended;
        const int found = Wait(_number, POLLIN, deadline);
        if (found != 1) return found == 0 ? ReceiveStatus::TimedOut : ReceiveStatus::Invalid;
    }
}
