#include "ZELThreads.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/gate.h"
#include "support/slots.h"

namespace {

// Runs until it is asked to end, and returns its argument.
class Worker : public ZELThreads {
public:
    Worker() : ZELThreads("a worker with a name that systems cut") {}
    ~Worker() {
        release.Open();
        Join();
    }
    int Execute(int argument) override {
        joinedItself = Join();
        ranAgain = Run(0);
        if (argument < 0) return argument;
        release.Pass();
        while (argument > 100 && !IsEndRequested()) std::this_thread::yield();
        return argument;
    }

    Gate release;
    std::atomic<int> joinedItself{-1}, ranAgain{-1};
};

class SelfDeleting final : public ZELThreads {
public:
    explicit SelfDeleting(Gate& deleted) : ZELThreads(nullptr), _deleted(deleted) {}
    int Execute(int) override {
        Gate& deleted = _deleted;
        delete this;
        deleted.Open();
        return 0;
    }

private:
    Gate& _deleted;
};

}  // namespace

TEST(ZELMutex, AnyThreadMayReleaseAndAFreeLockStaysFree) {
    ZELMutex lock;
    EXPECT_EQ(lock.Unlock(), 1);
    EXPECT_EQ(lock.Lock(), 0);
    std::thread([&] { EXPECT_EQ(lock.Unlock(), 0); }).join();
    EXPECT_EQ(lock.Unlock(), 1);
    EXPECT_EQ(lock.Lock(), 0);  // not admitted twice by the superfluous releases
    std::atomic<bool> admitted{false};
    std::thread second([&] {
        lock.Lock();
        admitted = true;
    });
    EXPECT_FALSE(admitted);
    lock.Unlock();
    second.join();
    EXPECT_TRUE(admitted);
}

TEST(ZELMutex, ExcludesAndLosesNoWakeUp) {
    ZELMutex lock, mine, yours;
    long counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20000; ++round) {
                lock.Lock();
                ++counter;
                lock.Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 80000);

    // Hand-over: each side opens the other's gate.
    mine.Lock();
    yours.Lock();
    std::thread partner([&] {
        for (int round = 0; round < 5000; ++round) yours.Lock(), mine.Unlock();
    });
    for (int round = 0; round < 5000; ++round) yours.Unlock(), mine.Lock();
    partner.join();
}

TEST(ZELThreads, RunsItsBodyOnceAtATimeAndKeepsItsCode) {
    Worker worker;
    EXPECT_EQ(worker.GetStatus(), ZELThreadIdle);
    EXPECT_EQ(worker.GetThreadId(), 0u);
    EXPECT_TRUE(worker.Join() == 1 && worker.End() == 1 && worker.Kill() == 1);

    EXPECT_EQ(worker.Run(7), 0);
    EXPECT_NE(worker.GetThreadId(), 0u);
    EXPECT_EQ(worker.IsRunning(), 1);
    EXPECT_EQ(worker.Run(8), 1);
    EXPECT_EQ(worker.SetFunction(nullptr, nullptr), 1);
    worker.release.Open();
    std::vector<std::thread> joiners;
    for (int i = 0; i < 3; ++i) joiners.emplace_back([&] { EXPECT_EQ(worker.Join(), 0); });
    for (std::thread& joiner : joiners) joiner.join();
    EXPECT_EQ(worker.GetStatus(), ZELThreadFinished);
    EXPECT_EQ(worker.GetThreadReturnCode(), 7);
    EXPECT_TRUE(worker.joinedItself == 1 && worker.ranAgain == 1);

    EXPECT_EQ(worker.Run(-3), 0);  // anew
    EXPECT_EQ(worker.Join(), 0);
    EXPECT_EQ(worker.GetThreadReturnCode(), -3);
}

TEST(ZELThreads, EndAsksAndKillGivesUp) {
    {
        Worker asked;
        asked.release.Open();
        EXPECT_EQ(asked.Run(101), 0);
        EXPECT_EQ(asked.End(), 0);
        EXPECT_EQ(asked.Join(), 0);
        EXPECT_EQ(asked.GetThreadReturnCode(), 101);
    }
    ZELThreads given("given up");
    Gate mayEnd;
    EXPECT_EQ(given.SetFunction([](void* gate) { return static_cast<Gate*>(gate)->Pass(), 5; }, &mayEnd), 0);
    EXPECT_EQ(given.Run(0), 0);
    EXPECT_EQ(given.Kill(), 0);
    EXPECT_EQ(given.GetStatus(), ZELThreadKilled);
    EXPECT_EQ(given.GetThreadReturnCode(), -1);
    EXPECT_EQ(given.IsEndRequested(), 1);
    EXPECT_TRUE(given.Join() == 1 && given.Run(0) == 1 && given.Kill() == 1);
    mayEnd.Open();  // the destructor waits for the body, which is still there
}

TEST(ZELThreads, AnObjectMayBeDeletedByItsOwnThread) {
    Gate deleted(50);
    for (int i = 0; i < 50; ++i) EXPECT_EQ((new SelfDeleting(deleted))->Run(0), 0);
    deleted.Pass();
}

TEST(ZELThreads, SlotsStandInTheirOrder) {
    const std::vector<std::size_t> slots{SlotOf(&Worker::Run),         SlotOf(&Worker::Execute),
                                         SlotOf(&Worker::SetFunction), SlotOf(&Worker::Join),
                                         SlotOf(&Worker::End),         SlotOf(&Worker::Kill),
                                         SlotOf(&Worker::IsRunning),   SlotOf(&Worker::GetStatus),
                                         SlotOf(&Worker::GetThreadId), SlotOf(&Worker::GetThreadReturnCode),
                                         SlotOf(&Worker::EmitTrace)};
    for (std::size_t i = 0; i < slots.size(); ++i) EXPECT_EQ(slots[i], i);
}
