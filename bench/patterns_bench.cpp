// Wildcards beside the matchers that a user would pick instead, on 10,000 names of files as a source tree has them.
// fnmatch takes its pattern apart in each call, as TestMatch does; PCRE2 has compiled its own beforehand, to machine
// code. A formula of two patterns is compared with two calls joined by hand.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <pcre2.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "TATextUtilities.h"

namespace {

constexpr int Count = 10000;
const char* const formula = "*.cpp&&!(*_test*)";

std::vector<std::string> MakeNames() {
    const char* const heads[] = {"lib",  "node",   "src_",  "tree_",  "build", "file",
                                 "text", "socket", "parse", "kernel", "http",  "index"};
    const char* const middles[] = {"_test", "_graph",  "node",    "_scan",   "_cache", "_map",
                                   "_list", "_buffer", "_stream", "_reader", "_utils", "_impl"};
    const char* const tails[] = {".cpp", ".h", ".so", ".o"};
    std::mt19937 random(1);
    std::vector<std::string> names;
    for (int i = 0; i < Count; ++i) {
        std::string name = heads[random() % std::size(heads)];
        while (name.size() < 8 + random() % 10) name += static_cast<char>('a' + random() % 26);
        name.append(middles[random() % std::size(middles)])
            .append(std::to_string(random() % 100))
            .append(tails[random() % std::size(tails)]);
        names.push_back(name.substr(0, 31));
    }
    names[0] = "graph_node_index.cpp";
    return names;
}
const std::vector<std::string> names = MakeNames();

class Ours {
public:
    explicit Ours(const std::string& pattern) : _pattern(pattern.c_str()) {
        for (const std::string& name : names) _names.emplace_back(name.c_str());
    }
    bool Matches(int i) const { return TestMatch(_names[static_cast<std::size_t>(i)], _pattern) != 0; }
    bool Holds(int i) { return TestMatchWithLogExp(_names[static_cast<std::size_t>(i)], _pattern) != 0; }

private:
    ZELString _pattern;
    std::vector<ZELString> _names;
};

class Fnmatch {
public:
    explicit Fnmatch(const std::string& pattern) : _pattern(pattern) {}
    bool Matches(int i) const { return Test(_pattern.c_str(), i); }
    bool Holds(int i) { return Test("*.cpp", i) && !Test("*_test*", i); }

private:
    static bool Test(const char* pattern, int i) {
        return fnmatch(pattern, names[static_cast<std::size_t>(i)].c_str(), 0) == 0;
    }
    std::string _pattern;
};

class Pcre2 {
public:
    explicit Pcre2(const std::string& pattern) {
        std::string expression = "\\A";
        for (const char c : pattern) expression += c == '*' ? std::string(".*") : c == '.' ? "\\." : std::string(1, c);
        expression += "\\z";
        if (pattern == formula) expression = "\\A(?!.*_test).*\\.cpp\\z";
        int error = 0;
        PCRE2_SIZE where = 0;
        _code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(expression.c_str()), expression.size(), PCRE2_DOTALL, &error,
                              &where, nullptr);
        pcre2_jit_compile(_code, PCRE2_JIT_COMPLETE);
        _match = pcre2_match_data_create_from_pattern(_code, nullptr);
    }
    Pcre2(const Pcre2&) = delete;
    Pcre2& operator=(const Pcre2&) = delete;
    ~Pcre2() {
        pcre2_match_data_free(_match);
        pcre2_code_free(_code);
    }
    bool Matches(int i) const {
        const std::string& name = names[static_cast<std::size_t>(i)];
        return pcre2_jit_match(_code, reinterpret_cast<PCRE2_SPTR>(name.c_str()), name.size(), 0, 0, _match, nullptr) >
               0;
    }
    bool Holds(int i) { return Matches(i); }

private:
    pcre2_code* _code;
    pcre2_match_data* _match;
};

template <class Matcher>
void Match(benchmark::State& state, const std::string& pattern) {
    const Matcher matcher(pattern);
    for (auto _ : state)
        for (int i = 0; i < Count; ++i) benchmark::DoNotOptimize(matcher.Matches(i));
    state.SetItemsProcessed(state.iterations() * Count);
}

template <class Matcher>
void Evaluate(benchmark::State& state) {
    Matcher matcher(formula);
    for (auto _ : state)
        for (int i = 0; i < Count; ++i) benchmark::DoNotOptimize(matcher.Holds(i));
    state.SetItemsProcessed(state.iterations() * Count);
}

template <class Matcher>
void Register(const std::string& who) {
    for (const std::string& pattern : {"*.cpp", "lib*test*.so", "*node*7*", "graph_node_index.cpp"})
        benchmark::RegisterBenchmark(("pattern_match/" + who + "/" + pattern).c_str(),
                                     [pattern](benchmark::State& state) { Match<Matcher>(state, pattern); });
    benchmark::RegisterBenchmark(("pattern_formula/" + who + "/" + formula).c_str(), Evaluate<Matcher>);
}

// Figures of matchers that disagree would mean nothing.
void CheckAgreement() {
    for (const char* pattern : {"*.cpp", "lib*test*.so", "*node*7*", "graph_node_index.cpp", formula}) {
        Ours ours(pattern);
        Fnmatch fnmatch(pattern);
        Pcre2 pcre(pattern);
        for (int i = 0; i < Count; ++i) {
            const bool isFormula = pattern == formula;
            const bool expected = isFormula ? fnmatch.Holds(i) : fnmatch.Matches(i);
            if (expected == (isFormula ? ours.Holds(i) : ours.Matches(i)) && expected == pcre.Holds(i)) continue;
            std::fprintf(stderr, "%s: the matchers disagree on %s\n", pattern,
                         names[static_cast<std::size_t>(i)].c_str());
            std::exit(1);
        }
    }
}

const bool registered = [] {
    CheckAgreement();
    Register<Ours>("ours");
    Register<Fnmatch>("fnmatch");
    Register<Pcre2>("PCRE2-JIT");
    return true;
}();

}  // namespace
