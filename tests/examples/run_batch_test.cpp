#include "process/processes.h"
#include "support/programs.h"

namespace {

struct RunBatch : testing::Test {
    const std::string file = folder / "commands", logs = folder / "logs";
    static inline const TemporaryFolder folder;
};

}  // namespace

TEST_F(RunBatch, RunsEachLineAndTellsHowItEnded) {
    const std::string child = ChildCommand("").CastToCharPtr();
    WriteBytes(file, "# a comment\r\n" + child + "out 5\r\n\n" + child + "exit 3\n" + child +
                         "sleep 60000\nno_such_program_at_all x\n" + child + "err 3");
    const ProgramResult result = RunProgram("run_batch", {"--limit", "2", "--timeout", "4", "--output", logs, file});
    EXPECT_EQ(result.exitCode, 1) << result.err;
    for (const char* row : {"   2      0 ", "   4      3 ", "   5     99 ", "killed ", "not found", "   7      0 ",
                            "\n   5 commands, 3 failed\n"})
        EXPECT_TRUE(Holds(result.out, row)) << row << "\n" << result.out;
    EXPECT_EQ(ReadBytes(logs + "/2.log") + ReadBytes(logs + "/7.log"), "abcdeabc");
}

TEST_F(RunBatch, RefusesWhatItCannotUse) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"--limit", "0", "f"}, {"--timeout", "x", "f"}, {"--bad", "f"}, {"a", "b"}})
        EXPECT_EQ(RunProgram("run_batch", arguments).exitCode, 2);
    EXPECT_EQ(RunProgram("run_batch", {folder / "missing"}).err,
              "run_batch: cannot read " + (folder / "missing") + "\n");
}

TEST_F(RunBatch, KillsItsTreesWhenItIsInterrupted) {
    if (onWindows) GTEST_SKIP() << "no signal can be sent here";
    WriteBytes(file, '"' + ProgramPath("child") + "\" tree 2 2 60000");
    TAProcess batch;
    ASSERT_EQ(batch.Start(ChildCommand("--output " + logs + " " + file, "run_batch"), 0), 0);
    std::vector<int> pids;
    EXPECT_TRUE(Eventually([&] {
        std::istringstream text(ReadBytes(logs + "/1.log"));
        pids.assign(std::istream_iterator<int>(text), {});
        return pids.size() == 7;
    }));
    EXPECT_EQ(KillBaseProcess(static_cast<unsigned long>(batch.GetprocessID()), 0), 0);
    EXPECT_EQ(CodeOf(batch), 130);
    EXPECT_TRUE(std::none_of(pids.begin(), pids.end(), IsRunning));
}
