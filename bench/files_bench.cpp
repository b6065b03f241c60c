// Reading a text of 200 MB into a list of its lines, beside what a program would write with streams.
//
// The file lies in the system's cache. Emptying the list belongs to what is measured on both sides.

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <vector>

#include "TAFileUtilities.h"
#include "big_text.h"

namespace {

void ReadLines_Ours(benchmark::State& state) {
    const ZELString name(BigText::Name().View());
    for (auto _ : state) {
        ZELListValZELString lines;
        if (ReadFile(name, lines) != 0) state.SkipWithError("not read");
        benchmark::DoNotOptimize(lines.Size());
    }
}

void ReadLines_StdGetline(benchmark::State& state) {
    const std::string name(BigText::Name().GetNativeName());
    for (auto _ : state) {
        std::vector<std::string> lines;
        std::ifstream file(name);
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        benchmark::DoNotOptimize(lines.size());
    }
}

BENCHMARK(ReadLines_Ours)->Name("read lines/ours")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadLines_StdGetline)->Name("read lines/std::getline")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
