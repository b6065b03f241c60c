// A list of pointers to T, which it neither owns nor follows; positions start at 1.
//
//     ZELListPtr<Worker> idle;
//     idle.Append(&worker);
//     for (Worker* next : idle) next->Start();
//     idle.RemoveValue(&worker);
//
// For a list that owns its values use ZELListVal. T may be an incomplete type. The rules on positions, memory, results
// and threads are those of ZELRawColl.h. A library class that keeps such a list derives its own from this one, so that
// the class has a name to be declared by; the list has a virtual destructor and no data of its own for that.
#ifndef ZELLISTPTR_H
#define ZELLISTPTR_H

#include "ZELRawColl.h"
#include "ZELStableSort.h"

template <class T>
class ZELListPtr : private ZELRawCollPV {
public:
    // Derived classes name the enumeration as everybody does; without this they would meet the private base.
    using ZELCollec = ::ZELCollec;

    ZELListPtr() noexcept = default;
    // Room for so many pointers: a hint.
    explicit ZELListPtr(int initialCapacity) noexcept : ZELRawCollPV(initialCapacity) {}
    // Copies the pointers, not what they point to.
    ZELListPtr(const ZELListPtr& other) noexcept = default;
    ZELListPtr(ZELListPtr&& other) noexcept = default;
    ~ZELListPtr() override = default;
    ZELListPtr& operator=(const ZELListPtr& other) noexcept = default;
    ZELListPtr& operator=(ZELListPtr&& other) noexcept = default;

    using ZELRawCollPV::RemoveAll;
    using ZELRawCollPV::RemovePosition;
    using ZELRawCollPV::Reserve;
    using ZELRawCollPV::Size;
    using ZELRawCollPV::operator new;
    using ZELRawCollPV::operator delete;

    int Append(T* pointer) noexcept { return AppendElement(pointer); }
    // Makes `pointer` the element at `position`, 1 to Size() + 1.
    int InsertAt(int position, T* pointer) noexcept { return InsertElement(position, &pointer); }
    // Outside 1 to Size(): a slot of the calling thread that reads as null, or null.
    T*& operator[](int position) noexcept { return IsInside(position) ? begin()[position - 1] : ZELFreshValue<T*>(); }
    T* operator[](int position) const noexcept { return IsInside(position) ? begin()[position - 1] : nullptr; }
    // Removes the first pointer that equals `pointer`. Returns its former position, or 0 when there is none.
    int RemoveValue(const T* pointer) noexcept { return ZELRawCollPV::RemoveValue(pointer); }
    // `compare` is negative, 0 or positive when its first element comes before, beside or behind the second.
    // Stable; n log n at worst; bears a comparison that contradicts itself.
    void QuickSort(int (*compare)(T*, T*)) noexcept { ZELStableSort(begin(), Size(), compare); }

    T** begin() noexcept { return this->template Elements<T*>(); }
    T** end() noexcept { return begin() + Size(); }
    T* const* begin() const noexcept { return this->template Elements<T*>(); }
    T* const* end() const noexcept { return begin() + Size(); }

    // Equal sizes and pairwise equal pointers.
    bool operator==(const ZELListPtr& other) const noexcept { return HasSameElements(other); }
};

#endif
