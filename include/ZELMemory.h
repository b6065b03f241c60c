// Memory that the library and its user hand to each other.
//
//     struct Job { int number; };
//     Job* const job = ZELNew<Job>(7);
//     if (job != nullptr) ZELDelete(job);
//
// The header templates of the library use these functions, so that either side of the boundary can destroy a value that
// the other side created, also when the program replaces operator new. Programs rarely need them; they are the right
// choice for an object or a block that the other side frees.
//
// Ownership: the caller owns the returned block or object.
// Errors: null when memory runs out. Nothing is printed. An exception of a constructor ends the process.
// Threads: all functions may be called concurrently.
#ifndef ZELMEMORY_H
#define ZELMEMORY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "ZELExport.h"

// A block of the C heap, aligned as by malloc.
ZEL_API void* ZELAllocate(std::size_t size) noexcept;
// Frees a block of ZELAllocate(), or one that the library documents as freed by std::free. Null is ignored.
ZEL_API void ZELFree(void* block) noexcept;

// Creates an object in a block of ZELAllocate(). Also serves types that are aligned more strictly than the C heap.
template <class Object, class... Arguments>
Object* ZELNew(Arguments&&... arguments) noexcept {
    constexpr std::size_t Extra = alignof(Object) > alignof(std::max_align_t) ? alignof(Object) : 0;
    void* block = ZELAllocate(sizeof(Object) + Extra);
    if (block == nullptr) return nullptr;
    if constexpr (Extra > 0) {
        // The address of the block is stored just before the object.
        char* const place = static_cast<char*>(block) + Extra - reinterpret_cast<std::uintptr_t>(block) % Extra;
        std::memcpy(place - sizeof block, &block, sizeof block);
        block = place;
    }
    if constexpr (std::is_constructible_v<Object, Arguments...>) {
        return ::new (block) Object(std::forward<Arguments>(arguments)...);
    } else {
        return ::new (block) Object{std::forward<Arguments>(arguments)...};  // an aggregate
    }
}

// Destroys an object of ZELNew() and frees its block. Null is ignored. The type is that of the creation, or a base
// class of it that has a virtual destructor.
template <class Object>
void ZELDelete(Object* object) noexcept {
    if (object == nullptr) return;
    void* block;
    if constexpr (std::is_polymorphic_v<Object>) {
        block = dynamic_cast<void*>(object);  // where the derived object begins
    } else {
        block = const_cast<std::remove_cv_t<Object>*>(object);
    }
    object->~Object();
    if constexpr (alignof(Object) > alignof(std::max_align_t)) {
        std::memcpy(&block, static_cast<char*>(block) - sizeof block, sizeof block);
    }
    ZELFree(block);
}

#endif
