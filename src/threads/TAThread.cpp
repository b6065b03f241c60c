// The register lives in static memory that is made on first use and never ends, so threads that are alive at the end of
// the process still find it. It is a lock, the threads that run, those that wait to be deleted, and a word that changes
// whenever somebody leaves or begins to wait, on which all waiting is done, without holding the lock.
//
// A thread's last step is one critical section: it leaves the register, queues itself for deletion if it is detached,
// and becomes idle. From then on it touches nothing of its object, which somebody may delete at once. What is to be
// deleted is taken out of the queue under the lock and deleted outside it, so nobody deletes twice, and destructors
// may make and start threads.
// The dangerous cases are an object that is deleted by its own function (recognised by the thread's own note of what it
// runs), and threads that wait for all while others wait for them (they count as waiting, not as running).

#include "TAThread.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <new>
#include <utility>

#include "ZELThreads.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/threads.h"
#include "platform/waiting.h"

using namespace zel;

// The vector of a thread's arguments, with a null after the last.
struct zel::ThreadArguments {
    ThreadArguments(const char** vector, int size) noexcept : texts(vector), count(size) {}
    ThreadArguments(const ThreadArguments&) = delete;
    ThreadArguments& operator=(const ThreadArguments&) = delete;
    ~ThreadArguments() { Free(texts); }

    const char** texts;
    int count;
};

namespace {

struct Register {
    ZELMutex lock;
    ZELListPtrTAThread running;
    ZELListPtrTAThread toDelete;
    int waiting = 0;  // of the running ones, in WaitForAll
    ZELAtomic<std::uint32_t> changes{0};
    std::atomic<bool> exitIsCalled{false};

    void Announce() noexcept {
        changes.fetch_add(1);
        WakeAll(changes);
    }
    // Takes the queue over. Room for what runs stays in it, so that queuing never needs memory.
    ZELListPtrTAThread TakeFinished() noexcept {
        ZELListPtrTAThread taken;
        // Without room for the next ones they wait for another call.
        if (taken.Reserve(running.Size()) == 0) std::swap(taken, toDelete);
        return taken;
    }
};

Register& TheRegister() noexcept {
    alignas(Register) static unsigned char room[sizeof(Register)];
    static Register* const made = new (room) Register;
    return *made;
}

// What this thread runs; null once that was deleted, and in threads of others.
thread_local TAThread* ownObject = nullptr;

void DeleteAll(ZELListPtrTAThread finished) noexcept {
    for (TAThread* const thread : finished) delete thread;
}

// The number of pointers before the first null one.
int CountRest(std::va_list rest) noexcept {
    std::va_list counted;
    va_copy(counted, rest);
    int count = 0;
    while (va_arg(counted, void*) != nullptr) ++count;
    va_end(counted);
    return count;
}

// Empty without memory.
ZELShared<ThreadArguments> MakeArguments(void* first, std::va_list rest) noexcept {
    const int count = 1 + CountRest(rest);
    const auto size = static_cast<std::size_t>(count) + 1;
    const char** const texts = AllocateArray<const char*>(size);
    ZELShared<ThreadArguments> arguments;
    if (texts != nullptr) arguments = ZELShared<ThreadArguments>::Make(texts, count);
    if (!arguments) {
        Free(texts);
        ReportAllocFailure("TAThread", size * sizeof(void*));
        return arguments;
    }
    texts[0] = static_cast<const char*>(first);
    for (std::size_t i = 1; i < size; ++i) texts[i] = static_cast<const char*>(va_arg(rest, void*));
    return arguments;
}

}  // namespace

TAThread::TAThread() noexcept : TAThread(nullptr) {}

TAThread::TAThread(void (*function)(int, const char**)) noexcept : _function(function) {
    Cleanup();
}

TAThread::TAThread(const TAThread& other) noexcept
    : _function(other._function), _arguments(other._arguments), _count(other._count) {
    Cleanup();
}

TAThread& TAThread::operator=(const TAThread& other) noexcept {
    _function = other._function;
    _arguments = other._arguments;
    _count = other._count;
    return *this;
}

