// Reading a text of 200 MB into a list of its lines, beside what a program would write with streams.
//
// The file lies in the system's cache. Emptying the list belongs to what is measured on both sides.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "TAFileUtilities.h"

namespace {

// Gone with the program.
class BigText {
public:
    BigText() : _name(TAFileName::GetTemporaryFileName()) {
        constexpr std::size_t Size = 200'000'000;
        std::mt19937 random(1);
        std::ofstream file(std::string(_name.GetNativeName()), std::ios::binary);
        for (std::size_t size = 0; size < Size;) {
            std::string line(random() % 100, 'x');
            line += '\n';
            file << line;
            size += line.size();
        }
    }
    BigText(const BigText&) = delete;
    BigText& operator=(const BigText&) = delete;
    ~BigText() { _name.Delete(); }
    const TAFileName& Name() const { return _name; }

private:
    TAFileName _name;
};

const TAFileName& Text() {
    static const BigText text;
    return text.Name();
}

void ReadLines_Ours(benchmark::State& state) {
    const ZELString name(Text().View());
    for (auto _ : state) {
        ZELListValZELString lines;
        if (ReadFile(name, lines) != 0) state.SkipWithError("not read");
        benchmark::DoNotOptimize(lines.Size());
    }
}

void ReadLines_StdGetline(benchmark::State& state) {
    const std::string name(Text().GetNativeName());
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
