#include "base/command_line.h"

#include "support/failing_memory.h"
#include "support/quoted.h"
#include "support/testing.h"

namespace {

std::vector<std::string> WordsOf(const std::string& line) {
    const zel::CommandWords words(line);
    EXPECT_TRUE(words.AreComplete());
    return {words.Texts(), words.Texts() + words.Count()};
}

}  // namespace

TEST(CommandWords, TheProgramHasQuotesButNoEscapes) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"", {}},
        {" \t ", {}},
        {R"(C:\bin\a b)", {R"(C:\bin\a)", "b"}},
        {R"("C:\my bin\" b)", {R"(C:\my bin\)", "b"}},
        {R"( C:\"my bin"\a"" "")", {R"(C:\my bin\a)", ""}},
        {R"("open b)", {"open b"}},
    };
    for (const auto& [line, expected] : rows) EXPECT_EQ(WordsOf(line), expected) << line;
}

TEST(CommandWords, WhatIsWrittenByTheRuleIsReadBack) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::string> words = {"p"};
        std::string line = "p";
        for (auto count = random() % 4; count > 0; --count) {
            words.push_back(RandomText(random, "\\\" \ta", 6));
            line += " \t"[random() % 2] + Quoted(words.back());
        }
        ASSERT_EQ(WordsOf(line), words) << line;
        const zel::CommandWords read(line);
        for (std::size_t i = 1; i < words.size(); ++i)
            ASSERT_TRUE(read.Behind(static_cast<int>(i) - 1).starts_with(Quoted(words[i]))) << line;
    }
}

TEST(Command, TextsBecomeLinesOfBothTries) {
    struct Row {
        const char* text;
        const char* line;
        const char* second;
        bool isInterpreterCall = false;
        const char* interpreterText = "";
        const char* batchFile = "";
        const char* behindBatchFile = "";
    };
    const Row rows[] = {
        {"tool", "tool", "tool.bat"},
        {"  tool   x  y ", "  tool   x  y ", "tool.bat x y"},
        {"tool\tx y", "tool\tx y", "tool\tx.bat y"},
        {R"("my tool" x)", R"("my tool" x)", R"("my.bat tool" x)"},
        {"tool.BAT x", "tool.BAT x", "tool.BAT.bat x"},
        {"build.bat", "cmd /c build.bat", "cmd.bat /c build.bat", true, "build.bat", "build.bat"},
        {R"(bin\build.bat  a "b")", R"(cmd /c bin\build.bat  a "b")", R"(cmd.bat /c bin\build.bat a "b")", true,
         R"(bin\build.bat  a "b")", R"(bin\build.bat)", R"(  a "b")"},
        {R"( "my x.bat" a)", R"(cmd /c  "my x.bat" a)", R"(cmd.bat /c "my x.bat" a)", true, R"("my x.bat" a)",
         "my x.bat", " a"},
        {"tool x.bat", "cmd /c tool x.bat", "cmd.bat /c tool x.bat", true, "tool x.bat"},
        {"tool.bath", "cmd /c tool.bath", "cmd.bat /c tool.bath", true, "tool.bath"},
        {"cmd /c  a  b ", "cmd /c  a  b ", "cmd.bat /c a b", true, "a  b "},
        {R"("CMD.exe" /C x)", R"("CMD.exe" /C x)", R"("CMD.exe".bat /C x)", true, "x"},
        {"cmd /c x.bat", "cmd /c cmd /c x.bat", "cmd.bat /c cmd /c x.bat", true, "cmd /c x.bat"},
        {"cmd", "cmd", "cmd.bat"},
        {"cmd x /c", "cmd x /c", "cmd.bat x /c"},
        {R"(bin\cmd /c x)", R"(bin\cmd /c x)", R"(bin\cmd.bat /c x)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const zel::Command command(row.text);
        ASSERT_TRUE(command.IsComplete());
        EXPECT_STREQ(command.Line(), row.line);
        EXPECT_STREQ(command.SecondTry().Line(), row.second);
        EXPECT_EQ(command.IsInterpreterCall(), row.isInterpreterCall);
        EXPECT_EQ(command.InterpreterText(), row.interpreterText);
        EXPECT_EQ(command.BatchFile(), row.batchFile);
        EXPECT_EQ(command.BehindBatchFile(), row.behindBatchFile);
        EXPECT_EQ(command.Words().Count(), static_cast<int>(WordsOf(row.line).size()));
    }
}

TEST(Command, MissingMemoryMakesItIncomplete) {
    const AllocationFailures failures = FailEachAllocation([](FailingMemory& memory) {
        memory.Begin();
        const zel::Command command("build.bat x");
        const bool isComplete = command.IsComplete() && command.SecondTry().IsComplete();
        EXPECT_EQ(isComplete, !memory.End());
    });
    EXPECT_EQ(failures.count, 8);
}
