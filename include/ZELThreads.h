// A named thread with an overridable body, and a lock that any thread may release.
//
//     class Loader : public ZELThreads {
//     public:
//         Loader() : ZELThreads("Loader") {}
//         ~Loader() { End(); Join(); }              // before the members that the body uses go
//
//     protected:
//         int Execute(int) override { while (!IsEndRequested()) LoadNext(); return 0; }
//     };
//     Loader loader;
//     loader.Run(0);
//
// Every operation may be called from any thread. Nothing throws; results are 0 for success and 1 for failure.
// For work that needs no object of its own, std::thread does as well.
#ifndef ZELTHREADS_H
#define ZELTHREADS_H

#include <cstdint>

#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELShared.h"
#include "ZELString.h"

// A lock without owner, that is, a binary semaphore: whoever likes may release it, and a thread that takes it twice
// waits for another to release it. Uncontended it costs one atomic operation each way; a waiting thread sleeps.
class ZEL_API ZELMutex {
public:
    constexpr ZELMutex() noexcept = default;
    ZELMutex(const ZELMutex&) = delete;
    ZELMutex& operator=(const ZELMutex&) = delete;

    // Waits, without time limit, until the lock is free, and takes it. Always 0.
    int Lock() noexcept;
    // Frees the lock and lets one waiting thread on. 1 when it was free already: then nothing changes.
    int Unlock() noexcept;

private:
    ZELAtomic<std::uint32_t> _state{0};
};

enum ZELThreadStatus {
    ZELThreadIdle = 0,      // not started yet
    ZELThreadRunning = 1,   // from a successful Run until the body has returned
    ZELThreadFinished = 2,  // the body has returned; Run may start it anew
    ZELThreadKilled = 3     // given up by Kill while it was running
};

// The virtual functions stand in the order of their slots. The destructor is not one of them: a derived object is
// deleted as what it is, never through ZELThreads*. A body that uses members of a derived class must have ended before
// these go, so the derived destructor calls Join; the destructor of this class waits as well, but that is too late
// for them. (Only an object that is deleted by its own thread is not waited for.)
class ZEL_API ZELThreads {
public:
    // `name` names the thread for debuggers (systems show 15 bytes of it) and its trace channel; null is the empty
    // name.
    explicit ZELThreads(const char* name) noexcept;
    ZELThreads(const ZELThreads&) = delete;
    ZELThreads& operator=(const ZELThreads&) = delete;
    ~ZELThreads();

    // Starts a thread that calls Execute(argument), and returns at once. 1 while an earlier thread of this object runs,
    // and when the system gives no thread.
    virtual int Run(int argument);

protected:
    // The body, on the new thread; what it returns is the thread's return code. This one calls the function of
    // SetFunction, or returns 0 when there is none. It must not throw.
    virtual int Execute(int argument);

public:
    // The function that the standard body calls, with `context` as it is given here. 1, and no change, while running.
    virtual int SetFunction(int (*function)(void* context), void* context);
    // Waits until the body has returned. 1, at once, when there is nothing to wait for: never started, killed, or
    // called by the thread itself.
    virtual int Join();
    // Asks the body to end: from now on IsEndRequested() is 1. Does not wait. 1 when nothing runs.
    virtual int End();
    // End, and the thread is given up: it counts as ended, with return code -1, and Join no longer waits for it. It
    // is not torn down by force, because a thread that is stopped anywhere leaves its locks, the heap's among them,
    // taken for ever; the object must live until the body has seen the request. 1 when nothing runs.
    virtual int Kill();
    virtual int IsRunning() const;
    // One of ZELThreadStatus.
    virtual int GetStatus() const;
    // The system's number of the running or last thread; 0 before the first.
    virtual unsigned int GetThreadId() const;
    // What the last body that ended returned; 0 before.
    virtual int GetThreadReturnCode() const;
    // Writes a line to the trace channel that bears the thread's name, on standard error; nothing while that channel
    // is inactive (see ZELTrace::Activate).
    virtual void EmitTrace(const char* text) const;

    int IsEndRequested() const noexcept;
    const char* GetName() const noexcept { return _name; }

    // 1: both systems of this library have threads.
    static int IsMultiThreadingAllowed() noexcept;

private:
    struct State;

    ZELString _name;
    ZELShared<State> _state;  // shared with the thread, which may outlive an object that it deletes; empty only when
                              // memory ran out at construction
};

#endif
