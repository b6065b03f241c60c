// The state of a TASocket while it is open: the socket, the buffers and the words of both directions.
//
// The operations are those of the class, with its results and messages, on a socket that is known to be open. They are
// spread over connection_send.cpp (plain items), connection_receive.cpp (the same), connection_words.cpp (compressed
// blocks) and connection_files.cpp.
#ifndef NETWORK_CONNECTION_H
#define NETWORK_CONNECTION_H

#include <cstdint>
#include <string_view>
#include <utility>

#include "TASocket.h"
#include "network/socket_buffers.h"
#include "network/word_tables.h"
#include "platform/sockets.h"

namespace zel {

// Bytes of one kind on their way to a counter, whose amounts are int.
void CountBytes(TAPerfo* meter, std::int64_t bytes) noexcept;

// Appends the pieces of the text between its blanks, empty ones included. False when memory runs out.
bool SplitAtBlanks(std::string_view text, ZELListValZELString& words) noexcept;

class FileMapping;
class TransferTally;

struct TASocketConnection {
public:
    TASocketConnection(TASocket& owner, Socket&& socket) noexcept;

    Socket& TheSocket() noexcept { return _socket; }
    void ApplyIdleLimit() noexcept;

    int Flush() noexcept;
    int PutInteger(int value) noexcept;
    int PutString(std::string_view text) noexcept;
    int PutText(std::string_view text) noexcept;
    int PutList(const ZELListValZELString& words) noexcept;
    int PutBinary(int size, const void* data) noexcept;
    int PutFile(const char* path) noexcept;

    // The first step of every get: sends the waiting bytes and waits for the peer.
    int BeginGet(int timeout) noexcept;
    int GetText(ZELString& text) noexcept;
    int GetList(ZELListValZELString& words) noexcept;
    int GetBinary(int& size, void*& data) noexcept;
    int GetInteger(int& value) noexcept;
    int GetString(ZELString& text) noexcept;
    int GetFile(const char* path, int timeout, bool isText) noexcept;

private:
    int Fail(const char* message) noexcept { return _owner.Fail(message); }
    TAPerfo* SendMeter() const noexcept { return _owner._sendMeter; }
    TAPerfo* ReceiveMeter() const noexcept { return _owner._receiveMeter; }
    std::int64_t IdleLimit() const noexcept;
    bool Compresses() const noexcept;

    int MakeRoom(std::int64_t item, std::int64_t told) noexcept;
    void AppendHeader(int value) noexcept;
    void AppendInteger(int value) noexcept;
    int PutPlainText(std::string_view text) noexcept;
    int PutCompressedText(std::string_view text) noexcept;
    int PutCompressedList(const ZELListValZELString& words) noexcept;
    bool TakesWord(std::string_view word) const noexcept;
    int DefineWord(std::string_view word, int& number) noexcept;
    std::size_t FrameRoom() const noexcept;
    int SendFrames(const char* data, std::size_t size) noexcept;
    int SendMapped(FileMapping& mapping, std::size_t size, TransferTally& tally) noexcept;
    int PutTotal(std::int64_t sent) noexcept;
    int CheckTotal(std::int64_t received) noexcept;

    int Wait(int timeout) noexcept;
    bool ReadBytes(void* bytes, std::size_t size) noexcept { return _in.Read(_socket, IdleLimit(), bytes, size); }
    bool ReadInteger(int& value) noexcept;
    bool ReadHeader(int& value) noexcept;
    bool ReadText(ZELString& text, int length) noexcept;
    bool ReadString(ZELString& text) noexcept;
    bool ReadDictionary() noexcept;
    bool ReadCompressedText(ZELString& text) noexcept;
    bool ReadCompressedList(ZELListValZELString& words, std::int64_t& bytes) noexcept;

    TASocket& _owner;  // holds the message, the limit and the counters
    Socket _socket;
    WriteBuffer _out;
    ReceiveBuffer _in;
    bool _isCompressed = false;  // the peer compresses
    SentWords _sent;
    ReceivedWords _received;
};

}  // namespace zel

#endif
