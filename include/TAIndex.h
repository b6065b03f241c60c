// A sorted map from texts to pointers: two parallel arrays, so that position i holds the i-th smallest key.
//
//     TAIndex colours;
//     colours.Append("red", &red);
//     colours.Append("blue", &blue);
//     for (int i = 0; i < colours.Size(); ++i) puts(colours[i]);  // blue, red
//     if (colours["green"] == nullptr) puts("no green");
//
// For ordered dictionaries of small and middle size that are walked by position: it stays fast up to some hundred
// thousand keys. For large look-ups without an order use ZELHashSCMap or ZELHashRWMap.
//
// Keys are copied, owned by the index, unique, and sorted by their bytes as unsigned values (the order of strcmp). A
// stored key stays where it is until its entry is removed. Values belong to the caller; the index never looks at them.
// A null key is never stored and never found. Positions outside 0 to Size() - 1 read as null.
//
// When memory for a key runs out, a line that starts with "# Alloc failed in TAIndex" goes to standard output and
// nothing changes (a copy that is being constructed: stays empty); when the arrays cannot grow, FATAL ends the process.
// Nothing throws, nothing blocks.
//
// Distinct indexes may be used from distinct threads. An index that threads share needs a lock of the caller's even
// for reading: fresh entries of a large index wait in a staging area, so the first read by position (operator[](int),
// Get, GetContent, IsIn, also copying) after an insertion writes.
#ifndef TAINDEX_H
#define TAINDEX_H

#include "ZELExport.h"
#include "ZELIndexArrays.h"

namespace zel {
class TAIndexSearch;
struct SoughtKey;
}  // namespace zel

class ZEL_API TAIndex {
public:
    TAIndex() noexcept : TAIndex(InlineCapacity) {}
    // `increment` is the growth step, at least 10; the first capacity is always 10.
    explicit TAIndex(int increment) noexcept;
    // A deep copy, made as by appending every entry to a new TAIndex().
    TAIndex(const TAIndex& other) noexcept;
    // Not a way to copy: this index drops its own entries and becomes a view of the arrays of `other`. A view owns
    // nothing, and must not be used after `other` has changed or ended. Appending to a view, removing from it or
    // resetting it first gives it entries of its own; `other` is never written to through it.
    TAIndex& operator=(const TAIndex& other) noexcept;
    ~TAIndex();

    // Returns the stored copy of `key`. A key that is present keeps its value. Null when memory ran out.
    const char* Append(const char* key, void* value) noexcept;

    // The value of `key`, or null.
    void* operator[](const char* key) const noexcept;
    // The position of `key`, or -1.
    int IsIn(const char* key) const noexcept;
    // The position of the stored key that consists of the first `length` bytes of `key`, or -1, also when `key` ends
    // earlier or `length` is negative. Looks up a part of a text without a copy.
    int IsIn(const char* key, int length) const noexcept;

    const char* operator[](int position) const noexcept { return Holds(position) ? _entries.keys[position] : nullptr; }
    void* Get(int position) const noexcept { return Holds(position) ? _entries.values[position] : nullptr; }
    // The values in the order of their keys, never null. They may be replaced in place; the array is valid until the
    // index changes.
    void** GetContent() const noexcept {
        if (_settled != _entries.count) Settle();
        return _entries.values;
    }
    int Size() const noexcept { return _entries.count; }

    // Returns 0, or 1 when there is no such position (or a view found no memory for its own entries).
    int RemovePosition(int position) noexcept;
    // Removes every entry; returns 0.
    int Reset() noexcept;

protected:
    // Makes room for one more entry; returns 0. The arrays grow when they are one short of full, so their last slot
    // is never filled: by `increment` slots, and by half the capacity once that exceeds ten increments.
    int increaseAllocSize() noexcept;

private:
    static constexpr int InlineCapacity = 10;
    struct Spot;

    bool Holds(int position) const noexcept {
        return static_cast<unsigned>(position) < static_cast<unsigned>(_settled) || HoldsAfterSettling(position);
    }
    bool IsInline() const noexcept { return _entries.keys == _inlineKeys; }
    bool HoldsAfterSettling(int position) const noexcept;
    Spot Find(const zel::SoughtKey& key) const noexcept;
    int PositionOf(const zel::SoughtKey& key) const noexcept;
    void Insert(const Spot& spot, char* key, void* value) noexcept;
    void Settle() const noexcept;
    void PrepareSearch() noexcept;
    void DropSearch() noexcept;
    void FreeAll() noexcept;
    bool BecomeOwner() noexcept;

    char* _inlineKeys[InlineCapacity] = {};
    void* _inlineValues[InlineCapacity] = {};
    zel::IndexArrays<char*> _entries;
    mutable int _settled = 0;               // entries that are readable by position: all, or 0 while some are staged
    zel::TAIndexSearch* _search = nullptr;  // null while the index is small; a view uses that of its source
};

#endif
