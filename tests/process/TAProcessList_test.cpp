#include "TAProcessList.h"

#include "process/processes.h"

namespace {

using Clock = std::chrono::steady_clock;

// Checks until everything is done; the numbers as CutLastDone gave them.
std::vector<int> Finish(TAProcessList& batch) {
    std::vector<int> cut;
    EXPECT_TRUE(Eventually([&] {
        batch.Check();
        for (int number = batch.CutLastDone(); number != -1; number = batch.CutLastDone()) cut.push_back(number);
        return batch.NDone() == batch.Size();
    }));
    return cut;
}

std::vector<int> Statuses(const TAProcessList& batch) {
    std::vector<int> statuses;
    for (int number = 1; number <= batch.Size(); ++number) statuses.push_back(batch.GetStatus(number));
    return statuses;
}

}  // namespace

TEST(TAProcessList, StartsTheLatestFirstAndReportsEachOnce) {
    const TemporaryFolder folder;
    TAProcessList batch(2);
    EXPECT_TRUE(batch.CutLastDone() == -1 && batch.Check() == 0);
    EXPECT_EQ(batch.Start(ChildCommand("exit 3"), 0, (folder / "a").c_str(), -1), 1);
    EXPECT_EQ(batch.Start(ChildCommand("args x"), 0, (folder / "b").c_str(), -1), 2);
    EXPECT_EQ(batch.Start(ChildCommand("sleep 300"), 0, (folder / "c").c_str(), -1), 3);
    EXPECT_EQ(batch.NWaiting(), 3);
    EXPECT_EQ(batch.Check(), 1);
    EXPECT_EQ(Statuses(batch), (std::vector<int>{0, 1, 1}));
    std::vector<int> cut = Finish(batch);
    std::sort(cut.begin(), cut.end());
    EXPECT_EQ(cut, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Statuses(batch), (std::vector<int>{2, 2, 2}));
    EXPECT_TRUE(batch.GetReturnCode(1) == 3 && batch.GetReturnCode(2) == 0 && batch.GetReturnCode(3) == 0);
    EXPECT_EQ(WithoutReturns(ReadBytes(folder / "b")), "78\n");
    for (const int outside : {-1, 0, 4})
        EXPECT_TRUE(batch.GetStatus(outside) == -1 && batch.GetReturnCode(outside) == -1);
}

TEST(TAProcessList, ManyCommandsKeepTheirLimitAndTheirCodes) {
    TAProcessList batch(8);
    const int count = std::max(400 * StormPercent / 100, 20);
    for (int number = 1; number <= count; ++number)
        batch.Start(ChildCommand("exit " + std::to_string(number % 200)), 60, -1);
    int most = 0;
    EXPECT_TRUE(Eventually([&] {
        batch.Check();
        most = std::max(most, batch.NRunning());
        EXPECT_EQ(batch.NWaiting() + batch.NRunning() + batch.NDone(), count);
        return batch.NDone() == count;
    }));
    EXPECT_EQ(most, 8);
    for (int number = 1; number <= count; ++number) EXPECT_EQ(batch.GetReturnCode(number), number % 200);
}

TEST(TAProcessList, EachCommandMayHaveALimitOfItsOwn) {
    TAProcessList batch(-7);  // counts as 1
    batch.Start(ChildCommand("sleep 200"), 0, -1);
    for (int i = 0; i < 3; ++i) batch.Start(ChildCommand("sleep 200"), 0, 3);
    batch.Start(ChildCommand("sleep 200"), 0, 0);
    batch.Check();
    EXPECT_EQ(batch.NRunning(), 1);  // the last one, alone
    EXPECT_TRUE(Eventually([&] { return batch.Check() == 1 && batch.NRunning() == 3; }));
    EXPECT_EQ(batch.GetStatus(1), 0);
    Finish(batch);
}

TEST(TAProcessList, LateCommandsDieWithTheirTreesInTime) {
    const TemporaryFolder folder;
    const Interruptions interruptions;
    TAProcessList batch;
    std::vector<std::string> outs;
    for (const char* const verb : {"tree 2 1 60000", "stubborn 60000", "signal 19", "sleep 60000"}) {
        outs.push_back(folder / std::to_string(outs.size()));
        batch.Start(ChildCommand(verb), 1, outs.back().c_str(), -1);
    }
    batch.Start(ChildCommand("sleep 1"), 0, -1);
    batch.Check();
    const auto begin = Clock::now();
    // No command is overdue before the next look, and that waits for the whole tree.
    EXPECT_TRUE(Eventually([&] {
        const std::string numbers = ReadBytes(outs[0]);
        return std::count(numbers.begin(), numbers.end(), '\n') == 3;
    }));
    std::vector<int> cut = Finish(batch);
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(900));
    EXPECT_EQ(cut.size(), 5u);
    for (const int number : {1, 2, 4}) EXPECT_EQ(batch.GetReturnCode(number), 99);
    EXPECT_EQ(batch.GetReturnCode(5), 0);
    std::istringstream pids(ReadBytes(outs[0]));
    int count = 0;
    for (int pid = 0; pids >> pid; ++count) EXPECT_FALSE(IsRunning(pid));
    EXPECT_EQ(count, 3);
}

TEST(TAProcessList, WhatCannotStartIsDoneButNeverCut) {
    TAProcessList batch;
    batch.SetDebugMode();
    batch.Start("no_such_tool 1", 0, -1);
    batch.Start(ChildCommand("exit 4"), 0, -1);
    std::vector<int> cut;
    const std::string said = Printed([&] { cut = Finish(batch); });
    EXPECT_EQ(cut, std::vector<int>{2});
    EXPECT_TRUE(batch.GetStatus(1) == 2 && batch.GetReturnCode(1) == 203 && batch.GetReturnCode(2) == 4);
    EXPECT_TRUE(Holds(said, "   ERROR launching no_such_tool 1: ")) << said;
    EXPECT_TRUE(Holds(said, "   RUNNING COMMANDS: \"" + std::string(ChildCommand("exit 4")) + "\"; ")) << said;
}

TEST(TAProcessList, KillingEndsWhatRuns) {
    const TemporaryFolder folder;
    TAProcessList batch(2);
    for (int i = 0; i < 3; ++i) batch.Start(ChildCommand("sleep 60000"), 0, -1);
    EXPECT_EQ(batch.KillInternalListOfProcess(), 0);
    batch.Check();
    EXPECT_EQ(batch.KillInternalListOfProcess(), 0);
    EXPECT_EQ(Statuses(batch), (std::vector<int>{0, 2, 2}));
    EXPECT_EQ(batch.NRunning(), 2);
    EXPECT_EQ(batch.Check(), 1);
    EXPECT_TRUE(batch.NDone() == 2 && batch.NRunning() == 1 && batch.CutLastDone() == 2 && batch.CutLastDone() == 3);
    EXPECT_TRUE(batch.GetReturnCode(2) == 15 && batch.GetReturnCode(3) == 15);
    EXPECT_EQ(batch.KillInternalListOfProcess(), 0);
}
