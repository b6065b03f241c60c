// The other end of a TASocket, in plain bytes.
#ifndef TESTS_NETWORK_PEER_H
#define TESTS_NETWORK_PEER_H

#include <memory>
#include <string>
#include <string_view>

#include "TASocket.h"
#include "platform/sockets.h"
#include "platform/system.h"
#include "support/testing.h"

// Seconds for what will come: a busy machine may take long, and each case has a time limit of its own.
constexpr int Patience = 1000;

// A server of IPv4 on a free port.
struct Listener {
    Listener() {
        EXPECT_EQ(server.OpenServer(0), 0) << server.GetErrMsg();
        port = server.GetPort();
    }
    TASocket server;
    int port = 0;
};

inline zel::NetworkAddress Loopback(int port, const char* host = "127.0.0.1") {
    zel::AddressList list;
    EXPECT_EQ(zel::ResolveAddresses(host, port, zel::Purpose::Connect, list), 0);
    return !list.IsEmpty() ? *list.begin() : zel::NetworkAddress();
}

class Peer {
public:
    // Connects.
    explicit Peer(int port) : _socket(zel::Socket::MakeIPv4()) {
        EXPECT_TRUE(_socket.Connect(Loopback(port), 1000 * Patience));
    }
    bool Send(std::string_view bytes) {
        const zel::Piece piece = {bytes.data(), bytes.size()};
        return _socket.Send(&piece, 1) == zel::SendStatus::Sent;
    }
    // What comes before `size` bytes are there, or the end.
    std::string Receive(std::size_t size = std::string::npos) {
        std::string all;
        char part[65536];
        std::size_t count = 0;
        while (all.size() < size && _socket.Receive(part, std::min(sizeof part, size - all.size()), 1000 * Patience,
                                                    count) == zel::ReceiveStatus::Received)
            all.append(part, count);
        return all;
    }
    void Close() { _socket.Close(); }

private:
    zel::Socket _socket;
};

// Whether a call on the socket gave this result and this message.
inline testing::AssertionResult Gives(int expected, const char* message, const TASocket& socket, int result) {
    if (result == expected && std::strcmp(socket.GetErrMsg(), message) == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << result << ' ' << socket.GetErrMsg();
}

// A TASocket that a server accepted, and what is at its other end.
struct Conversation {
    explicit Conversation(Listener& listener, int bufferSize = TASocket::DefaultBufferSize)
        : peer(listener.port), socket(bufferSize) {
        EXPECT_EQ(listener.server.GetQuery(socket), 0) << listener.server.GetErrMsg();
    }
    explicit Conversation(int bufferSize = TASocket::DefaultBufferSize)
        : Conversation(*std::make_unique<Listener>(), bufferSize) {}
    // What arrives when the socket closes.
    std::string CloseAndReceive() {
        socket.Close();
        return peer.Receive();
    }
    Peer peer;
    TASocket socket;
};

// For its life a variable of the environment has a value; empty: none.
class Variable {
public:
    Variable(std::string name, const std::string& value) : _name(std::move(name)) { Put(value); }
    ~Variable() { Put(""); }

private:
    void Put(const std::string& value) const { zel::PutEnvironment((_name + '=' + value).c_str()); }
    std::string _name;
};

// 4 bytes, least significant first.
inline std::string Number(int value) {
    const auto byte = [value](int index) { return static_cast<char>(static_cast<unsigned>(value) >> (8 * index)); };
    return {byte(0), byte(1), byte(2), byte(3)};
}

inline std::string Text(std::string_view text) {
    return Number(static_cast<int>(text.size())).append(text);
}

// A header by its definition.
inline std::string Header(int value) {
    std::string bytes;
    const int sign = value < 0 ? 64 : 0;
    for (int i = 0; i < 4; ++i, value /= 64) bytes += static_cast<char>(((value & 63) | sign) + 32);
    return bytes;
}

inline std::string Block(std::string_view text) {
    return Header(static_cast<int>(text.size())).append(text);
}

inline ZELListValZELString List(std::initializer_list<const char*> words) {
    ZELListValZELString list;
    for (const char* word : words) list.Append(word);
    return list;
}

#endif
