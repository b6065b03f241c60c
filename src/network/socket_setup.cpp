// How connections come about.
//
// A server that wants both families listens on one IPv6 socket that takes IPv4 clients too. A machine may lack either
// family, and may refuse the second of two addresses at one port, so two candidates are bound and the better one is
// kept. Addresses are tried IPv6 first: otherwise the IPv4 address could take the port from the socket that serves
// both. A client takes the first address that answers; addresses that only lead astray (mapped ones and those of one
// link, which need to be told the link) are passed over.

#include "network/socket_setup.h"

#include <atomic>
#include <cstring>
#include <utility>

#include "base/deadline.h"

using namespace zel;

namespace {

constinit std::atomic<bool> isDenied{false};  // set by tests only

// A socket that may become the server's.
struct Candidate {
    Socket socket;
    bool servesBoth = false;
};

Socket Refuse(const char* reason, const char*& failure) noexcept {
    failure = reason;
    return {};
}

// Puts the address's bound socket into `candidate`. Sets `isMade` when a socket could be created at all.
bool BindCandidate(const NetworkAddress& address, Candidate& candidate, bool& isMade,
                   const SetupTrace& trace) noexcept {
    Socket socket = Socket::Make(address);
    if (!socket.IsOpen()) {
        trace.Step("error when creating socket, continue");
        return false;
    }
    isMade = true;
    candidate.servesBoth = false;
    if (address.family == AddressFamily::IPv4) trace.Step("INFORMATION aip->ai_family == AF_INET");
    if (address.family == AddressFamily::IPv6) {
        trace.Step("INFORMATION aip->ai_family == AF_INET6");
        candidate.servesBoth = socket.AcceptBothFamilies();
        trace.Step(candidate.servesBoth ? "IPV6_V6ONLY set to FALSE" : "error when setting IPV6_V6ONLY");
    }
    const bool isBound = socket.Bind(address);
    trace.Step(isBound ? "bind step OK" : "bind step KO");
    if (isBound) candidate.socket = std::move(socket);
    return isBound;
}

// The place of the candidate that becomes the server.
int BestOf(const Candidate (&candidates)[2], const SetupTrace& trace) noexcept {
    for (int slot = 0; slot < 2; ++slot) {
        if (!candidates[slot].socket.IsOpen() || !candidates[slot].servesBoth) continue;
        trace.Step("sockNum set with Sock[%d], AF_INET6, IPV6_V6ONLY set to FALSE", slot);
        return slot;
    }
    const int slot = candidates[0].socket.IsOpen() ? 0 : 1;
    trace.Step("sockNum set with Sock[%d], AF_INET", slot);
    return slot;
}

// Why an address is not for a client, or null.
const char* ReasonToSkip(const NetworkAddress& address) noexcept {
    char text[128];
    if (address.family == AddressFamily::None || address.size == 0)
        return "invalid  aip->ai_family or aip->ai_addr, continue...";
    if (!WriteNumericAddress(address, text)) return "getnameinfo failed, continue...";
    if (address.family != AddressFamily::IPv6) return nullptr;
    if (std::strncmp(text, "::ffff:", 7) == 0) return "error when checking IN6_IS_ADDR_V4MAPPED, continue...";
    return IsLinkLocal(address) ? "error when checking IN6_IS_ADDR_LINKLOCAL, continue..." : nullptr;
}

void TraceHost(const char* host, int port, const SetupTrace& trace) noexcept {
    if (host != nullptr)
        trace.Step("host %s : port %d", host, port);
    else
        trace.Step("host null : port %d", port);
}

void TraceResolveFailure(int code, const SetupTrace& trace) noexcept {
    char reason[256];
    ResolveErrorText(code, reason);
    trace.Step("getaddrinfo failed %s", reason);
}

bool IsPort(int port) noexcept {
    return port >= 0 && port <= 0xFFFF;
}

}  // namespace

bool zel::HasSockets() noexcept {
    return StartSockets() && !isDenied.load(std::memory_order_relaxed);
}

void zel::PretendNoSockets(bool isPretended) noexcept {
    isDenied.store(isPretended, std::memory_order_relaxed);
}