TAThread::~TAThread() {
    Register& shared = TheRegister();
    if (ownObject == this) {
        ownObject = nullptr;
        _detached = false;  // nobody else is to delete it
        Leave();
        return;
    }
    while (_state.load() == Running && !shared.exitIsCalled.load()) {
        const std::uint32_t seen = shared.changes.load();
        if (_state.load() == Running) WaitOnWord(shared.changes, seen);
    }
    if (_state.load() == Registered) Leave();
}

void TAThread::SetFunc(void (*function)(int, const char**)) noexcept {
    _function = function;
}

void TAThread::SetArgs(void (*function)(int, const char**), void* first, ...) noexcept {
    SetFunc(function);
    std::va_list rest;
    va_start(rest, first);
    Keep(MakeArguments(first, rest));
    va_end(rest);
}

void TAThread::SetArgs(void* first, ...) noexcept {
    std::va_list rest;
    va_start(rest, first);
    Keep(MakeArguments(first, rest));
    va_end(rest);
}

void TAThread::Keep(ZELShared<ThreadArguments>&& arguments) noexcept {
    _arguments = std::move(arguments);
    _count = _arguments ? _arguments->count : ArgumentsAreLost;
}

int TAThread::Start() noexcept {
    return Begin(false);
}

int TAThread::StartDetach() noexcept {
    return Begin(true);
}

int TAThread::Begin(bool detached) noexcept {
    Cleanup();
    if (ownObject == this || _count == ArgumentsAreLost) return 1;
    Register& shared = TheRegister();
    for (;;) {
        const std::uint32_t seen = shared.changes.load();
        if (_state.load() != Running) break;
        WaitOnWord(shared.changes, seen);
    }
    shared.lock.Lock();
    const bool hasRoom = shared.toDelete.Reserve(shared.toDelete.Size() + shared.running.Size() + 1) == 0;
    const bool isRegistered = hasRoom && (_state.load() == Registered || shared.running.Append(this) == 0);
    _detached = detached;
    if (isRegistered) _state.store(Running);
    shared.lock.Unlock();
    if (!isRegistered) return 1;
    const auto body = [](void* object) {
        ownObject = static_cast<TAThread*>(object);
        ownObject->Run();
    };
    if (StartThread(body, this)) return 0;
    _state.store(Registered);
    return 1;
}

void TAThread::Run() {
    if (_function != nullptr)
        _function(_count, _arguments ? _arguments->texts : nullptr);
    else
        WriteText(stdout, {"TAThread::Run No function to run !\n"});
    // Otherwise the function deleted this object, or nobody started it.
    if (ownObject != this) return;
    ownObject = nullptr;
    Leave();
}

// Nothing of this object is touched behind the critical section.
void TAThread::Leave() noexcept {
    Register& shared = TheRegister();
    shared.lock.Lock();
    if (shared.exitIsCalled.load()) return;  // closed for ever
    for (int i = shared.running.Size(); i >= 1; --i) {
        if (std::as_const(shared.running)[i] != this) continue;
        shared.running.RemovePosition(i);
        break;
    }
    if (_detached && _state.load() == Running) shared.toDelete.Append(this);
    _state.store(Idle);
    shared.lock.Unlock();
    shared.Announce();
}

void TAThread::WaitForAll() noexcept {
    Register& shared = TheRegister();
    shared.lock.Lock();
    if (shared.running.Size() == 0) {
        shared.lock.Unlock();
        return;
    }
    const bool isRegistered = ownObject != nullptr;
    if (isRegistered) {
        ++shared.waiting;
        shared.Announce();
    }
    while (shared.running.Size() > (isRegistered ? shared.waiting : 0)) {
        const std::uint32_t seen = shared.changes.load();
        shared.lock.Unlock();
        WaitOnWord(shared.changes, seen);
        shared.lock.Lock();
    }
    if (isRegistered) --shared.waiting;
    ZELListPtrTAThread finished = shared.TakeFinished();
    shared.lock.Unlock();
    DeleteAll(std::move(finished));
}

void TAThread::exitCalled() noexcept {
    TheRegister().exitIsCalled.store(true);
    TheRegister().Announce();
}

void TAThread::Cleanup() noexcept {
    Register& shared = TheRegister();
    shared.lock.Lock();
    ZELListPtrTAThread finished = shared.TakeFinished();
    shared.lock.Unlock();
    DeleteAll(std::move(finished));
}
