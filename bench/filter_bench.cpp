// Filters beside the matchers that a user would pick instead, on 100,000 names of files as a source tree has them.
// All are compiled beforehand, PCRE2 to machine code; only fnmatch takes its pattern apart in each call. Ours reads
// texts of 32-bit characters, the peers read bytes, a quarter of the memory, but for PCRE2-32, which reads the same
// texts. "remembered" asks a filter that may remember, and has seen every name.
#define PCRE2_CODE_UNIT_WIDTH 0
#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <pcre2.h>
#include <re2/re2.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "TAUnicodeRegularExpression.h"

namespace {

constexpr std::size_t Count = 100000;

struct Pattern {
    const char* filter;
    const char* expression;
    const char* glob;  // null where there is none
};
const Pattern patterns[] = {
    {"*.cpp", ".*.cpp", "*?cpp"},
    {"lib*test*.so", "lib.*test.*.so", "lib*test*?so"},
    {"*node*7*", ".*node.*7.*", "*node*7*"},
    {"graph_node_index[.]cpp", "graph_node_index[.]cpp", "graph_node_index.cpp"},
    {"[a-z]*", "[a-z]*", nullptr},
    {"[a-z]*_[a-z]*[0-9]*.so", "[a-z]*_[a-z]*[0-9]*.so", nullptr},
    {"[^l][a-z]*_*[0-9][0-9].[ch]*", "[^l][a-z]*_.*[0-9][0-9].[ch]*", nullptr},
    {"[:lower:]*_*", "[[:lower:]]*_.*", nullptr},
};

std::vector<std::string> MakeNames() {
    const char* const heads[] = {"lib", "node", "src_", "tree_", "build"};
    const char* const middles[] = {"_test", "_graph", "node", "_scan", "_cache"};
    const char* const tails[] = {".cpp", ".h", ".so", ".o"};
    std::mt19937 random(1);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < Count; ++i) {
        std::string name = heads[random() % 5];
        while (name.size() < 8 + random() % 10) name += static_cast<char>('a' + random() % 26);
        name.append(middles[random() % 5]).append(std::to_string(random() % 100)).append(tails[random() % 4]);
        names.push_back(name.substr(0, 31));
    }
    names[0] = "graph_node_index.cpp";
    return names;
}
const std::vector<std::string> names = MakeNames();
const std::vector<ZELUnicodeString> wideNames = [] {
    std::vector<ZELUnicodeString> wide;
    for (const std::string& name : names) wide.emplace_back(name.c_str());
    return wide;
}();
const std::string manyLetters(1000, 'a');
const std::string manyBlocks = [] {
    std::string text;
    for (int i = 0; i < 32; ++i) text += "[a-z]*";
    return text + ".1";
}();

class Ours {
public:
    explicit Ours(const Pattern& pattern) { _filter.SetFilter(pattern.filter, URE_NotMemoised); }
    bool Matches(std::size_t i) { return _filter.CheckFromFilter(wideNames[i]) != 0; }
    bool Matches(const ZELUnicodeString& text) { return _filter.CheckFromFilter(text) != 0; }
    using Text = ZELUnicodeString;

protected:
    TAUnicodeRegularExpression _filter;
};

class Remembered : public Ours {
public:
    explicit Remembered(const Pattern& pattern) : Ours(pattern) {
        _filter.SetFilter(pattern.filter, URE_Memoised);
        for (std::size_t i = 0; i < Count; ++i) Matches(i);
    }
};

class Pcre2 {
public:
    explicit Pcre2(const Pattern& pattern, bool isJit = true) {
        const std::string whole = std::string("\\A") + pattern.expression + "\\z";
        int error = 0;
        PCRE2_SIZE where = 0;
        _code = pcre2_compile_8(reinterpret_cast<PCRE2_SPTR8>(whole.c_str()), whole.size(), PCRE2_DOTALL, &error,
                                &where, nullptr);
        if (isJit) pcre2_jit_compile_8(_code, PCRE2_JIT_COMPLETE);
        _match = pcre2_match_data_create_from_pattern_8(_code, nullptr);
    }
    Pcre2(const Pcre2&) = delete;
    Pcre2& operator=(const Pcre2&) = delete;
    ~Pcre2() {
        pcre2_match_data_free_8(_match);
        pcre2_code_free_8(_code);
    }
    bool Matches(std::size_t i) { return Matches(names[i]); }
    bool Matches(const std::string& text) {
        return pcre2_jit_match_8(_code, reinterpret_cast<PCRE2_SPTR8>(text.data()), text.size(), 0, 0, _match,
                                 nullptr) > 0;
    }
    using Text = std::string;

private:
    pcre2_code_8* _code;
    pcre2_match_data_8* _match;
};

