// One text file of a dump, written in large runs. One that cannot be opened takes everything and keeps nothing.
#ifndef OBJECTS_DUMP_FILE_H
#define OBJECTS_DUMP_FILE_H

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

class DumpFile {
public:
    DumpFile() noexcept = default;
    DumpFile(const DumpFile&) = delete;
    DumpFile& operator=(const DumpFile&) = delete;
    ~DumpFile() { Close(); }

    bool IsOpened() const noexcept { return _isOpened; }
    // Once. Replaces the file `path`, a path value.
    void Open(const char* path) noexcept;
    // Writes what waits.
    void Close() noexcept;

    void Put(std::string_view text) noexcept {
        if (text.size() > Left()) return PutLong(text);
        std::memcpy(_next, text.data(), text.size());
        _next += text.size();
    }
    void Put(char character) noexcept {
        if (Left() == 0 && !WriteOut()) return;
        *_next++ = character;
    }
    void Put(int number) noexcept {
        constexpr std::size_t Longest = 11;
        if (Left() < Longest && !WriteOut()) return;
        _next = std::to_chars(_next, _end, number).ptr;
    }

private:
    static constexpr std::size_t Room = 64 * 1024;

    std::size_t Left() const noexcept { return static_cast<std::size_t>(_end - _next); }
    void PutLong(std::string_view text) noexcept;
    bool WriteOut() noexcept;

    std::FILE* _file = nullptr;
    char* _begin = nullptr;  // the run that waits; all three null when the file could not be opened
    char* _next = nullptr;
    char* _end = nullptr;
    bool _isOpened = false;
};

#endif
