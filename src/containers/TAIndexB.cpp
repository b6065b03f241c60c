// TAIndexB keeps pointers to copies of its binary keys, and the values, in two heap arrays of equal size.
//
// A stored key has 8 bytes for each of its integers and is copied from the caller over that length, while only the
// first half is compared: a fixed decision, on which callers with 64-bit records rely.
// Invariants: keys ascend; _count < _allocated wherever there are entries; _allocated is 0 exactly when there are no
// arrays of its own to fill (no memory in a constructor, a view that was reset): the first insertion then makes them.
// Danger: a view shares everything with its source. Whatever writes or frees must ask _isView first.

#include "TAIndexB.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/failure_report.h"
#include "containers/sorted_arrays.h"

using namespace zel;

namespace {

constexpr std::size_t StoredSize = 8;  // of each integer of a key

std::int32_t Element(const void* key, int position) noexcept {
    std::int32_t value;
    std::memcpy(&value, static_cast<const char*>(key) + std::size_t{sizeof value} * static_cast<std::size_t>(position),
                sizeof value);
    return value;
}

}  // namespace

TAIndexB::TAIndexB(int sizeofkey) noexcept : _sizeofkey(sizeofkey) {
    FATAL(sizeofkey < 1, "Unable to create TAIndexB with sizeofkey < 0 ");
    if (AllocateArrays("TAIndexB", _keys, _values, FirstCapacity)) _allocated = FirstCapacity;
}

TAIndexB::TAIndexB(const TAIndexB& other) noexcept : _sizeofkey(other._sizeofkey), _increment(other._increment) {
    if (!AllocateArrays("TAIndexB", _keys, _values, other._allocated)) return;
    _allocated = other._allocated;
    for (; _count < other._count; ++_count) {
        _keys[_count] = CopyKey(other._keys[_count]);
        if (_keys[_count] == nullptr) {
            FreeKeys();
            return;
        }
        _values[_count] = other._values[_count];
    }
}

TAIndexB& TAIndexB::operator=(const TAIndexB& other) noexcept {
    // A view of this index brings nothing new, and would be left without its source.
    const bool viewsThis = other._isView && !_isView && other._keys == _keys;
    if (this == &other || viewsThis) return *this;
    FreeAll();
    CopyFields(other);
    _isView = true;
    return *this;
}

TAIndexB::~TAIndexB() {
    FreeAll();
}

void TAIndexB::FreeAll() noexcept {
    if (_isView) return;
    FreeKeys();
    std::free(_keys);
    std::free(_values);
}

void TAIndexB::CopyFields(const TAIndexB& other) noexcept {
    _keys = other._keys;
    _values = other._values;
    _sizeofkey = other._sizeofkey;
    _count = other._count;
    _allocated = other._allocated;
    _increment = other._increment;
    _isView = other._isView;
}

// Turns a view into an index with entries of its own; false, and still a view, when memory ran out.
bool TAIndexB::BecomeOwner() noexcept {
    if (!_isView) return true;
    TAIndexB own(*this);
    if (own._count != _count) return false;
    CopyFields(own);
    own._isView = true;  // what it made is ours now
    return true;
}

void* TAIndexB::CopyKey(const void* key) const noexcept {
    const std::size_t size = static_cast<std::size_t>(_sizeofkey) * StoredSize;
    void* const copy = std::malloc(size);
    if (copy == nullptr) {
        ReportAllocFailure("TAIndexB", size);
        return nullptr;
    }
    return std::memcpy(copy, key, size);
}

void TAIndexB::FreeKeys() noexcept {
    while (_count > 0) std::free(_keys[--_count]);
}

int TAIndexB::compare(const void* a, const void* b) const noexcept {
    for (int i = 0; i < _sizeofkey; ++i) {
        const std::int32_t left = Element(a, i);
        const std::int32_t right = Element(b, i);
        if (left != right) return right > left ? 1 : -1;
    }
    return 0;
}

const void* TAIndexB::Append(const void* key, void* value) noexcept {
    if (key == nullptr) return nullptr;
    const IndexPlace place = FindInsertPlace(_count, [&](int i) { return compare(_keys[i], key); });
    if (place.found) return _keys[place.position];
    if (increaseAllocSize() != 0) return nullptr;
    void* const copy = CopyKey(key);
    if (copy == nullptr) return nullptr;
    InsertItem(_keys, _count, place.position, copy);
    InsertItem(_values, _count, place.position, value);
    ++_count;
    return copy;
}

void* TAIndexB::operator[](const void* key) const noexcept {
    return Get(IsIn(key));
}

int TAIndexB::IsIn(const void* key) const noexcept {
    if (key == nullptr) return -1;
    const IndexPlace place = FindPlace(_count, [&](int i) { return compare(_keys[i], key); });
    return place.found ? place.position : -1;
}

int TAIndexB::IsIn(const void* key, int sizeofkey) const noexcept {
    return sizeofkey == _sizeofkey ? IsIn(key) : -1;
}

int TAIndexB::RemovePosition(int position) noexcept {
    if (!Holds(position) || !BecomeOwner() || _keys == nullptr) return 1;
    std::free(_keys[position]);
    RemoveItem(_keys, _count, position);
    RemoveItem(_values, _count, position);
    --_count;
    return 0;
}

int TAIndexB::Reset() noexcept {
    if (_isView) {
        _keys = nullptr;
        _values = nullptr;
        _count = 0;
        _allocated = 0;
        _isView = false;
        return 0;
    }
    FreeKeys();
    // The arrays are kept, and hold at least that much.
    if (_allocated != 0) _allocated = _increment;
    return 0;
}

int TAIndexB::increaseAllocSize() noexcept {
    if (!BecomeOwner()) return 1;
    GrowWhenNearlyFull(_keys, _values, _count, _allocated, _increment);
    return 0;
}
