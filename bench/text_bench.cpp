// Splitting lines and escaping text beside Abseil's functions, and beside a plain copy loop that writes as many bytes
// as the escaped text has: what memory alone allows.
#include <absl/strings/str_replace.h>
#include <absl/strings/str_split.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "TATextUtilities.h"

namespace {

// Lines of eleven fields, as they come from listings (short fields) and from lists of paths (longer ones).
std::string Line(std::size_t fieldLength) {
    std::string line;
    for (std::size_t field = 0; field < 11; ++field) {
        if (field != 0) line += field % 4 == 0 ? "  " : " ";
        for (std::size_t i = 0; i < fieldLength - field % 3; ++i) line += static_cast<char>('a' + (i + field) % 26);
    }
    return line;
}

void SplitOurs(benchmark::State& state) {
    ZELString line(Line(static_cast<std::size_t>(state.range(0))).c_str());
    ZELListValZELString fields;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Split(line, fields));
        benchmark::ClobberMemory();
    }
}

void SplitOursIntoNewList(benchmark::State& state) {
    ZELString line(Line(static_cast<std::size_t>(state.range(0))).c_str());
    for (auto _ : state) {
        ZELListValZELString fields;
        benchmark::DoNotOptimize(Split(line, fields));
        benchmark::ClobberMemory();
    }
}

template <class Field>
void SplitAbseil(benchmark::State& state) {
    const std::string line = Line(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<Field> fields = absl::StrSplit(line, ' ', absl::SkipEmpty());
        benchmark::DoNotOptimize(fields.data());
        benchmark::ClobberMemory();
    }
}

// "ampersands", or text with a special character in every 24th place.
std::string Text(bool isDense) {
    std::string text(std::size_t{8} << 20, '&');
    if (isDense) return text;
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = i % 24 == 7 ? "&<>\"'"[i / 24 % 5] : 'x';
    return text;
}

void EscapeOurs(benchmark::State& state) {
    const std::string text = Text(state.range(0) != 0);
    for (auto _ : state) {
        char* block = static_cast<char*>(std::malloc(text.size() + 1));
        std::memcpy(block, text.c_str(), text.size() + 1);
        encodeXMLString(block);
        benchmark::DoNotOptimize(block);
        benchmark::ClobberMemory();
        std::free(block);
    }
}

void EscapeSubstitute(benchmark::State& state) {
    ZELString text(Text(state.range(0) != 0).c_str());
    for (auto _ : state) {
        const ZELString escaped = substituteEntities(text);
        benchmark::DoNotOptimize(&escaped);
        benchmark::ClobberMemory();
    }
}

void EscapeAbseil(benchmark::State& state) {
    const std::string text = Text(state.range(0) != 0);
    for (auto _ : state) {
        std::string escaped = absl::StrReplaceAll(
            text, {{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}});
        benchmark::DoNotOptimize(escaped.data());
        benchmark::ClobberMemory();
    }
}

void EscapeByCopyLoop(benchmark::State& state) {
    char* result = ::strdup(Text(state.range(0) != 0).c_str());
    encodeXMLString(result);
    const std::size_t size = std::strlen(result) + 1;
    for (auto _ : state) {
        char* block = static_cast<char*>(std::malloc(size));
        for (std::size_t i = 0; i < size; ++i) block[i] = result[i];
        benchmark::DoNotOptimize(block);
        benchmark::ClobberMemory();
        std::free(block);
    }
    std::free(result);
}

const bool registered = [] {
    for (const int length : {6, 28}) {
        const auto add = [length](const char* who, void (*run)(benchmark::State&)) {
            benchmark::RegisterBenchmark((std::string("text_split/") + who).c_str(), run)->Arg(length);
        };
        add("ours", SplitOurs);
        add("ours_new_list", SplitOursIntoNewList);
        add("absl::StrSplit", SplitAbseil<std::string>);
        add("absl::StrSplit_views", SplitAbseil<absl::string_view>);
    }
    for (const int isDense : {0, 1}) {
        const auto add = [isDense](const char* who, void (*run)(benchmark::State&)) {
            benchmark::RegisterBenchmark((std::string("text_escape/") + who).c_str(), run)->Arg(isDense);
        };
        add("ours", EscapeOurs);
        add("substituteEntities", EscapeSubstitute);
        add("absl::StrReplaceAll", EscapeAbseil);
        add("copy_loop", EscapeByCopyLoop);
    }
    return true;
}();

}  // namespace
