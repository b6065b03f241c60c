#include "TAThread.h"

#include "TAMutex.h"
#include "TAThreadLock.h"
#include "ZELThreads.h"
#include "support/failing_memory.h"
#include "support/gate.h"
#include "support/programs.h"
#include "support/slots.h"
#include "support/testing.h"

namespace {

std::atomic<int> ended{0};

// Pointers go through a thread's arguments as they are.
template <class T>
T& At(const char** arguments, int index) {
    return *reinterpret_cast<T*>(const_cast<char*>(arguments[index]));
}

void Sum(int count, const char** numbers) {
    int sum = 0;
    for (int i = 1; i < count; ++i) sum += At<int>(numbers, i);
    EXPECT_EQ(numbers[count], nullptr);
    At<int>(numbers, 0) = count * 100 + sum;
}

void PassGate(int, const char** arguments) {
    At<Gate>(arguments, 0).Pass();
    ++ended;
}

void StartOthers(int, const char**) {
    for (int i = 0; i < 3; ++i) {
        auto* const thread = new TAThread([](int, const char**) { ++ended; });
        EXPECT_EQ(thread->StartDetach(), 0);
    }
    TAThread::WaitForAll();  // for the others: not for itself, and not for those that wait here as well
    ++ended;
}

struct Derived : TAThread {
    explicit Derived(std::atomic<int>& deleted) : TAThread([](int, const char**) {}), _deleted(deleted) {}
    ~Derived() override {
        TAThread another;  // destructors may make threads
        ++_deleted;
    }
    void Run() override {
        ++runs;
        TAThread::Run();
    }

    static inline std::atomic<int> runs{0};

private:
    std::atomic<int>& _deleted;
};

}  // namespace

TEST(TAThread, HandsItsArgumentsOverAndKeepsThem) {
    int result = 0, one = 1, two = 2, three = 3;
    TAThread thread;
    const auto run = [&](TAThread& started) {
        EXPECT_EQ(started.Start(), 0);
        TAThread::WaitForAll();
        return std::exchange(result, 0);
    };
    thread.SetArgs(Sum, &result, &one, &two, nullptr);
    EXPECT_EQ(run(thread), 303);
    EXPECT_EQ(run(thread), 303);  // again
    TAThread copy(thread);
    thread.SetArgs(&result, &three, nullptr);
    EXPECT_EQ(run(thread), 203);
    EXPECT_EQ(run(copy), 303);
    thread = copy;
    copy.SetArgs(&result, nullptr);
    EXPECT_EQ(run(copy), 100);
    EXPECT_EQ(run(thread), 303);
    thread.SetFunc([](int count, const char** arguments) { At<int>(arguments, 0) = -count; });
    EXPECT_EQ(run(thread), -3);
}

TEST(TAThread, WaitsForAllThoseTooThatStartMeanwhileOrWaitThemselves) {
    TAThread::WaitForAll();
    ended = 0;
    std::vector<std::unique_ptr<TAThread>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::make_unique<TAThread>(StartOthers));
        EXPECT_EQ(threads.back()->Start(), 0);
    }
    std::vector<std::jthread> waiters;
    for (int i = 0; i < 2; ++i)
        waiters.emplace_back([] {
            TAThread::WaitForAll();
            EXPECT_EQ(ended, 32);
        });
    waiters.clear();
}

TEST(TAThread, DetachedObjectsAreDeletedOnceAndOnlyAfterTheyRan) {
    std::atomic<int> deleted{0};
    Gate gate;
    TAThread kept;
    kept.SetArgs(PassGate, &gate, nullptr);
    EXPECT_EQ(kept.Start(), 0);  // keeps the register busy
    Derived::runs = 0;
    std::vector<std::jthread> starters;
    for (int i = 0; i < 4; ++i)
        starters.emplace_back([&] {
            for (int round = 0; round < 50; ++round) EXPECT_EQ((new Derived(deleted))->StartDetach(), 0);
        });
    starters.clear();
    gate.Open();
    TAThread::WaitForAll();
    const TAThread sweep;  // what ended behind the last look
    EXPECT_EQ(Derived::runs, 200);
    EXPECT_EQ(deleted, 200);
}

TEST(TAThread, ObjectsMayEndWhileTheyRun) {
    ended = 0;
    for (int i = 0; i < 50; ++i) {
        Gate gate;
        auto thread = std::make_unique<TAThread>();
        thread->SetArgs(PassGate, &gate, nullptr);
        EXPECT_EQ(thread->Start(), 0);
        gate.Open();
        thread.reset();  // waits
        EXPECT_EQ(ended, i + 1);

        static Gate& deleted = *new Gate;  // the last thread may still be in it when the program ends
        auto* const own = new TAThread;
        own->SetArgs([](int, const char** object) { delete &At<TAThread>(object, 0), deleted.Open(); }, own, nullptr);
        EXPECT_EQ(own->Start(), 0);
        deleted.Pass();
    }
    TAThread::WaitForAll();
}

TEST(TAThread, SaysThatThereIsNothingToRunAndFreezesAtExit) {
    EXPECT_EQ(RunProgram("process_probe", {"body"}).out, "TAThread::Run No function to run !\n");
    const ProgramResult frozen = RunProgram("process_probe", {"freeze"});
    EXPECT_EQ(frozen.exitCode, 0);
    EXPECT_EQ(frozen.out, "end\n");
}

TEST(TAThread, EachFailedAllocationOfThreadsAndLocksIsReported) {
    const AllocationFailures failures = FailEachAllocation([](FailingMemory& memory) {
        int argument = 0;
        memory.Begin();
        TAThreadLock lock;
        TAMutex mutex("");
        ZELThreads body(nullptr);
        TAThread thread([](int, const char**) { ++ended; });
        thread.SetArgs(&argument, nullptr);
        const bool isStarted = mutex.Lock() == 0 && body.Run(0) == 0 && thread.Start() == 0;
        const bool hasFailed = memory.End();
        EXPECT_TRUE(hasFailed || isStarted);
        EXPECT_TRUE(lock.GetLock() == 1 && lock.ReleaseLock() == 1);
        EXPECT_TRUE(!isStarted || mutex.Unlock() != 0);
    });
    EXPECT_GE(failures.count, 7);
}

TEST(TAThread, SlotsStandInTheirOrder) {
    EXPECT_EQ(SlotOf(&TAThread::Run), 0u);
}
