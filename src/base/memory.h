// Memory from the C heap, and the one hook by which a test makes an allocation fail.
//
// Every block of the library comes from here, and through the same hook from platform/large_block.h. Callers free
// blocks with Free() or std::free(); both are the C runtime's, which the library and its users share.
//
// Errors: every function returns null, and changes nothing, when memory runs out. Nothing is printed.
// Cost: the hook is one load and a branch that is never taken.
#ifndef BASE_MEMORY_H
#define BASE_MEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "ZELMemory.h"

namespace zel {

// For tests: the `number`th allocation from now on fails (1: the next), and so do those after it, or they succeed
// again. 0: none fails.
enum class Afterwards { Succeed, Fail };
void FailAllocation(int number, Afterwards afterwards = Afterwards::Succeed) noexcept;
// Whether one has failed since.
bool HasAllocationFailed() noexcept;

// How many allocations are left until one fails; 0 or less: none fails.
extern std::atomic<int> allocationCountdown;
bool CountAllocation() noexcept;

// The hook: counts one allocation, and returns true when it is one that must fail.
inline bool AllocationFails() noexcept {
    return allocationCountdown.load(std::memory_order_relaxed) > 0 && CountAllocation();
}

// std::malloc, std::calloc, std::realloc and std::free, behind the hook.
inline void* Allocate(std::size_t size) noexcept {
    return AllocationFails() ? nullptr : std::malloc(size);
}
inline void* AllocateZeroed(std::size_t size) noexcept {
    return AllocationFails() ? nullptr : std::calloc(1, size);
}
inline void* Reallocate(void* block, std::size_t size) noexcept {
    return AllocationFails() ? nullptr : std::realloc(block, size);
}
inline void Free(void* block) noexcept {
    std::free(block);
}

// `count` elements that need no constructor. Null also when their size exceeds the address space.
template <class Element>
Element* AllocateArray(std::size_t count) noexcept {
    static_assert(std::is_trivially_copyable_v<Element>);
    constexpr std::size_t Size = sizeof(Element);  // NOLINT(bugprone-sizeof-expression): also of pointers
    return count <= PTRDIFF_MAX / Size ? static_cast<Element*>(Allocate(count * Size)) : nullptr;
}

// A copy of the text with a terminator.
inline char* CopyText(std::string_view text) noexcept {
    char* const copy = AllocateArray<char>(text.size() + 1);
    if (copy == nullptr) return nullptr;
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

// Objects are created by ZELNew() and destroyed by ZELDelete(), see ZELMemory.h.

// Deleters for std::unique_ptr: to a block, and to an object of ZELNew().
struct FreeBlock {
    void operator()(void* block) const noexcept { Free(block); }
};
struct DeleteObject {
    template <class Object>
    void operator()(Object* object) const noexcept {
        ZELDelete(object);
    }
};

// The allocator for containers of the standard library; throws std::bad_alloc, which the user of the container catches.
template <class Element>
struct HeapAllocator {
    using value_type = Element;

    HeapAllocator() noexcept = default;
    template <class Other>
    HeapAllocator(const HeapAllocator<Other>&) noexcept {}

    Element* allocate(std::size_t count) {
        static_assert(alignof(Element) <= alignof(std::max_align_t));
        constexpr std::size_t Size = sizeof(Element);  // NOLINT(bugprone-sizeof-expression): also of pointers
        void* const block = count <= PTRDIFF_MAX / Size ? Allocate(count * Size) : nullptr;
        if (block == nullptr) throw std::bad_alloc();
        return static_cast<Element*>(block);
    }
    void deallocate(Element* block, std::size_t) noexcept { Free(block); }

    friend bool operator==(HeapAllocator, HeapAllocator) noexcept { return true; }
};

}  // namespace zel

#endif
