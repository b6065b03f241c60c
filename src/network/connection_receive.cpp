// Plain items on their way in, through the receive buffer.
//
// The dangerous case is a peer that announces what it never sends: nothing is allocated for an announcement. A text
// grows by what has arrived; a binary block is made longer by 64 KiB at a time, since it is filled in place.

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "TAPerfo.h"
#include "base/failure_report.h"
#include "base/memory.h"
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
    char header[block_header::Size];
    if (!ReadBytes(header, sizeof header)) return false;
    value = block_header::Decode(header);
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
    const bool isRead =
        length < 0 ? ReadCompressedText(text) : length <= block_header::MostBytes && ReadText(text, length);
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
        isRead = length <= block_header::MostBytes && ReadText(text, length) && SplitAtBlanks(text.View(), words);
    }
    if (!isRead) {
        words.RemoveAll(ZELCollec::ReleaseMemory);
        return Fail("Unable to get full block");
    }
    CountBytes(ReceiveMeter(), bytes);
    return 0;
}

int TASocketConnection::GetBinary(int& size, void*& data) noexcept {
    constexpr int Step = 64 << 10;
    int announced = 0;
    if (!ReadHeader(announced)) return Fail("Unable to get block size");
    if (announced < 0 || announced > block_header::MostBytes) return Fail("Unable to get full block");
    char* block = nullptr;
    for (int arrived = 0; arrived < announced;) {
        const int piece = std::min(announced - arrived, Step);
        const auto room = static_cast<std::size_t>(arrived + piece);
        char* const grown = AllocationFails() ? nullptr : static_cast<char*>(std::realloc(block, room));
        const bool isRead = grown != nullptr && ReadBytes(grown + arrived, static_cast<std::size_t>(piece));
        if (grown != nullptr)
            block = grown;
        else
            ReportAllocFailure("TASocket", room);
        if (!isRead) {
            std::free(block);
            return Fail(grown == nullptr ? "Unable to alloc memory for GetBinBlock" : "Unable to get full block");
        }
        arrived += piece;
    }
    size = announced;
    data = block;
    CountBytes(ReceiveMeter(), announced);
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
