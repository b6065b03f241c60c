// Taking the comments and the literals out of this machine's C++ headers, joined to one file, beside a loop over single
// characters and beside the compiler's own preprocessor, which starts, reads and writes a file each time as well.
//
// An item is a byte of source.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "TAFileName.h"
#include "ZELFilePrepro.h"

namespace {

constexpr int Removed = ZELFilePrepro::REMOVE_SLCOMMENTS | ZELFilePrepro::REMOVE_MLCOMMENTS |
                        ZELFilePrepro::REMOVE_SQSTRINGS | ZELFilePrepro::REMOVE_DQSTRINGS;

// Gone with the program.
class Headers {
public:
    Headers() : _name(TAFileName::GetTemporaryFileName()) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/include/c++")) {
            std::ifstream file(entry.path(), std::ios::binary);
            if (entry.is_regular_file()) _text.append(std::istreambuf_iterator<char>(file), {});
        }
        std::ofstream(std::string(_name.GetNativeName()), std::ios::binary) << _text;
    }
    Headers(const Headers&) = delete;
    Headers& operator=(const Headers&) = delete;
    ~Headers() { _name.Delete(); }
    const TAFileName& Name() const { return _name; }
    const std::string& Text() const { return _text; }

private:
    TAFileName _name;
    std::string _text;
};

const Headers& AllHeaders() {
    static const Headers headers;
    return headers;
}

void CountBytes(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(AllHeaders().Text().size()));
}

void Strip_Ours(benchmark::State& state) {
    ZELFilePrepro source(ZELString(AllHeaders().Name().View()));
    for (auto _ : state) {
        char* output = nullptr;
        if (source.preprocess(Removed, output) == 1) state.SkipWithError("not read");
        benchmark::DoNotOptimize(output);
        std::free(output);
    }
    CountBytes(state);
}

// The same with the file read each time.
void ReadAndStrip_Ours(benchmark::State& state) {
    for (auto _ : state) {
        char* output = nullptr;
        if (ZELFilePrepro(ZELString(AllHeaders().Name().View())).preprocess(Removed, output) == 1)
            state.SkipWithError("not read");
        benchmark::DoNotOptimize(output);
        std::free(output);
    }
    CountBytes(state);
}

std::size_t StripByCharacters(const std::string& text, char* output) {
    enum { None, Line, Block, Quoted } state = None;
    char quote = '\0';
    char* out = output;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (state == None && c == '/' && (next == '/' || next == '*')) {
            state = next == '/' ? Line : Block;
            ++i;
        } else if (state == None && (c == '"' || c == '\'')) {
            state = Quoted;
            quote = c;
        } else if (state == None && c == '\\') {
            *out++ = c;
            if (next != '\0') *out++ = text[++i];
        } else if (state == None || c == '\n') {
            *out++ = c;
            if (state == Line) state = None;
        } else if (state == Block && c == '*' && next == '/') {
            state = None;
            ++i;
        } else if (state == Quoted && c == '\\') {
            ++i;
        } else if (state == Quoted && c == quote) {
            state = None;
        }
    }
    return static_cast<std::size_t>(out - output);
}

void Strip_ByCharacters(benchmark::State& state) {
    const std::string& text = AllHeaders().Text();
    for (auto _ : state) {
        char* const output = static_cast<char*>(std::malloc(text.size() + 1));
        benchmark::DoNotOptimize(StripByCharacters(text, output));
        std::free(output);
    }
    CountBytes(state);
}

void Strip_Preprocessor(benchmark::State& state) {
    const std::string command =
        "g++ -w -E -fpreprocessed -P -x c++ " + std::string(AllHeaders().Name().GetNativeName()) + " >/dev/null 2>&1";
    for (auto _ : state) benchmark::DoNotOptimize(std::system(command.c_str()));
    CountBytes(state);
}

BENCHMARK(Strip_Ours)->Name("strip/ours")->UseRealTime();
BENCHMARK(Strip_ByCharacters)->Name("strip/single characters")->UseRealTime();
BENCHMARK(ReadAndStrip_Ours)->Name("read and strip/ours")->UseRealTime();
BENCHMARK(Strip_Preprocessor)->Name("read and strip/g++ -E -fpreprocessed")->UseRealTime();

}  // namespace
