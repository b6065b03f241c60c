// `soak [--seconds S] [--seed N] [--only NAME,...]`: runs all workloads concurrently, round after round, and prints
// growth, leftovers and wrong hits. The exit code is 1 when anything is not zero or flat. The seed grows by a hundred
// from round to round; a run that starts with the seed of a fault repeats it in its first round.
#include "soak/soak.h"

#include <cstdio>
#include <cstring>
#include <set>
#include <sstream>
#include <vector>

#include "TAEnvironment.h"
#include "support/files.h"
#include "support/quoted.h"
#include "support/soak_system.h"
#include "support/test_system.h"

namespace {

const Workload workloads[] = {
    {"launches", RunLaunches},       {"trees", RunTrees},     {"numbers", RunReusedNumbers}, {"mutexes", RunMutexes},
    {"connections", RunConnections}, {"loading", RunLoading}, {"values", RunValues},
};

const std::pair<const char*, int (*)(int, char**)> verbs[] = {
    {"member", BeMember}, {"bystander", BeBystander}, {"owner", BeMutexOwner}, {"namespace", BeNameSpace}};

struct Options {
    int seconds = 300;
    unsigned seed = std::random_device()() % 1'000'000;
    std::set<std::string> only;  // empty: all
};

bool Read(int count, char** arguments, Options& options) {
    for (int i = 1; i < count; i += 2) {
        const std::string name = arguments[i];
        if (i + 1 == count) return false;
        if (name == "--seconds") options.seconds = std::stoi(arguments[i + 1]);
        if (name == "--seed") options.seed = static_cast<unsigned>(std::stoul(arguments[i + 1]));
        std::istringstream names(name == "--only" ? arguments[i + 1] : "");
        for (std::string only; std::getline(names, only, ',');) options.only.insert(only);
        if (name != "--seconds" && name != "--seed" && name != "--only") return false;
    }
    return true;
}

void RunRound(Soak& soak, const std::set<std::string>& only) {
    std::vector<std::jthread> threads;
    for (const Workload& workload : workloads)
        if (only.empty() || only.contains(workload.name)) threads.emplace_back([&] { workload.run(soak, soak.seed); });
    threads.clear();
    soak.seed += 100;
}

void RunFor(Soak& soak, const std::set<std::string>& only, int seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    do RunRound(soak, only);
    while (std::chrono::steady_clock::now() < end);
}

// When what was dropped has ended, and the next start has given it back.
Resources Settled(const Soak& soak) {
    Resources found;
    Eventually([&] {
        TAProcess last;
        last.Start(soak.Command("child", "exit 0"), 0);
        CodeOf(last);
        found = ReadResources(soak.mark);
        return found.children == 0 && found.zombies <= 0 && MarkedProcesses(soak.mark).empty();
    });
    return found;
}

std::string Descriptors() {
    std::string text;
    for (const long number : InheritedDescriptors()) text += std::to_string(number) + '\n';
    return text.starts_with("0\n") ? text : "";  // a child with handles has many of its own
}

}  // namespace

void Soak::Fail(Fault kind, const std::string& text) {
    ++faults[kind];
    std::fprintf(stderr, "FAILED  %s\n", text.c_str());
}

ZELString Soak::Command(const std::string& program, const std::string& arguments) const {
    return (Quoted(ProgramPath(program)) + ' ' + arguments + ' ' + mark).c_str();
}

int main(int count, char** arguments) {
    for (const auto& [verb, run] : verbs)
        if (count > 1 && std::strcmp(arguments[1], verb) == 0) return run(count - 2, arguments + 2);
    Options options;
    if (!Read(count, arguments, options)) {
        std::fprintf(stderr, "usage: soak [--seconds S] [--seed N] [--only NAME,...]\n");
        return 2;
    }
    UseOneHeap();
    const TemporaryFolder folder;
    Soak soak;
    soak.seed = options.seed;
    soak.mark = "zelsoak" + std::to_string(std::random_device()());
    soak.folder = folder.Path();
    soak.descriptors = Descriptors();
    TAEnvVariable variables[] = {{"TMPDIR", 300}, {"TMP", 300}};  // whatever is temporary goes there
    for (TAEnvVariable& variable : variables) variable.PutEnvironmentValue(folder.Path().c_str());
    std::printf("seed %u\n", options.seed);
    std::fflush(stdout);
    RunFor(soak, options.only, options.seconds / 5);  // stocks and caches fill
    const Resources before = Settled(soak);
    RunFor(soak, options.only, options.seconds - options.seconds / 5);
    const Resources after = Settled(soak);
    const bool isRight = soak.PrintReport(before, after);
    EndMarkedProcesses(soak.mark);
    return isRight ? 0 : 1;
}
