// Sorted indexes beside the ordered maps that a user would pick instead, on keys of 20 bytes looked up as C strings.
//
// An insertion is timed on containers that start empty, in batches of at least 1000 insertions; emptying them is not
// timed. Every contender owns copies of its keys.

#include <absl/container/btree_map.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/container/flat_map.hpp>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "TAIndex.h"

namespace {

struct Ours {
    TAIndex index;
    void Add(const char* key, void* value) { index.Append(key, value); }
    void* Find(const char* key) const { return index[key]; }
    template <class Visit>
    void ForEach(Visit visit) const {
        void* const* const values = index.GetContent();
        for (int i = 0; i < index.Size(); ++i) visit(index[i], values[i]);
    }
};

template <class Map, class View>
struct Peer {
    Map map;
    void Add(const char* key, void* value) { map.emplace(key, value); }
    void* Find(const char* key) const {
        const auto entry = map.find(View(key));
        return entry != map.end() ? entry->second : nullptr;
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& [key, value] : map) visit(key.c_str(), value);
    }
};

using StdMap = Peer<std::map<std::string, void*, std::less<>>, std::string_view>;
using BtreeMap = Peer<absl::btree_map<std::string, void*>, absl::string_view>;
using FlatMap = Peer<boost::container::flat_map<std::string, void*, std::less<>>, std::string_view>;

// Distinct keys in random order; another `seed` gives other keys.
std::vector<std::string> RandomKeys(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::string> keys(static_cast<std::size_t>(count));
    for (std::string& key : keys) {
        key = "src/";
        for (int i = 0; i < 16; ++i) key += "abcdefghijklmnopqrstuvwxyz012345"[random() % 32];
    }
    return keys;
}

template <class Container>
void Insert(benchmark::State& state, int count, bool isSorted) {
    std::vector<std::string> keys = RandomKeys(count, 1);
    if (isSorted) std::sort(keys.begin(), keys.end());
    const int batch = std::max(1, 1000 / count);
    for (auto _ : state) {
        std::vector<Container> containers(static_cast<std::size_t>(batch));
        for (Container& container : containers)
            for (std::string& key : keys) container.Add(key.c_str(), &key);
        benchmark::DoNotOptimize(containers.data());
        state.PauseTiming();
        containers.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * batch * count);
}

template <class Container>
void Find(benchmark::State& state, int count, bool isPresent) {
    Container container;
    std::vector<std::string> keys = RandomKeys(count, 1);
    for (std::string& key : keys) container.Add(key.c_str(), &key);
    std::vector<std::string> sought = isPresent ? keys : RandomKeys(count, 2);
    std::shuffle(sought.begin(), sought.end(), std::mt19937(3));
    for (auto _ : state)
        for (const std::string& key : sought) benchmark::DoNotOptimize(container.Find(key.c_str()));
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Container>
void Iterate(benchmark::State& state, int count) {
    Container container;
    std::vector<std::string> keys = RandomKeys(count, 1);
    for (std::string& key : keys) container.Add(key.c_str(), &key);
    for (auto _ : state) {
        std::size_t sum = 0;
        container.ForEach([&](const char* key, void* value) {
            sum += reinterpret_cast<std::size_t>(key) ^ reinterpret_cast<std::size_t>(value);
        });
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Container>
void Register(const std::string& who, int most = 100000) {
    for (const int count : {10, 100, 1000, 10000, 100000}) {
        if (count > most) break;
        const std::string tail = "/" + who + "/" + std::to_string(count);
        const auto add = [&](const char* group, auto run) {
            benchmark::RegisterBenchmark((group + tail).c_str(), [count, run](benchmark::State& s) { run(s, count); });
        };
        add("index_insert_random", [](auto& state, int n) { Insert<Container>(state, n, false); });
        add("index_insert_sorted", [](auto& state, int n) { Insert<Container>(state, n, true); });
        add("index_find", [](auto& state, int n) { Find<Container>(state, n, true); });
        add("index_find_absent", [](auto& state, int n) { Find<Container>(state, n, false); });
        add("index_iterate", [](auto& state, int n) { Iterate<Container>(state, n); });
    }
}

const bool registered = [] {
    Register<Ours>("ours");
    Register<StdMap>("std::map");
    Register<BtreeMap>("absl::btree_map");
    Register<FlatMap>("boost::container::flat_map", 10000);  // each insertion moves all keys behind it
    return true;
}();

}  // namespace
