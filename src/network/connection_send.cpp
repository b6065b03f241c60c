// Plain items on their way out, through the write buffer.
//
// The one rule of the buffer is in MakeRoom: before an item that would reach its end, the waiting bytes are sent. An
// item that would reach it even then is rejected before any byte of it is written. Contents of binary blocks are the
// exception: they are sent from their place, in one call with the waiting bytes, so that they are not copied.

#include "network/block_header.h"
#include "network/connection.h"
#include "platform/system.h"

using namespace zel;

namespace {

constexpr int IntegerSize = 4;

void Encode(int value, unsigned char (&bytes)[IntegerSize]) noexcept {
    const auto bits = static_cast<unsigned int>(value);
    for (int i = 0; i < IntegerSize; ++i) bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
}

}  // namespace

TASocketConnection::TASocketConnection(TASocket& owner, Socket&& socket) noexcept
    : _owner(owner), _socket(std::move(socket)), _out(owner._bufferSize) {
    if (owner._idleLimit > 0) ApplyIdleLimit();
}

std::int64_t TASocketConnection::IdleLimit() const noexcept {
    return _owner._idleLimit > 0 ? std::int64_t{_owner._idleLimit} * 1000 : -1;
}

void TASocketConnection::ApplyIdleLimit() noexcept {
    _socket.LimitSends(IdleLimit());
}

bool TASocketConnection::Compresses() const noexcept {
    if (_isCompressed) return true;
    const char* const wanted = GetEnvironment("TASocketCompress");
    return wanted != nullptr && *wanted != '\0';
}

int TASocketConnection::Flush() noexcept {
    if (_out.IsEmpty()) return 0;
    const Piece piece = {_out.Pending().data(), _out.Pending().size()};
    const bool isSent = _socket.Send(&piece, 1) == SendStatus::Sent;
    _out.Clear();
    return isSent ? 0 : Fail("Unable to flush buffer");
}

// `item` is the whole size in bytes, `told` the size for the message when the item never fits.
int TASocketConnection::MakeRoom(std::int64_t item, std::int64_t told) noexcept {
    if (item >= _out.Free() && Flush() != 0) return 1;
    if (item >= _out.Free() || !_out.HasMemory()) return _owner.RefuseItem(told);
    return 0;
}

void TASocketConnection::AppendHeader(int value) noexcept {
    char header[BlockHeaderSize];
    EncodeBlockHeader(value, header);
    _out.Append(header, sizeof header);
}

void TASocketConnection::AppendInteger(int value) noexcept {
    unsigned char bytes[IntegerSize];
    Encode(value, bytes);
    _out.Append(bytes, sizeof bytes);
}

int TASocketConnection::PutInteger(int value) noexcept {
    if (MakeRoom(IntegerSize, IntegerSize) != 0) return 1;
    AppendInteger(value);
    CountBytes(SendMeter(), IntegerSize);
    return 0;
}

int TASocketConnection::PutString(std::string_view text) noexcept {
    const auto length = static_cast<int>(text.size());
    if (MakeRoom(std::int64_t{IntegerSize} + length, length) != 0) return 1;
    AppendInteger(length);
    _out.Append(text.data(), text.size());
    CountBytes(SendMeter(), std::int64_t{IntegerSize} + length);
    return 0;
}

int TASocketConnection::PutText(std::string_view text) noexcept {
    return !text.empty() && Compresses() ? PutCompressedText(text) : PutPlainText(text);
}

int TASocketConnection::PutPlainText(std::string_view text) noexcept {
    const auto length = static_cast<int>(text.size());
    if (length > MostBlockBytes) return _owner.RefuseItem(length);
    if (MakeRoom(std::int64_t{BlockHeaderSize} + length, length) != 0) return 1;
    AppendHeader(length);
    _out.Append(text.data(), text.size());
    CountBytes(SendMeter(), length);
    return 0;
}

int TASocketConnection::PutList(const ZELListValZELString& words) noexcept {
    if (words.Size() > 0 && Compresses()) return PutCompressedList(words);
    // Measured before it is joined: a list that no buffer takes shall not be copied first.
    std::int64_t length = words.Size() > 0 ? words.Size() - 1 : 0;
    for (const ZELString& word : words) length += word.Length();
    if (length > MostBlockBytes) return _owner.RefuseItem(length);
    if (MakeRoom(BlockHeaderSize + length, length) != 0) return 1;
    AppendHeader(static_cast<int>(length));
    bool isFirst = true;
    for (const ZELString& word : words) {
        if (!std::exchange(isFirst, false)) _out.Append(" ", 1);
        _out.Append(word.CastToCharPtr(), static_cast<std::size_t>(word.Length()));
    }
    CountBytes(SendMeter(), length);
    return 0;
}

int TASocketConnection::PutBinary(int size, const void* data) noexcept {
    const bool isBlock = size >= 0 && size <= MostBlockBytes && (size == 0 || data != nullptr);
    if (!isBlock) return _owner.RefuseItem(size);
    if (MakeRoom(BlockHeaderSize, size) != 0) return 1;
    AppendHeader(size);
    if (size > 0) {
        const Piece pieces[] = {{_out.Pending().data(), _out.Pending().size()}, {data, static_cast<std::size_t>(size)}};
        const bool isSent = _socket.Send(pieces, 2) == SendStatus::Sent;
        _out.Clear();
        if (!isSent) return Fail("Unable to flush buffer");
    }
    CountBytes(SendMeter(), size);
    return 0;
}
