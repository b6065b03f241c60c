// ZELString beside std::string: by value, appended to, searched and compared at lengths on both sides of the inline
// room of each.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "ZELString.h"

namespace {

std::string Text(std::size_t length) {
    std::string text(length, 'x');
    for (std::size_t i = 0; i < length; ++i) text[i] = "scan_sources/include.h "[i % 23];
    return text;
}

int FindIn(const ZELString& text, const ZELString& what) {
    return text.FindPosition(what, 0);
}
std::size_t FindIn(const std::string& text, const std::string& what) {
    return text.find(what, 0);
}

template <class String>
[[gnu::noinline]] std::size_t TakeByValue(String text) {
    benchmark::DoNotOptimize(text);
    return static_cast<std::size_t>(text.length());
}

template <class String>
void ByValue(benchmark::State& state) {
    const String text(Text(static_cast<std::size_t>(state.range(0))).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(TakeByValue<String>(text));
}

// Sixteen pieces onto one string, as a line of a report is built.
template <class String>
void Append(benchmark::State& state) {
    const String piece(Text(static_cast<std::size_t>(state.range(0))).c_str());
    for (auto _ : state) {
        String line;
        for (int i = 0; i < 16; ++i) line += piece;
        benchmark::DoNotOptimize(line);
    }
}

// The sought text stands at the end.
template <class String>
void Find(benchmark::State& state) {
    const String what("@end");
    const String text((Text(static_cast<std::size_t>(state.range(0)) - 4) + "@end").c_str());
    for (auto _ : state) {
        benchmark::DoNotOptimize(&text);
        benchmark::DoNotOptimize(FindIn(text, what));
    }
}

template <class String>
void Compare(benchmark::State& state) {
    const String left(Text(static_cast<std::size_t>(state.range(0))).c_str());
    const String right(left);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&left);
        benchmark::DoNotOptimize(left == right);
        benchmark::DoNotOptimize(left < right);
    }
}

template <class String>
void Register(const std::string& who) {
    const std::vector<std::pair<std::string, void (*)(benchmark::State&)>> operations{{"by_value", ByValue<String>},
                                                                                      {"append_16", Append<String>},
                                                                                      {"find", Find<String>},
                                                                                      {"compare", Compare<String>}};
    for (const auto& [operation, function] : operations)
        for (const int length : {8, 24, 40, 4000})
            benchmark::RegisterBenchmark(("string_" + operation + "/" + who).c_str(), function)->Arg(length);
}

const bool registered = (Register<ZELString>("ours"), Register<std::string>("std::string"), true);

}  // namespace
