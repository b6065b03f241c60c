// A list that owns copies of values of type T; positions start at 1.
//
// Each value is a heap object of its own: it keeps its address until it is removed, whatever else happens to the list,
// and sorting moves pointers, never values. Use ZELListPtr for objects that somebody else owns.
//
//     ZELListVal<ZELString> names;
//     names.Append("b");
//     names.InsertBefore(1, "a");
//     for (ZELString& name : names) name.ToUpper();
//     std::sort(names.begin(), names.end());
//
// Values may be elements of the list that they are given to. T needs a copy constructor, a default constructor for
// operator[], == for Locate and comparisons; it may still be incomplete where a list is declared. Values are deleted
// from the last to the first. Results, threads and missing memory are as in ZELRawColl.h (the line then names
// ZELListVal where a value could not be made). Whatever T's own operations throw passes through.
#ifndef ZELLISTVAL_H
#define ZELLISTVAL_H

#include <compare>
#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "ZELMemory.h"
#include "ZELRawColl.h"
#include "ZELStableSort.h"

// A random-access iterator over the values of a ZELListVal; Value is T or const T.
template <class Value>
class ZELListValIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = std::remove_const_t<Value>;
    using difference_type = std::ptrdiff_t;
    using pointer = Value*;
    using reference = Value&;

    ZELListValIterator() noexcept = default;
    explicit ZELListValIterator(value_type* const* slot) noexcept : _slot(slot) {}
    operator ZELListValIterator<const value_type>() const noexcept requires(!std::is_const_v<Value>) {
        return ZELListValIterator<const value_type>(_slot);
    }

    reference operator*() const noexcept { return **_slot; }
    pointer operator->() const noexcept { return *_slot; }
    reference operator[](difference_type offset) const noexcept { return *_slot[offset]; }

    ZELListValIterator& operator++() noexcept { return *this += 1; }
    ZELListValIterator& operator--() noexcept { return *this -= 1; }
    ZELListValIterator operator++(int) noexcept { return ZELListValIterator(_slot++); }
    ZELListValIterator operator--(int) noexcept { return ZELListValIterator(_slot--); }
    ZELListValIterator& operator+=(difference_type offset) noexcept {
        _slot += offset;
        return *this;
    }
    ZELListValIterator& operator-=(difference_type offset) noexcept { return *this += -offset; }
    friend ZELListValIterator operator+(ZELListValIterator at, difference_type offset) noexcept { return at += offset; }
    friend ZELListValIterator operator+(difference_type offset, ZELListValIterator at) noexcept { return at += offset; }
    friend ZELListValIterator operator-(ZELListValIterator at, difference_type offset) noexcept { return at -= offset; }
    friend difference_type operator-(ZELListValIterator left, ZELListValIterator right) noexcept {
        return left._slot - right._slot;
    }
    friend bool operator==(ZELListValIterator left, ZELListValIterator right) noexcept = default;
    friend std::strong_ordering operator<=>(ZELListValIterator left, ZELListValIterator right) noexcept {
        return left._slot <=> right._slot;
    }

private:
    value_type* const* _slot = nullptr;
};

template <class T>
class ZELListVal : private ZELRawCollPV {
public:
    // Derived classes name the enumeration as everybody does; without this they would meet the private base.
    using ZELCollec = ::ZELCollec;
    using iterator = ZELListValIterator<T>;
    using const_iterator = ZELListValIterator<const T>;

    ZELListVal() noexcept = default;
    // Room for so many values: a hint. The list grows by half its size, whatever growth is asked for.
    explicit ZELListVal(int initialCapacity, int /*growth*/ = 0) noexcept : ZELRawCollPV(initialCapacity) {}
    // Copies every value. Empty when memory runs out.
    ZELListVal(const ZELListVal& other) : ZELRawCollPV() { Append(other); }
    ZELListVal(ZELListVal&& other) noexcept = default;
    ~ZELListVal() override { RemoveAll(ReleaseMemory); }
    // `other` may be held by a value of this list.
    ZELListVal& operator=(const ZELListVal& other) {
        if (this == &other) return *this;
        ZELListVal copy(other);
        if (copy.Size() == other.Size()) Swap(copy);
        return *this;
    }
    ZELListVal& operator=(ZELListVal&& other) noexcept {
        ZELListVal taken(std::move(other));
        Swap(taken);
        return *this;
    }

    using ZELRawCollPV::Reserve;
    using ZELRawCollPV::Size;
    using ZELRawCollPV::operator new;
    using ZELRawCollPV::operator delete;

