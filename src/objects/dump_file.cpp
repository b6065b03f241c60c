// Whole runs go to the C library, whose text mode writes the line ends of each system. After a failure the dump goes
// on: its other files may be whole.

#include "objects/dump_file.h"

#include <cerrno>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/c_streams.h"

using namespace zel;

void DumpFile::Open(const char* path) noexcept {
    _isOpened = true;
    errno = 0;
    _file = OpenStream(path, "w");
    if (_file == nullptr) return Fail();
    _begin = _next = AllocateArray<char>(Room);
    if (_begin != nullptr) {
        _end = _begin + Room;
        return;
    }
    ReportAllocFailure("TAPObjectSaveContext", Room);
    errno = ENOMEM;
    Fail();
}

// Keeps the first error.
void DumpFile::Fail() noexcept {
    if (_error == 0) _error = errno != 0 ? errno : EIO;
}

void DumpFile::Write(std::string_view text) noexcept {
    errno = 0;
    if (WriteStream(_file, text) != text.size()) Fail();
}

void DumpFile::Close() noexcept {
    WriteOut();
    Free(_begin);
    _begin = _next = _end = nullptr;
    errno = 0;
    if (_file != nullptr && !CloseStream(_file)) Fail();
    _file = nullptr;
}

void DumpFile::WriteOut() noexcept {
    if (_next != _begin) Write({_begin, static_cast<std::size_t>(_next - _begin)});
    _next = _begin;
}

// Writes the waiting bytes; false when `size` bytes do not fit even so.
bool DumpFile::MakeRoom(std::size_t size) noexcept {
    WriteOut();
    return size <= static_cast<std::size_t>(_end - _begin);
}

// A text that is longer than a run; nothing waits.
void DumpFile::WriteLong(std::string_view text) noexcept {
    if (_begin != nullptr) Write(text);
}
