// A file that nobody else reads, read in blocks ahead of its reader.
#ifndef FILES_INPUT_BLOCK_H
#define FILES_INPUT_BLOCK_H

#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace zel {

class InputBlock {
public:
    InputBlock() = default;
    InputBlock(const InputBlock&) = delete;
    InputBlock& operator=(const InputBlock&) = delete;
    ~InputBlock();

    // The next bytes, valid until the next call: up to `delimiter`, which is taken and not given but told as `met`, up
    // to `most` bytes, or up to the end of the block. A delimiter outside 0 to 255 is never met. False at the end and
    // after a failure.
    bool Next(std::FILE* file, int delimiter, std::size_t most, std::string_view& piece, bool& met) noexcept;
    // Up to `size` bytes; fewer at the end and after a failure.
    std::size_t Read(std::FILE* file, char* bytes, std::size_t size) noexcept;

    // Lasting, until they are forgotten. A failure leaves errno set.
    bool AtEnd() const noexcept { return _atEnd; }
    bool HasFailed() const noexcept { return _hasFailed; }
    void Forget() noexcept { _atEnd = _hasFailed = false; }

private:
    std::size_t Arrived(std::ptrdiff_t count) noexcept;
    bool Fill(std::FILE* file) noexcept;

    char* _bytes = nullptr;  // allocated by the first reading
    std::size_t _begin = 0;  // of what was read and not taken
    std::size_t _end = 0;
    bool _atEnd = false;
    bool _hasFailed = false;
};

// In the header because most calls end a few nanoseconds later.
inline bool InputBlock::Next(std::FILE* file, int delimiter, std::size_t most, std::string_view& piece,
                             bool& met) noexcept {
    met = false;
    if (_begin == _end && !Fill(file)) return false;
    const char* const begin = _bytes + _begin;
    const std::size_t length = most < _end - _begin ? most : _end - _begin;
    const void* const found =
        delimiter >= 0 && delimiter <= UCHAR_MAX ? std::memchr(begin, delimiter, length) : nullptr;
    met = found != nullptr;
    piece = {begin, met ? static_cast<std::size_t>(static_cast<const char*>(found) - begin) : length};
    _begin += piece.size() + (met ? 1 : 0);
    return true;
}

}  // namespace zel

#endif
