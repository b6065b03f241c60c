// The explicit stack of a walk that would otherwise be recursive. For plain records.
#ifndef OBJECTS_WORK_STACK_H
#define OBJECTS_WORK_STACK_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "base/memory.h"

namespace zel {

template <class Frame>
class WorkStack {
    static_assert(std::is_trivially_copyable_v<Frame>);

public:
    WorkStack() noexcept = default;
    WorkStack(const WorkStack&) = delete;
    WorkStack& operator=(const WorkStack&) = delete;
    ~WorkStack() { std::free(_frames); }

    std::size_t Size() const noexcept { return _size; }
    // Valid until the next Push.
    Frame& Top() noexcept { return _frames[_size - 1]; }
    void Pop() noexcept { --_size; }
    // False, and no change, when there is no memory.
    bool Push(const Frame& frame) noexcept {
        if (_size == _room && !Grow()) return false;
        _frames[_size++] = frame;
        return true;
    }

private:
    bool Grow() noexcept {
        const std::size_t room = _room == 0 ? 16 : 2 * _room;
        auto* const frames = static_cast<Frame*>(Allocate(room * sizeof(Frame)));
        if (frames == nullptr) return false;
        if (_size != 0) std::memcpy(frames, _frames, _size * sizeof(Frame));
        std::free(_frames);
        _frames = frames;
        _room = room;
        return true;
    }

    Frame* _frames = nullptr;
    std::size_t _size = 0;
    std::size_t _room = 0;
};

}  // namespace zel

#endif
