// Growable arrays of untyped pointers (ZELRawCollPV) and of integers (ZELRawCollint), with positions that start at 1.
//
// They are the storage under the typed lists ZELListPtr and ZELListVal, which are what a program should normally use:
// a ZELRawCollPV neither knows nor owns what its pointers lead to.
//
//     ZELRawCollPV pending(16);
//     pending.Append(task);
//     for (void* entry : pending) Start(static_cast<Task*>(entry));
//
// Appending costs amortised constant time; inserting and removing move what follows once. Begin and end are plain
// pointers, so standard algorithms work on a collection; whatever changes its size makes them invalid.
// Actions return 0 for success and 1 for failure. A position outside never reads or writes the array. When memory runs
// out, a line that starts with "# Alloc failed in ZELCollec" goes to standard output and the collection stays as it
// was (a copy constructor: empty). Nothing throws.
// Distinct objects may be used from distinct threads; one object that is being changed needs a lock of the caller's.
#ifndef ZELRAWCOLL_H
#define ZELRAWCOLL_H

#include <cstddef>
#include <new>

#include "ZELExport.h"
#include "ZELHeapObject.h"

// What a position outside refers to: a default value that belongs to the calling thread and is made anew by each call.
// Never destroyed, so that it serves thread ends and static destructors too.
template <class Value>
Value& ZELFreshValue() {
    alignas(Value) static thread_local unsigned char storage[sizeof(Value)];
    static thread_local Value* value = nullptr;
    if (value != nullptr) value->Value::~Value();
    value = ::new (static_cast<void*>(storage)) Value();
    return *value;
}

// What all collections share: a growing block of elements of one size, which are copied as bytes.
class ZEL_API ZELCollec : public ZELHeapObject {
public:
    // For RemoveAll: keep the storage for the next elements, or give it back to the heap at once.
    enum MemoryHandling { KeepMemory, ReleaseMemory };

    virtual ~ZELCollec();

    int Size() const noexcept { return _size; }
    // Makes room for `capacity` elements in all, so that appending up to there does not allocate.
    int Reserve(int capacity) noexcept;
    // Removes one element: 0, or 1 when `position` lies outside 1 to Size().
    int RemovePosition(int position) noexcept;
    // Removes up to `count` elements from `position` on. Returns how many there were: fewer at the end, 0 outside.
    int RemovePosition(int position, unsigned int count) noexcept;
    void RemoveAll(MemoryHandling handling) noexcept;

protected:
    // Empty, without storage: constant, so that a static collection serves static constructors too.
    constexpr explicit ZELCollec(std::size_t elementSize) noexcept
        : _elementSize(static_cast<unsigned int>(elementSize)) {}
    // `initialCapacity` is a hint: it is rounded down to a sensible size, and missing memory is no failure yet.
    ZELCollec(std::size_t elementSize, int initialCapacity) noexcept;
    ZELCollec(const ZELCollec& other) noexcept;
    ZELCollec(ZELCollec&& other) noexcept;
    ZELCollec& operator=(const ZELCollec& other) noexcept;
    ZELCollec& operator=(ZELCollec&& other) noexcept;

    // The elements, as the one type that this collection keeps. All else here moves them as bytes, so a typed list may
    // keep pointers of their real type instead of void*, and hand out references to them.
    template <class Element>
    Element* Elements() const noexcept {
        return static_cast<Element*>(_elements);
    }
    bool IsInside(int position) const noexcept { return position >= 1 && position <= _size; }
    bool HasSameElements(const ZELCollec& other) const noexcept;
    void Swap(ZELCollec& other) noexcept;

    template <class Element>
    int AppendElement(Element element) noexcept {
        if (_size == _capacity && Grow() != 0) return 1;
        ::new (static_cast<void*>(static_cast<Element*>(_elements) + _size++)) Element(element);
        return 0;
    }
    int InsertElement(int position, const void* element) noexcept;

