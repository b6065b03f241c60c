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
#include <cstdlib>
#include <cstring>

#include "TADiagnostics.h"
#include "base/failure_report.h"

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

// Moves `items` to an array of `slots` slots, or makes one when there is none. Items that stand in `inlineItems` are
// copied, since that array is no heap block. False, and nothing changed, when there is no memory.
template <class Item>
bool MoveToSlots(Item*& items, int slots, const Item* inlineItems, int count) noexcept {
    const bool isInline = items != nullptr && items == inlineItems;
    void* const block = std::realloc(isInline ? nullptr : items, static_cast<std::size_t>(slots) * sizeof(Item));
    if (block == nullptr) return false;
    if (isInline) std::memcpy(block, items, static_cast<std::size_t>(count) * sizeof(Item));
    items = static_cast<Item*>(block);
    return true;
}

// The slots that arrays of a recorded capacity really have. Small ones are rounded up, which spares most of the moves
// that growth by small steps would cost.
inline int SlotsFor(int capacity) noexcept {
    const bool isSmall = capacity <= 1024;
    return isSmall ? static_cast<int>(std::bit_ceil(static_cast<unsigned>(capacity))) : capacity;
}

// Gives both arrays the slots of another capacity; see MoveToSlots.
template <class Key>
bool ChangeCapacity(Key*& keys, void**& values, int count, int from, int to, const Key* inlineKeys,
                    void* const* inlineValues) noexcept {
    const bool isHeap = keys != nullptr && keys != inlineKeys;
    if (isHeap && SlotsFor(from) == SlotsFor(to)) return true;
    return MoveToSlots(keys, SlotsFor(to), inlineKeys, count) &&
           MoveToSlots(values, SlotsFor(to), const_cast<void**>(inlineValues), count);
}

// Makes room for one more entry behind `count`. The step is constant at first and turns into half the capacity once
// that exceeds ten steps, so that large indexes are moved a logarithmic number of times.
template <class Key>
void GrowWhenNearlyFull(Key*& keys, void**& values, int count, int& allocated, int& increment,
                        const Key* inlineKeys = nullptr, void* const* inlineValues = nullptr) noexcept {
    if (count < allocated - 1) return;
    const bool grown = allocated <= INT_MAX - increment &&
                       ChangeCapacity(keys, values, count, allocated, allocated + increment, inlineKeys, inlineValues);
    FATAL(!grown, "TAIndex::increaseAllocSize failed, memory allocation failed");
    allocated += increment;
    if (allocated > increment * 10LL) increment = allocated / 2;
}

// Two new arrays of a capacity of `slots`. False, and both null, when there is no memory or none is asked for.
template <class Key>
bool AllocateArrays(const char* className, Key*& keys, void**& values, int slots) noexcept {
    keys = nullptr;
    values = nullptr;
    if (slots == 0) return false;
    if (ChangeCapacity<Key>(keys, values, 0, 0, slots, nullptr, nullptr)) return true;
    std::free(keys);
    keys = nullptr;
    ReportAllocFailure(className, static_cast<std::size_t>(slots) * (sizeof(Key) + sizeof(void*)));
    return false;
}

}  // namespace zel

#endif
