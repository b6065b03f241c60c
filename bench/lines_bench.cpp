// Every line of a text of 200 MB, in place or as a string of the caller's, beside the C library, the standard library
// and a walk over mapped memory. The file lies in the system's cache.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "YAVFStream.h"
#include "ZELQMAStream.h"
#include "big_text.h"

namespace {

std::string Path() {
    return std::string(BigText::Name().GetNativeName());
}

std::size_t ByZELQMAStream() {
    std::size_t lines = 0;
    ZELQMAStream stream;
    stream.fopen(BigText::Name(), "rt");
    for (char* line = nullptr; stream.getline(line) != 0; ++lines) benchmark::DoNotOptimize(line);
    stream.fclose();
    return lines;
}

std::size_t CountLines(YAVIFStream& stream) {
    std::size_t lines = 0;
    for (ZELString line; stream.getline(line, '\n', 0) == 0; ++lines) benchmark::DoNotOptimize(line);
    return lines;
}

std::size_t ByOwnFile() {
    YAVIFStream stream(BigText::Name(), "rt");
    return CountLines(stream);
}

std::size_t ByBorrowedFile() {
    std::FILE* const file = std::fopen(Path().c_str(), "r");
    YAVIFStream stream(file);
    const std::size_t lines = CountLines(stream);
    std::fclose(file);
    return lines;
}

std::size_t ByMappedMemory() {
    const int file = open(Path().c_str(), O_RDONLY);
    struct stat status;
    fstat(file, &status);
    const auto size = static_cast<std::size_t>(status.st_size);
    const char* const text = static_cast<const char*>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0));
    std::size_t lines = 0;
    const char* const end = text + size;
    for (const char* line = text; line < end; ++lines) {
        const void* const lineFeed = std::memchr(line, '\n', static_cast<std::size_t>(end - line));
        benchmark::DoNotOptimize(line);
        if (lineFeed == nullptr) break;
        line = static_cast<const char*>(lineFeed) + 1;
    }
    munmap(const_cast<char*>(text), size);
    close(file);
    return lines;
}

std::size_t ByReadAndMemchr() {
    const int file = open(Path().c_str(), O_RDONLY);
    std::vector<char> block(65536);
    std::size_t lines = 0, left = 0;
    for (ssize_t count; (count = read(file, block.data() + left, block.size() - left)) > 0;) {
        const char* line = block.data();
        const char* const end = line + left + static_cast<std::size_t>(count);
        while (const void* lineFeed = std::memchr(line, '\n', static_cast<std::size_t>(end - line))) {
            benchmark::DoNotOptimize(line);
            line = static_cast<const char*>(lineFeed) + 1;
            ++lines;
        }
        left = static_cast<std::size_t>(end - line);
        std::memmove(block.data(), line, left);
    }
    close(file);
    return lines;
}

std::size_t ByPosixGetline() {
    std::FILE* const file = std::fopen(Path().c_str(), "r");
    char* line = nullptr;
    std::size_t room = 0, lines = 0;
    for (; getline(&line, &room, file) >= 0; ++lines) benchmark::DoNotOptimize(line);
    std::free(line);
    std::fclose(file);
    return lines;
}

std::size_t ByStdGetline() {
    std::ifstream file(Path());
    std::size_t lines = 0;
    for (std::string line; std::getline(file, line); ++lines) benchmark::DoNotOptimize(line);
    return lines;
}

void Register(const char* operation, const char* contender, std::size_t (*count)()) {
    const std::string name = std::string(operation) + "/" + contender;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [count](benchmark::State& state) {
                                     static const std::size_t expected = ByPosixGetline();
                                     for (auto _ : state)
                                         if (count() != expected) state.SkipWithError("other lines");
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

const bool registered = [] {
    const struct {
        const char* name;
        std::size_t (*count)();
    } peers[] = {{"mmap and memchr", ByMappedMemory},
                 {"read and memchr", ByReadAndMemchr},
                 {"POSIX getline", ByPosixGetline},
                 {"std::getline", ByStdGetline}},
      ours[] = {{"lines in place", ByZELQMAStream},
                {"lines as strings, own file", ByOwnFile},
                {"lines as strings, borrowed", ByBorrowedFile}};
    for (const auto& [operation, count] : ours) {
        Register(operation, "ours", count);
        for (const auto& [peer, peerCount] : peers) Register(operation, peer, peerCount);
    }
    return true;
}();

}  // namespace
