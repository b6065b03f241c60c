// Whole runs go to the C library, whose text mode writes the line ends of each system. Write errors are not reported: a
// dump is a by-product, and its interface has no room for an error.

#include "objects/dump_file.h"

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/c_streams.h"

using namespace zel;

void DumpFile::Open(const char* path) noexcept {
    _isOpened = true;
    _file = OpenStream(path, "w");
    if (_file == nullptr) return;
    _begin = _next = AllocateArray<char>(Room);
    if (_begin != nullptr)
        _end = _begin + Room;
    else
        ReportAllocFailure("TAPObjectSaveContext", Room);
}

void DumpFile::Close() noexcept {
    WriteOut();
    Free(_begin);
    _begin = _next = _end = nullptr;
    if (_file != nullptr) CloseStream(_file);
    _file = nullptr;
}

void DumpFile::WriteOut() noexcept {
    if (_next != _begin) WriteStream(_file, {_begin, static_cast<std::size_t>(_next - _begin)});
    _next = _begin;
}

// Writes the waiting bytes; false when `size` bytes do not fit even so.
bool DumpFile::MakeRoom(std::size_t size) noexcept {
    WriteOut();
    return size <= static_cast<std::size_t>(_end - _begin);
}

// A text that is longer than a run; nothing waits.
void DumpFile::WriteLong(std::string_view text) noexcept {
    if (_begin != nullptr) WriteStream(_file, text);
}