    // Says on standard output that `bytes` bytes could not be had.
    static void ReportAllocFailure(const char* className, std::size_t bytes) noexcept;

private:
    int Grow() noexcept;
    bool SetCapacity(int capacity) noexcept;
    unsigned char* ElementAt(int position) const noexcept;

    void* _elements = nullptr;  // a heap block of _capacity elements; null while _capacity is 0
    int _size = 0;
    int _capacity = 0;
    unsigned int _elementSize;
};

class ZEL_API ZELRawCollPV : public ZELCollec {
public:
    constexpr ZELRawCollPV() noexcept : ZELCollec(sizeof(void*)) {}
    explicit ZELRawCollPV(int initialCapacity) noexcept : ZELCollec(sizeof(void*), initialCapacity) {}
    // Copies the pointers, not what they point to.
    ZELRawCollPV(const ZELRawCollPV& other) noexcept = default;
    ZELRawCollPV(ZELRawCollPV&& other) noexcept = default;
    ~ZELRawCollPV() override;
    ZELRawCollPV& operator=(const ZELRawCollPV& other) noexcept = default;
    ZELRawCollPV& operator=(ZELRawCollPV&& other) noexcept = default;

    int Append(void* pointer) noexcept { return AppendElement(pointer); }
    // Makes `pointer` the element at `position`, 1 to Size() + 1.
    int InsertAt(int position, void* pointer) noexcept { return InsertElement(position, &pointer); }
    // Outside 1 to Size(): a slot of the calling thread that reads as null, or null.
    void*& operator[](int position) noexcept {
        return IsInside(position) ? begin()[position - 1] : ZELFreshValue<void*>();
    }
    void* operator[](int position) const noexcept { return IsInside(position) ? begin()[position - 1] : nullptr; }
    // Removes the first pointer that equals `pointer`. Returns its former position, or 0 when there is none.
    int RemoveValue(const void* pointer) noexcept;
    // `compare` gets two of the pointers themselves, not their addresses, and is negative, 0 or positive when the first
    // comes before, beside or behind the second. Stable; n log n at worst; bears a comparison that contradicts itself.
    void QuickSort(int (*compare)(const void*, const void*)) noexcept;

    void** begin() noexcept { return Elements<void*>(); }
    void** end() noexcept { return Elements<void*>() + Size(); }
    void* const* begin() const noexcept { return Elements<void*>(); }
    void* const* end() const noexcept { return Elements<void*>() + Size(); }

    // Equal sizes and pairwise equal pointers.
    bool operator==(const ZELRawCollPV& other) const noexcept { return HasSameElements(other); }
};

class ZEL_API ZELRawCollint : public ZELCollec {
public:
    constexpr ZELRawCollint() noexcept : ZELCollec(sizeof(int)) {}
    explicit ZELRawCollint(int initialCapacity) noexcept : ZELCollec(sizeof(int), initialCapacity) {}
    ZELRawCollint(const ZELRawCollint& other) noexcept = default;
    ZELRawCollint(ZELRawCollint&& other) noexcept = default;
    ~ZELRawCollint() override;
    ZELRawCollint& operator=(const ZELRawCollint& other) noexcept = default;
    ZELRawCollint& operator=(ZELRawCollint&& other) noexcept = default;

    int Append(int value) noexcept { return AppendElement(value); }
    // Makes `value` the element at `position`, 1 to Size() + 1.
    int InsertAt(int position, int value) noexcept { return InsertElement(position, &value); }
    // Outside 1 to Size(): an integer of the calling thread that reads as 0, or 0.
    int& operator[](int position) noexcept { return IsInside(position) ? begin()[position - 1] : ZELFreshValue<int>(); }
    int operator[](int position) const noexcept { return IsInside(position) ? begin()[position - 1] : 0; }

    int* begin() noexcept { return Elements<int>(); }
    int* end() noexcept { return Elements<int>() + Size(); }
    const int* begin() const noexcept { return Elements<int>(); }
    const int* end() const noexcept { return Elements<int>() + Size(); }

    bool operator==(const ZELRawCollint& other) const noexcept { return HasSameElements(other); }
};

#endif
