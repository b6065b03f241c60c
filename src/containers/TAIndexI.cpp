// TAIndexI keeps its ints and values in two heap arrays of equal size and looks keys up without branches.
//
// Invariants: keys ascend; _count < _allocated wherever there are entries; _allocated is 0 exactly when there are no
// arrays, which happens only when memory ran out in a constructor: the first insertion then tries again.
// Cost: log2 n steps to find, 12 bytes moved for each entry behind an inserted or removed one.

#include "TAIndexI.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "containers/sorted_arrays.h"

using namespace zel;

TAIndexI::TAIndexI() noexcept {
    if (AllocateArrays("TAIndexI", _keys, _values, FirstCapacity)) _allocated = FirstCapacity;
}

TAIndexI::TAIndexI(const TAIndexI& other) noexcept : _increment(other._increment) {
    if (!AllocateArrays("TAIndexI", _keys, _values, other._allocated)) return;
    _allocated = other._allocated;
    _count = other._count;
    std::memcpy(_keys, other._keys, static_cast<std::size_t>(_count) * sizeof *_keys);
    std::memcpy(_values, other._values, static_cast<std::size_t>(_count) * sizeof *_values);
}

TAIndexI& TAIndexI::operator=(const TAIndexI& other) noexcept {
    if (this == &other) return *this;
    TAIndexI copy(other);
    // A copy without arrays of an index that has some: memory ran out.
    if (copy._allocated != other._allocated) return *this;
    std::swap(_keys, copy._keys);
    std::swap(_values, copy._values);
    _count = copy._count;
    _allocated = copy._allocated;
    _increment = copy._increment;
    return *this;
}

TAIndexI::~TAIndexI() {
    std::free(_keys);
    std::free(_values);
}

int TAIndexI::Append(int key, void* value) noexcept {
    const bool isLast = _count > 0 && _keys[_count - 1] < key;
    const int place = isLast ? _count : LowerBound(_keys, _count, key);
    if (place < _count && _keys[place] == key) return key;
    if (increaseAllocSize() != 0) return 0;
    InsertItem(_keys, _count, place, key);
    InsertItem(_values, _count, place, value);
    ++_count;
    return key;
}

void* TAIndexI::operator[](int key) const noexcept {
    return Get(IsIn(key));
}

int TAIndexI::IsIn(int key) const noexcept {
    const int place = LowerBound(_keys, _count, key);
    return place < _count && _keys[place] == key ? place : -1;
}

int TAIndexI::RemovePosition(int position) noexcept {
    if (!Holds(position)) return 1;
    RemoveItem(_keys, _count, position);
    RemoveItem(_values, _count, position);
    --_count;
    return 0;
}

int TAIndexI::Reset() noexcept {
    _count = 0;
    return 0;
}

int TAIndexI::increaseAllocSize() noexcept {
    GrowWhenNearlyFull(_keys, _values, _count, _allocated, _increment);
    return 0;
}
