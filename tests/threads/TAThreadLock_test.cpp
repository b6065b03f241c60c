#include "TAThreadLock.h"

#include "support/gate.h"
#include "support/slots.h"
#include "support/testing.h"

TEST(TAThreadLock, ExcludesWithoutAnOwnerAndCountsAtMostOne) {
    TAThreadLock lock, mine, yours;
    EXPECT_EQ(lock.ReleaseLock(), 1);  // free: nothing is saved up
    lock.GetLock();
    std::atomic<bool> released{false};
    std::jthread waiter([&] { EXPECT_TRUE(lock.GetLock() == 1 && released); });
    released = true;
    EXPECT_EQ(lock.ReleaseLock(), 1);
    waiter = {};
    std::jthread([&] { lock.ReleaseLock(); }).join();  // any thread may

    long counter = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 20000; ++round) {
                const TALocker guard(&lock);
                ++counter;
            }
        });
    threads.clear();
    EXPECT_EQ(counter, 80000);

    mine.GetLock();
    yours.GetLock();
    const std::jthread partner([&] {
        for (int round = 0; round < 5000; ++round) yours.GetLock(), mine.ReleaseLock();
    });
    for (int round = 0; round < 5000; ++round) yours.ReleaseLock(), mine.GetLock();
}

TEST(TAThreadLock, TheLocksInNameLetEverybodyThrough) {
    TAThreadLongLock longLock;
    TAThreadRWLock readWriteLock;
    const TALocker outer(&longLock), inner(&longLock), reader(&readWriteLock), second(&readWriteLock), none(nullptr);
    EXPECT_EQ(longLock.GetLock() + longLock.ReleaseLock() + longLock.ReleaseLock(), 3);
    EXPECT_EQ(readWriteLock.GetLock() + readWriteLock.GetWriteLock() + readWriteLock.GetWriteLock() +
                  readWriteLock.ReleaseWriteLock() + readWriteLock.ReleaseLock(),
              5);
}

TEST(TAThreadLock, TheFirstCopyToEndLetsTheOthersThrough) {
    for (int round = 0; round < 50; ++round) {
        auto lock = std::make_unique<TAThreadLock>();
        TAThreadLock copy(*lock), assigned;
        assigned = copy;
        lock->GetLock();
        Gate begun(3);
        std::vector<std::jthread> waiters;
        for (int i = 0; i < 3; ++i)
            waiters.emplace_back([&] {
                begun.Open();
                EXPECT_EQ(copy.GetLock(), 1);
            });
        begun.Pass();
        lock.reset();
        waiters.clear();
        EXPECT_EQ(assigned.GetLock() + assigned.GetLock() + assigned.ReleaseLock(), 3);
    }
}

TEST(TAThreadLock, SlotsStandInTheirOrder) {
    ExpectSlots(0, &TAThreadLock::GetLock, &TAThreadLock::ReleaseLock);
    ExpectSlots(0, &TAThreadLongLock::GetLock, &TAThreadLongLock::ReleaseLock);
    // Behind the two of the destructor.
    ExpectSlots(4, &TAThreadRWLock::GetWriteLock, &TAThreadRWLock::ReleaseWriteLock);
}
