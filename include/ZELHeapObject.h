// The base of classes whose objects may be created by one side of the library boundary and deleted by the other.
//
//     ZELToken* const tokens = new ZELToken("a:b");  // ZELToken derives from ZELHeapObject
//     if (tokens != nullptr) delete tokens;
//
// A virtual destructor frees with the operator delete of the code that compiled it. With this base, each `new` and each
// `delete` of a derived class uses the memory of ZELMemory.h, also when the program replaces operator new. Objects of
// ZELNew() and of `new` are alike: either may be deleted by ZELDelete() and by `delete`.
//
// Errors: a new-expression returns null when memory runs out, and throws nothing.
// Threads: all operators may be called concurrently.
#ifndef ZELHEAPOBJECT_H
#define ZELHEAPOBJECT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "ZELMemory.h"

class ZELHeapObject {
public:
    static void* operator new(std::size_t size) noexcept { return ZELAllocate(size); }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return ZELAllocate(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { ZELFree(block); }
    static void operator delete(void*, void*) noexcept {}

    // For derived classes that are aligned more strictly than the C heap: in the layout of ZELNew(), which stores the
    // address of the block just before the object.
    static void* operator new(std::size_t size, std::align_val_t alignment) noexcept {
        const auto extra = static_cast<std::size_t>(alignment);
        void* const block = ZELAllocate(size + extra);
        if (block == nullptr) return nullptr;
        char* const place = static_cast<char*>(block) + extra - reinterpret_cast<std::uintptr_t>(block) % extra;
        std::memcpy(place - sizeof block, &block, sizeof block);
        return place;
    }
    static void operator delete(void* place, std::align_val_t) noexcept {
        void* block;
        std::memcpy(&block, static_cast<char*>(place) - sizeof block, sizeof block);
        ZELFree(block);
    }

protected:
    ~ZELHeapObject() = default;
};

#endif
