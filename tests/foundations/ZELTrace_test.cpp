#include "ZELTrace.h"

#include "support/programs.h"
#include "support/testing.h"

TEST(ZELTrace, IsSilentUntilItsNameIsSwitchedOn) {
    const ProgramResult result = RunProgram("probe", {"traces"});
    EXPECT_EQ(result.err, "early 1 one\nlate%\n");
    EXPECT_EQ(result.out, std::string(3000, 'x') + "|");
}

TEST(ZELTrace, FilesAreOpenedByAMessageAndAppendedToOrEmptied) {
    const TemporaryFolder folder;
    for (const ZELTraMode mode : {ZELTraAppend, ZELTraTruncate}) {
        WriteBytes(folder / "trace", "old\n");
        ZELTrace trace("FILES", "", mode, (folder / "trace").c_str(), 16);
        trace.TraPrint("silent\n");
        EXPECT_EQ(ReadBytes(folder / "trace"), "old\n");
        ZELTrace::Activate("FILES");
        trace.TraPrint("%s\n", "one");
        trace.TraPrint("%0127d\n", 2);  // as long as the first room
        EXPECT_EQ(WithoutReturns(ReadBytes(folder / "trace")),
                  (mode == ZELTraAppend ? "old\none\n" : "one\n") + std::string(126, '0') + "2\n");
        ZELTrace::Deactivate("FILES");
    }
    // One that cannot be opened is tried again.
    ZELTrace later("LATER", nullptr, ZELTraAppend, (folder / "sub/trace").c_str(), 100);
    ZELTrace::Activate("LATER");
    later.TraPrint("lost\n");
    std::filesystem::create_directory(folder / "sub");
    later.TraPrint("kept\n");
    EXPECT_EQ(WithoutReturns(ReadBytes(folder / "sub/trace")), "kept\n");
}

TEST(ZELTrace, MessagesOfThreadsStayWholeWhileTheSwitchMoves) {
    const TemporaryFolder folder;
    {
        ZELTrace trace("THREADS", nullptr, ZELTraTruncate, (folder / "trace").c_str(), 8);
        ZELTrace::Activate("THREADS");
        std::vector<std::jthread> threads;
        for (const char letter : {'a', 'b', 'c'})
            threads.emplace_back([&trace, letter] {
                for (int round = 0; round < 200; ++round) {
                    trace.TraPrint("%s\n", std::string(50, letter).c_str());
                    if (letter != 'a') ZELTrace::Activate(std::to_string(round).c_str());
                }
            });
    }
    const std::string text = WithoutReturns(ReadBytes(folder / "trace"));
    ASSERT_EQ(text.size(), 600 * 51u);
    for (std::size_t at = 0; at < text.size(); at += 51)
        ASSERT_EQ(text.substr(at, 51), std::string(50, text[at]) + "\n");
    // Both threads that made the same names at once switched the same ones on.
    for (int round = 0; round < 200; ++round)
        EXPECT_EQ(ZELTrace(std::to_string(round).c_str(), "", ZELTraAppend, "", 8).IsActive(), 1);
    EXPECT_EQ(ZELTrace(nullptr, nullptr, ZELTraAppend, nullptr, 0).IsActive(), 0);
}
