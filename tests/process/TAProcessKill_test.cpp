#include "TAProcessKill.h"

#include <ctime>

#include "TAProcessList.h"

#include "platform/process_kill.h"
#include "process/process_tree.h"
#include "process/processes.h"
#include "support/failing_memory.h"
#include "support/programs.h"

using zel::ProcessEntry;

namespace {

std::set<int> Numbers(const ZELListValZELString& list) {
    std::set<int> numbers;
    for (const ZELString& text : list) numbers.insert(std::stoi(text.CastToCharPtr()));
    return numbers;
}

}  // namespace

TEST(Kill, RefusesWhatIsNoProcess) {
    unsigned long parent = 77;
    __int64 start = 77;
    const int force = 1, polite = 0;
    for (const unsigned long pid : {0ul, static_cast<unsigned long>(-1), static_cast<unsigned long>(-77), 0x7FFFFFF0ul,
                                    0x80000001ul, static_cast<unsigned long>(0x100000001ull)}) {
        if (pid == 1) continue;  // where the type is too narrow for the last one
        EXPECT_EQ(KillPid(pid, 9), 0) << pid;
        EXPECT_EQ(CloseOrKillPid(pid), 0);
        for (const int& how : {force, polite}) {
            EXPECT_EQ(KillBaseProcess(pid, how), pid == 0 ? -1 : 1);
            EXPECT_EQ(KillBaseProcessTree(pid, how), pid == 0 ? -1 : 1);
        }
        EXPECT_EQ(TAGetParentProcessId(pid, parent), 0);
        EXPECT_EQ(pid > INT_MAX ? 1 : GetEpochStartTimeOfProcess(static_cast<int>(pid), start), 1);
    }
    EXPECT_TRUE(parent == 77 && start == 77);
    EXPECT_EQ(SetPrivilege(nullptr, nullptr, 1), 0);
}

TEST(Kill, HitsTheWholeTreeAndNobodyElse) {
    std::mt19937 random(11);
    const TemporaryFolder folder;
    Tree stranger(folder / "stranger", 1, 1);
    for (int round = 0; round < std::max(8 * StormPercent / 100, 2); ++round) {
        const int width = 1 + static_cast<int>(random() % 3), depth = 1 + static_cast<int>(random() % 3);
        Tree tree(folder / "tree", width, depth);
        ZELListValZELString list;
        EXPECT_EQ(tree.root.GetProcessTree(list), 0);
        EXPECT_EQ(Numbers(list), std::set<int>(tree.pids.begin(), tree.pids.end()));
        EXPECT_EQ(std::stoi(list[1].CastToCharPtr()), tree.root.GetprocessID());
        const auto root = static_cast<unsigned long>(tree.root.GetprocessID());
        EXPECT_EQ(round % 2 == 0 ? tree.root.KillTree() : KillBaseProcessTree(root, 1), 0);
        EXPECT_TRUE(tree.IsGone());
        int status = 0;
        EXPECT_TRUE(tree.root.Check(status) == 1 && status == 999) << status;
        EXPECT_EQ(KillBaseProcessTree(root, 1), 1);
        EXPECT_EQ(tree.root.GetProcessTree(list), 0);
    }
    EXPECT_TRUE(std::all_of(stranger.pids.begin(), stranger.pids.end(), IsRunning));
    EXPECT_EQ(stranger.root.KillTree(), 0);
}

TEST(Kill, EndsATreeThatKeepsGrowing) {
    const TemporaryFolder folder;
    TAProcess process;
    ASSERT_EQ(process.Start(ChildCommand("breed 2"), 0), 0);
    ZELListValZELString list;
    while (list.Size() < 6) process.GetProcessTree(list);
    ProcessEntries tree;
    for (const int pid : Numbers(list)) {
        ProcessEntry entry;
        if (zel::ReadProcess(pid, entry)) tree.Append(entry);
    }
    EXPECT_EQ(process.KillTree(), 0);
    for (const ProcessEntry& entry : tree) EXPECT_TRUE(zel::AwaitProcessEnd(entry.self, 0));
    int status = 0;
    EXPECT_TRUE(process.Check(status) == 1 && status == 999);
    // Nobody was started unseen: somebody would go on breeding. (Older processes may have had a parent whose number was
    // given again, and a parent that runs is another test's.)
    const auto isLeft = [&](const ProcessEntry& entry) {
        const ProcessEntry* const parent = tree.Find(entry.parent);
        return parent != nullptr && CanBeChild(entry, *parent) && !IsRunning(entry.parent);
    };
    EXPECT_TRUE(Eventually([&] {  // who was never started to his end goes by himself
        ProcessEntries all;
        return ListProcesses(all) && std::none_of(all.begin(), all.end(), isLeft);
    }));
}

TEST(Kill, SparesWhoGotTheNumberLater) {
    TAProcess process;
    ASSERT_EQ(process.Start(ChildCommand("sleep 60000"), 0), 0);
    int pid = process.GetprocessID();
    ProcessEntry entry;
    ASSERT_TRUE(zel::ReadProcess(pid, entry));
    EXPECT_EQ(entry.parent, TAProcess::Getpid());
    for (const std::int64_t born : {entry.self.born - 1, entry.self.born + 1}) {
        const zel::ProcessIdentity another = {pid, born};
        EXPECT_FALSE(zel::KillProcess(another, 9));
        EXPECT_EQ(KillProcessTree(another, true), 1);
        EXPECT_TRUE(zel::AwaitProcessEnd(another, 0));
    }
    EXPECT_FALSE(zel::AwaitProcessEnd(entry.self, 1));
    TAProcess found(pid);
    EXPECT_TRUE(IsRunning(pid) && found.Kill() == 0);
    int status = 0;
    EXPECT_EQ(CodeOf(process), 99);
    EXPECT_EQ(found.Kill() + process.Check(status), 2);
    EXPECT_EQ(found.KillTree(), 1);
}

