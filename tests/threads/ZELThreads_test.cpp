#include "ZELThreads.h"

#include "support/gate.h"
#include "support/slots.h"
#include "support/testing.h"

namespace {

// Runs until it is released, above 100 until it is asked to end, below 0 not at all; returns its argument.
struct Worker : ZELThreads {
    Worker() : ZELThreads("a worker with a name that systems cut") {}
    int Execute(int argument) override {
        joinedItself = Join();
        ranAgain = Run(0);
        if (argument < 0) return argument;
        released.Pass();
        while (argument > 100 && !IsEndRequested()) std::this_thread::yield();
        return argument;
    }

    Gate released;
    std::atomic<int> joinedItself{-1}, ranAgain{-1};
};

struct SelfDeleting final : ZELThreads {
    SelfDeleting() : ZELThreads(nullptr) {}
    int Execute(int) override {
        delete this;
        deleted.Open();
        return 0;
    }

    static inline Gate deleted{50};
};

}  // namespace

TEST(ZELMutex, AnyThreadMayReleaseAndAFreeLockStaysFree) {
    ZELMutex lock;
    EXPECT_EQ(lock.Unlock(), 1);
    EXPECT_EQ(lock.Lock(), 0);
    std::thread([&] { EXPECT_EQ(lock.Unlock(), 0); }).join();
    EXPECT_EQ(lock.Unlock(), 1);
    EXPECT_EQ(lock.Lock(), 0);  // not admitted twice by the superfluous releases
    std::atomic<bool> released{false};
    const std::jthread second([&] { EXPECT_TRUE(lock.Lock() == 0 && released); });
    released = true;
    lock.Unlock();
}

TEST(ZELThreads, RunsItsBodyOnceAtATimeAndKeepsItsCode) {
    Worker worker;
    EXPECT_TRUE(worker.GetStatus() == ZELThreadIdle && worker.GetThreadId() == 0);
    EXPECT_TRUE(worker.Join() == 1 && worker.End() == 1 && worker.Kill() == 1);

    EXPECT_EQ(worker.Run(7), 0);
    EXPECT_TRUE(worker.IsRunning() == 1 && worker.GetThreadId() != 0);
    EXPECT_TRUE(worker.Run(8) == 1 && worker.SetFunction(nullptr, nullptr) == 1);
    worker.released.Open();
    std::vector<std::jthread> joiners;
    for (int i = 0; i < 3; ++i) joiners.emplace_back([&] { EXPECT_EQ(worker.Join(), 0); });
    joiners.clear();
    EXPECT_TRUE(worker.GetStatus() == ZELThreadFinished && worker.GetThreadReturnCode() == 7);
    EXPECT_TRUE(worker.joinedItself == 1 && worker.ranAgain == 1);

    EXPECT_TRUE(worker.Run(-3) == 0 && worker.Join() == 0);  // anew
    EXPECT_EQ(worker.GetThreadReturnCode(), -3);
}

TEST(ZELThreads, EndAsksAndKillGivesUp) {
    Worker asked;
    asked.released.Open();
    EXPECT_TRUE(asked.Run(101) == 0 && asked.End() == 0 && asked.Join() == 0);
    EXPECT_EQ(asked.GetThreadReturnCode(), 101);

    Gate mayEnd;
    ZELThreads given("given up");
    EXPECT_EQ(given.SetFunction([](void* gate) { return static_cast<Gate*>(gate)->Pass(), 5; }, &mayEnd), 0);
    EXPECT_TRUE(given.Run(0) == 0 && given.Kill() == 0);
    EXPECT_TRUE(given.GetStatus() == ZELThreadKilled && given.GetThreadReturnCode() == -1);
    EXPECT_EQ(given.IsEndRequested(), 1);
    EXPECT_TRUE(given.Join() == 1 && given.Run(0) == 1 && given.Kill() == 1);
    mayEnd.Open();  // the destructor waits for the body, which is still there
}

TEST(ZELThreads, AnObjectMayBeDeletedByItsOwnThread) {
    for (int i = 0; i < 50; ++i) EXPECT_EQ((new SelfDeleting)->Run(0), 0);
    SelfDeleting::deleted.Pass();
}

TEST(ZELThreads, SlotsStandInTheirOrder) {
    ExpectSlots(0, &Worker::Run, &Worker::Execute, &Worker::SetFunction, &Worker::Join, &Worker::End, &Worker::Kill,
                &Worker::IsRunning, &Worker::GetStatus, &Worker::GetThreadId, &Worker::GetThreadReturnCode,
                &Worker::EmitTrace);
}
