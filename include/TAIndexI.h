// A sorted map from ints to pointers: two parallel arrays, so that position i holds the i-th smallest key.
//
//     TAIndexI words;
//     words.Append(3, &third);
//     words.Append(-5, &other);
//     for (int i = 0; i < words.Size(); ++i) printf("%d\n", words.GetKey(i));  // -5, 3
//     void* const found = words[3];                                            // &third: by key, not by position
//
// For ordered dictionaries of small and middle size that are walked by position. An insertion in the middle moves the
// entries behind it; for large look-ups without an order use a hash map.
//
// Keys are unique. Values belong to the caller. Positions outside 0 to Size() - 1 read as 0 or null. Copies are deep.
//
// When memory for a copy runs out, a line that starts with "# Alloc failed in TAIndexI" goes to standard output and
// nothing changes (a constructor: an empty index); when the arrays cannot grow, FATAL ends the process. Nothing throws,
// nothing blocks. Any number of threads may read an index; one that is being changed needs a lock of the caller's.
#ifndef TAINDEXI_H
#define TAINDEXI_H

#include "ZELExport.h"
#include "ZELIndexArrays.h"

class ZEL_API TAIndexI {
public:
    TAIndexI() noexcept;
    TAIndexI(const TAIndexI& other) noexcept;
    TAIndexI& operator=(const TAIndexI& other) noexcept;
    ~TAIndexI();

    // Returns `key`. A key that is present keeps its value. 0 when growth is refused.
    int Append(int key, void* value) noexcept;

    // The value of `key`, or null.
    void* operator[](int key) const noexcept;
    // The position of `key`, or -1.
    int IsIn(int key) const noexcept;

    int GetKey(int position) const noexcept { return _entries.Holds(position) ? _entries.keys[position] : 0; }
    void* Get(int position) const noexcept { return _entries.Holds(position) ? _entries.values[position] : nullptr; }
    // The values in the order of their keys; null only where nothing is allocated. They may be replaced in place; the
    // array is valid until the index changes.
    void** GetContent() const noexcept { return _entries.values; }
    int Size() const noexcept { return _entries.count; }

    // Returns 0, or 1 when there is no such position.
    int RemovePosition(int position) noexcept;
    // Removes every entry and keeps the arrays; returns 0.
    int Reset() noexcept;

protected:
    // Makes room for one more entry; returns 0. Grows as a TAIndex does.
    int increaseAllocSize() noexcept;

private:
    static constexpr int FirstCapacity = 10;

    zel::IndexArrays<int> _entries;
};

#endif
