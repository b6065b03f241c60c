// The class itself: its members while it is closed, and the way from each call to the connection.
//
// Opening creates a connection, closing destroys it: words, buffers and the compressed mode cannot outlive their
// connection. Messages, counters and the idle limit are the socket's own and stay.

#include "TASocket.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "network/connection.h"
#include "network/setup_trace.h"
#include "network/socket_setup.h"

using namespace zel;

namespace {

constexpr const char* NoLibrary = "No windows socket";
constexpr const char* NoMemory = "Not enough memory";
constexpr const char* NotOpenForPut = "Socket not opened, unable to put data block";
constexpr const char* NotOpenForGet = "Socket not opened, unable to get data block";

// Null when there is no socket, or no memory.
TASocketConnection* MakeConnection(TASocket& owner, Socket&& socket) noexcept {
    if (!socket.IsOpen()) return nullptr;
    TASocketConnection* const made = ZELNew<TASocketConnection>(owner, std::move(socket));
    if (made == nullptr) ReportAllocFailure("TASocket", sizeof *made);
    return made;
}

}  // namespace

TASocket::TASocket(int bufferSize) noexcept
    : _bufferSize(std::max(bufferSize, 0)), _message("no error on socket"), _sizeMessage{} {}

TASocket::~TASocket() {
    Close();
}

int TASocket::Fail(const char* message) noexcept {
    _message = message;
    return 1;
}

int TASocket::RefuseItem(long long size) noexcept {
    std::snprintf(_sizeMessage, sizeof _sizeMessage, "Unable to put block in buffer (block size is %lld)", size);
    return Fail(_sizeMessage);
}

// Takes the connection over, or stores the reason why there is none.
int TASocket::Adopt(TASocketConnection* connection, const char* failure) noexcept {
    _connection = connection;
    return connection != nullptr ? 0 : Fail(failure);
}

int TASocket::OpenClient(ZELString host, int port, int connectTimeout) noexcept {
    if (!HasSockets()) return Fail(NoLibrary);
    if (_connection != nullptr) Close();
    if (host.IsIncomplete()) return Fail(NoMemory);
    const std::int64_t limit = connectTimeout > 0 ? std::int64_t{connectTimeout} * 1000 : -1;
    const char* failure = "unable to create client socket";
    Socket socket;
    if (WantsBothFamilies("SERVERONLY")) {
        const SetupTrace trace("OpenClient", "SERVERONLY");
        socket = ConnectByAny(host, port, limit, trace, failure);
        trace.Time("ending");
    } else {
        socket = ConnectByIPv4(host, port, limit, failure);
    }
    return Adopt(MakeConnection(*this, std::move(socket)), failure);
}

int TASocket::OpenServer(int port) noexcept {
    if (!HasSockets()) return Fail(NoLibrary);
    if (_connection != nullptr) Close();
    const char* failure = "unable to create server socket";
    Socket socket;
    if (WantsBothFamilies("CLIENTONLY")) {
        const SetupTrace trace("OpenServer", "CLIENTONLY");
        socket = ListenByBoth(port, trace, failure);
        trace.Time("ending");
    } else {
        socket = ListenByIPv4(port, failure);
    }
    return Adopt(MakeConnection(*this, std::move(socket)), failure);
}

int TASocket::GetPort() const noexcept {
    return _connection != nullptr ? _connection->TheSocket().Port() : 0;
}

int TASocket::GetQuery(TASocket& client) noexcept {
    return AcceptClient(client, -1);
}

int TASocket::GetQuery(int timeout, ZELString& query, TASocket& client) noexcept {
    return GetQuery(timeout, query, client, -1);
}

int TASocket::GetQuery(int timeout, ZELString& query, TASocket& client, int acceptTimeout) noexcept {
    if (AcceptClient(client, acceptTimeout) != 0) return 1;
    const int result = client.GetBlock(query, timeout);
    if (result != 0) CopyMessage(client);
    return result;
}

int TASocket::AcceptClient(TASocket& client, int acceptTimeout) noexcept {
    constexpr const char* Refused = "unable to accept connection on socket";
    if (!HasSockets()) return Fail(NoLibrary);
    if (_connection == nullptr) return Fail("Server socket not openend, unable to get client query");
    if (&client == this) return Fail(Refused);
    // Before the wait: its peer may wait for bytes that are still in the buffer.
    if (client._connection != nullptr) client.Close();
    bool isTimeOut = false;
    const std::int64_t limit = acceptTimeout >= 0 ? std::int64_t{acceptTimeout} * 1000 : -1;
    Socket accepted = _connection->TheSocket().Accept(limit, isTimeOut);
    if (!accepted.IsOpen()) return Fail(isTimeOut ? "Query time-out" : Refused);
    return client.Adopt(MakeConnection(client, std::move(accepted)), Refused) == 0 ? 0 : Fail(Refused);
}

