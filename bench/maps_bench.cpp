// Hash maps from texts to pointers beside those that a user would pick instead, with keys of 20 and 60 bytes that
// arrive as C strings. Sizes are named entries:key length.
//
// Containers start empty; what is not named (filling before a look-up, emptying after an insertion) is not timed. Every
// contender owns copies of its keys. Our map keeps the memory of ended ones, so after the first round of insertions its
// nodes and keys come from lists in scrambled order: that is the price of a process that makes large maps again and
// again. Memory is what becomes resident, taken in a fresh child before anything else runs.
#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>
#include <llvm/ADT/StringMap.h>
#include <llvm/Support/Allocator.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "ZELHashSCMap.h"
#include "ZELStringPool.h"

namespace {

struct Ours {
    ZELHashSCMap map;
    void Add(const char* key, void* value) { map.insert(key, value); }
    void* Find(const char* key) {
        void* value = nullptr;
        map.search(key, &value);
        return value;
    }
    void Erase(const char* key) { map.remove(key); }
    template <class Visit>
    void ForEach(Visit visit) {
        ZELMapIterator* const entries = map.getIterator();
        while (entries->next()) visit(entries->getKey(), entries->getValue());
        delete entries;
    }
    template <class Visit>
    void Walk(Visit visit) {
        for (const auto& [key, value] : map) visit(key, value);
    }
};

struct OwnPool {
    ZELStringPool pool;
};
struct Pooled : OwnPool, Ours {
    Pooled() : Ours{ZELHashSCMap(&pool)} {}
};

struct TransparentHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

template <class Map, class View>
struct Peer {
    Map map;
    void Add(const char* key, void* value) { map.emplace(key, value); }
    void* Find(const char* key) const {
        const auto entry = map.find(View(key));
        return entry != map.end() ? entry->second : nullptr;
    }
    void Erase(const char* key) { map.erase(map.find(View(key))); }
    template <class Visit>
    void ForEach(Visit visit) {
        for (const auto& [key, value] : map) visit(key.c_str(), value);
    }
};

template <class Allocator>
struct LlvmMap {
    llvm::StringMap<void*, Allocator> map;
    void Add(const char* key, void* value) { map.try_emplace(key, value); }
    void* Find(const char* key) const { return map.lookup(key); }
    void Erase(const char* key) { map.erase(key); }
    template <class Visit>
    void ForEach(Visit visit) {
        for (const auto& entry : map) visit(entry.getKeyData(), entry.getValue());
    }
};

using StdMap = Peer<std::unordered_map<std::string, void*, TransparentHash, std::equal_to<>>, std::string_view>;
using FlatMap = Peer<absl::flat_hash_map<std::string, void*>, absl::string_view>;

struct Size {
    int count, length;
};

// The same for all contenders and repetitions: made once, since a million keys take longer than most of what is timed.
std::vector<std::string>& RandomKeys(Size size, unsigned seed) {
    static std::map<std::tuple<int, int, unsigned>, std::vector<std::string>> made;
    std::vector<std::string>& keys = made[{size.count, size.length, seed}];
    if (!keys.empty()) return keys;
    std::mt19937 random(seed);
    keys.resize(static_cast<std::size_t>(size.count));
    for (std::string& key : keys) {
        key = "src/containers/libraries/parts/of/the/product/";
        key.resize(static_cast<std::size_t>(size.length) - 16);
        for (int i = 0; i < 16; ++i) key += "abcdefghijklmnopqrstuvwxyz012345"[random() % 32];
    }
    return keys;
}

// The keys in another order, one behind the other, so that what is timed is the map and not the way to the keys.
class Queries {
public:
    explicit Queries(std::vector<std::string> keys) : _stride(keys.front().size() + 1) {
        std::shuffle(keys.begin(), keys.end(), std::mt19937(3));
        for (const std::string& key : keys) _text.append(key).push_back('\0');
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        for (std::size_t at = 0; at < _text.size(); at += _stride) visit(_text.data() + at);
    }

private:
    std::size_t _stride;
    std::string _text;
};

const Queries& TheQueries(Size size, unsigned seed) {
    static std::map<std::tuple<int, int, unsigned>, Queries> made;
    return made.try_emplace({size.count, size.length, seed}, RandomKeys(size, seed)).first->second;
}

template <class Container>
void AddAll(Container& container, std::vector<std::string>& keys) {
    for (std::string& key : keys) container.Add(key.c_str(), &key);
}

template <class Container>
std::vector<Container> Filled(std::size_t count, std::vector<std::string>& keys) {
    std::vector<Container> containers(count);
    for (Container& container : containers) AddAll(container, keys);
    return containers;
}

// Times `work` on as many containers as it takes to be measured. What `prepare` makes of them, and their end, is not
// timed.
template <class Container, class Prepare, class Work>
void TimeBatches(benchmark::State& state, Size size, Prepare prepare, Work work) {
    const auto batch = static_cast<std::size_t>(std::max(1, 10000 / size.count));
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<Container> containers = prepare(batch);
        state.ResumeTiming();
        work(containers, batch);
        state.PauseTiming();
        containers.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(batch) * size.count);
}

