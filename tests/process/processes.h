// What the tests of processes share: commands of the helper program, and waiting for what it says.
#ifndef TESTS_PROCESS_PROCESSES_H
#define TESTS_PROCESS_PROCESSES_H

#include <chrono>

#include "TAProcess.h"
#include "TAProcessKill.h"
#include "platform/process_table.h"
#include "support/test_system.h"
#include "support/testing.h"

inline ZELString ChildCommand(const std::string& verb, const std::string& program = "child") {
    return ('"' + ProgramPath(program) + "\" " + verb).c_str();
}

// The exit code that Wait gives, -1 when it fails.
inline int CodeOf(TAProcess& process) {
    int exitCode = -1;
    return process.Wait(exitCode) == 0 ? exitCode : -1;
}

inline int RunToEnd(TAProcess& process, const ZELString& command) {
    return process.Start(command, 0) == 0 ? CodeOf(process) : -1;
}

inline bool IsRunning(int pid) {
    zel::ProcessEntry entry;
    return zel::ReadProcess(pid, entry) && !entry.hasEnded;
}

// Polls, for nearly as long as a case may take.
template <class Condition>
bool Eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(50);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// Starts a command with its output in a file and returns when it has written `count` lines there.
inline std::vector<std::string> StartAndRead(TAProcess& process, const ZELString& command, const std::string& path,
                                             std::size_t count) {
    process.SetOutput(path.c_str());
    EXPECT_EQ(process.Start(command, 0), 0) << process.GetErrMsg().CastToCharPtr();
    std::vector<std::string> lines;
    EXPECT_TRUE(Eventually([&] {
        std::istringstream text(WithoutReturns(ReadBytes(path)));
        lines.clear();
        for (std::string line; std::getline(text, line) && !text.eof();) lines.push_back(line);
        return lines.size() >= count;
    })) << command.CastToCharPtr();
    return lines;
}

// A tree of the helper program with its numbers, the root's first.
struct Tree {
    Tree(const std::string& path, int width, int depth) {
        std::size_t count = 0;
        for (int level = 0, size = 1; level <= depth; ++level, size *= width) count += static_cast<std::size_t>(size);
        const std::string verb = "tree " + std::to_string(width) + ' ' + std::to_string(depth) + " 60000";
        for (const std::string& line : StartAndRead(root, ChildCommand(verb), path, count))
            pids.push_back(std::stoi(line));
    }
    bool IsGone() const { return std::none_of(pids.begin(), pids.end(), IsRunning); }

    TAProcess root;
    std::vector<int> pids;
};

#endif
