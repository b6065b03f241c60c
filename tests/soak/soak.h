// What the workloads of the soak share: the run that they belong to, its counts and its faults.
#ifndef TESTS_SOAK_SOAK_H
#define TESTS_SOAK_SOAK_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <thread>

#include "TAFileUtilities.h"
#include "TAProcess.h"
#include "ZELFileBuffer.h"
#include "support/soak_system.h"

enum Count { Launches, Trees, Killed, MutexKills, Reused, Connections, Loads, Operations, CountKinds };
enum Fault { Survivors, Strangers, Results, FaultKinds };

struct Soak {
    unsigned seed = 0;
    std::string mark;         // in the command line of each process of the run
    std::string folder;       // of the run's own; empty between the rounds
    std::string descriptors;  // that each child has, as the helper program prints them; empty where they are not known
    bool hasNameSpaces = true;
    std::array<std::atomic<std::int64_t>, CountKinds> counts{};
    std::array<std::atomic<int>, FaultKinds> faults{};

    void Add(Count kind, std::int64_t count = 1) { counts[kind] += count; }
    // Prints and counts it; `text` is what repeats it.
    void Fail(Fault kind, const std::string& text);
    void Check(bool isRight, const std::string& text) {
        if (!isRight) Fail(Results, text);
    }
    // A command text that starts a program of this build, with the mark.
    ZELString Command(const std::string& program, const std::string& arguments) const;
    // Whether everything is zero or flat.
    bool PrintReport(const Resources& before, const Resources& after) const;
};

// Does its part of the round of that seed, within about a second.
struct Workload {
    const char* name;
    void (*run)(Soak& soak, unsigned seed);
};
void RunLaunches(Soak& soak, unsigned seed);
void RunTrees(Soak& soak, unsigned seed);
void RunReusedNumbers(Soak& soak, unsigned seed);
void RunMutexes(Soak& soak, unsigned seed);
void RunConnections(Soak& soak, unsigned seed);
void RunLoading(Soak& soak, unsigned seed);
void RunValues(Soak& soak, unsigned seed);

// `soak VERB MARK ARGUMENT...`: what the processes do that the workloads start.
int BeMember(int count, char** arguments);
int BeBystander(int count, char** arguments);
int BeMutexOwner(int count, char** arguments);
int BeNameSpace(int count, char** arguments);

// Polls, for up to `seconds`.
template <class Condition>
bool Eventually(Condition condition, int seconds = 20) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// The exit code, -1 when there is none; the system gives the number of the process back.
inline int CodeOf(TAProcess& process) {
    int code = -1, seen = -1;
    return process.Wait(code) == 0 && process.Check(seen) == 1 && seen == code ? code : -1;
}

// Files through the library: the standard library's would go to every child that is launched meanwhile.
inline std::string ReadWhole(const std::string& path) {
    ZELFileBuffer* const buffer = new ZELFileBuffer(path.c_str());
    const char* const text = buffer->getBuffer();
    const std::string bytes = text != nullptr ? text : "";
    buffer->destroy();
    return bytes;
}

inline void WriteWhole(const std::string& path, const std::string& line) {
    ZELListValZELString lines;
    lines.Append(line.c_str());
    WriteFile(path.c_str(), lines);
}

#endif
