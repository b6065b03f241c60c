// What the sorted indexes share: search, insertion, removal and growth of two parallel arrays, keys and values.
//
// Idea: an entry's position is found by comparing, then each array moves its tail by one slot in one block. Cost of a
// change: 8 to 16 bytes moved for each following entry. Keys are pointers or ints, so they are moved as plain bytes.
// Danger: every function trusts its caller that places lie in 0 to count and that there is a free slot for a new entry.
#ifndef CONTAINERS_SORTED_ARRAYS_H
#define CONTAINERS_SORTED_ARRAYS_H

#include <bit>
#include <climits>
#include <cstddef>
#include <cstring>

#include "TADiagnostics.h"
#include "ZELIndexArrays.h"
#include "base/failure_report.h"
#include "base/memory.h"

namespace zel {

// Where a key stands, or where it would have to be inserted.
struct IndexPlace {
    int position;
    bool found;
};

// `compare(i)` compares the sought key with the key at i: negative, 0 or positive. Keys at 0 to count - 1 ascend.
template <class Compare>
IndexPlace FindPlace(int count, Compare compare) noexcept {
    if (count == 0) return {0, false};
    int low = 0;
    int high = count - 1;
    while (high - low >= 2) {
        const int middle = low + (high - low) / 2;
        const int order = compare(middle);
        if (order == 0) return {middle, true};
        (order < 0 ? high : low) = middle;
    }
    const int order = compare(low);
    if (order <= 0 || low == high) return {low + (order > 0 ? 1 : 0), order == 0};
    const int orderHigh = compare(high);
    return {high + (orderHigh > 0 ? 1 : 0), orderHigh == 0};
}

// The same for a key that is about to be inserted: keys that arrive in order cost one comparison.
template <class Compare>
IndexPlace FindInsertPlace(int count, Compare compare) noexcept {
    if (count == 0) return {0, false};
    const int order = compare(count - 1);
    if (order >= 0) return {count - 1 + (order > 0 ? 1 : 0), order == 0};
    return FindPlace(count - 1, compare);
}

// The number of values below `sought` in an ascending array. No branch depends on the data: on random keys every
// mispredicted branch of a plain binary search costs as much as a dozen comparisons.
template <class Value>
int LowerBound(const Value* values, int count, Value sought) noexcept {
    const Value* base = values;
    for (int rest = count; rest > 1;) {
        const int half = rest / 2;
        base += static_cast<std::ptrdiff_t>(base[half - 1] < sought) * half;
        rest -= half;
    }
    return static_cast<int>(base - values) + (count > 0 && *base < sought ? 1 : 0);
}

template <class Item>
void InsertItem(Item* items, int count, int place, Item item) noexcept {
    std::memmove(items + place + 1, items + place, static_cast<std::size_t>(count - place) * sizeof(Item));
    items[place] = item;
}

template <class Item>
void RemoveItem(Item* items, int count, int place) noexcept {
    std::memmove(items + place, items + place + 1, static_cast<std::size_t>(count - place - 1) * sizeof(Item));
}

template <class Key>
void InsertEntry(IndexArrays<Key>& entries, int place, Key key, void* value) noexcept {
    InsertItem(entries.keys, entries.count, place, key);
    InsertItem(entries.values, entries.count, place, value);
    ++entries.count;
}

template <class Key>
void RemoveEntry(IndexArrays<Key>& entries, int place) noexcept {
    RemoveItem(entries.keys, entries.count, place);
    RemoveItem(entries.values, entries.count, place);
    --entries.count;
}

// Moves `items` to an array of `slots` slots, or makes one when `items` is null. An array inside an object is no heap
// block: its `count` items are copied. False, and nothing changed, when there is no memory.
template <class Item>
bool MoveToSlots(Item*& items, int slots, int count, bool isInside) noexcept {
    void* const block = Reallocate(isInside ? nullptr : items, static_cast<std::size_t>(slots) * sizeof(Item));
    if (block == nullptr) return false;
    if (isInside) std::memcpy(block, items, static_cast<std::size_t>(count) * sizeof(Item));
    items = static_cast<Item*>(block);
    return true;
}

// The slots that arrays of a recorded capacity really have. Small ones are rounded up, which spares most of the moves
// that growth by small steps would cost.
inline int SlotsFor(int capacity) noexcept {
    const bool isSmall = capacity <= 1024;
    return isSmall ? static_cast<int>(std::bit_ceil(static_cast<unsigned>(capacity))) : capacity;
}

// Gives both arrays the slots of another capacity. `areInside`: they are arrays inside the index. False without memory.
template <class Key>
bool ChangeCapacity(IndexArrays<Key>& entries, int capacity, bool areInside) noexcept {
    const bool fits = entries.keys != nullptr && !areInside && SlotsFor(entries.allocated) == SlotsFor(capacity);
    if (!fits && !(MoveToSlots(entries.keys, SlotsFor(capacity), entries.count, areInside) &&
                   MoveToSlots(entries.values, SlotsFor(capacity), entries.count, areInside)))
        return false;
    entries.allocated = capacity;
    return true;
}

// Makes room for one more entry. The step is constant at first and turns into half the capacity once that exceeds ten
// steps, so that large indexes are moved a logarithmic number of times.
template <class Key>
void GrowWhenNearlyFull(IndexArrays<Key>& entries, bool areInside = false) noexcept {
    if (entries.count < entries.allocated - 1) return;
    const int increment = entries.increment;
    const bool grown =
        entries.allocated <= INT_MAX - increment && ChangeCapacity(entries, entries.allocated + increment, areInside);
    FATAL(!grown, "TAIndex::increaseAllocSize failed, memory allocation failed");
    if (entries.allocated > increment * 10LL) entries.increment = entries.allocated / 2;
}

template <class Key>
void FreeArrays(const IndexArrays<Key>& entries) noexcept {
    Free(entries.keys);
    Free(entries.values);
}

// Frees the keys of an index whose keys are blocks. No entry remains.
template <class Key>
void FreeKeys(IndexArrays<Key*>& entries) noexcept {
    while (entries.count > 0) Free(entries.keys[--entries.count]);
}

// Frees everything that an index of such keys owns, for the end of the index or an assignment.
template <class Key>
void FreeEntries(IndexArrays<Key*>& entries, bool areInside = false) noexcept {
    if (entries.isView) return;
    FreeKeys(entries);
    if (!areInside) FreeArrays(entries);
}

// No entries, in two new arrays. Without memory, or when no capacity is asked for, there are no arrays.
template <class Key>
IndexArrays<Key> NewArrays(const char* className, int capacity, int increment) noexcept {
    IndexArrays<Key> entries{.increment = increment};
    if (capacity == 0 || ChangeCapacity(entries, capacity, false)) return entries;
    ReportAllocFailure(className, static_cast<std::size_t>(capacity) * (sizeof(Key) + sizeof(void*)));
    Free(entries.keys);
    return {.increment = increment};
}

// A copy of a key of `size` bytes, or null.
inline void* CopyKey(const char* className, const void* key, std::size_t size) noexcept {
    void* const copy = Allocate(size);
    if (copy != nullptr) return std::memcpy(copy, key, size);
    ReportAllocFailure(className, size);
    return nullptr;
}

}  // namespace zel

#endif
