// A sorted map from binary keys of one fixed length to pointers: two parallel arrays, so that position i holds the i-th
// smallest key. A key is a row of 32-bit signed integers, compared one by one.
//
//     TAIndexB places(2);                             // keys of two integers
//     const int here[4] = {47, 8};                    // 8 bytes per integer: see Append
//     places.Append(here, &town);
//     void* const found = places[here];               // &town
//
// Starts with room for 1000 entries: for a handful of keys TAIndex or TAIndexI is lighter, for large look-ups without
// an order the hash maps are faster.
//
// Keys are copied and owned by the index, and unique. A stored key stays where it is until its entry is removed. Values
// belong to the caller. A null key is never stored and never found. Positions outside 0 to Size() - 1 read as null.
//
// When memory for a key or a copy runs out, a line that starts with "# Alloc failed in TAIndexB" goes to standard
// output and nothing changes (a constructor: an empty index); when the arrays cannot grow, FATAL ends the process.
// Nothing throws, nothing blocks. Any number of threads may read an index; one that is being changed needs a lock of
// the caller's.
#ifndef TAINDEXB_H
#define TAINDEXB_H

#include "ZELExport.h"
#include "ZELIndexArrays.h"

class ZEL_API TAIndexB {
public:
    // `sizeofkey` is the number of integers in a key; below 1 it is FATAL.
    explicit TAIndexB(int sizeofkey) noexcept;
    // A deep copy.
    TAIndexB(const TAIndexB& other) noexcept;
    // Not a way to copy: this index drops its own entries and becomes a view of the arrays of `other`. A view owns
    // nothing, and must not be used after `other` has changed or ended. Appending to a view, removing from it or
    // resetting it first gives it entries of its own; `other` is never written to through it.
    TAIndexB& operator=(const TAIndexB& other) noexcept;
    ~TAIndexB();

    // Returns the stored copy of `key`. A key that is present keeps its value. Null when memory ran out.
    // A stored key has 8 bytes for each integer, all copied from `key`: the caller's block must have as many. Only the
    // first 4 bytes for each integer are ever compared.
    const void* Append(const void* key, void* value) noexcept;

    // The value of `key`, or null.
    void* operator[](const void* key) const noexcept;
    // The position of `key`, or -1.
    int IsIn(const void* key) const noexcept;
    // The same, and -1 when `sizeofkey` is not the length of this index's keys.
    int IsIn(const void* key, int sizeofkey) const noexcept;

    const void* operator[](int position) const noexcept {
        return _entries.Holds(position) ? _entries.keys[position] : nullptr;
    }
    void* Get(int position) const noexcept { return _entries.Holds(position) ? _entries.values[position] : nullptr; }
    // The values in the order of their keys; null only where nothing is allocated. They may be replaced in place; the
    // array is valid until the index changes.
    void** GetContent() const noexcept { return _entries.values; }
    int Size() const noexcept { return _entries.count; }

    // Returns 0, or 1 when there is no such position (or a view found no memory for its own entries).
    int RemovePosition(int position) noexcept;
    // Removes every entry; returns 0.
    int Reset() noexcept;

protected:
    // Makes room for one more entry; returns 0. Grows as a TAIndex does.
    int increaseAllocSize() noexcept;

private:
    static constexpr int FirstCapacity = 1000;

    // 1 when `b` is the greater key, -1 when it is the smaller, 0 when they are equal.
    int compare(const void* a, const void* b) const noexcept;
    bool BecomeOwner() noexcept;

    zel::IndexArrays<void*> _entries;
    int _sizeofkey;
};

#endif
