// One block, filled when it is empty with what has arrived, so that a line from a pipe or a terminal is not kept back
// until the block is full. Long reads go past the block into the reader's own memory.

#include "files/input_block.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/c_streams.h"

using namespace zel;

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 16;

}  // namespace

InputBlock::~InputBlock() {
    Free(_bytes);
}

// Notes how a reading ended; the bytes that came.
std::size_t InputBlock::Arrived(std::ptrdiff_t count) noexcept {
    _atEnd = count == 0;
    _hasFailed = count < 0;
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// False when nothing came.
bool InputBlock::Fill(std::FILE* file) noexcept {
    if (_atEnd) return false;
    if (_bytes == nullptr && (_bytes = AllocateArray<char>(BlockSize)) == nullptr) {
        ReportAllocFailure("YAVFStream", BlockSize);
        _hasFailed = true;
        errno = ENOMEM;
        return false;
    }
    _begin = 0;
    _end = Arrived(ReadArrived(file, _bytes, BlockSize));
    return _end > 0;
}

std::size_t InputBlock::Read(std::FILE* file, char* bytes, std::size_t size) noexcept {
    std::size_t done = 0;
    while (done < size) {
        const std::size_t left = size - done;
        if (_begin == _end && left >= BlockSize) {
            if (_atEnd) break;
            const std::size_t count = Arrived(ReadArrived(file, bytes + done, std::min(left, MostToArrive)));
            if (count == 0) break;
            done += count;
            continue;
        }
        if (_begin == _end && !Fill(file)) break;
        const std::size_t count = std::min(left, _end - _begin);
        std::memcpy(bytes + done, _bytes + _begin, count);
        _begin += count;
        done += count;
    }
    return done;
}
