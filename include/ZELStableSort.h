// Sorting of pointers by a caller's three-way comparison; what the QuickSort of every list and collection is made of.
//
// A merge sort from the top down: halves are sorted one after the other, so that the values of a small part stay in the
// cache while it is sorted, and are joined through a buffer of half the size. Equal elements keep their order; sorted
// input costs one comparison per element; no input costs more than n log2 n comparisons. Without memory for the buffer
// the halves are joined in place, in n log^2 n.
// Every loop is bounded by positions, never by an answer: a comparison that contradicts itself gives some order of the
// same elements. It must not throw, and must not change the array.
//
//     ZELStableSort(names, count, [](const Name* left, const Name* right) { return left->Compare(*right); });
#ifndef ZELSTABLESORT_H
#define ZELSTABLESORT_H

#include <algorithm>
#include <cstddef>

#include "ZELMemory.h"

// The sort itself, for callers who bring the buffer: room for count / 2 pointers, or null to sort in place.
template <class Pointer, class Compare>
class ZELMergeSort {
public:
    ZELMergeSort(Compare compare, Pointer* buffer) noexcept : _compare(compare), _buffer(buffer) {}

    void Sort(Pointer* first, std::ptrdiff_t count) noexcept {
        if (count <= ShortRun) {
            Insert(first, first + count);
            return;
        }
        Pointer* const middle = first + count / 2;
        Sort(first, middle - first);
        Sort(middle, count - count / 2);
        if (_compare(middle[-1], middle[0]) > 0) Merge(first, middle, first + count);
    }

private:
    // Below this size moving pointers costs less than the calls and copies of a merge.
    static constexpr std::ptrdiff_t ShortRun = 12;

    void Insert(Pointer* first, Pointer* last) noexcept {
        for (Pointer* next = first; next != last; ++next) {
            Pointer const element = *next;
            Pointer* hole = next;
            for (; hole != first && _compare(hole[-1], element) > 0; --hole) *hole = hole[-1];
            *hole = element;
        }
    }

    // The left half is never the longer one: it alone goes through the buffer.
    void Merge(Pointer* first, Pointer* middle, Pointer* last) noexcept {
        if (_buffer == nullptr) {
            std::inplace_merge(first, middle, last,
                               [this](Pointer left, Pointer right) { return _compare(left, right) < 0; });
            return;
        }
        Pointer* left = _buffer;
        Pointer* const leftEnd = std::copy(first, middle, _buffer);
        Pointer* right = middle;
        Pointer* out = first;
        while (left != leftEnd && right != last) *out++ = _compare(*left, *right) > 0 ? *right++ : *left++;
        std::copy(left, leftEnd, out);
    }

    Compare _compare;
    Pointer* _buffer;
};

// Sorts the `count` pointers at `first`. `compare(left, right)` is negative, 0 or positive when `left` comes before,
// beside or behind `right`.
template <class Pointer, class Compare>
void ZELStableSort(Pointer* first, int count, Compare compare) noexcept {
    if (count < 2) return;
    constexpr std::size_t Size = sizeof(Pointer);  // NOLINT(bugprone-sizeof-expression): it is a pointer
    void* const buffer = ZELAllocate(static_cast<std::size_t>(count / 2) * Size);
    ZELMergeSort<Pointer, Compare>(compare, static_cast<Pointer*>(buffer)).Sort(first, count);
    ZELFree(buffer);
}

#endif