class Pcre2Wide {
public:
    explicit Pcre2Wide(const Pattern& pattern) {
        const ZELUnicodeString whole((std::string("\\A") + pattern.expression + "\\z").c_str());
        int error = 0;
        PCRE2_SIZE where = 0;
        _code = pcre2_compile_32(Units(whole), whole.View().size(), PCRE2_DOTALL, &error, &where, nullptr);
        pcre2_jit_compile_32(_code, PCRE2_JIT_COMPLETE);
        _match = pcre2_match_data_create_from_pattern_32(_code, nullptr);
    }
    Pcre2Wide(const Pcre2Wide&) = delete;
    Pcre2Wide& operator=(const Pcre2Wide&) = delete;
    ~Pcre2Wide() {
        pcre2_match_data_free_32(_match);
        pcre2_code_free_32(_code);
    }
    bool Matches(std::size_t i) { return Matches(wideNames[i]); }
    bool Matches(const ZELUnicodeString& text) {
        return pcre2_jit_match_32(_code, Units(text), text.View().size(), 0, 0, _match, nullptr) > 0;
    }
    using Text = ZELUnicodeString;

private:
    static PCRE2_SPTR32 Units(const ZELUnicodeString& text) {
        return reinterpret_cast<PCRE2_SPTR32>(text.View().data());
    }

    pcre2_code_32* _code;
    pcre2_match_data_32* _match;
};

class Re2 {
public:
    explicit Re2(const Pattern& pattern) : _code(pattern.expression, RE2::Latin1) {}
    bool Matches(std::size_t i) { return Matches(names[i]); }
    bool Matches(const std::string& text) { return RE2::FullMatch(text, _code); }
    using Text = std::string;

private:
    RE2 _code;
};

class Fnmatch {
public:
    explicit Fnmatch(const Pattern& pattern) : _glob(pattern.glob) {}
    bool Matches(std::size_t i) { return fnmatch(_glob, names[i].c_str(), 0) == 0; }

private:
    const char* _glob;
};

class StdRegex {
public:
    explicit StdRegex(const Pattern& pattern) : _code(pattern.expression) {}
    bool Matches(std::size_t i) { return std::regex_match(names[i], _code); }

private:
    std::regex _code;
};

template <class Matcher>
void Match(benchmark::State& state, const Pattern& pattern) {
    Matcher matcher(pattern);
    for (auto _ : state)
        for (std::size_t i = 0; i < Count; ++i) benchmark::DoNotOptimize(matcher.Matches(i));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Count));
}

// The first check of each name by a filter that remembers.
void Remember(benchmark::State& state, const Pattern& pattern) {
    for (auto _ : state) {
        state.PauseTiming();
        auto filter = std::make_unique<TAUnicodeRegularExpression>(pattern.filter);
        state.ResumeTiming();
        for (std::size_t i = 0; i < Count; ++i) benchmark::DoNotOptimize(filter->CheckFromFilter(wideNames[i]));
        state.PauseTiming();
        filter.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Count));
}

