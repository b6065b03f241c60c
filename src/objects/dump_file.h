// One text file of a dump, written in large runs. A file that cannot be opened accepts and discards all text.
#ifndef OBJECTS_DUMP_FILE_H
#define OBJECTS_DUMP_FILE_H

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace zel {

class DumpFile {
public:
    DumpFile() noexcept = default;
    DumpFile(const DumpFile&) = delete;
    DumpFile& operator=(const DumpFile&) = delete;
    ~DumpFile() { Close(); }

    bool IsOpened() const noexcept { return _isOpened; }
    // Once. Replaces the file `path`, a path value.
    void Open(const char* path) noexcept;
    // Writes the waiting bytes.
    void Close() noexcept;
    // The errno value of the first failure; 0 if all was written so far.
    int Error() const noexcept { return _error; }

    // Adds pieces, which are numbers, characters and texts, to the waiting bytes.
    template <class... Pieces>
    void Put(Pieces... pieces) noexcept {
        if (((LongestOf(pieces) + ...)) <= static_cast<std::size_t>(_end - _next))
            (Append(pieces), ...);
        else
            (PutWithCare(pieces), ...);
    }

private:
    static constexpr std::size_t Room = 64 * 1024;

    static std::size_t LongestOf(int) noexcept { return 11; }
    static std::size_t LongestOf(char) noexcept { return 1; }
    static std::size_t LongestOf(std::string_view text) noexcept { return text.size(); }
    void Append(int number) noexcept { _next = std::to_chars(_next, _end, number).ptr; }
    void Append(char character) noexcept { *_next++ = character; }
    void Append(std::string_view text) noexcept {
        std::memcpy(_next, text.data(), text.size());
        _next += text.size();
    }
    template <class Piece>
    void PutWithCare(Piece piece) noexcept {
        if (LongestOf(piece) <= static_cast<std::size_t>(_end - _next) || MakeRoom(LongestOf(piece)))
            Append(piece);
        else if constexpr (std::is_same_v<Piece, std::string_view>)
            WriteLong(piece);
    }
    bool MakeRoom(std::size_t size) noexcept;
    void WriteLong(std::string_view text) noexcept;
    void WriteOut() noexcept;
    void Write(std::string_view text) noexcept;
    void Fail() noexcept;

    std::FILE* _file = nullptr;
    char* _begin = nullptr;  // the run that waits; all three null when the file could not be opened
    char* _next = nullptr;
    char* _end = nullptr;
    int _error = 0;
    bool _isOpened = false;
};

}  // namespace zel

#endif
