// Creating sockets that listen and sockets that are connected, by IPv4 alone or by any family that a host has.
//
// After a failure each function returns a socket that is not open, and the reason in `failure`.
#ifndef NETWORK_SOCKET_SETUP_H
#define NETWORK_SOCKET_SETUP_H

#include <cstdint>

#include "network/setup_trace.h"
#include "platform/sockets.h"

namespace zel {

constexpr int ListenBacklog = 8;

// Whether this process can have sockets at all. Asks the system once, at the first call.
bool HasSockets() noexcept;
// For tests: HasSockets() returns false from now on, or the truth again.
void PretendNoSockets(bool isPretended) noexcept;

Socket ListenByIPv4(int port, const char*& failure) noexcept;
Socket ListenByBoth(int port, const SetupTrace& trace, const char*& failure) noexcept;
// `limit` in milliseconds, below 0 for none.
Socket ConnectByIPv4(const char* host, int port, std::int64_t limit, const char*& failure) noexcept;
Socket ConnectByAny(const char* host, int port, std::int64_t limit, const SetupTrace& trace,
                    const char*& failure) noexcept;

// The second halves of the paths that resolve: on addresses that are known, IPv6 first for a server.
Socket ListenAtOneOf(const AddressList& addresses, const SetupTrace& trace, const char*& failure) noexcept;
Socket ConnectToOneOf(const AddressList& addresses, std::int64_t limit, const SetupTrace& trace,
                      const char*& failure) noexcept;

}  // namespace zel

#endif
