// TAIndexB keeps pointers to copies of its binary keys, and the values, in two heap arrays of equal size.
//
// A stored key has 8 bytes for each of its integers and is copied from the caller over that length, while only the
// first half is compared: a fixed decision, on which callers with 64-bit records rely.
//
// Invariants: keys ascend. The count is below the capacity wherever there are entries. The capacity is 0 exactly when
// the index has no arrays of its own to fill (no memory in a constructor, a view that was reset): the first insertion
// then creates them.
// Hazard: a view shares everything with its source. Code that writes or frees must check isView first.

#include "TAIndexB.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "containers/sorted_arrays.h"

using namespace zel;

namespace {

constexpr char ClassName[] = "TAIndexB";

constexpr std::size_t StoredSize(int sizeofkey) noexcept {
    return static_cast<std::size_t>(sizeofkey) * 8;
}

std::int32_t Element(const void* key, int position) noexcept {
    std::int32_t value;
    std::memcpy(&value, static_cast<const char*>(key) + std::size_t{sizeof value} * static_cast<std::size_t>(position),
                sizeof value);
    return value;
}

}  // namespace

TAIndexB::TAIndexB(int sizeofkey) noexcept : _sizeofkey(sizeofkey) {
    FATAL(sizeofkey < 1, "Unable to create TAIndexB with sizeofkey < 0 ");
    _entries = NewArrays<void*>(ClassName, FirstCapacity, FirstCapacity);
}

TAIndexB::TAIndexB(const TAIndexB& other) noexcept
    : _entries(NewArrays<void*>(ClassName, other._entries.allocated, other._entries.increment)),
      _sizeofkey(other._sizeofkey) {
    if (_entries.allocated == 0) return;
    for (int i = 0; i < other.Size(); ++i) {
        void* const key = CopyKey(ClassName, other._entries.keys[i], StoredSize(_sizeofkey));
        if (key == nullptr) {
            FreeKeys(_entries);
            return;
        }
        InsertEntry(_entries, i, key, other._entries.values[i]);
    }
}

TAIndexB& TAIndexB::operator=(const TAIndexB& other) noexcept {
    // A view of this index brings nothing new, and would be left without its source.
    if (this == &other || other._entries.IsViewOf(_entries)) return *this;
    FreeEntries(_entries);
    _entries = other._entries.View();
    _sizeofkey = other._sizeofkey;
    return *this;
}

TAIndexB::~TAIndexB() {
    FreeEntries(_entries);
}

// Turns a view into an index with entries of its own; false, and still a view, when memory ran out.
bool TAIndexB::BecomeOwner() noexcept {
    if (!_entries.isView) return true;
    TAIndexB own(*this);
    if (own.Size() != Size()) return false;
    std::swap(_entries, own._entries);  // so that the copy ends as a view
    return true;
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
    const IndexPlace place = FindInsertPlace(_entries.count, [&](int i) { return compare(_entries.keys[i], key); });
    if (place.found) return _entries.keys[place.position];
    if (increaseAllocSize() != 0) return nullptr;
    void* const copy = CopyKey(ClassName, key, StoredSize(_sizeofkey));
    if (copy != nullptr) InsertEntry(_entries, place.position, copy, value);
    return copy;
}

void* TAIndexB::operator[](const void* key) const noexcept {
    return Get(IsIn(key));
}

int TAIndexB::IsIn(const void* key) const noexcept {
    if (key == nullptr) return -1;
    const IndexPlace place = FindPlace(_entries.count, [&](int i) { return compare(_entries.keys[i], key); });
    return place.found ? place.position : -1;
}

int TAIndexB::IsIn(const void* key, int sizeofkey) const noexcept {
    return sizeofkey == _sizeofkey ? IsIn(key) : -1;
}

int TAIndexB::RemovePosition(int position) noexcept {
    if (!_entries.Holds(position) || !BecomeOwner() || _entries.keys == nullptr) return 1;
    Free(_entries.keys[position]);
    RemoveEntry(_entries, position);
    return 0;
}

int TAIndexB::Reset() noexcept {
    if (_entries.isView) {
        _entries = {.increment = _entries.increment};
        return 0;
    }
    FreeKeys(_entries);
    // The arrays are kept, and hold at least that much.
    if (_entries.allocated != 0) _entries.allocated = _entries.increment;
    return 0;
}

int TAIndexB::increaseAllocSize() noexcept {
    if (!BecomeOwner()) return 1;
    GrowWhenNearlyFull(_entries);
    return 0;
}
