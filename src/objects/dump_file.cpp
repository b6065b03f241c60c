// Whole runs go to the C library, whose text mode makes each system's line ends. Nobody hears of what could not be
// written: a dump is a by-product, and its interface reports nothing.

#include "objects/dump_file.h"

#include "foundations/allocation.h"
#include "foundations/console.h"
#include "platform/streams.h"

void DumpFile::Open(const char* path) noexcept {
    _isOpened = true;
    _file = platform::OpenStream(path, "w");
    if (_file == nullptr) return;
    _begin = _next = static_cast<char*>(Allocate(Room));
    if (_begin != nullptr)
        _end = _begin + Room;
    else
        ReportAllocFailure("TAPObjectSaveContext", Room);
}

void DumpFile::Close() noexcept {
    WriteOut();
    std::free(_begin);
    _begin = _next = _end = nullptr;
    if (_file != nullptr) std::fclose(_file);
    _file = nullptr;
}

// False when there is no room, since there is no file.
bool DumpFile::WriteOut() noexcept {
    if (_begin == nullptr) return false;
    std::fwrite(_begin, 1, static_cast<std::size_t>(_next - _begin), _file);
    _next = _begin;
    return true;
}

void DumpFile::PutLong(std::string_view text) noexcept {
    if (!WriteOut()) return;
    if (text.size() > Room)
        std::fwrite(text.data(), 1, text.size(), _file);
    else
        Put(text);
}
