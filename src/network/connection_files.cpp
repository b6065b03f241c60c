// Files as binary blocks, each as long as the room of the write buffer after its header.
//
// The wire requires the division into blocks, but no block passes through the buffer: a hundred are sent in one call
// that gathers headers and contents, from the system's own copy of the file or from a piece that is read. (Reading
// takes a quarter longer.) Only a rest that does not fill the buffer stays in it, as after any other put. The receiver
// accepts any division and copies only pieces at the end of a block.
//
// Hazard: a file that other programs change meanwhile. Its first and its last piece are read, and decide: a file that
// does not read as one (those of the system itself claim any size) is never mapped, and a file that grew or shrank
// between two pieces ends where reading finds its end. Mapped bytes are never accessed here. A piece is claimed only
// while the file has all of it. If the file lost a part before it was sent, foreign bytes may be on the wire, so the
// transfer fails. (One case is not detected: a file that is shortened and made longer again during one call. Then up to
// a page may be zeros.)

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>

#include "TADiagnostics.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "network/block_header.h"
#include "network/connection.h"
#include "platform/c_streams.h"
#include "platform/file_mapping.h"

using namespace zel;

namespace {

constexpr const char* NotRead = "Unable to read file for TASocket::PutFile";

// With the usual buffer, as many blocks as go out in one call.
constexpr int MostFrames = (Socket::MaxPieces - 1) / 2;
constexpr std::size_t AtOnce = std::size_t{MostFrames} * TASocket::DefaultBufferSize;
constexpr std::int64_t CountedAtOnce = 1 << 20;

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;
using Block = std::unique_ptr<char, FreeBlock>;

Block MakeBlock(std::size_t size) noexcept {
    Block block(AllocateArray<char>(size));
    if (block == nullptr) ReportAllocFailure("TASocket", size);
    return block;
}

// Fills the block from the file; less only at its end. -1 when the disk fails.
std::ptrdiff_t ReadFully(std::FILE* file, char* bytes, std::size_t size) noexcept {
    std::size_t done = 0;
    while (done < size) {
        const std::ptrdiff_t count = ReadArrived(file, bytes + done, size - done);
        if (count < 0) return -1;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return static_cast<std::ptrdiff_t>(done);
}

// The file that is received. Pieces are gathered where they lie and written together, before that place is used again.
// As text, a CR before an LF is dropped; the stream ends lines as the target does.
class Target {
public:
    Target(const char* path, bool isText) noexcept : _isText(isText), _file(OpenStream(path, isText ? "w" : "wb")) {}

    bool IsOpen() const noexcept { return _file != nullptr; }
    bool Write(std::string_view bytes) noexcept {
        if (_isText) return WriteText(bytes);
        _pieces[_count++] = bytes;
        return _count < MostPieces || WriteGathered();
    }
    bool WriteGathered() noexcept { return WritePieces(_file.get(), _pieces, std::exchange(_count, 0)); }
    // Whether all of it has reached the system.
    bool Finish() noexcept {
        const bool isWritten = WriteGathered() && (!_hasReturn || WriteBytes("\r"));
        return CloseStream(_file.release()) && isWritten;
    }

private:
    bool WriteBytes(std::string_view bytes) noexcept { return WriteStream(_file.get(), bytes) == bytes.size(); }
    bool WriteText(std::string_view bytes) noexcept {
        while (!bytes.empty()) {
            if (_hasReturn && bytes.front() != '\n' && !WriteBytes("\r")) return false;
            const std::size_t length = std::min(bytes.find('\r'), bytes.size());
            if (!WriteBytes(bytes.substr(0, length))) return false;
            _hasReturn = length < bytes.size();
            bytes.remove_prefix(length + (_hasReturn ? 1 : 0));
        }
        return true;
    }

    bool _isText;
    bool _hasReturn = false;  // a CR waits for the byte after it
    File _file;
    std::string_view _pieces[MostPieces];
    int _count = 0;
};

}  // namespace

// Counts transferred bytes in large parts; the last part may be 0.
class zel::TransferTally {
public:
    explicit TransferTally(TAPerfo* meter) noexcept : _meter(meter) {}
    void Add(std::size_t bytes) noexcept {
        total += static_cast<std::int64_t>(bytes);
        if (total - _told >= CountedAtOnce) Tell();
    }
    void Tell() noexcept {
        CountBytes(_meter, total - _told);
        _told = total;
    }