// A message with a size is stored in its owner, so it is copied.
void TASocket::CopyMessage(const TASocket& other) noexcept {
    std::copy_n(other._sizeMessage, sizeof _sizeMessage, _sizeMessage);
    _message = other._message == other._sizeMessage ? _sizeMessage : other._message;
}

int TASocket::Close() noexcept {
    if (!HasSockets()) return Fail(NoLibrary);
    if (_connection == nullptr) return Fail("unable to close not opened socket");
    const int result = _connection->Flush();
    ZELDelete(_connection);
    _connection = nullptr;
    return result;
}

int TASocket::SetIdleLimit(int seconds) noexcept {
    _idleLimit = std::max(seconds, 0);
    if (_connection != nullptr) _connection->ApplyIdleLimit();
    return 0;
}

int TASocket::SetPerfo(TAPerfo* receiveMeter, TAPerfo* sendMeter) noexcept {
    _receiveMeter = receiveMeter;
    _sendMeter = sendMeter;
    return 0;
}

int TASocket::Write(int value) noexcept {
    return _connection != nullptr ? _connection->PutInteger(value) : Fail(NotOpenForPut);
}

int TASocket::Write(ZELString text) noexcept {
    if (text.IsIncomplete()) return Fail(NoMemory);
    return _connection != nullptr ? _connection->PutString(text.View()) : Fail(NotOpenForPut);
}

int TASocket::PutBlock(const char* text) noexcept {
    return _connection != nullptr ? _connection->PutText(text != nullptr ? text : "") : Fail(NotOpenForPut);
}

int TASocket::PutBlock(ZELString text) noexcept {
    if (text.IsIncomplete()) return Fail(NoMemory);
    return _connection != nullptr ? _connection->PutText(text.View()) : Fail(NotOpenForPut);
}

int TASocket::PutBlock(ZELListValZELString& words) noexcept {
    return _connection != nullptr ? _connection->PutList(words) : Fail(NotOpenForPut);
}

int TASocket::PutBinBlock(int size, void* data) noexcept {
    return _connection != nullptr ? _connection->PutBinary(size, data) : Fail(NotOpenForPut);
}

int TASocket::PutFile(ZELString path) noexcept {
    if (path.IsIncomplete()) return Fail(NoMemory);
    return _connection != nullptr ? _connection->PutFile(path) : Fail(NotOpenForPut);
}

int TASocket::Flush() noexcept {
    return _connection != nullptr ? _connection->Flush() : Fail(NotOpenForPut);
}

// The first step of every get.
int TASocket::BeginGet(int timeout) noexcept {
    return _connection != nullptr ? _connection->BeginGet(timeout) : Fail(NotOpenForGet);
}

int TASocket::GetBlock(ZELString& text, int timeout) noexcept {
    const int result = BeginGet(timeout);
    return result != 0 ? result : _connection->GetText(text);
}

int TASocket::GetBlock(ZELListValZELString& words, int timeout) noexcept {
    const int result = BeginGet(timeout);
    return result != 0 ? result : _connection->GetList(words);
}

int TASocket::GetBinBlock(int* size, void** data, int timeout) noexcept {
    int arrived = 0;
    void* block = nullptr;
    const int begun = BeginGet(timeout);
    const int result = begun != 0 ? begun : _connection->GetBinary(arrived, block);
    if (size != nullptr) *size = arrived;
    if (data != nullptr)
        *data = block;
    else
        Free(block);
    return result;
}

int TASocket::Read(int& value, int timeout) noexcept {
    const int result = BeginGet(timeout);
    return result != 0 ? result : _connection->GetInteger(value);
}

int TASocket::Read(ZELString& text, int timeout) noexcept {
    const int result = BeginGet(timeout);
    return result != 0 ? result : _connection->GetString(text);
}

int TASocket::GetFile(ZELString path, int timeout) noexcept {
    if (path.IsIncomplete()) return Fail(NoMemory);
    return _connection != nullptr ? _connection->GetFile(path, timeout, false) : Fail(NotOpenForGet);
}

int TASocket::GetFileASCII(ZELString path, int timeout) noexcept {
    if (path.IsIncomplete()) return Fail(NoMemory);
    return _connection != nullptr ? _connection->GetFile(path, timeout, true) : Fail(NotOpenForGet);
}
