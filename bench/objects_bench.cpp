// A large object beside the ordered map of variants that a user would write instead, and its dump beside fwrite.
//
// Half of the attributes are integers, half are texts of 24 bytes; names have 13 bytes and come in random order. For
// the dump, the peer writes the same bytes to the same number of files: "fwrite by line" each line by itself from
// memory, "fwrite" all at once.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "TAPObject.h"

namespace {

const char* const text = "a text of 24 characters.";
constexpr int Large = 1000000;

struct Ours {
    TAPObject object;
    void Set(const char* name, int number) { object.SetAttribute(name, number); }
    void Set(const char* name, const char* value) { object.SetAttribute(name, value); }
    std::size_t Read(const char* name) const {
        const TAPAttr value = object.GetAttribute(name);
        return value.IsType(TAPAttr::TypeInteger) ? static_cast<std::size_t>(value.GetInteger()) : 1;
    }
    std::size_t Iterate() const {
        std::size_t sum = 0;
        const char* name = nullptr;
        for (int position = object.GetFirstAttributePosition(); position != 0;) {
            const TAPAttr value = object.GetNextAttribute(position, name);
            sum += static_cast<std::size_t>(value.GetInteger(1)) + static_cast<std::size_t>(name[0]);
        }
        return sum;
    }
};

struct StdMap {
    using Value = std::variant<std::monostate, int, std::string>;
    std::map<std::string, Value> map;
    void Set(const char* name, int number) { map[name] = number; }
    void Set(const char* name, const char* value) { map[name] = std::string(value); }
    std::size_t Read(const char* name) const {
        const auto entry = map.find(name);
        const Value value = entry != map.end() ? entry->second : Value();
        const int* const number = std::get_if<int>(&value);
        return number != nullptr ? static_cast<std::size_t>(*number) : 1;
    }
    std::size_t Iterate() const {
        std::size_t sum = 0;
        for (const auto& [name, value] : map) {
            const int* const number = std::get_if<int>(&value);
            sum += (number != nullptr ? static_cast<std::size_t>(*number) : 1) + static_cast<std::size_t>(name[0]);
        }
        return sum;
    }
};

// Ascending, or in one of the random orders.
enum Order : unsigned { Ascending, AsTheyCome, AsTheyAreSought };

// What takes seconds to make is made once for all repetitions, and stays.
const std::vector<std::string>& Names(int count, Order order) {
    static std::map<std::pair<int, Order>, std::vector<std::string>> made;
    std::vector<std::string>& names = made[{count, order}];
    if (!names.empty()) return names;
    char name[16];
    for (int i = 0; i < count; ++i) {
        std::snprintf(name, sizeof name, "name_%08d", i);
        names.emplace_back(name);
    }
    if (order != Ascending) std::shuffle(names.begin(), names.end(), std::mt19937(order));
    return names;
}

template <class Container>
void Fill(Container& container, const std::vector<std::string>& names) {
    int number = 0;
    for (const std::string& name : names) {
        if (++number % 2 == 0)
            container.Set(name.c_str(), number);
        else
            container.Set(name.c_str(), text);
    }
}

template <class Container>
Container& Filled(int count, Order order = AsTheyCome) {
    static std::map<std::pair<int, Order>, std::unique_ptr<Container>> made;
    std::unique_ptr<Container>& container = made[{count, order}];
    if (container != nullptr) return *container;
    container = std::make_unique<Container>();
    Fill(*container, Names(count, order));
    benchmark::DoNotOptimize(container->Iterate());
    return *container;
}

template <class Container>
void Set(benchmark::State& state, int count) {
    const std::vector<std::string>& names = Names(count, AsTheyCome);
    for (auto _ : state) {
        const auto container = std::make_unique<Container>();
        Fill(*container, names);
        state.PauseTiming();
        benchmark::DoNotOptimize(container->Iterate());
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Container>
void Read(benchmark::State& state, int count) {
    const std::vector<std::string>& names = Names(count, AsTheyAreSought);
    const Container& container = Filled<Container>(count);
    for (auto _ : state) {
        std::size_t sum = 0;
        for (const std::string& name : names) sum += container.Read(name.c_str());
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Container>
void Iterate(benchmark::State& state, int count) {
    const Container& container = Filled<Container>(count);
    for (auto _ : state) benchmark::DoNotOptimize(container.Iterate());
    state.SetItemsProcessed(state.iterations() * count);
}

// Folders of memory where there are such, or else the disk would be measured.
std::filesystem::path DumpFolder() {
    const std::filesystem::path memory = "/dev/shm";
    return (std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path()) / "zel_bench_dump";
}

template <bool Ordered>
void Dump(benchmark::State& state, int count) {
    TAPObject& object = Filled<Ours>(count, Ordered ? Ascending : AsTheyCome).object;
    std::filesystem::create_directory(DumpFolder());
    for (auto _ : state) object.SaveToFile(DumpFolder().string().c_str());
    std::filesystem::remove_all(DumpFolder());
    state.SetItemsProcessed(state.iterations() * count);
}

template <bool ByLine>
void Fwrite(benchmark::State& state, int count) {
    std::filesystem::create_directory(DumpFolder());
    Filled<Ours>(count).object.SaveToFile(DumpFolder().string().c_str());
    std::vector<std::pair<std::string, std::string>> files;
    for (const auto& entry : std::filesystem::directory_iterator(DumpFolder())) {
        std::ifstream file(entry.path(), std::ios::binary);
        files.emplace_back(entry.path().string(), std::string(std::istreambuf_iterator<char>(file), {}));
    }
    for (auto _ : state)
        for (const auto& [path, bytes] : files) {
            std::FILE* const file = std::fopen(path.c_str(), "w");
            for (std::size_t begin = 0; begin < bytes.size();) {
                const std::size_t end = ByLine ? bytes.find('\n', begin) + 1 : bytes.size();
                std::fwrite(bytes.data() + begin, 1, end - begin, file);
                begin = end;
            }
            std::fclose(file);
        }
    std::filesystem::remove_all(DumpFolder());
    state.SetItemsProcessed(state.iterations() * count);
}

void Add(const std::string& operation, const char* who, void (*run)(benchmark::State&, int)) {
    for (const int count : {1000, Large})
        benchmark::RegisterBenchmark((operation + "/" + who + "/" + std::to_string(count)).c_str(),
                                     [count, run](benchmark::State& state) { run(state, count); });
}

template <class Container>
void Register(const char* who) {
    Add("objects_set", who, Set<Container>);
    Add("objects_read", who, Read<Container>);
    Add("objects_iterate", who, Iterate<Container>);
}

const bool registered = [] {
    // Before anything else, like a program that makes one such object: what is freed and taken again lies scattered.
    Filled<Ours>(Large, AsTheyCome);
    Filled<Ours>(Large, Ascending);
    Filled<StdMap>(Large, AsTheyCome);
    Register<Ours>("ours");
    Register<StdMap>("std::map");
    Add("objects_dump", "ours", Dump<false>);
    Add("objects_dump_ordered", "ours", Dump<true>);
    for (const char* operation : {"objects_dump", "objects_dump_ordered"}) {
        Add(operation, "fwrite by line", Fwrite<true>);
        Add(operation, "fwrite", Fwrite<false>);
    }
    return true;
}();

}  // namespace
