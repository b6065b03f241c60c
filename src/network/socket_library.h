// Whether this process can have sockets at all.
#ifndef NETWORK_SOCKET_LIBRARY_H
#define NETWORK_SOCKET_LIBRARY_H

namespace zel {

// Asks the system once, at the first call.
bool HasSockets() noexcept;

// For tests: has HasSockets deny it.
void PretendNoSockets(bool isPretended) noexcept;

}  // namespace zel

#endif
