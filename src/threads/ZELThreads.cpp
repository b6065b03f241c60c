// ZELMutex and ZELThreads.
//
// What a thread and its object both use stands in a State that they share, so that the thread's last steps touch
// nothing of an object that its own body has deleted. `control` serialises starting and joining; it is held while a
// joiner waits, so a second joiner queues behind the first. The thread itself never takes it: what it asks of its own
// object is answered before. Readers of the status take no lock.
// The dangerous case is a thread that joins, restarts or deletes itself: it is recognised by its id.

#include "ZELThreads.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <thread>

#include "ZELTrace.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/threads.h"
#include "platform/waiting.h"
#include "threads/binary_semaphore.h"

using namespace zel;

int ZELMutex::Lock() noexcept {
    AcquireSemaphore(_state);
    return 0;
}

int ZELMutex::Unlock() noexcept {
    return ReleaseSemaphore(_state) ? 0 : 1;
}

struct ZELThreads::State {
    std::mutex control;
    std::thread thread;                // guarded by control
    int (*function)(void*) = nullptr;  // changed under control while nothing is alive
    void* context = nullptr;

    std::mutex ending;  // status and return code change together
    std::atomic<int> status{ZELThreadIdle};
    std::atomic<int> returnCode{0};

    std::atomic<bool> alive{false};  // until the body has returned, also when the thread was given up
    std::atomic<bool> endRequested{false};
    ZELAtomic<std::uint32_t> threadId{0};
    std::atomic<std::thread::id> self{};

    bool IsOwnThread() const noexcept { return self.load() == std::this_thread::get_id(); }

    // False when the thread was not running any more, because it has ended or was given up.
    bool Finish(ZELThreadStatus ended, int code) {
        const std::lock_guard guard(ending);
        if (status.load() != ZELThreadRunning) return false;
        returnCode.store(code);
        status.store(ended);
        return true;
    }
};

ZELThreads::ZELThreads(const char* name) noexcept : _name(name), _state(ZELShared<State>::Make()) {
    if (!_state) ReportAllocFailure("ZELThreads", sizeof(State));
}

ZELThreads::~ZELThreads() {
    if (!_state) return;
    _state->endRequested.store(true);
    const std::lock_guard guard(_state->control);
    if (_state->IsOwnThread())
        _state->thread.detach();
    else if (_state->thread.joinable())
        _state->thread.join();
}

int ZELThreads::Run(int argument) {
    const ZELShared<State> state = _state;  // the body may delete this object before Run is through
    if (!state || state->alive.load()) return 1;
    const std::lock_guard guard(state->control);
    if (state->alive.load()) return 1;
    if (state->thread.joinable()) state->thread.join();

    const int before = state->status.exchange(ZELThreadRunning);
    state->alive.store(true);
    state->endRequested.store(false);
    state->threadId.store(0);
    const auto body = [this, state, argument] {
        NameCurrentThread(_name);
        state->self.store(std::this_thread::get_id());
        state->threadId.store(CurrentThreadId());
        WakeAll(state->threadId);
        const int code = Execute(argument);
        state->self.store({});
        state->Finish(ZELThreadFinished, code);
        state->alive.store(false);
    };
    try {
        if (AllocationFails()) throw std::bad_alloc();  // std::thread allocates by itself; the hook counts it
        state->thread = std::thread(body);
    } catch (const std::bad_alloc&) {
        ReportAllocFailure("ZELThreads", sizeof body);
    } catch (const std::exception&) {
        // The system has no thread left; the result reports it.
    }
    if (!state->thread.joinable()) {
        state->alive.store(false);
        state->status.store(before);
        return 1;
    }
    while (state->threadId.load() == 0) WaitOnWord(state->threadId, 0);
    return 0;
}

int ZELThreads::Execute(int) {
    return _state->function != nullptr ? _state->function(_state->context) : 0;
}

int ZELThreads::SetFunction(int (*function)(void* context), void* context) {
    if (!_state || _state->alive.load()) return 1;
    const std::lock_guard guard(_state->control);
    if (_state->alive.load()) return 1;
    _state->function = function;
    _state->context = context;
    return 0;
}

int ZELThreads::Join() {
    if (!_state || _state->IsOwnThread() || _state->status.load() == ZELThreadKilled) return 1;
    const std::lock_guard guard(_state->control);
    if (!_state->thread.joinable()) return _state->status.load() == ZELThreadFinished ? 0 : 1;
    _state->thread.join();
    return 0;
}

int ZELThreads::End() {
    if (!IsRunning()) return 1;
    _state->endRequested.store(true);
    return 0;
}

int ZELThreads::Kill() {
    if (End() != 0) return 1;
    return _state->Finish(ZELThreadKilled, -1) ? 0 : 1;
}

int ZELThreads::IsRunning() const {
    return GetStatus() == ZELThreadRunning ? 1 : 0;
}
int ZELThreads::GetStatus() const {
    return _state ? _state->status.load() : int{ZELThreadIdle};
}
unsigned int ZELThreads::GetThreadId() const {
    return _state ? _state->threadId.load() : 0;
}
int ZELThreads::GetThreadReturnCode() const {
    return _state ? _state->returnCode.load() : 0;
}

void ZELThreads::EmitTrace(const char* text) const {
    ZELTrace channel(_name, nullptr, ZELTraAppend, "STDERR", 0);
    channel.TraPrint("%s\n", text != nullptr ? text : "");
}

int ZELThreads::IsEndRequested() const noexcept {
    return _state && _state->endRequested.load() ? 1 : 0;
}

int ZELThreads::IsMultiThreadingAllowed() noexcept {
    return 1;
}
