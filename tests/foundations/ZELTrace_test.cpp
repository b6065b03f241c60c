#include "ZELTrace.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "support/files.h"
#include "support/programs.h"

TEST(ZELTrace, IsSilentUntilItsNameIsSwitchedOn) {
    const ProgramResult result = RunProgram("probe", {"traces"});
    EXPECT_EQ(result.err, "early 1 one\nlate%\n");
    EXPECT_EQ(result.out, std::string(3000, 'x') + "|");
}

TEST(ZELTrace, FilesAreOpenedByTheFirstMessageAndAppendedToOrEmptied) {
    const TemporaryFolder folder;
    const std::string path = folder / "trace";
    for (const ZELTraMode mode : {ZELTraAppend, ZELTraTruncate}) {
        WriteBytes(path, "old\n");
        {
            ZELTrace trace("FILES", "", mode, path.c_str(), 16);
            trace.TraPrint("silent\n");
            EXPECT_EQ(ReadBytes(path), "old\n");
            ZELTrace::Activate("FILES");
            trace.TraPrint("%s\n", "one");
            trace.TraPrint("%0200d\n", 2);
        }
        ZELTrace::Deactivate("FILES");
        EXPECT_EQ(WithoutReturns(ReadBytes(path)),
                  (mode == ZELTraAppend ? "old\none\n" : "one\n") + std::string(199, '0') + "2\n");
    }
}

TEST(ZELTrace, AFileThatCannotBeOpenedIsTriedAgain) {
    const TemporaryFolder folder;
    ZELTrace trace("LATER", nullptr, ZELTraAppend, (folder / "sub/trace").c_str(), 100);
    ZELTrace::Activate("LATER");
    trace.TraPrint("lost\n");
    std::filesystem::create_directory(folder / "sub");
    trace.TraPrint("kept\n");
    EXPECT_EQ(WithoutReturns(ReadBytes(folder / "sub/trace")), "kept\n");
}

TEST(ZELTrace, MessagesOfThreadsStayWholeWhileTheSwitchMoves) {
    const TemporaryFolder folder;
    {
        ZELTrace trace("THREADS", nullptr, ZELTraTruncate, (folder / "trace").c_str(), 8);
        ZELTrace::Activate("THREADS");
        std::thread threads[3];
        for (int thread = 0; thread < 3; ++thread)
            threads[thread] = std::thread([&trace, thread] {
                for (int round = 0; round < 200; ++round) {
                    trace.TraPrint("%s\n", std::string(50, static_cast<char>('a' + thread)).c_str());
                    if (thread != 0) ZELTrace::Activate(std::to_string(round).c_str());
                }
            });
        for (std::thread& thread : threads) thread.join();
    }
    int lines = 0;
    std::ifstream text(folder / "trace");
    for (std::string line; std::getline(text, line); ++lines) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        EXPECT_EQ(line, std::string(50, line.empty() ? ' ' : line[0]));
    }
    EXPECT_EQ(lines, 600);
    // Both threads that made the same names at once switched the same ones on.
    for (int round = 0; round < 200; ++round)
        EXPECT_EQ(ZELTrace(std::to_string(round).c_str(), "", ZELTraAppend, "", 8).IsActive(), 1);
    ZELTrace nameless(nullptr, nullptr, ZELTraAppend, nullptr, 0);
    EXPECT_EQ(nameless.IsActive(), 0);
}
