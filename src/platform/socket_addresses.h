// Addresses, letter by letter the same with every system's headers. Each half includes this once, behind those headers
// and the names NativeSocket and SocketLength for the types of a socket and of a length.
#ifndef PLATFORM_SOCKET_ADDRESSES_H
#define PLATFORM_SOCKET_ADDRESSES_H

#include <cstdio>
#include <cstring>

#include "platform/sockets.h"

namespace zel {

namespace {

const sockaddr* SystemForm(const NetworkAddress& address) noexcept {
    return reinterpret_cast<const sockaddr*>(address.bytes);
}

NetworkAddress ToAddress(const addrinfo& found) noexcept {
    NetworkAddress address;
    address.family = found.ai_family == AF_INET    ? AddressFamily::IPv4
                     : found.ai_family == AF_INET6 ? AddressFamily::IPv6
                     : found.ai_family == 0        ? AddressFamily::None
                                                   : AddressFamily::Other;
    address.type = found.ai_socktype;
    address.protocol = found.ai_protocol;
    if (found.ai_addr == nullptr || found.ai_addrlen > sizeof address.bytes) return address;
    address.size = static_cast<unsigned int>(found.ai_addrlen);
    std::memcpy(address.bytes, found.ai_addr, address.size);
    return address;
}

}  // namespace

const int UnknownService = EAI_SERVICE;

int ResolveAddresses(const char* host, int port, Purpose purpose, AddressList& list) noexcept {
    addrinfo hints = {};
    hints.ai_family = purpose == Purpose::ConnectByIPv4 ? AF_INET : AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = purpose == Purpose::Listen ? AI_PASSIVE : 0;
    char service[16];
    std::snprintf(service, sizeof service, "%d", port);
    addrinfo* found = nullptr;
    const int code = getaddrinfo(host, service, &hints, &found);
    if (code != 0) return code;
    list.Clear();
    const addrinfo* entry = found;
    while (entry != nullptr && list.Append(ToAddress(*entry))) entry = entry->ai_next;
    freeaddrinfo(found);
    if (entry == nullptr) return 0;
    list.Clear();
    return EAI_MEMORY;
}

NetworkAddress AnyIPv4Address(int port) noexcept {
    sockaddr_in any = {};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_ANY);
    any.sin_port = htons(static_cast<std::uint16_t>(port));
    NetworkAddress address;
    address.family = AddressFamily::IPv4;
    address.type = SOCK_STREAM;
    address.size = sizeof any;
    std::memcpy(address.bytes, &any, sizeof any);
    return address;
}

bool WriteNumericAddress(const NetworkAddress& address, char (&text)[128]) noexcept {
    return getnameinfo(SystemForm(address), static_cast<socklen_t>(address.size), text, sizeof text, nullptr, 0,
                       NI_NUMERICHOST) == 0;
}

bool IsLinkLocal(const NetworkAddress& address) noexcept {
    if (address.family != AddressFamily::IPv6) return false;
    sockaddr_in6 form;
    std::memcpy(&form, address.bytes, sizeof form);
    return IN6_IS_ADDR_LINKLOCAL(&form.sin6_addr) != 0;
}

int Socket::Port() const noexcept {
    sockaddr_storage name = {};
    SocketLength size = sizeof name;
    if (getsockname(static_cast<NativeSocket>(_number), reinterpret_cast<sockaddr*>(&name), &size) != 0) return 0;
    const auto port = name.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6&>(name).sin6_port
                                                 : reinterpret_cast<const sockaddr_in&>(name).sin_port;
    return ntohs(port);
}

}  // namespace zel

#endif
