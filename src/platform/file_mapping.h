// The bytes of a file where the system keeps them.
#ifndef PLATFORM_FILE_MAPPING_H
#define PLATFORM_FILE_MAPPING_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace zel {

// Part of a file that is open, for calls of the system's that take bytes from there. Nobody else may touch them: when
// others make the file shorter, bytes behind its new end are gone, and a program that looks at them dies, where a call
// of the system's fails; up to the end of their page they are zeros instead. So who has used bytes asks for the size
// again, and believes none behind it.
//
// On Windows nothing is ever mapped: a file that is mapped cannot be made shorter, and others should notice nothing.
class FileMapping {
public:
    // The stream stays the caller's, open as long as this is.
    explicit FileMapping(std::FILE* stream) noexcept : _stream(stream) {}
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;
    ~FileMapping() { Unmap(); }

    // Of the file now; -1 for what is no regular file, and always on Windows.
    std::int64_t Size() const noexcept;
    // Where the bytes are, until the next call; null when they cannot be mapped. The file must have had them just now.
    const char* At(std::int64_t offset, std::size_t size) noexcept;
    // Has ReadArrived go on at the offset.
    bool MoveStream(std::int64_t offset) const noexcept;

private:
    void Unmap() noexcept;

    [[maybe_unused]] std::FILE* _stream;
    [[maybe_unused]] char* _window = nullptr;
    [[maybe_unused]] std::int64_t _begin = 0;  // where in the file the window begins
};

}  // namespace zel

#endif
