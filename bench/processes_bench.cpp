// Starting programs and running batches of them beside those that one would use instead.
//
// The program is the smallest there is: it ends at once. "2GiB" is a caller that holds so much memory, which those who
// copy the caller's page tables pay for. The batches are 1,000 commands, two at once. The tree has 40 processes, each
// but the leaves with three children; "killpg" needs a tree that stayed in one group, "ps" is what scripts do.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/process.hpp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>

#include "TAProcess.h"
#include "TAProcessKill.h"
#include "TAProcessList.h"

namespace {

const std::string minimal = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "minimal_program";

void Await(pid_t child) {
    int status;
    waitpid(child, &status, 0);
}

void LaunchOurs() {
    TAProcess process;
    int status = 0;
    process.Start(minimal.c_str(), 0);
    process.Wait(status);
    process.Check(status);
}

void LaunchSpawn() {
    char* const arguments[] = {const_cast<char*>(minimal.c_str()), nullptr};
    pid_t child = 0;
    posix_spawn(&child, minimal.c_str(), nullptr, nullptr, arguments, environ);
    Await(child);
}

void LaunchFork() {
    const pid_t child = fork();
    if (child == 0) {
        execl(minimal.c_str(), minimal.c_str(), nullptr);
        _exit(127);
    }
    Await(child);
}

void LaunchBoost() {
    boost::process::child child(minimal);
    child.wait();
}

template <void (*Launch)()>
void Small(benchmark::State& state) {
    for (auto _ : state) Launch();
}

template <void (*Launch)()>
void Big(benchmark::State& state) {
    constexpr std::size_t Size = std::size_t{2} << 30;
    const std::unique_ptr<void, void (*)(void*)> memory(std::malloc(Size), std::free);
    if (!memory) return state.SkipWithError("no memory");
    std::memset(memory.get(), 1, Size);
    benchmark::DoNotOptimize(memory.get());
    for (auto _ : state) Launch();
}

constexpr int Commands = 1000;

void BatchOurs(benchmark::State& state) {
    for (auto _ : state) {
        TAProcessList batch(2);
        for (int i = 0; i < Commands; ++i) batch.Start(minimal.c_str(), 0, -1);
        while (batch.NDone() < batch.Size()) batch.Check();
    }
}

// The same commands in a file that `write` makes; `run` stands in front of its name.
template <class Write>
void BatchTool(benchmark::State& state, const std::string& run, Write write) {
    const std::string path = "/tmp/zel_batch_" + std::to_string(getpid());
    {
        std::ofstream file(path);
        write(file);
    }
    const std::string command = run + path + " >/dev/null 2>&1";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("failed");
    std::filesystem::remove(path);
}

void BatchXargs(benchmark::State& state) {
    BatchTool(state, "xargs -P2 -n1 " + minimal + " <", [](std::ofstream& file) {
        for (int i = 0; i < Commands; ++i) file << i << '\n';
    });
}

void BatchMake(benchmark::State& state) {
    BatchTool(state, "make -s -j2 -f ", [](std::ofstream& file) {
        file << "all:";
        for (int i = 0; i < Commands; ++i) file << " t" << i;
        for (int i = 0; i < Commands; ++i) file << "\nt" << i << ":\n\t" << minimal;
        file << '\n';
    });
}

void BatchNinja(benchmark::State& state) {
    BatchTool(state, "cd /tmp && ninja -j2 -f ", [](std::ofstream& file) {
        file << "rule run\n command = " << minimal << '\n';
        for (int i = 0; i < Commands; ++i) file << "build zel_t" << i << ": run\n";
    });
}

// Forty sleeping processes, the root in a group of its own. The pipe's end is read when the last is gone.
class Tree {
public:
    Tree() {
        if (pipe(_ends) != 0) std::abort();
        root = fork();
        if (root == 0) {
            setpgid(0, 0);
            Grow(3);
        }
        close(_ends[1]);
        char ready;
        for (int i = 0; i < 40; ++i)
            if (read(_ends[0], &ready, 1) != 1) std::abort();
    }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { close(_ends[0]); }

    void AwaitEnd() const {
        char none;
        Await(root);
        if (read(_ends[0], &none, 1) != 0) std::abort();
    }

    pid_t root;

private:
    [[noreturn]] void Grow(int depth) {
        for (int child = 0; depth > 0 && child < 3; ++child)
            if (fork() == 0) Grow(depth - 1);
        if (write(_ends[1], "", 1) != 1) _exit(1);
        while (true) pause();
    }

    int _ends[2];
};

void KillOurs(pid_t root) {
    KillBaseProcessTree(static_cast<unsigned long>(root), 1);
}

void KillGroup(pid_t root) {
    killpg(root, SIGKILL);
}

void KillListed(pid_t root) {
    std::FILE* const list = popen("ps -eo pid=,ppid=", "r");
    std::set<pid_t> tree = {root};
    for (pid_t pid, parent; std::fscanf(list, "%d %d", &pid, &parent) == 2;)
        if (tree.count(parent) != 0) tree.insert(pid);
    pclose(list);
    for (const pid_t pid : tree) kill(pid, SIGKILL);
}

template <void (*Kill)(pid_t root)>
void KillTree(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        const Tree tree;
        state.ResumeTiming();
        Kill(tree.root);
        tree.AwaitEnd();
    }
}

const bool registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(name, run)->UseRealTime();
    };
    add("launch/ours/small", Small<LaunchOurs>);
    add("launch/posix_spawn/small", Small<LaunchSpawn>);
    add("launch/boost::process/small", Small<LaunchBoost>);
    add("launch/fork+exec/small", Small<LaunchFork>);
    add("launch/ours/2GiB", Big<LaunchOurs>);
    add("launch/posix_spawn/2GiB", Big<LaunchSpawn>);
    add("launch/fork+exec/2GiB", Big<LaunchFork>);
    add("kill/ours/tree of 40", KillTree<KillOurs>);
    add("kill/killpg/tree of 40", KillTree<KillGroup>);
    add("kill/ps/tree of 40", KillTree<KillListed>);
    add("batch/ours/1000", BatchOurs)->Unit(benchmark::kMillisecond);
    add("batch/make -j2/1000", BatchMake)->Unit(benchmark::kMillisecond);
    add("batch/xargs -P2/1000", BatchXargs)->Unit(benchmark::kMillisecond);
    add("batch/ninja -j2/1000", BatchNinja)->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
