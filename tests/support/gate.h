// Threads of a test that wait for each other. (std::latch and its like lose wake-ups in one target's library.)
#ifndef TESTS_SUPPORT_GATE_H
#define TESTS_SUPPORT_GATE_H

#include <condition_variable>
#include <mutex>

// Lets everybody through once it was opened `locks` times.
class Gate {
public:
    explicit Gate(int locks = 1) : _locks(locks) {}
    void Open() {
        const std::lock_guard guard(_guard);
        if (--_locks <= 0) _opened.notify_all();  // under the guard: the gate may be gone right behind it
    }
    void Pass() {
        std::unique_lock guard(_guard);
        _opened.wait(guard, [this] { return _locks <= 0; });
    }

private:
    std::mutex _guard;
    std::condition_variable _opened;
    int _locks;
};

#endif
