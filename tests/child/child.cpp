// The program that tests start: `child VERB ARGUMENT...`. Each verb does one thing that a test can see from outside. It
// uses nothing of the library, so that it shows what a child gets rather than what the library makes of it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/child_system.h"

namespace {

using Arguments = std::vector<std::string>;

int Number(const Arguments& arguments, std::size_t index) {
    return index < arguments.size() ? static_cast<int>(std::strtol(arguments[index].c_str(), nullptr, 10)) : 0;
}

void SayReady() {
    std::puts("ready");
    std::fflush(stdout);
}

void Sleep(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// `length` bytes of a fixed pattern in blocks.
int WritePattern(std::FILE* stream, int length) {
    std::string block(65536, '\0');
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>('a' + i % 26);
    while (length > 0) {
        const auto count = static_cast<std::size_t>(std::min(length, 65536));
        if (std::fwrite(block.data(), 1, count, stream) != count) return 1;
        length -= static_cast<int>(count);
    }
    return 0;
}

int PrintArguments(const Arguments& arguments) {
    for (const std::string& argument : arguments) {
        for (const char c : argument) std::printf("%02x", static_cast<unsigned char>(c));
        std::putchar('\n');
    }
    return 0;
}

int PrintEnvironment(const Arguments& arguments) {
    for (const std::string& name : arguments) {
        const char* const value = std::getenv(name.c_str());
        std::printf(value != nullptr ? "[%s]\n" : "unset\n", value);
    }
    return 0;
}

int CopyInput(const Arguments&) {
    char data[4096];
    while (const std::size_t count = std::fread(data, 1, sizeof data, stdin)) std::fwrite(data, 1, count, stdout);
    return 0;
}

// A process with `width` children, each with as many, `depth` levels below this one; all sleep.
int SpawnTree(const Arguments& arguments) {
    const int width = Number(arguments, 0);
    const int depth = Number(arguments, 1);
    std::printf("%d\n", OwnProcessId());
    std::fflush(stdout);
    for (int child = 0; depth > 0 && child < width; ++child)
        if (!StartAgain({"tree", arguments[0], std::to_string(depth - 1), arguments[2]})) return 1;
    Sleep(Number(arguments, 2));
    return 0;
}

// Starts a child of the same kind every few milliseconds, up to `depth` levels below this one, each at most 20.
int Breed(const Arguments& arguments) {
    const int depth = Number(arguments, 0);
    for (int child = 0; child < 20; ++child) {
        if (depth > 0) StartAgain({"breed", std::to_string(depth - 1)});
        Sleep(5);
    }
    Sleep(60000);
    return 0;
}

int PrintDescriptors(const Arguments&) {
    for (const long descriptor : OpenDescriptors()) std::printf("%ld\n", descriptor);
    return 0;
}

struct Verb {
    std::string_view name;
    std::string_view arguments;
    int (*run)(const Arguments& arguments);
};

const Verb verbs[] = {
    {"args", "TEXT...: print each in hexadecimal", PrintArguments},
    {"env", "NAME...: print each variable as [value] or unset", PrintEnvironment},
    {"exit", "CODE", [](const Arguments& arguments) { return Number(arguments, 0); }},
    {"signal", "NUMBER: die by it", [](const Arguments& arguments) -> int { DieBySignal(Number(arguments, 0)); }},
    {"sleep", "MS: say ready and sleep",
     [](const Arguments& arguments) {
         SayReady();
         Sleep(Number(arguments, 0));
         return 0;
     }},
    {"polite", "MS: say ready; 7 when asked to end, 0 after the time",
     [](const Arguments& arguments) { return AwaitPoliteRequest(false, Number(arguments, 0), SayReady) ? 7 : 0; }},
    {"stubborn", "MS: the same, deaf to requests",
     [](const Arguments& arguments) { return AwaitPoliteRequest(true, Number(arguments, 0), SayReady) ? 7 : 0; }},
    {"tree", "WIDTH DEPTH MS: print the own pid, start WIDTH children to DEPTH, sleep", SpawnTree},
    {"breed", "DEPTH: start children, that do the same, again and again", Breed},
    {"out", "COUNT: write so many bytes, a to z again and again, to standard output",
     [](const Arguments& arguments) { return WritePattern(stdout, Number(arguments, 0)); }},
    {"err", "COUNT: the same to standard error",
     [](const Arguments& arguments) { return WritePattern(stderr, Number(arguments, 0)); }},
    {"both", "COUNT: write a block to each of the two in turn, until each has so many bytes",
     [](const Arguments& arguments) {
         std::setvbuf(stdout, nullptr, _IONBF, 0);
         for (int left = Number(arguments, 0); left > 0; left -= 1000)
             if (WritePattern(stdout, std::min(left, 1000)) + WritePattern(stderr, std::min(left, 1000)) != 0) return 1;
         return 0;
     }},
    {"copy", ": standard input to standard output", CopyInput},
    {"descriptors", ": print the open ones", PrintDescriptors},
};

}  // namespace

int main(int count, char** texts) {
    MakeStreamsBinary();
    const Arguments arguments(texts + std::min(count, 2), texts + count);
    for (const Verb& verb : verbs)
        if (count > 1 && verb.name == texts[1]) return verb.run(arguments);
    for (const Verb& verb : verbs)
        std::fprintf(stderr, "child %s %s\n", std::string(verb.name).c_str(), std::string(verb.arguments).c_str());
    return 125;
}