    int Append(const T& value) { return InsertBefore(Size() + 1, value); }
    // Copies all values of another list, or of this one, behind the last: all of them or, without memory, none.
    int Append(const ZELListVal& other) {
        const int oldSize = Size();
        const int added = other.Size();
        for (int i = 1; i <= added; ++i) {
            if (Append(*other.Slot(i)) == 0) continue;
            RemovePosition(oldSize + 1, static_cast<unsigned int>(i - 1));
            return 1;
        }
        return 0;
    }
    // `position` is 1 to Size() + 1: in front of the value there, or at the end.
    int InsertBefore(int position, const T& value) {
        if (position < 1 || position > Size() + 1) return 1;
        T* const copy = Copy(value);
        if (copy == nullptr) {
            ReportAllocFailure("ZELListVal", sizeof(T));
            return 1;
        }
        // A text whose copy ran out of memory is empty.
        // A copy that lacks a part of the text is none.
        if constexpr (requires { copy->IsIncomplete(); }) {
            if (copy->IsIncomplete()) {
                Delete(copy);
                return 1;
            }
        }
        const int failed = position > Size() ? AppendElement(copy) : InsertElement(position, &copy);
        if (failed) Delete(copy);
        return failed;
    }
    // `position` is 0 to Size(): behind the value there, or in front of all.
    int InsertAfter(int position, const T& value) {
        return position < 0 || position > Size() ? 1 : InsertBefore(position + 1, value);
    }

    // Outside 1 to Size(): a default value of the calling thread, fresh each time.
    T& operator[](int position) { return IsInside(position) ? *Slot(position) : ZELFreshValue<T>(); }
    const T& operator[](int position) const { return IsInside(position) ? *Slot(position) : ZELFreshValue<T>(); }
    // The position of the first value at or behind `from` that equals `value`; 0 when there is none or `from` lies
    // outside.
    int Locate(const T& value, int from = 1) const {
        if (from < 1) return 0;
        for (int i = from; i <= Size(); ++i)
            if (*Slot(i) == value) return i;
        return 0;
    }

    // Deletes one value: 0, or 1 when `position` lies outside 1 to Size().
    int RemovePosition(int position) { return RemovePosition(position, 1) == 1 ? 0 : 1; }
    // Deletes up to `count` values from `position` on. Returns how many there were: fewer at the end, 0 outside.
    int RemovePosition(int position, unsigned int count) {
        if (!IsInside(position)) return 0;
        const int following = Size() - position + 1;
        const int removed = count < static_cast<unsigned int>(following) ? static_cast<int>(count) : following;
        for (int i = position + removed - 1; i >= position; --i) Delete(Slot(i));
        return ZELRawCollPV::RemovePosition(position, count);
    }
    void RemoveAll(ZELCollec::MemoryHandling handling) {
        for (int i = Size(); i >= 1; --i) Delete(Slot(i));
        ZELRawCollPV::RemoveAll(handling);
    }

    // `compare` is negative, 0 or positive when its first value comes before, beside or behind the second.
    // Stable; n log n at worst; bears a comparison that contradicts itself; moves no value.
    void QuickSort(int (*compare)(T*, T*)) noexcept { ZELStableSort(this->template Elements<T*>(), Size(), compare); }

    iterator begin() noexcept { return iterator(this->template Elements<T*>()); }
    iterator end() noexcept { return begin() + Size(); }
    const_iterator begin() const noexcept { return const_iterator(this->template Elements<T*>()); }
    const_iterator end() const noexcept { return begin() + Size(); }

    // Equal sizes and pairwise equal values.
    bool operator==(const ZELListVal& other) const {
        if (Size() != other.Size()) return false;
        for (int i = 1; i <= Size(); ++i)
            if (!(*Slot(i) == *other.Slot(i))) return false;
        return true;
    }

private:
    // The block of a value, which is created and destroyed apart from it: the constructor may throw, and the value is
    // exactly a T, whatever destructor T has.
    struct Room {
        Room() noexcept {}
        alignas(T) unsigned char bytes[sizeof(T)];
    };
    struct FreeRoom {
        void operator()(Room* room) const noexcept { ZELDelete(room); }
    };

    // Null without memory.
    static T* Copy(const T& value) {
        std::unique_ptr<Room, FreeRoom> room(ZELNew<Room>());
        if (room == nullptr) return nullptr;
        T* const copy = ::new (static_cast<void*>(room->bytes)) T(value);
        static_cast<void>(room.release());
        return copy;
    }
    static void Delete(T* value) noexcept {
        value->T::~T();
        ZELDelete(reinterpret_cast<Room*>(value));
    }
    T* Slot(int position) const noexcept { return this->template Elements<T*>()[position - 1]; }
};

#endif
