// Listing and removing a tree of 20,000 files in 2,000 directories, beside the tools and the standard library.
//
// The tools are started by std::system, which adds the start of a shell and a program, about 2 ms. Making the tree is
// not measured; it is made in memory where the system offers that, so that no disk decides.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "TAFileUtilities.h"

namespace {

namespace fs = std::filesystem;

class Tree {
public:
    Tree() : _path((fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) / "zel_directories_bench") {
        Grow();
    }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { fs::remove_all(_path); }

    void Grow() const {
        fs::remove_all(_path);
        for (int i = 0; i < 2000; ++i) {
            const fs::path folder = _path / std::to_string(i % 40) / std::to_string(i / 40 % 10) / std::to_string(i);
            fs::create_directories(folder);
            for (int file = 0; file < 10; ++file)
                std::ofstream(folder / ("some_source_file_" + std::to_string(file) + ".cpp")) << file;
        }
    }
    std::string Path() const { return _path.string(); }

private:
    fs::path _path;
};

void ListTree_Ours(benchmark::State& state) {
    const Tree tree;
    for (auto _ : state) {
        ZELListValZELString names;
        ReadRecursiveDirectory(tree.Path().c_str(), names);
        if (names.Size() != 20000) state.SkipWithError("files are missing");
    }
}

void ListTree_StdFilesystem(benchmark::State& state) {
    const Tree tree;
    for (auto _ : state) {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(tree.Path()))
            if (entry.is_regular_file()) names.push_back(entry.path().string());
        if (names.size() != 20000) state.SkipWithError("files are missing");
    }
}

void RunTool(benchmark::State& state, const std::string& command) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("the tool failed");
}

void ListTree_Find(benchmark::State& state) {
    const Tree tree;
    for (auto _ : state) RunTool(state, "exec find '" + tree.Path() + "' -type f > /dev/null");
}

template <class Remove>
void RemoveTrees(benchmark::State& state, Remove remove) {
    const Tree tree;
    for (auto _ : state) {
        remove(tree.Path());
        state.PauseTiming();
        if (fs::exists(tree.Path())) state.SkipWithError("the tree is still there");
        tree.Grow();
        state.ResumeTiming();
    }
}

void RemoveTree_Ours(benchmark::State& state) {
    RemoveTrees(state, [](const std::string& path) { TACleanDirectory(path.c_str()); });
}

void RemoveTree_Rm(benchmark::State& state) {
    RemoveTrees(state, [&](const std::string& path) { RunTool(state, "exec rm -rf '" + path + "'"); });
}

void RemoveTree_StdFilesystem(benchmark::State& state) {
    RemoveTrees(state, [](const std::string& path) { fs::remove_all(path); });
}

void Listing(const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->UseRealTime();
}
// As often as is told: left to choose, the library would grow trees for minutes.
void Removal(const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);
}

const bool registered = [] {
    Listing("list_tree/ours/20000", ListTree_Ours);
    Listing("list_tree/std::filesystem/20000", ListTree_StdFilesystem);
    Listing("list_tree/find/20000", ListTree_Find);
    Removal("remove_tree/ours/20000", RemoveTree_Ours);
    Removal("remove_tree/rm -rf/20000", RemoveTree_Rm);
    Removal("remove_tree/std::filesystem/20000", RemoveTree_StdFilesystem);
    return true;
}();

}  // namespace
