// The table at the end.
#include "soak/soak.h"

#include <cstdio>
#include <filesystem>

#include "support/files.h"

namespace {

// One line; a figure below 0 is not known here. `growth`: how much is flat.
bool PrintLine(const char* name, long before, long after, long growth) {
    const bool isKnown = before >= 0 && after >= 0;
    const bool isRight = !isKnown || after - before <= growth;
    const char* const result = !isKnown ? "not possible here" : isRight ? "ok" : "FAILED";
    std::printf("%-24s %10ld %10ld  %s\n", name, before, after, result);
    return isRight;
}

bool PrintZero(const char* name, long value) {
    return PrintLine(name, value < 0 ? value : 0, value, 0);
}

long CountFiles(const std::string& folder) {
    const auto begin = std::filesystem::directory_iterator(folder);
    return std::distance(begin, std::filesystem::directory_iterator());
}

}  // namespace

bool Soak::PrintReport(const Resources& before, const Resources& after) const {
    const char* const names[] = {"launches",    "trees", "processes killed", "mutex owners killed", "numbers reused",
                                 "connections", "loads", "operations"};
    for (int kind = 0; kind < CountKinds; ++kind)
        std::printf("%-24s %10lld\n", names[kind], static_cast<long long>(counts[kind]));
    const auto left = static_cast<long>(MarkedProcesses(mark).size());
    std::printf("%-24s %10s %10s\n", "", "warm", "end");
    bool isRight = true;
    const long kept =
        onWindows ? 4 : 0;  // the runtime under Wine takes a handle now and then; a leak takes one each round
    isRight &= PrintLine("descriptors", before.descriptors, after.descriptors, kept);
    isRight &= PrintLine("threads", before.threads, after.threads, 0);
    isRight &= PrintLine("heap, KiB", before.heap, after.heap, 64);
    isRight &= PrintLine("resident, KiB", before.resident, after.resident, 4096);
    isRight &= PrintZero("children", after.children);
    isRight &= PrintZero("zombies", after.zombies);
    isRight &= PrintZero("processes left", left);
    isRight &= PrintZero("survivors of trees", faults[Survivors]);
    isRight &= PrintZero("strangers hit", faults[Strangers]);
    isRight &= PrintZero("strangers by number", hasNameSpaces ? 0 : -1);
    isRight &= PrintZero("wrong results", faults[Results]);
    isRight &= PrintZero("files in shared memory", after.sharedFiles);
    isRight &= PrintZero("temporary files", CountFiles(folder));
    return isRight;
}
