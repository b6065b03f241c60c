// Counters beside what one would count with instead. A process that never had a second thread gets cheaper locks from
// the C library, which no tool with threads sees: so one is started before anything is measured.
#include <absl/synchronization/mutex.h>
#include <benchmark/benchmark.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "TAPerfo.h"

namespace {

struct Atomic {
    void Count(int amount) { count.fetch_add(amount, std::memory_order_relaxed); }
    std::atomic<long long> count{0};
};

template <class Mutex>
struct Guarded {
    void Count(int amount) {
        const std::lock_guard guard(lock);
        count += amount;
    }
    Mutex lock;
    long long count = 0;
};

struct AbslMutex : absl::Mutex {
    void lock() { Lock(); }
    void unlock() { Unlock(); }
};

template <class Counter>
Counter& TheCounter() {
    static Counter* const counter = new Counter;
    return *counter;
}

template <class Counter>
void Count(benchmark::State& state) {
    Counter& counter = TheCounter<Counter>();
    for (auto _ : state) {
        counter.Count(1);
        benchmark::ClobberMemory();
    }
}

void Report(benchmark::State& state) {
    TAPerfoLoad& counter = TheCounter<TAPerfoLoad>();
    for (auto _ : state) benchmark::DoNotOptimize(counter.Report());
}

const bool registered = [] {
    std::thread([] {}).join();
    const auto add = [](const char* name, void (*run)(benchmark::State&), bool isShared) {
        auto* const bench = benchmark::RegisterBenchmark(name, run)->UseRealTime();
        if (isShared) bench->ThreadRange(1, 2);
    };
    add("count/ours, no lock (TAPerfo)", Count<TAPerfo>, false);
    add("count/ours (TAPerfoAv)", Count<TAPerfoAv>, true);
    add("count/ours (TAPerfoLoad)", Count<TAPerfoLoad>, true);
    add("count/std::atomic", Count<Atomic>, true);
    add("count/std::mutex", Count<Guarded<std::mutex>>, true);
    add("count/absl::Mutex", Count<Guarded<AbslMutex>>, true);
    add("report/ours (TAPerfoLoad)", Report, false);
    return true;
}();

}  // namespace