Socket zel::ListenByIPv4(int port, const char*& failure) noexcept {
    Socket socket = Socket::MakeIPv4();
    if (!socket.IsOpen()) return Refuse("unable to create server socket", failure);
    if (!IsPort(port) || !socket.Bind(AnyIPv4Address(port))) return Refuse("unable to bind server socket", failure);
    if (!socket.Listen(ListenBacklog)) return Refuse("unable to listen on server socket", failure);
    return socket;
}

Socket zel::ListenByBoth(int port, const SetupTrace& trace, const char*& failure) noexcept {
    trace.Step("TASocketIPv6 valuated");
    AddressList addresses;
    const int code = IsPort(port) ? ResolveAddresses(nullptr, port, Purpose::Listen, addresses) : UnknownService;
    if (code != 0) {
        TraceHost(nullptr, port, trace);
        TraceResolveFailure(code, trace);
        return Refuse("not able to use OpenServer with this port", failure);
    }
    return ListenAtOneOf(addresses, trace, failure);
}

Socket zel::ListenAtOneOf(const AddressList& addresses, const SetupTrace& trace, const char*& failure) noexcept {
    Candidate candidates[2];
    int bound = 0;
    bool isMade = false;
    for (const bool takesIPv6 : {true, false})
        for (const NetworkAddress& address : addresses)
            if (bound < 2 && (address.family == AddressFamily::IPv6) == takesIPv6)
                bound += BindCandidate(address, candidates[bound], isMade, trace) ? 1 : 0;
    if (bound == 0) return Refuse(isMade ? "unable to bind server socket" : "unable to create server socket", failure);
    for (Candidate& candidate : candidates) {
        if (!candidate.socket.IsOpen()) continue;
        const bool listens = candidate.socket.Listen(ListenBacklog);
        trace.Step(listens ? "listen step OK" : "listen step KO");
        if (!listens) candidate.socket.Close();
    }
    if (!candidates[0].socket.IsOpen() && !candidates[1].socket.IsOpen())
        return Refuse("unable to listen on server socket", failure);
    Socket& chosen = candidates[BestOf(candidates, trace)].socket;
    trace.Step("sockNum: %d", static_cast<int>(chosen.Number()));
    return std::move(chosen);
}

Socket zel::ConnectByIPv4(const char* host, int port, std::int64_t limit, const char*& failure) noexcept {
    Socket socket = Socket::MakeIPv4();
    if (!socket.IsOpen()) return Refuse("unable to create client socket", failure);
    AddressList addresses;
    // No host is no name: the system would take it for this machine.
    if (*host == '\0' || ResolveAddresses(host, IsPort(port) ? port : 0, Purpose::ConnectByIPv4, addresses) != 0)
        return Refuse("unknown host: check name and existence of the host", failure);
    if (!IsPort(port) || !socket.Connect(*addresses.begin(), limit))
        return Refuse("unable to connect client socket to server", failure);
    return socket;
}

Socket zel::ConnectByAny(const char* host, int port, std::int64_t limit, const SetupTrace& trace,
                         const char*& failure) noexcept {
    trace.Step("TASocketIPv6 valuated");
    if (*host == '\0') host = nullptr;
    AddressList addresses;
    const int code = IsPort(port) ? ResolveAddresses(host, port, Purpose::Connect, addresses) : UnknownService;
    TraceHost(host, port, trace);
    if (code != 0) {
        TraceResolveFailure(code, trace);
        return Refuse("unknown host: check name and existence of the host", failure);
    }
    return ConnectToOneOf(addresses, limit, trace, failure);
}

Socket zel::ConnectToOneOf(const AddressList& addresses, std::int64_t limit, const SetupTrace& trace,
                           const char*& failure) noexcept {
    const Deadline deadline(limit);
    bool isMade = false;
    for (const NetworkAddress& address : addresses) {
        if (const char* const reason = ReasonToSkip(address)) {
            trace.Step("%s", reason);
            continue;
        }
        Socket socket = Socket::Make(address);
        isMade = isMade || socket.IsOpen();
        if (!socket.IsOpen() || !socket.Connect(address, deadline.Left())) continue;
        trace.Step("sockNum: %d", static_cast<int>(socket.Number()));
        return socket;
    }
    return Refuse(isMade ? "unable to connect client socket to server" : "unable to create client socket", failure);
}
