// The storage of all collections: one heap block of equal elements that are moved as bytes.
//
// Invariants: 0 <= _size <= _capacity; _elements is null exactly while _capacity is 0.
// Growth is by half, so that appending costs amortised constant time and realloc can reuse what it freed before.
// The dangerous case is arithmetic near the largest int: capacities are computed as 64-bit numbers and clamped.

#include "ZELRawColl.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "ZELStableSort.h"
#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

// Elements are compared as bytes.
static_assert(std::has_unique_object_representations_v<void*> && std::has_unique_object_representations_v<int>);

namespace {

// The most that a capacity hint gets at once; beyond it memory grows with what really arrives.
constexpr int MaxHintedCapacity = 1 << 16;
constexpr int FirstCapacity = 8;

}  // namespace

ZELCollec::ZELCollec(std::size_t elementSize, int initialCapacity) noexcept
    : _elementSize(static_cast<unsigned int>(elementSize)) {
    if (initialCapacity > 0) SetCapacity(std::min(initialCapacity, MaxHintedCapacity));
}

ZELCollec::ZELCollec(const ZELCollec& other) noexcept : _elementSize(other._elementSize) {
    *this = other;
}

ZELCollec::ZELCollec(ZELCollec&& other) noexcept : _elementSize(other._elementSize) {
    Swap(other);
}

ZELCollec::~ZELCollec() {
    Free(_elements);
}

ZELRawCollPV::~ZELRawCollPV() = default;
ZELRawCollint::~ZELRawCollint() = default;

ZELCollec& ZELCollec::operator=(const ZELCollec& other) noexcept {
    if (this == &other || Reserve(other._size) != 0) return *this;
    if (other._size > 0) std::memcpy(_elements, other._elements, std::size_t{_elementSize} * other._size);
    _size = other._size;
    return *this;
}

ZELCollec& ZELCollec::operator=(ZELCollec&& other) noexcept {
    if (this == &other) return *this;
    RemoveAll(ReleaseMemory);
    Swap(other);
    return *this;
}

void ZELCollec::Swap(ZELCollec& other) noexcept {
    std::swap(_elements, other._elements);
    std::swap(_size, other._size);
    std::swap(_capacity, other._capacity);
}

bool ZELCollec::HasSameElements(const ZELCollec& other) const noexcept {
    if (_size != other._size) return false;
    return _size == 0 || std::memcmp(_elements, other._elements, std::size_t{_elementSize} * _size) == 0;
}

void ZELCollec::ReportAllocFailure(const char* className, std::size_t bytes) noexcept {
    ::ReportAllocFailure(className, bytes);
}

// Says nothing: a hint that finds no memory is no failure.
bool ZELCollec::SetCapacity(int capacity) noexcept {
    void* const block = Reallocate(_elements, std::size_t{_elementSize} * static_cast<std::size_t>(capacity));
    if (block == nullptr) return false;
    _elements = block;
    _capacity = capacity;
    return true;
}

int ZELCollec::Reserve(int capacity) noexcept {
    if (capacity <= _capacity || SetCapacity(capacity)) return 0;
    ReportAllocFailure("ZELCollec", std::size_t{_elementSize} * static_cast<std::size_t>(capacity));
    return 1;
}

// Makes room for at least one element more.
int ZELCollec::Grow() noexcept {
    const std::int64_t generous = std::max<std::int64_t>(_capacity + std::int64_t{_capacity} / 2, FirstCapacity);
    if (_capacity < INT_MAX) {
        if (SetCapacity(static_cast<int>(std::min<std::int64_t>(generous, INT_MAX)))) return 0;
        if (SetCapacity(_capacity + 1)) return 0;
    }
    ReportAllocFailure("ZELCollec", std::size_t{_elementSize} * (static_cast<std::size_t>(_capacity) + 1));
    return 1;
}

unsigned char* ZELCollec::ElementAt(int position) const noexcept {
    return static_cast<unsigned char*>(_elements) + std::size_t{_elementSize} * static_cast<std::size_t>(position - 1);
}

int ZELCollec::InsertElement(int position, const void* element) noexcept {
    if (position < 1 || position > _size + std::int64_t{1}) return 1;
    if (_size == _capacity && Grow() != 0) return 1;
    const std::size_t following = static_cast<std::size_t>(_size - position + 1);
    std::memmove(ElementAt(position) + _elementSize, ElementAt(position), following * _elementSize);
    std::memcpy(ElementAt(position), element, _elementSize);
    ++_size;
    return 0;
}

int ZELCollec::RemovePosition(int position) noexcept {
    return RemovePosition(position, 1) == 1 ? 0 : 1;
}

int ZELCollec::RemovePosition(int position, unsigned int count) noexcept {
    if (!IsInside(position)) return 0;
    const int removed = static_cast<int>(std::min(count, static_cast<unsigned int>(_size - position + 1)));
    const std::size_t following = static_cast<std::size_t>(_size - position + 1 - removed);
    std::memmove(ElementAt(position), ElementAt(position) + std::size_t{_elementSize} * static_cast<unsigned>(removed),
                 following * _elementSize);
    _size -= removed;
    return removed;
}

void ZELCollec::RemoveAll(MemoryHandling handling) noexcept {
    _size = 0;
    if (handling == KeepMemory) return;
    Free(_elements);
    _elements = nullptr;
    _capacity = 0;
}

int ZELRawCollPV::RemoveValue(const void* pointer) noexcept {
    for (int position = 1; position <= Size(); ++position) {
        // Read as bytes: a typed list above keeps pointers of another type here.
        const void* element;
        std::memcpy(&element, Elements<unsigned char>() + sizeof element * static_cast<std::size_t>(position - 1),
                    sizeof element);
        if (element != pointer) continue;
        RemovePosition(position);
        return position;
    }
    return 0;
}

void ZELRawCollPV::QuickSort(int (*compare)(const void*, const void*)) noexcept {
    ZELStableSort(begin(), Size(), compare);
}
