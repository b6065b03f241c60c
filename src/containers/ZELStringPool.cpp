// A pool is a chain of blocks of one size, newest first; texts are cut from the front of the newest one's free space.
//
// Invariants: _remaining is what is left of _block, and 0 without one; what a block has handed out are the first
// BlockRoom - _remaining bytes. Room that a longer text did not fit into is given up for good. Danger: a view knows the
// blocks of another pool. Whatever hands out or frees must ask _isView first.

#include "ZELStringPool.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "base/memory.h"

using namespace zel;

namespace {

// The last bytes of each block are not handed out: where texts end up, and which is too long, follows from the number.
constexpr int BlockRoom = 65532;
constexpr int TooLong = BlockRoom + 1;

void Report(const char* format, int number) noexcept {
    std::printf(format, number);
    std::fflush(stdout);
}

}  // namespace

struct ZELStringPool::Block {
    Block* older;
    char room[65536];
};

ZELStringPool::ZELStringPool(const ZELStringPool& other) noexcept
    : _block(other._block), _remaining(other._remaining), _isView(true) {}

ZELStringPool& ZELStringPool::operator=(const ZELStringPool& other) noexcept {
    // A view of this pool brings nothing new, and would be left without its original.
    const bool viewsThis = other._isView && !_isView && other._block == _block;
    if (this == &other || viewsThis) return *this;
    clear();
    _block = other._block;
    _remaining = other._remaining;
    _isView = true;
    return *this;
}

ZELStringPool::~ZELStringPool() {
    clear();
}

void ZELStringPool::clear() noexcept {
    while (!_isView && _block != nullptr) {
        Block* const older = _block->older;
        Free(_block);
        _block = older;
    }
    _block = nullptr;
    _remaining = 0;
    _isView = false;
}

char* ZELStringPool::alloc(int size) noexcept {
    if (size >= TooLong) {
        Report("# Error : unable to allocate in ZELStringPoolAlloc (string too long: %d)", size);
        return nullptr;
    }
    if (_isView || size > _remaining) {
        Block* const block = static_cast<Block*>(Allocate(sizeof(Block)));
        if (block == nullptr) {
            Report("# Error : unable to allocate in ZELStringPoolAlloc (not enough memory): %d", int{sizeof(Block)});
            return nullptr;
        }
        block->older = _isView ? nullptr : _block;
        _block = block;
        _remaining = BlockRoom;
        _isView = false;
    }
    char* const place = _block->room + (BlockRoom - _remaining);
    _remaining -= size;
    return place;
}

char* ZELStringPool::create(const char* text) noexcept {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    char* const copy = alloc(size < INT_MAX ? static_cast<int>(size) : INT_MAX);
    if (copy == nullptr) {
        std::printf("# Error : unable to create string in ZELStringPoolCreate: %s", text);
        std::fflush(stdout);
        return nullptr;
    }
    std::memcpy(copy, text, size);
    return copy;
}
