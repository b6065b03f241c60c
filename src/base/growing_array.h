// The one growing array of the library: a block of elements that are moved as bytes.
//
// Idea: a full block grows to twice its capacity, so that appending costs constant time on average. GrowArray() serves
// arrays whose pointer and capacity are members of a public class; GrowingArray owns its block.
//
// Invariant: a failed growth leaves block, capacity and elements as they were.
#ifndef BASE_GROWING_ARRAY_H
#define BASE_GROWING_ARRAY_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "base/memory.h"

namespace zel {

// Makes room for at least `wanted` elements: `first` of them, or twice the capacity if that is more. `items` is a block
// of the heap, or null with capacity 0. False when memory runs out, or when `wanted` exceeds the type of the capacity.
template <class Element, class Count>
bool GrowArray(Element*& items, Count& capacity, std::size_t wanted, std::size_t first = 16) noexcept {
    static_assert(std::is_trivially_copyable_v<Element>);
    constexpr std::size_t Limit = std::min<std::size_t>(PTRDIFF_MAX / sizeof(Element),
                                                        static_cast<std::size_t>(std::numeric_limits<Count>::max()));
    const auto held = static_cast<std::size_t>(capacity);
    if (wanted <= held) return true;
    if (wanted > Limit) return false;
    const std::size_t doubled = held <= Limit / 2 ? 2 * held : Limit;
    const std::size_t room = std::max({wanted, doubled, std::min(first, Limit)});
    void* const block = Reallocate(items, room * sizeof(Element));
    if (block == nullptr) return false;
    items = static_cast<Element*>(block);
    capacity = static_cast<Count>(room);
    return true;
}

template <class Element>
class GrowingArray {
public:
    GrowingArray() noexcept = default;
    GrowingArray(GrowingArray&& other) noexcept { *this = std::move(other); }
    GrowingArray& operator=(GrowingArray&& other) noexcept {
        std::swap(_items, other._items);
        std::swap(_size, other._size);
        std::swap(_capacity, other._capacity);
        return *this;
    }
    ~GrowingArray() { Free(_items); }

    Element* Data() noexcept { return _items; }
    const Element* Data() const noexcept { return _items; }
    std::size_t Size() const noexcept { return _size; }
    std::size_t Capacity() const noexcept { return _capacity; }
    bool IsEmpty() const noexcept { return _size == 0; }
    Element* begin() noexcept { return _items; }
    Element* end() noexcept { return _items + _size; }
    const Element* begin() const noexcept { return _items; }
    const Element* end() const noexcept { return _items + _size; }
    Element& operator[](std::size_t i) noexcept { return _items[i]; }
    const Element& operator[](std::size_t i) const noexcept { return _items[i]; }
    Element& Last() noexcept { return _items[_size - 1]; }

    // Room for `count` elements in all.
    bool Reserve(std::size_t count) noexcept { return GrowArray(_items, _capacity, count); }
    // Neither argument may be inside the array.
    bool Append(const Element& element) noexcept {
        if (_size == _capacity && !Reserve(_size + 1)) return false;
        _items[_size++] = element;
        return true;
    }
    bool Append(const Element* elements, std::size_t count) noexcept {
        if (count > _capacity - _size && (count > SIZE_MAX - _size || !Reserve(_size + count))) return false;
        if (count > 0) std::memcpy(_items + _size, elements, count * sizeof(Element));
        _size += count;
        return true;
    }
    // At most the capacity. Additional elements have the bytes that the block contains.
    void SetSize(std::size_t size) noexcept { _size = size; }
    void RemoveLast() noexcept { --_size; }
    void Clear() noexcept { _size = 0; }
    // The block without its unused room, which the caller then owns; null when nothing was ever reserved. The array is
    // empty afterwards.
    Element* Release() noexcept {
        if (_size > 0 && _size < _capacity) {
            void* const trimmed = Reallocate(_items, _size * sizeof(Element));
            if (trimmed != nullptr) _items = static_cast<Element*>(trimmed);
        }
        _size = _capacity = 0;
        return std::exchange(_items, nullptr);
    }

private:
    Element* _items = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

}  // namespace zel

#endif
