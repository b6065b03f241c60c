// Text files as lists of lines, and back. See line_reader.h for how lines are found.

#include <cstdio>
#include <string_view>
#include <utility>

#include "TADiagnostics.h"
#include "TAFileUtilities.h"
#include "files/byte_buffer.h"
#include "files/line_reader.h"
#include "platform/c_streams.h"
#include "platform/text_reader.h"
#include "text/string_list.h"

using namespace zel;

namespace {

constexpr int LineBufferSize = 4096;

// Hands each line to `take`, which is false when memory runs out.
template <class Take>
int ReadLines(const ZELString& file, int bufferSize, Take take) noexcept {
    LineReader reader(bufferSize);
    if (!reader.Open(file)) return 1;
    std::string_view line;
    LineReader::Step step;
    while ((step = reader.Next(line)) == LineReader::Step::Line)
        if (!take(line)) return 1;
    if (step == LineReader::Step::Failure)
        Trace("WARNING : ReadFile aborted on " + file + " : file.good() is false", 0);
    return step == LineReader::Step::End ? 0 : 1;
}

int ReadIntoList(const ZELString& file, ZELListValZELString& lines, int bufferSize) noexcept {
    return ReadLines(file, bufferSize, [&](std::string_view line) { return AppendText(lines, line); });
}

// Gathers lines and writes them in blocks, and knows the first line that was not written whole.
class LineWriter {
public:
    explicit LineWriter(const char* path) noexcept : _stream(OpenTextForWriting(path, false)) {}
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;
    ~LineWriter() {
        if (_stream != nullptr) CloseStream(_stream);
    }

    bool IsOpen() const noexcept { return _stream != nullptr; }
    bool Write(std::string_view line) noexcept {
        if (_block.Size() + line.size() > BlockSize && !Flush()) return false;
        if (line.size() <= BlockSize) return _block.Append(line) && _block.Append("\n");
        return WriteNow(line) && _block.Append("\n");
    }
    bool Flush() noexcept {
        const bool written = WriteNow(_block.View());
        _block.Truncate(0);
        return written;
    }
    bool Close() noexcept { return CloseStream(std::exchange(_stream, nullptr)); }
    // How many lines the system took whole.
    int WrittenLines(ZELListValZELString& lines) const noexcept {
        std::size_t end = 0;
        int count = 0;
        for (const ZELString& line : lines) {
            end += line.View().size() + 1;
            if (end > _written) break;
            ++count;
        }
        return count;
    }

private:
    static constexpr std::size_t BlockSize = std::size_t{1} << 16;

    bool WriteNow(std::string_view bytes) noexcept {
        const std::size_t count = WriteStream(_stream, bytes);
        _written += count;
        return count == bytes.size();
    }

    std::FILE* _stream;
    ByteBuffer _block;
    std::size_t _written = 0;
};

int ReportUnwritten(int line) noexcept {
    Trace("WARNING : WriteFile aborted on line " + toString(line) + " : file.good() is false", 0);
    return 1;
}

}  // namespace

int ReadFile(ZELString file, ZELListValZELString& lines) noexcept {
    return ReadFile(std::move(file), lines, LineBufferSize);
}

int ReadFile(ZELString file, ZELListValZELString& lines, int bufferSize) noexcept {
    if (file.IsIncomplete()) return 1;
    return ReadIntoList(file, lines, bufferSize);
}

int ReadFile(ZELString file, TAIndex& lines) noexcept {
    if (file.IsIncomplete()) return 1;
    // A line holds no NUL but the one behind it.
    return ReadLines(file, LineBufferSize,
                     [&](std::string_view line) { return lines.Append(line.data(), nullptr) != nullptr; });
}

int WriteFile(ZELString file, ZELListValZELString& lines) noexcept {
    if (file.IsIncomplete()) return ReportUnwritten(1);
    LineWriter writer(file);
    if (!writer.IsOpen()) return ReportUnwritten(1);
    bool written = true;
    for (const ZELString& line : lines) written = written && writer.Write(line.View());
    if (!written || !writer.Flush()) return ReportUnwritten(writer.WrittenLines(lines) + 1);
    return writer.Close() ? 0 : ReportUnwritten(lines.Size());
}
