// Memory from the C heap, through one place where a test can make each call fail.
//
// For what is allocated rarely (tables, blocks, objects): the test hook costs a load and a branch that is never taken.
#ifndef BASE_MEMORY_H
#define BASE_MEMORY_H

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

// Null when there is no memory. The block is released by std::free.
void* Allocate(std::size_t size) noexcept;
// The same, filled with zeros.
void* AllocateZeroed(std::size_t size) noexcept;

// For a std::unique_ptr to a block of the C heap.
struct FreeBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};

// For tests: the `number`th allocation from now on fails (1: the next), those after it succeed again. 0: none fails.
void FailAllocation(int number) noexcept;
// Whether the announced failure is still to come.
bool IsAllocationFailureDue() noexcept;

// Counts an allocation that another function makes; true when it is the one that shall fail.
bool AllocationFails() noexcept;

// An object from operator new, or null.
template <class T, class... Arguments>
T* NewObject(Arguments&&... arguments) noexcept {
    return AllocationFails() ? nullptr : new (std::nothrow) T(std::forward<Arguments>(arguments)...);
}

#endif
