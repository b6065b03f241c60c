// Plain items on their way in, through the receive buffer.
//
// Hazard: a peer that claims a size and never sends the bytes. Memory is not allocated for a claim: it grows with the
// received bytes. A binary block is filled in place, 64 KiB at a time.

#include <algorithm>
#include <climits>

#include "TAPerfo.h"
#include "base/failure_report.h"
#include "base/growing_array.h"
#include "network/block_header.h"
#include "network/connection.h"

using namespace zel;

void zel::CountBytes(TAPerfo* meter, std::int64_t bytes) noexcept {
    if (meter == nullptr) return;
    for (; bytes > INT_MAX; bytes -= INT_MAX) meter->Count(INT_MAX);
    meter->Count(static_cast<int>(bytes));
}

int TASocketConnection::BeginGet(int timeout) noexcept {
    return Flush() != 0 ? 1 : Wait(timeout);
}

// Up to `timeout` seconds; not at all when that is 0 or less. The end of a connection counts as something that came: it
// is the read that finds it.
int TASocketConnection::Wait(int timeout) noexcept {
    if (timeout <= 0) return 0;
    switch (_in.Fill(_socket, std::int64_t{timeout} * 1000)) {
        case ReceiveStatus::TimedOut:
            Fail("Error reading from stream socket (select): Connection timed out");
            return 2;
        case ReceiveStatus::NotReady:
            Fail("Error reading from stream socket (select): File descriptor not ready");
            return 2;
        case ReceiveStatus::Invalid:
            return Fail("Error reading from stream socket (select)");
        case ReceiveStatus::Received:
        case ReceiveStatus::Ended:
            break;
    }
    return 0;
}

bool TASocketConnection::ReadInteger(int& value) noexcept {
    unsigned char bytes[4];
    if (!ReadBytes(bytes, sizeof bytes)) return false;
    unsigned int bits = 0;
    for (int i = 3; i >= 0; --i) bits = bits << 8 | bytes[i];
    value = static_cast<int>(bits);
    return true;
}

bool TASocketConnection::ReadHeader(int& value) noexcept {
    char header[BlockHeaderSize];
    if (!ReadBytes(header, sizeof header)) return false;
    value = DecodeBlockHeader(header);
    return true;
}

// Appends `length` bytes. False also when memory runs out, which the string has said.
bool TASocketConnection::ReadText(ZELString& text, int length) noexcept {
    const int wanted = text.Length() + length;
    while (text.Length() < wanted) {
        if (_in.Fill(_socket, IdleLimit()) != ReceiveStatus::Received) return false;
        const auto missing = static_cast<std::size_t>(wanted - text.Length());
        const std::string_view piece = _in.Arrived().substr(0, missing);
        const int before = text.Length();
        text.Append(piece);
        if (text.Length() == before) return false;
        _in.Skip(piece.size());
    }
    return true;
}

// A length and the bytes, into an empty `text`.
bool TASocketConnection::ReadString(ZELString& text) noexcept {
    int length = 0;
    return ReadInteger(length) && length >= 0 && ReadText(text, length);
}

int TASocketConnection::GetText(ZELString& text) noexcept {
    text = "";  // and keeps its memory for the next
    int length = 0;
    if (!ReadHeader(length)) return Fail("Unable to get block size ");
    if (length < 0) _isCompressed = true;
    const bool isRead = length < 0 ? ReadCompressedText(text) : length <= MostBlockBytes && ReadText(text, length);
    if (!isRead) {
        text = ZELString();
        return Fail("Unable to get full block");
    }
    CountBytes(ReceiveMeter(), text.Length());
    return 0;
}

int TASocketConnection::GetList(ZELListValZELString& words) noexcept {
    words.RemoveAll(ZELCollec::ReleaseMemory);
    int length = 0;
    if (!ReadHeader(length)) return Fail("Unable to get block size ");
    std::int64_t bytes = length;
    bool isRead = true;
    if (length < 0) {
        _isCompressed = true;
        isRead = ReadCompressedList(words, bytes);
    } else if (length > 0) {
        ZELString text;
        isRead = length <= MostBlockBytes && ReadText(text, length) && SplitAtBlanks(text.View(), words);
    }
    if (!isRead) {
        words.RemoveAll(ZELCollec::ReleaseMemory);
        return Fail("Unable to get full block");
    }
    CountBytes(ReceiveMeter(), bytes);
    return 0;
}

int TASocketConnection::GetBinary(int& size, void*& data) noexcept {
    constexpr std::size_t Step = 64 << 10;
    int claimed = 0;
    if (!ReadHeader(claimed)) return Fail("Unable to get block size");
    if (claimed < 0 || claimed > MostBlockBytes) return Fail("Unable to get full block");
    GrowingArray<char> block;
    while (block.Size() < static_cast<std::size_t>(claimed)) {
        const std::size_t arrived = block.Size();
        const std::size_t piece = std::min(static_cast<std::size_t>(claimed) - arrived, Step);
        if (!block.Reserve(arrived + piece)) {
            ReportAllocFailure("TASocket", arrived + piece);
            return Fail("Unable to alloc memory for GetBinBlock");
        }
        if (!ReadBytes(block.Data() + arrived, piece)) return Fail("Unable to get full block");
        block.SetSize(arrived + piece);
    }
    size = claimed;
    data = block.Release();
    CountBytes(ReceiveMeter(), claimed);
    return 0;
}

int TASocketConnection::GetInteger(int& value) noexcept {
    value = 0;
    return ReadInteger(value) ? 0 : Fail("Unable to get block size");
}

int TASocketConnection::GetString(ZELString& text) noexcept {
    text = "";
    int length = 0;
    if (!ReadInteger(length)) return Fail("Unable to get block size");
    if (length >= 0 && ReadText(text, length)) return 0;
    text = ZELString();
    return Fail("Unable to get full block");
}
