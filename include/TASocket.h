// Requests, answers and files between tools over one TCP connection: a client that connects, a server that listens, and
// blocks (texts, bytes, integers, lists of words, whole files) that arrive as they were sent.
//
// For tools of one kind that talk to each other in a network they trust: nothing is encrypted, nobody is asked who they
// are. docs/wire.md shows the bytes. Not for protocols of others: every block has a frame of its own.
//
//     TASocket server, client;                                  // a server that answers one client after another
//     if (server.OpenServer(7000) != 0) return Complain(server.GetErrMsg());
//     ZELString query;
//     for (;;) {
//         if (server.GetQuery(10, query, client) == 0) client.PutBlock(Answer(query));
//         client.Close();                                       // sends what waits, then hangs up
//     }
//
//     TASocket socket;                                          // a client of it
//     ZELString answer;
//     if (socket.OpenClient("build-server", 7000) != 0 || socket.PutBlock("status main") != 0 ||
//         socket.GetBlock(answer, 30) != 0)
//         return Complain(socket.GetErrMsg());
//
// Sending. A put goes into a buffer of the object, of 8192 bytes or the size given at construction. The buffer is sent
// when the next item does not fit, by Flush(), before anything is received, and by Close(): a put that succeeded may
// still be in the buffer. An item together with its 4 bytes of length must be smaller than the buffer: a text of 8187
// bytes is the longest in a buffer of 8192. Binary blocks and files of any size are sent in pieces.
//
// Receiving. Each receiving function sends what waits, then waits for the first byte: at most `timeout` seconds, or
// without limit when it is 0 or less. Once a block has begun it is read to its end, however long that takes, unless
// SetIdleLimit() says otherwise. Claimed sizes are not trusted: memory grows only with received bytes.
//
// Compression. Words that repeat, as command lines have them, travel once per connection. A put compresses its text or
// list while the environment variable TASocketCompress is set and not empty, or once a compressed block has come in by
// either GetBlock, up to Close(). In that mode the receiver must ask for what was sent: a text for a text, a list for
// a list.
//
// Results are 0 for success and 1 for failure; GetErrMsg() then says why. Receiving also gives 2, when nothing came
// in time: the connection is as it was, and one may ask again. After any other failure of a put or get it is unknown
// where in the stream the connection stands: close it. Opening is the one thing that closes what failed.
// A put or a get on a socket that is not open fails. Nothing throws and no signal is raised. When memory runs out, a
// line that starts with "# Alloc failed in TASocket" goes to standard output and the operation fails.
//
// IPv4 or both. TASocketIPv6 in the environment, in either case of letters: not set or empty, everything is IPv4.
// SERVERONLY: servers listen to IPv6 and IPv4 at once. CLIENTONLY: clients try all addresses of a host, of either kind.
// Any other value: both. There, TASocketIPv6EnableTraces shows every step on standard output, and
// TASocketIPv6EnablePerfoTraces (not with the other side's word) the processor time that it took.
//
// Sockets are not copied and are used by one thread at a time; distinct ones by distinct threads. No child process gets
// them. A server's port can be bound again as soon as it was closed; on Windows nobody else can take it meanwhile.
#ifndef TASOCKET_H
#define TASOCKET_H

#include "ZELExport.h"
#include "ZELListValZELString.h"
#include "ZELString.h"

class TAPerfo;
namespace zel {
struct TASocketConnection;  // what exists while the socket is open
}  // namespace zel

class ZEL_API TASocket {
public:
    static constexpr int DefaultBufferSize = 8192;

    TASocket() noexcept : TASocket(DefaultBufferSize) {}
    // The size of the write buffer; below 0 counts as 0. A buffer of 4 bytes or less takes nothing.
    explicit TASocket(int bufferSize) noexcept;
    TASocket(const TASocket&) = delete;
    TASocket& operator=(const TASocket&) = delete;
    // Closes.
    ~TASocket();

    // Connects to a host by name or number. An open socket is closed first. Blocks as long as the system tries; the
    // second form `connectTimeout` seconds at most, over all addresses, 0 or less for no limit (asking for the host's
    // addresses is not limited). On failure the socket is closed.
    int OpenClient(ZELString host, int port) noexcept { return OpenClient(host, port, 0); }
    int OpenClient(ZELString host, int port, int connectTimeout) noexcept;

    // Listens at the port on all addresses of this machine. 0 takes a free port; GetPort() tells which. An open socket
    // is closed first. On failure the socket is closed.
    int OpenServer(int port) noexcept;
    // The port of this end, for a server the one that it listens at; 0 when not open.
    int GetPort() const noexcept;