template <class Matcher>
void MatchOne(benchmark::State& state, const Pattern& pattern, const std::string& text) {
    Matcher matcher(pattern);
    const typename Matcher::Text candidate(text.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(matcher.Matches(candidate));
}

template <class Compile>
void AddCompilation(const char* who, Compile compile) {
    const Pattern& pattern = patterns[5];
    benchmark::RegisterBenchmark((std::string("filter_compile/") + who + "/" + pattern.filter).c_str(),
                                 [=, &pattern](benchmark::State& state) {
                                     for (auto _ : state) compile(pattern);
                                 });
}

template <class Matcher>
void AddMatches(const char* who, const Pattern& pattern) {
    benchmark::RegisterBenchmark((std::string("filter_match/") + who + "/" + pattern.filter).c_str(),
                                 [&pattern](benchmark::State& state) { Match<Matcher>(state, pattern); });
    Matcher matcher(pattern);
    Re2 judge(pattern);
    for (std::size_t i = 0; i < Count; ++i) {
        if (matcher.Matches(i) == judge.Matches(i)) continue;
        std::fprintf(stderr, "%s: %s is not of RE2's opinion on %s\n", pattern.filter, who, names[i].c_str());
        std::exit(1);  // figures of matchers that disagree would mean nothing
    }
}

template <class Matcher>
void AddText(const char* kind, const char* who, const Pattern& pattern, const std::string& text) {
    benchmark::RegisterBenchmark(
        (std::string(kind) + "/" + who + "/on " + std::to_string(text.size())).c_str(),
        [&text, pattern](benchmark::State& state) { MatchOne<Matcher>(state, pattern, text); });
}

const bool registered = [] {
    for (const Pattern& pattern : patterns) {
        AddMatches<Ours>("ours", pattern);
        AddMatches<Pcre2>("PCRE2-JIT", pattern);
        AddMatches<Pcre2Wide>("PCRE2-32-JIT", pattern);
        AddMatches<Re2>("RE2", pattern);
        if (pattern.glob != nullptr) AddMatches<Fnmatch>("fnmatch", pattern);
        AddMatches<StdRegex>("std::regex", pattern);
    }
    for (const Pattern* pattern : {&patterns[0], &patterns[5], &patterns[6]}) {
        const std::string name = pattern->filter;
        const auto add = [&](const char* kind, const char* who, auto run) {
            benchmark::RegisterBenchmark((std::string(kind) + "/" + who + "/" + name).c_str(),
                                         [=](benchmark::State& state) { run(state, *pattern); });
        };
        add("filter_remembered", "ours", Match<Remembered>);
        add("filter_remembered", "PCRE2-JIT", Match<Pcre2>);
        add("filter_first_check", "ours", Remember);
        add("filter_first_check", "PCRE2-JIT", Match<Pcre2>);
    }
    AddCompilation("ours", [](const Pattern& pattern) {
        static const ZELUnicodeString text(pattern.filter);
        const TAUnicodeRegularExpression filter(text);
        benchmark::DoNotOptimize(&filter);
    });
    AddCompilation("ours anew", [](const Pattern& pattern) {
        static const ZELUnicodeString text(pattern.filter);
        static TAUnicodeRegularExpression filter;
        benchmark::DoNotOptimize(filter.SetFilter(text, URE_NotMemoised));
    });
    AddCompilation("PCRE2", [](const Pattern& pattern) { benchmark::DoNotOptimize(Pcre2(pattern, false)); });
    AddCompilation("PCRE2-JIT", [](const Pattern& pattern) { benchmark::DoNotOptimize(Pcre2(pattern)); });
    AddCompilation("RE2", [](const Pattern& pattern) { benchmark::DoNotOptimize(Re2(pattern)); });
    AddCompilation("std::regex", [](const Pattern& pattern) { benchmark::DoNotOptimize(StdRegex(pattern)); });

    const Pattern blocks{manyBlocks.c_str(), manyBlocks.c_str(), nullptr};
    AddText<Ours>("filter_32_blocks", "ours", blocks, manyLetters);
    AddText<Re2>("filter_32_blocks", "RE2", blocks, manyLetters);
    static const std::string mebibyte = std::string(1 << 20, 'n') + "needle" + std::string(1 << 20, 'n');
    static constexpr Pattern needle{"*needle*", ".*needle.*", nullptr};
    AddText<Ours>("filter_long_text", "ours", needle, mebibyte);
    AddText<Re2>("filter_long_text", "RE2", needle, mebibyte);
    AddText<Pcre2>("filter_long_text", "PCRE2-JIT", needle, mebibyte);
    AddText<Pcre2Wide>("filter_long_text", "PCRE2-32-JIT", needle, mebibyte);
    return true;
}();

}  // namespace
