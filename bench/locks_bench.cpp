// Locks, hand-overs and thread starts beside those that one would use instead.
//
// A process that never had a second thread gets cheaper locks from the C library, which no tool with threads sees: so
// one is started before anything is measured.
#include <benchmark/benchmark.h>
#include <semaphore.h>

#include <atomic>
#include <mutex>
#include <semaphore>
#include <thread>

#include "TAMutex.h"
#include "TAThread.h"
#include "TAThreadLock.h"

namespace {

struct Ours {
    void Lock() { lock.GetLock(); }
    void Unlock() { lock.ReleaseLock(); }
    TAThreadLock lock;
};

struct StdMutex {
    void Lock() { lock.lock(); }
    void Unlock() { lock.unlock(); }
    std::mutex lock;
};

struct StdSemaphore {
    void Lock() { lock.acquire(); }
    void Unlock() { lock.release(); }
    std::binary_semaphore lock{1};
};

struct PosixSemaphore {
    PosixSemaphore() { sem_init(&lock, 0, 1); }
    ~PosixSemaphore() { sem_destroy(&lock); }
    void Lock() { sem_wait(&lock); }
    void Unlock() { sem_post(&lock); }
    sem_t lock;
};

template <class Lock>
void LockAndUnlock(benchmark::State& state) {
    Lock lock;
    benchmark::DoNotOptimize(&lock);
    for (auto _ : state) {
        lock.Lock();
        benchmark::ClobberMemory();
        lock.Unlock();
    }
}

// There and back again. A std::mutex has an owner and cannot do this.
template <class Lock>
void HandOver(benchmark::State& state) {
    Lock mine, yours;
    mine.Lock();
    yours.Lock();
    std::atomic<bool> ended{false};
    std::jthread partner([&] {
        for (;;) {
            yours.Lock();
            if (ended) return;
            mine.Unlock();
        }
    });
    for (auto _ : state) {
        yours.Unlock();
        mine.Lock();
    }
    ended = true;
    yours.Unlock();
}

void StartOurs(benchmark::State& state) {
    TAThread thread([](int, const char**) {});
    for (auto _ : state) {
        thread.Start();
        TAThread::WaitForAll();
    }
}

void StartStd(benchmark::State& state) {
    for (auto _ : state) std::thread([] {}).join();
}

void LockNamed(benchmark::State& state) {
    TAMutex mutex("zel_locks_bench");
    for (auto _ : state) {
        mutex.Lock();
        mutex.Unlock();
    }
}

const bool registered = [] {
    std::thread([] {}).join();
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime();
    };
    add("lock_unlock/ours/1", LockAndUnlock<Ours>);
    add("lock_unlock/std::mutex/1", LockAndUnlock<StdMutex>);
    add("lock_unlock/std::binary_semaphore/1", LockAndUnlock<StdSemaphore>);
    add("lock_unlock/sem_t/1", LockAndUnlock<PosixSemaphore>);
    add("lock_unlock/named (TAMutex)/1", LockNamed);
    add("hand_over/ours/2", HandOver<Ours>);
    add("hand_over/std::binary_semaphore/2", HandOver<StdSemaphore>);
    add("hand_over/sem_t/2", HandOver<PosixSemaphore>);
    add("start_and_wait/ours/1", StartOurs);
    add("start_and_wait/std::thread/1", StartStd);
    return true;
}();

}  // namespace
