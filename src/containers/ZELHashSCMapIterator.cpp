// A snapshot of a map: two arrays of one size, filled from the front, and a cursor.
//
// Invariants: both arrays have _size places, or are null and _size is 0; 0 <= _filled <= _size; -1 <= _current <=
// _size. Danger: keys are the map's, and a view's arrays are another iterator's: only an owner frees them.

#include "ZELHashSCMap.h"

#include <cstdio>

#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

ZELHashSCMapIterator::ZELHashSCMapIterator(int size) noexcept : _size(size > 0 ? size : 0) {
    if (_size == 0) return;
    const auto places = static_cast<std::size_t>(_size);
    _keys = AllocateArray<const char*>(places);
    _values = _keys != nullptr ? AllocateArray<void*>(places) : nullptr;
    if (_values != nullptr) return;
    ReportAllocFailure("ZELHashSCMapIterator", places * sizeof(void*));
    FreeArrays();
    _keys = nullptr;
    _size = 0;
}

ZELHashSCMapIterator::ZELHashSCMapIterator(const ZELHashSCMapIterator& other) noexcept
    : ZELMapIterator(other),
      _size(other._size),
      _isView(true),
      _keys(other._keys),
      _values(other._values),
      _filled(other._filled),
      _current(other._current) {}

ZELHashSCMapIterator& ZELHashSCMapIterator::operator=(const ZELHashSCMapIterator& other) noexcept {
    if (this == &other) return *this;
    // A view of this iterator may bring another place and other counts, and leaves the arrays where they are.
    const bool viewsThis = other._isView && !_isView && other._keys == _keys;
    if (!viewsThis) FreeArrays();
    _isView = !viewsThis;
    _size = other._size;
    _keys = other._keys;
    _values = other._values;
    _filled = other._filled;
    _current = other._current;
    return *this;
}

ZELHashSCMapIterator::~ZELHashSCMapIterator() {
    FreeArrays();
}

void ZELHashSCMapIterator::FreeArrays() noexcept {
    if (_isView) return;
    Free(_keys);
    Free(_values);
}

int ZELHashSCMapIterator::next() {
    if (_current < _size) ++_current;
    return _current < _size ? 1 : 0;
}

const char* ZELHashSCMapIterator::getKey() {
    return IsOnEntry() ? _keys[_current] : nullptr;
}

void* ZELHashSCMapIterator::getValue() {
    return IsOnEntry() ? _values[_current] : nullptr;
}

void ZELHashSCMapIterator::insert(const char* key, void* value) {
    if (_filled >= _size) {
        std::printf(" ZELHashSCMapIterator::insert, _size too small: %d\n", _size);
        std::fflush(stdout);
        return;
    }
    _keys[_filled] = key;
    _values[_filled] = value;
    ++_filled;
}
