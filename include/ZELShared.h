// A counted owner: copies share one body, and the last owner destroys it.
//
//     const ZELShared<int> first = ZELShared<int>::Make(7000);
//     const ZELShared<int> second = first;   // one number, two owners
//
// The members of the library's classes use it instead of std::shared_ptr, so that their layout is the library's own:
// one pointer. The body may be an incomplete type everywhere but in Make(). In a program of your own, std::shared_ptr
// is the better choice.
//
// Ownership: the owners together own the body. It is destroyed by the code that created it.
// Errors: Make() returns an empty owner when memory runs out.
// Threads: distinct owners of one body may be used, copied and destroyed concurrently; one owner may not.
#ifndef ZELSHARED_H
#define ZELSHARED_H

#include <cstddef>
#include <cstdint>
#include <utility>

#include "ZELAtomic.h"
#include "ZELMemory.h"

// The record before each body.
struct alignas(std::max_align_t) ZELSharedCount {
    ZELAtomic<std::int32_t> owners{1};
    void (*destroy)(void* body) noexcept;
};

template <class Body>
class ZELShared {
public:
    ZELShared() noexcept = default;
    ZELShared(const ZELShared& other) noexcept : _body(other._body) {
        if (_body != nullptr) Count().owners.fetch_add(1, std::memory_order_relaxed);
    }
    ZELShared(ZELShared&& other) noexcept : _body(std::exchange(other._body, nullptr)) {}
    ZELShared& operator=(const ZELShared& other) noexcept { return *this = ZELShared(other); }
    ZELShared& operator=(ZELShared&& other) noexcept {
        ZELShared before(std::exchange(_body, std::exchange(other._body, nullptr)));
        return *this;
    }
    ~ZELShared() {
        if (_body != nullptr && Count().owners.fetch_sub(1, std::memory_order_acq_rel) == 1) End();
    }

    // The first owner of a new body.
    template <class... Arguments>
    static ZELShared Make(Arguments&&... arguments) noexcept {
        struct Block : ZELSharedCount {
            explicit Block(Arguments&&... values)
                : ZELSharedCount{{1}, Destroy}, body(std::forward<Arguments>(values)...) {}
            static void Destroy(void* body) noexcept { static_cast<Body*>(body)->~Body(); }
            Body body;
        };
        static_assert(alignof(Body) <= alignof(std::max_align_t));
        auto* const block = ZELNew<Block>(std::forward<Arguments>(arguments)...);
        return ZELShared(block != nullptr ? &block->body : nullptr);
    }

    Body* get() const noexcept { return _body; }
    Body* operator->() const noexcept { return _body; }
    Body& operator*() const noexcept { return *_body; }
    explicit operator bool() const noexcept { return _body != nullptr; }
    void reset() noexcept { *this = ZELShared(); }
    // 0 when empty. Other threads may change the number immediately.
    int use_count() const noexcept { return _body != nullptr ? Count().owners.load(std::memory_order_relaxed) : 0; }

private:
    explicit ZELShared(Body* body) noexcept : _body(body) {}

    ZELSharedCount& Count() const noexcept {
        return *reinterpret_cast<ZELSharedCount*>(reinterpret_cast<char*>(_body) - sizeof(ZELSharedCount));
    }
    void End() noexcept {
        ZELSharedCount& count = Count();
        count.destroy(_body);
        ZELFree(&count);
    }

    Body* _body = nullptr;
};

#endif