    // Waits for the next client and connects `client` to it, which is closed first if it is open. The server goes on
    // listening whatever happens; what failed on `client` is this socket's message too.
    int GetQuery(TASocket& client) noexcept;
    // And reads the client's first block, a text, as GetBlock(query, timeout) on it does; its result is the result.
    // Also when that failed `client` is open, and is its owner's to close.
    int GetQuery(int timeout, ZELString& query, TASocket& client) noexcept;
    // The same, but waits for a client at most `acceptTimeout` seconds, then gives 1 with the message
    // "Query time-out". 0 takes a client that waits already; below 0 waits without limit.
    int GetQuery(int timeout, ZELString& query, TASocket& client, int acceptTimeout) noexcept;

    // Sends what waits, hangs up, forgets the words and whether blocks came compressed. 1 when the socket is not open,
    // and when what waited could not be sent: it is closed all the same.
    int Close() noexcept;

    // An integer; a short text of any bytes with its length. They are read by Read() of the same kind.
    int Write(int value) noexcept;
    int Write(ZELString text) noexcept;
    // A text, read by GetBlock. Null is the empty text. In plain form any bytes; in compressed form a NUL arrives as a
    // blank, and each word must fit the buffer. Fails before anything of it is written when it does not fit, or has
    // 2^24 bytes or more.
    int PutBlock(const char* text) noexcept;
    int PutBlock(ZELString text) noexcept;
    // A list of words. In plain form it travels as one text of its words with a blank in between, so words that hold
    // blanks arrive as several, and a list of one empty word as an empty list. In compressed form words arrive as they
    // are.
    int PutBlock(ZELListValZELString& words) noexcept;
    // Bytes, fewer than 2^24; sent at once, with what waited in front of them.
    int PutBinBlock(int size, void* data) noexcept;
    // The contents of a file as they are; no name travels. The file may be of any size, and change meanwhile: it ends
    // where its end is found, but when others cut off what is just being sent, this may fail in the middle of a block.
    // Fails before anything is sent when it cannot be opened (a directory never can). What was begun is not taken back.
    int PutFile(ZELString path) noexcept;
    // Sends what waits; blocks until the system has taken it. It is gone also after a failure.
    int Flush() noexcept;

    // The counterparts. What they fill keeps its old value until something came, and is empty or 0 after a failure.
    int GetBlock(ZELString& text, int timeout) noexcept;
    int GetBlock(ZELListValZELString& words, int timeout) noexcept;
    // `*data` is a block that the caller frees with free(); null, and `*size` 0, for no bytes and when the result is
    // not 0.
    int GetBinBlock(int* size, void** data, int timeout) noexcept;
    int Read(int& value, int timeout) noexcept;
    int Read(ZELString& text, int timeout) noexcept;
    // Receives what PutFile sent into the file `path`, made or emptied when the first byte has come (without a
    // time-out: at once), and compares the number of bytes. The sender has no say in where it goes. The time-out counts
    // anew before every piece. After a failure, and a time-out in the middle, the file holds what came so far: receive
    // under another name and rename where a half file would hurt. When the file cannot be opened nothing has been read,
    // and another path may be tried.
    int GetFile(ZELString path, int timeout) noexcept;
    // The same for text: lines that end with LF or CR LF end as the target's do, CR LF on Windows and LF on Linux.
    int GetFileASCII(ZELString path, int timeout) noexcept;

    // From now on, no wait for the next byte takes longer than so many seconds, in either direction, but for those that
    // have a time-out of their own: a transfer that stalls fails with 1. 0 or less, as at first: no limit. Always 0.
    // Lasts over opening and closing.
    int SetIdleLimit(int seconds) noexcept;

    // Counters that are told of bytes received and sent; null for none. They stay the caller's and must live as long as
    // they are set. Always 0.
    // Told are, without headers, the payload of each block and the size of each file (of a large one in parts, as they
    // pass), and of what is sent an integer as 4 and a text with its length as that and 4. A compressed block counts as
    // the integers and texts that it is sent as; where it arrives, as the text or as the sum of its items. Read() tells
    // nothing.
    int SetPerfo(TAPerfo* receiveMeter, TAPerfo* sendMeter) noexcept;

    // What went wrong last; "no error on socket" before that. A success does not reset it. Valid until the next
    // failure.
    const char* GetErrMsg() const noexcept { return _message; }

private:
    friend struct zel::TASocketConnection;

    int Fail(const char* message) noexcept;
    int RefuseItem(long long size) noexcept;
    int Adopt(zel::TASocketConnection* connection, const char* failure) noexcept;
    int AcceptClient(TASocket& client, int acceptTimeout) noexcept;
    void CopyMessage(const TASocket& other) noexcept;
    int BeginGet(int timeout) noexcept;

    int _bufferSize;
    int _idleLimit = 0;                              // seconds; 0: none
    zel::TASocketConnection* _connection = nullptr;  // null when closed
    TAPerfo* _receiveMeter = nullptr;
    TAPerfo* _sendMeter = nullptr;
    const char* _message;  // constant text, or _sizeMessage
    char _sizeMessage[72];
};

#endif