TEST(Kill, AsksPolitelyAndThenForces) {
    const TemporaryFolder folder;
    using std::chrono::seconds;
    const std::tuple<const char*, int, seconds> rows[] = {
        {"polite 60000", CanAskPrograms() ? 7 : 999, seconds(0)},
        {"stubborn 60000", 999, seconds(CanAskPrograms() ? 5 : 0)},
    };
    for (const auto& [verb, code, least] : rows) {
        TAProcess process;
        StartAndRead(process, ChildCommand(verb), folder / "out", 1);
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(KillBaseProcessTree(static_cast<unsigned long>(process.GetprocessID()), 0), 0);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, least) << verb;
        EXPECT_EQ(CodeOf(process), code) << verb;
    }
}

TEST(Kill, ReadsProcessesOfAnyName) {
    const TemporaryFolder folder;
    const std::string program = folder / "a) R 1 (b c";
    std::filesystem::copy_file(ProgramPath("child"), program);
    TAProcess process;
    ASSERT_EQ(process.Start(('"' + program + "\" sleep 60000").c_str(), 0), 0);
    const auto pid = static_cast<unsigned long>(process.GetprocessID());
    unsigned long parent = 0;
    EXPECT_EQ(TAGetParentProcessId(pid, parent), 1);
    EXPECT_EQ(parent, static_cast<unsigned long>(TAProcess::Getpid()));
    __int64 start = 0;
    EXPECT_EQ(GetEpochStartTimeOfProcess(process.GetprocessID(), start), 0);
    const auto shift = (std::time(nullptr) - start + 100 * 3600) % 3600;  // whole hours count on one target
    EXPECT_TRUE(shift < 60 || shift > 3540) << shift;
    EXPECT_EQ(KillBaseProcess(pid, 1), 0);
    int status = 0;
    EXPECT_TRUE(process.Wait(status) == 0 && process.Check(status) == 1);
}

// Runs `work` once for each allocation that may fail, and for each number of descriptors that are left, as long as one
// of these fails; it returns whether it met no failure.
template <class Work>
void ForEachShortage(const std::string& file, Work work) {
    FailEachAllocation([&](FailingMemory& memory) { work([&](auto call) { memory.Begin(), call(), memory.End(); }); },
                       Fallback::Possible);
    bool isEnough = false;
    for (std::size_t left = 0; !isEnough; ++left) {
        SCOPED_TRACE("descriptors " + std::to_string(left));
        ASSERT_LT(left, 20u);
        isEnough = work([&](auto call) {
            RunConfined([&] {
                std::vector<std::ifstream> held;
                do held.emplace_back(file);
                while (held.back().is_open());
                held.resize(held.size() - std::min(held.size(), left + 1));
                call();
            });
        });
    }
}

TEST(Kill, WithoutMemoryOrDescriptorsNobodyIsTouched) {
    const TemporaryFolder folder;
    ForEachShortage(folder / "tree", [&](auto within) {
        Tree tree(folder / "tree", 1, 2);
        std::vector<ProcessEntry> before(3), after(3);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(zel::ReadProcess(tree.pids[i], before[i]));
        const bool isStopped = zel::HoldProcess(before[1].self);
        const auto hasStopped = [&] {
            return ReadProcess(tree.pids[1], before[1]), before[1].activity == ProcessEntry::IsStopped;
        };
        EXPECT_TRUE(!isStopped || Eventually(hasStopped));
        int result = -1;
        within([&] { result = tree.root.KillTree(); });
        for (std::size_t i = 0; i < 3; ++i) {
            const bool runs = zel::ReadProcess(tree.pids[i], after[i]) && !after[i].hasEnded;
            EXPECT_EQ(runs, result != 0) << tree.pids[i];
            EXPECT_EQ(runs && after[i].activity == ProcessEntry::IsStopped, runs && isStopped && i == 1);
        }
        EXPECT_TRUE(result == 0 || (result == 1 && tree.root.KillTree() == 0 && tree.IsGone())) << result;
        return result == 0;
    });
}

TEST(Kill, LateCommandsEndWithoutMemoryOrDescriptors) {
    const TemporaryFolder folder;
    ForEachShortage(folder / "tree", [&](auto within) {
        TAProcessList batch;
        batch.Start(ChildCommand("tree 1 1 60000"), -1, (folder / "tree").c_str(), -1);
        batch.Check();
        int root = 0, child = 0;
        EXPECT_TRUE(Eventually([&] { return std::ifstream(folder / "tree") >> root >> child && child > 0; }));
        within([&] { batch.Check(); });
        EXPECT_TRUE(batch.NDone() == 1 && batch.GetReturnCode(1) == 99 && !IsRunning(root));
        return KillBaseProcess(static_cast<unsigned long>(child), 1) != 0;
    });
}

TEST(Kill, TheCallerGoesLast) {
    const ProgramResult result = RunProgram("process_probe", {"kill", ProgramPath("child")});
    EXPECT_TRUE(result.exitCode == 999 || result.exitCode == 128 + 9) << result.exitCode;
    std::istringstream numbers(result.out);
    std::set<int> tree;
    for (int pid = 0; numbers >> pid; tree.insert(pid)) EXPECT_FALSE(IsRunning(pid));
    EXPECT_EQ(tree.size(), 3u);
}