template <class Container>
void Insert(benchmark::State& state, Size size) {
    std::vector<std::string>& keys = RandomKeys(size, 1);
    TimeBatches<Container>(
        state, size, [](std::size_t) { return std::vector<Container>(); },
        [&](std::vector<Container>& containers, std::size_t count) { containers = Filled<Container>(count, keys); });
}

template <class Container>
void Find(benchmark::State& state, Size size, bool isPresent) {
    Container container;
    std::vector<std::string>& keys = RandomKeys(size, 1);
    AddAll(container, keys);
    const Queries& sought = TheQueries(size, isPresent ? 1 : 2);
    for (auto _ : state) sought.ForEach([&](const char* key) { benchmark::DoNotOptimize(container.Find(key)); });
    state.SetItemsProcessed(state.iterations() * size.count);
}

template <class Container>
void Erase(benchmark::State& state, Size size) {
    std::vector<std::string>& keys = RandomKeys(size, 1);
    const Queries& sought = TheQueries(size, 1);
    TimeBatches<Container>(
        state, size, [&](std::size_t count) { return Filled<Container>(count, keys); },
        [&](std::vector<Container>& containers, std::size_t) {
            for (Container& container : containers) sought.ForEach([&](const char* key) { container.Erase(key); });
        });
}

template <class Container>
void Iterate(benchmark::State& state, Size size, bool isWalk) {
    Container container;
    std::vector<std::string>& keys = RandomKeys(size, 1);
    AddAll(container, keys);
    for (auto _ : state) {
        std::size_t sum = 0;
        const auto visit = [&sum](const char* key, void* value) {
            sum += reinterpret_cast<std::size_t>(key) ^ reinterpret_cast<std::size_t>(value);
        };
        if constexpr (requires { container.Walk(visit); })
            isWalk ? container.Walk(visit) : container.ForEach(visit);
        else
            container.ForEach(visit);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * size.count);
}

long ResidentPages() {
    long total = 0;
    long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    std::fclose(file);
    return resident;
}

// The bytes that each entry makes resident.
template <class Container>
double MemoryPerEntry(Size size) {
    int ends[2];
    double bytes = 0;
    if (pipe(ends) != 0) return 0;
    if (fork() == 0) {
        std::vector<std::string>& keys = RandomKeys(size, 1);
        Container container;
        const long before = ResidentPages();
        AddAll(container, keys);
        bytes = static_cast<double>((ResidentPages() - before) * sysconf(_SC_PAGESIZE)) / size.count;
        _exit(write(ends[1], &bytes, sizeof bytes) < 0);
    }
    close(ends[1]);
    if (read(ends[0], &bytes, sizeof bytes) != sizeof bytes) bytes = 0;
    close(ends[0]);
    wait(nullptr);
    return bytes;
}

template <class Container>
void Register(const std::string& who) {
    for (const int count : {1000, 100000, 1000000}) {
        for (const int length : {20, 60}) {
            const Size size{count, length};
            const std::string tail = "/" + who + "/" + std::to_string(count) + ":" + std::to_string(length);
            const auto add = [&](const char* operation, auto run) {
                benchmark::RegisterBenchmark((operation + tail).c_str(),
                                             [size, run](benchmark::State& state) { run(state, size); });
            };
            const double memory = count > 1000 ? MemoryPerEntry<Container>(size) : 0;
            add("map_insert", [memory](auto& state, Size n) {
                Insert<Container>(state, n);
                if (memory > 0) state.counters["bytes per entry"] = memory;
            });
            add("map_find", [](auto& state, Size n) { Find<Container>(state, n, true); });
            add("map_find_absent", [](auto& state, Size n) { Find<Container>(state, n, false); });
            add("map_erase", [](auto& state, Size n) { Erase<Container>(state, n); });
            add("map_iterate", [](auto& state, Size n) { Iterate<Container>(state, n, false); });
            add("map_range_for", [](auto& state, Size n) { Iterate<Container>(state, n, true); });
        }
    }
}

const bool registered = [] {
    Register<Ours>("ours");
    Register<Pooled>("ours, pooled");
    Register<StdMap>("std::unordered_map");
    Register<FlatMap>("absl::flat_hash_map");
    Register<LlvmMap<llvm::MallocAllocator>>("llvm::StringMap");
    Register<LlvmMap<llvm::BumpPtrAllocator>>("llvm::StringMap, bump");
    return true;
}();

}  // namespace
