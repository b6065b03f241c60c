// Threads that run a plain function, kept in a register so that all of them can be waited for together.
//
//     void Compile(int count, const char** files) { for (int i = 0; i < count; ++i) CompileOne(files[i]); }
//
//     char first[] = "scan.cpp", second[] = "report.cpp";
//     TAThread worker;
//     worker.SetArgs(Compile, first, second, nullptr);
//     if (worker.Start() != 0) TraceErr("the system gives no thread");
//     TAThread::WaitForAll();
//
// For work that needs an object and a body of its own use ZELThreads; where nobody waits for all, std::thread does.
//
// A started thread is registered until its function has returned. A thread that Start() began belongs to who made it,
// and may be deleted once it has run; one that StartDetach() began must come from `new`, belongs to the register, and
// is deleted after it has run: by the next TAThread that is made or started, or by WaitForAll().
// Static functions may be called from any thread; one object is set up and started by one thread at a time.
// Nothing throws, and the thread's function must not. Results are 0 for success and 1 for failure.
#ifndef TATHREAD_H
#define TATHREAD_H

#include <cstddef>
#include <cstdint>

#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListPtr.h"
#include "ZELShared.h"

namespace zel {
struct ThreadArguments;  // for the library alone
}  // namespace zel
class TAThread;

class ZELListPtrTAThread : public ZELListPtr<TAThread> {
public:
    using ZELListPtr<TAThread>::ZELListPtr;
};

class ZEL_API TAThread : public ZELHeapObject {
public:
    TAThread() noexcept;
    explicit TAThread(void (*function)(int, const char**)) noexcept;
    // A copy has the function, shares the arguments, and has not been started.
    TAThread(const TAThread& other) noexcept;
    TAThread& operator=(const TAThread& other) noexcept;

    // Runs on the new thread: calls the function with the arguments, or says "TAThread::Run No function to run !" on
    // standard output when there is none, and leaves the register. An override does its work and then calls this one.
    virtual void Run();
    // Waits for the thread, if it runs, and leaves the register.
    virtual ~TAThread();

    void SetFunc(void (*function)(int, const char**)) noexcept;
    // The arguments are `first`, which counts also when it is null, and the following pointers in front of the first
    // null pointer, which must not be missing. The function gets their number and a vector of them with a null behind
    // the last. What they point to belongs to the caller and must outlive the run. Without memory for them the thread
    // cannot be started until they are set again.
    void SetArgs(void (*function)(int, const char**), void* first, ...) noexcept;
    void SetArgs(void* first, ...) noexcept;

    // Start a thread; one that still runs is waited for first (1 when it is the caller itself). When the system gives
    // no thread, the result is 1 and the object stays registered, so that WaitForAll() waits until it is deleted: a
    // start that failed shall not go unseen.
    int Start() noexcept;
    int StartDetach() noexcept;

    // Waits until every registered thread has run, those too that start meanwhile, and deletes the detached ones.
    // Returns at once, and deletes nothing, when none is registered. A registered thread that waits here itself does
    // not wait for others that do.
    static void WaitForAll() noexcept;
    // Says that the process is about to end: the next thread that ends closes the register for ever, whoever asks for
    // it then waits, and no thread object is taken away from a thread any more.
    static void exitCalled() noexcept;

protected:
    // Deletes the detached threads that have run.
    static void Cleanup() noexcept;

private:
    enum State : std::uint32_t { Idle, Registered, Running };

    int Begin(bool detached) noexcept;
    void Leave() noexcept;
    void Keep(ZELShared<zel::ThreadArguments>&& arguments) noexcept;

    void (*_function)(int, const char**) = nullptr;
    ZELShared<zel::ThreadArguments> _arguments;  // empty before SetArgs
    static constexpr int ArgumentsAreLost = -1;
    int _count = 0;
    bool _detached = false;
    ZELAtomic<std::uint32_t> _state{Idle};  // Registered without Running: its start failed
};

#endif
