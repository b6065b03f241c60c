// How connections come about: every path, message and line, and what reaches whom.
#include "network/socket_setup.h"

#include <chrono>
#include <functional>
#include <memory>
#include <regex>

#include "network/peer.h"
#include "support/files.h"
#include "support/test_system.h"

namespace {

using zel::AddressFamily;
using zel::AddressList;
using zel::NetworkAddress;
using zel::Purpose;

std::string OutputOf(const std::function<void()>& work) {
    testing::internal::CaptureStdout();
    work();
    return WithoutReturns(testing::internal::GetCapturedStdout());
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

AddressList ListOf(const std::vector<NetworkAddress>& addresses) {
    AddressList list;
    EXPECT_TRUE(list.Append(addresses.data(), addresses.size()));
    return list;
}

// The system's address to listen at by IPv6; no address where there is none.
NetworkAddress Any6() {
    AddressList list;
    zel::ResolveAddresses(nullptr, 0, Purpose::Listen, list);
    for (const NetworkAddress& address : list)
        if (address.family == AddressFamily::IPv6 && zel::Socket::Make(address).Bind(address)) return address;
    return {};
}

struct Row {
    std::vector<NetworkAddress> addresses;
    std::string lines;  // of the trace, shortened; "#" is a number
    const char* failure;
};

// Each row's addresses through `make`, with its trace in short.
template <class Make>
void Check(const std::vector<Row>& rows, const std::string& operation, Make make) {
    const Variable traces("TASocketIPv6EnableTraces", "1");
    const SetupTrace trace(operation.c_str(), "");
    for (const Row& row : rows) {
        const char* failure = nullptr;
        zel::Socket socket;
        const AddressList list = ListOf(row.addresses);
        std::string said = OutputOf([&] { socket = make(list, trace, failure); });
        said = std::regex_replace(said, std::regex(operation + ": "), "");
        EXPECT_EQ(std::regex_replace(said, std::regex("sockNum: [0-9]+"), "sockNum: #"), row.lines);
        EXPECT_STREQ(failure, row.failure);
        EXPECT_EQ(socket.IsOpen(), row.failure == nullptr);
    }
}

const std::string made4 = "INFORMATION aip->ai_family == AF_INET\n";
const std::string made6 = "INFORMATION aip->ai_family == AF_INET6\nIPV6_V6ONLY set to FALSE\n";
const std::string false6 = "INFORMATION aip->ai_family == AF_INET6\nerror when setting IPV6_V6ONLY\n";
const std::string binds = "bind step OK\n";
const std::string listens = "listen step OK\n";
const std::string deaf = "listen step KO\n";

std::string Kept(const std::string& what) {
    return "sockNum set with Sock[" + what + "\nsockNum: #\n";
}

TEST(SocketSetup, DualServer) {
    const Listener other;
    const NetworkAddress none;
    const NetworkAddress any4 = zel::AnyIPv4Address(0);
    const NetworkAddress any6 = Any6();
    const NetworkAddress taken = zel::AnyIPv4Address(other.port);
    NetworkAddress no6 = any4;  // its sockets claim to be of IPv6 and are not
    no6.family = AddressFamily::IPv6;
    NetworkAddress datagram = any4;  // its sockets cannot listen
    datagram.type = 2;
    const std::string unmade = "error when creating socket, continue\n";
    const std::string both = ", AF_INET6, IPV6_V6ONLY set to FALSE";
    std::vector<Row> rows = {
        {{}, "", "unable to create server socket"},
        {{none}, unmade, "unable to create server socket"},
        {{taken, none}, made4 + "bind step KO\n" + unmade, "unable to bind server socket"},
        {{datagram}, made4 + binds + deaf, "unable to listen on server socket"},
        {{any4}, made4 + binds + listens + Kept("0], AF_INET"), nullptr},
        {{datagram, any4, any4}, made4 + binds + made4 + binds + deaf + listens + Kept("1], AF_INET"), nullptr},
        {{any4, any6}, made6 + binds + made4 + binds + listens + listens + Kept("0]" + both), nullptr},
        {{any4, no6}, false6 + binds + made4 + binds + listens + listens + Kept("0], AF_INET"), nullptr},
        {{no6, any6}, false6 + binds + made6 + binds + listens + listens + Kept("1]" + both), nullptr},
    };
    // Some systems have no IPv6, and some set its options on any socket.
    if (any6.size == 0) rows.resize(6);
    if (zel::Socket::Make(no6).AcceptBothFamilies()) rows.resize(std::min<std::size_t>(rows.size(), 7));
    Check(rows, "OpenServer", ListenAtOneOf);
}

TEST(SocketSetup, ResolvingClient) {
    const Listener listener;
    NetworkAddress nameless = Loopback(listener.port);
    std::fill(std::begin(nameless.bytes), std::end(nameless.bytes), static_cast<unsigned char>(0xFE));
    nameless.family = AddressFamily::Other;
    const NetworkAddress mapped = Loopback(listener.port, "::ffff:127.0.0.1");
    const NetworkAddress local = Loopback(listener.port, "fe80::1");
    const NetworkAddress good = Loopback(listener.port);
    const std::string skipped =
        "invalid  aip->ai_family or aip->ai_addr, continue...\n"
        "getnameinfo failed, continue...\n"
        "error when checking IN6_IS_ADDR_V4MAPPED, continue...\n"
        "error when checking IN6_IS_ADDR_LINKLOCAL, continue...\n";
    const std::vector<Row> rows = {
        {{NetworkAddress(), nameless, mapped, local, good}, skipped + "sockNum: #\n", nullptr},
        {{NetworkAddress(), nameless, mapped, local}, skipped, "unable to create client socket"},
        {{Loopback(1), good}, "sockNum: #\n", nullptr},
        {{Loopback(1)}, "", "unable to connect client socket to server"},
    };
    Check(rows, "OpenClient",
          [](auto& addresses, auto& trace, auto& failure) { return ConnectToOneOf(addresses, -1, trace, failure); });
}

// Which side takes which path, and says so. No child gets a socket by either.
TEST(SocketSetup, Environment) {
    const std::size_t inherited = InheritedDescriptors().size();
    const struct {
        const char* value;
        bool server, client;
    } rows[] = {{"", false, false},          {"clientonly", false, true}, {"ClientOnly", false, true},
                {"ServerOnly", true, false}, {"0", true, true},           {"CLIENTONLY ", true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        const Variable choice("TASocketIPv6", row.value);
        TASocket server, client, accepted;
        const std::string silent = OutputOf([&] { EXPECT_EQ(server.OpenServer(0), 0); });
        EXPECT_EQ(silent, "");
        const Variable traces("TASocketIPv6EnableTraces", "1");
        const Variable times("TASocketIPv6EnablePerfoTraces", "clientonly");
        const std::string said = OutputOf([&] {
            EXPECT_EQ(server.OpenServer(0), 0) << server.GetErrMsg();
            EXPECT_EQ(client.OpenClient("127.0.0.1", server.GetPort()), 0) << client.GetErrMsg();
            EXPECT_EQ(server.GetQuery(accepted), 0) << server.GetErrMsg();
        });
        EXPECT_EQ(said.starts_with("OpenServer: TASocketIPv6 valuated\n"), row.server) << said;
        EXPECT_EQ(Has(said, "OpenClient: TASocketIPv6 valuated\nOpenClient: host 127.0.0.1 : port " +
                                std::to_string(server.GetPort()) + "\nOpenClient: sockNum: "),
                  row.client);
        EXPECT_EQ(Has(said, "TASocket-perfo-OpenClient: ending, elapsed time :"), row.client);
        EXPECT_EQ(Has(said, " ms\n"), row.client);
        EXPECT_FALSE(Has(said, "TASocket-perfo-OpenServer"));
        EXPECT_EQ(InheritedDescriptors().size(), inherited);
        client.PutBlock("hello");
        client.Flush();
        ZELString text;
        EXPECT_EQ(accepted.GetBlock(text, Patience), 0);
        EXPECT_EQ(text, "hello");
    }
    const Variable times("TASocketIPv6EnablePerfoTraces", "1");
    const Variable choice("TASocketIPv6", "1");
    TASocket server;
    EXPECT_EQ(OutputOf([&] { server.OpenServer(0); }).find("TASocket-perfo-OpenServer: ending, elapsed time :"), 0u);
}

TEST(SocketSetup, Messages) {
    const Listener listener;
    const Variable traces("TASocketIPv6EnableTraces", "1");
    constexpr const char* Unknown = "unknown host: check name and existence of the host";
    constexpr const char* Refused = "unable to connect client socket to server";
    constexpr const char* Taken = "unable to bind server socket";
    const struct {
        const char *path, *host;  // no host: a server
        int port;
        const char *message, *line;
    } rows[] = {
        {"", nullptr, -1, Taken, ""},
        {"", nullptr, 65536, Taken, ""},
        {"", nullptr, listener.port, Taken, ""},
        {"", "no such host.invalid", 80, Unknown, ""},
        {"", "", 80, Unknown, ""},
        {"", "127.0.0.1", 1, Refused, ""},
        {"", "127.0.0.1", 65536 + listener.port, Refused, ""},
        {"", "127.0.0.1", -1, Refused, ""},
        {"1", nullptr, 70000, "not able to use OpenServer with this port",
         "OpenServer: host null : port 70000\nOpenServer: getaddrinfo failed "},
        {"1", "no such host.invalid", 80, Unknown,
         "OpenClient: host no such host.invalid : port 80\nOpenClient: getaddrinfo failed "},
        {"1", "localhost", 1, Refused, "OpenClient: host localhost : port 1\n"},
        {"1", "", 1, Refused, "OpenClient: host null : port 1\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.path << ' ' << (row.host ? row.host : "null") << ' ' << row.port);
        const Variable choice("TASocketIPv6", row.path);
        TASocket socket;
        ASSERT_EQ(socket.OpenServer(0), 0);  // what is open is closed first, and stays closed
        const std::string said = OutputOf(
            [&] { EXPECT_EQ(row.host ? socket.OpenClient(row.host, row.port) : socket.OpenServer(row.port), 1); });
        EXPECT_STREQ(socket.GetErrMsg(), row.message);
        EXPECT_TRUE(Has(said, row.line)) << said;
        EXPECT_EQ(socket.GetPort(), 0);
        EXPECT_EQ(socket.Close(), 1);
    }
}

TEST(SocketSetup, WithoutLibrary) {
    TASocket socket, client;
    ZELString query;
    EXPECT_STREQ(socket.GetErrMsg(), "no error on socket");
    EXPECT_TRUE(Gives(1, "Server socket not openend, unable to get client query", socket, socket.GetQuery(client)));
    PretendNoSockets(true);
    const std::function<int()> calls[] = {
        [&] { return socket.OpenServer(0); },    [&] { return socket.OpenClient("127.0.0.1", 1, 1); },
        [&] { return socket.GetQuery(client); }, [&] { return socket.GetQuery(1, query, client, 1); },
        [&] { return socket.Close(); },
    };
    for (const auto& call : calls) {
        EXPECT_EQ(socket.PutBlock(""), 1);
        EXPECT_TRUE(Gives(1, "No windows socket", socket, call()));
    }
    PretendNoSockets(false);
}

// With descriptors beyond those that select can wait for, where the system gives so many.
TEST(SocketSetup, Queries) {
    std::vector<zel::Socket> sockets(1100);
    for (zel::Socket& socket : sockets) socket = zel::Socket::MakeIPv4();
    const Interruptions interruptions;
    Listener listener;
    TASocket client;
    ZELString query;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(listener.server.GetQuery(1, query, client, 0), 1);
    EXPECT_TRUE(Gives(1, "Query time-out", listener.server, listener.server.GetQuery(1, query, client, 1)));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(990));
    EXPECT_TRUE(
        Gives(1, "unable to accept connection on socket", listener.server, listener.server.GetQuery(listener.server)));

    Peer silent(listener.port);
    EXPECT_TRUE(Gives(2, "Error reading from stream socket (select): Connection timed out", listener.server,
                      listener.server.GetQuery(1, query, client, Patience)));
    silent.Send(Block("late"));
    EXPECT_EQ(client.GetBlock(query, Patience), 0);
    EXPECT_EQ(query, "late");
    EXPECT_EQ(client.PutBlock("answer"), 0);

    Peer broken(listener.port);
    broken.Send("x");
    broken.Close();
    EXPECT_TRUE(
        Gives(1, "Unable to get block size ", listener.server, listener.server.GetQuery(Patience, query, client)));
    EXPECT_EQ(silent.Receive(), Block("answer"));  // sent when its socket was closed for the next client
    EXPECT_EQ(client.Close(), 0);

    Peer good(listener.port);
    good.Send(Block("question"));
    EXPECT_EQ(listener.server.GetQuery(Patience, query, client), 0);
    EXPECT_EQ(query, "question");
    EXPECT_EQ(listener.server.Close(), 0);
    EXPECT_EQ(client.PutBlock("still open"), 0);
    EXPECT_EQ(client.Flush(), 0);
}

// The end that closes first keeps the port busy for minutes, but not for the next server.
TEST(SocketSetup, RestartAtOnce) {
    Listener listener;
    for (int i = 0; i < 5; ++i) {
        Peer peer(listener.port);
        TASocket client;
        ASSERT_EQ(listener.server.GetQuery(client), 0);
        client.Close();
        EXPECT_EQ(peer.Receive(), "");
        ASSERT_EQ(listener.server.OpenServer(listener.port), 0) << listener.server.GetErrMsg();
    }
}

TEST(SocketSetup, ConnectTimeOut) {
    // A queue that is full takes nobody and refuses nobody.
    ASSERT_TRUE(zel::StartSockets());
    zel::Socket full = zel::Socket::MakeIPv4();
    ASSERT_TRUE(full.Bind(zel::AnyIPv4Address(0)) && full.Listen(0));
    const Interruptions interruptions;
    TASocket sockets[10];
    int taken = 0;
    while (taken < 10 && sockets[taken].OpenClient("127.0.0.1", full.Port(), 1) == 0) ++taken;
    ASSERT_LT(taken, 10);
    EXPECT_STREQ(sockets[taken].GetErrMsg(), "unable to connect client socket to server");
}

// What is opened when the process has no descriptor left, or hundreds of them.
TEST(SocketSetup, NoDescriptorIsLeft) {
    bool isExhausted = false;
    RunConfined([&] {
        Listener listener;
        Peer peer(listener.port);
        std::vector<zel::Socket> sockets;
        while (sockets.size() < 100 && (sockets.empty() || sockets.back().IsOpen()))
            sockets.push_back(zel::Socket::MakeIPv4());
        isExhausted = !sockets.back().IsOpen();
        if (!isExhausted) return;
        TASocket socket;
        EXPECT_TRUE(
            Gives(1, "unable to accept connection on socket", listener.server, listener.server.GetQuery(socket)));
        for (const char* path : {"", "1"}) {
            const Variable choice("TASocketIPv6", path);
            EXPECT_TRUE(Gives(1, "unable to create server socket", socket, socket.OpenServer(0)));
            EXPECT_TRUE(
                Gives(1, "unable to create client socket", socket, socket.OpenClient("127.0.0.1", listener.port)));
        }
        sockets.clear();
        EXPECT_EQ(listener.server.GetQuery(socket), 0);
    });
    if (!isExhausted) GTEST_SKIP() << "descriptors are not limited here";
}

}  // namespace