    std::int64_t total = 0;

private:
    TAPerfo* _meter;
    std::int64_t _told = 0;
};

// The size of the next block of a file: at most the room of the buffer, and at most the limit of a header.
std::size_t TASocketConnection::FrameRoom() const noexcept {
    return static_cast<std::size_t>(std::clamp(_out.Free() - BlockHeaderSize, 0, MostBlockBytes));
}

// Sends the waiting bytes, and the contents in blocks that fill the buffer. A rest that does not fill it stays in it.
int TASocketConnection::SendFrames(const char* data, std::size_t size) noexcept {
    char headers[MostFrames][BlockHeaderSize];
    Piece pieces[Socket::MaxPieces];
    for (std::size_t room = FrameRoom(); size >= room;) {
        int count = 0;
        pieces[count++] = {_out.Pending().data(), _out.Pending().size()};
        _out.Clear();  // the bytes stay until something is appended, and the next frames have all of its room
        for (int i = 0; i < MostFrames && size >= room; ++i) {
            EncodeBlockHeader(static_cast<int>(room), headers[i]);
            pieces[count++] = {headers[i], BlockHeaderSize};
            pieces[count++] = {data, room};
            data += room;
            size -= room;
            room = FrameRoom();
        }
        const SendStatus status = _socket.Send(pieces, count);
        if (status != SendStatus::Sent) return Fail(status == SendStatus::Broken ? "Unable to flush buffer" : NotRead);
    }
    if (size == 0) return 0;
    AppendHeader(static_cast<int>(size));
    _out.Append(data, size);
    return 0;
}

// Sends pieces of `size` bytes, which fill their blocks, for as long as the mapping has them. Reading continues after
// them.
int TASocketConnection::SendMapped(FileMapping& mapping, std::size_t size, TransferTally& tally) noexcept {
    const std::int64_t begin = tally.total;
    for (;;) {
        const std::int64_t end = tally.total + static_cast<std::int64_t>(size);
        const char* const bytes = mapping.Size() >= end ? mapping.At(tally.total, size) : nullptr;
        if (bytes == nullptr) return tally.total == begin || mapping.MoveStream(tally.total) ? 0 : Fail(NotRead);
        if (SendFrames(bytes, size) != 0) return 1;
        if (mapping.Size() < end) return Fail(NotRead);
        tally.Add(size);
    }
}

// The block of length 0 after the contents, and the number of their bytes.
int TASocketConnection::PutTotal(std::int64_t sent) noexcept {
    if (MakeRoom(BlockHeaderSize, 0) != 0) return 1;
    AppendHeader(0);
    char digits[24];
    const auto length = static_cast<int>(std::to_chars(digits, digits + sizeof digits, sent).ptr - digits);
    if (MakeRoom(std::int64_t{BlockHeaderSize} + length, length) != 0) return 1;
    AppendHeader(length);
    _out.Append(digits, static_cast<std::size_t>(length));
    return 0;
}

int TASocketConnection::PutFile(const char* path) noexcept {
    const File file(OpenStream(path, "rb"));
    if (file == nullptr) return Fail(NotRead);
    if (FrameRoom() == 0 && Flush() != 0) return 1;
    if (FrameRoom() == 0 || !_out.HasMemory()) return Fail("Unable to free write buffer");
    const std::size_t first = FrameRoom();
    const auto room = static_cast<std::size_t>(std::min(_out.Capacity() - BlockHeaderSize, MostBlockBytes));
    const std::size_t size = std::max(AtOnce / room, std::size_t{1}) * room;
    const Block block = MakeBlock(size);
    if (block == nullptr) return Fail("Unable to free write buffer");
    TransferTally tally(SendMeter());
    FileMapping mapping(file.get());
    // So much is read that the last block is full when the file goes on.
    for (std::size_t wanted = size - room + first;; wanted = size) {
        const std::ptrdiff_t count = ReadFully(file.get(), block.get(), wanted);
        if (count < 0) return Fail(NotRead);
        if (SendFrames(block.get(), static_cast<std::size_t>(count)) != 0) return 1;
        tally.Add(static_cast<std::size_t>(count));
        if (static_cast<std::size_t>(count) < wanted) break;
        if (SendMapped(mapping, size, tally) != 0) return 1;
    }
    if (PutTotal(tally.total) != 0) return 1;
    tally.Tell();
    return 0;
}

int TASocketConnection::GetFile(const char* path, int timeout, bool isText) noexcept {
    constexpr const char* NotWritten = "Unable to write in file for TASocket::GetFile";
    if (!_in.HasMemory()) return Fail("Unable to create read buffer");
    if (const int result = BeginGet(timeout); result != 0) return result;
    Target target(path, isText);
    if (!target.IsOpen()) return Fail(NotWritten);
    TransferTally tally(ReceiveMeter());
    for (;;) {
        // The gathered pieces are in the buffer, which further reading may overwrite.
        if (_in.Arrived().size() < BlockHeaderSize && !target.WriteGathered()) return Fail(NotWritten);
        if (const int result = Wait(timeout); result != 0) return result;
        int length = 0;
        if (!ReadHeader(length)) return Fail("Unable to get block size");
        if (length == 0) break;
        if (length < 0) return Fail("Unable to get full block");
        while (length > 0) {
            if (_in.IsEmpty() && !target.WriteGathered()) return Fail(NotWritten);
            if (_in.Fill(_socket, IdleLimit()) != ReceiveStatus::Received) return Fail("Unable to get full block");
            const std::string_view piece = _in.Arrived().substr(0, static_cast<std::size_t>(length));
            if (!target.Write(piece)) return Fail(NotWritten);
            _in.Skip(piece.size());
            tally.Add(piece.size());
            length -= static_cast<int>(piece.size());
        }
    }
    if (!target.Finish()) return Fail(NotWritten);
    tally.Tell();
    if (const int result = Wait(timeout); result != 0) return result;
    return CheckTotal(tally.total);
}

// The block after the contents.
int TASocketConnection::CheckTotal(std::int64_t received) noexcept {
    ZELString text;
    int length = 0;
    if (!ReadHeader(length)) return Fail("Unable to get block size ");
    if (length < 0 || length > MostBlockBytes || !ReadText(text, length)) return Fail("Unable to get full block");
    std::int64_t total = -1;
    const std::string_view digits = text.View();
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), total);
    const bool isWhole = parsed.ec == std::errc() && parsed.ptr == digits.data() + digits.size();
    return isWhole && total == received ? 0 : Fail("Wrong byte count in GetFile");
}
