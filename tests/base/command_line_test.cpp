#include "base/command_line.h"

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

TEST(CommandWords, KnowTheInterpreter) {
    for (const char* const line : {"cmd /c x", "CMD.exe /C x", "\"cmd\" /c"})
        EXPECT_TRUE(zel::IsInterpreterCall(zel::CommandWords(line))) << line;
    for (const char* const line : {"cmd", "cmd x /c", "cmd.bat /c x", "bin\\cmd /c x"})
        EXPECT_FALSE(zel::IsInterpreterCall(zel::CommandWords(line))) << line;
    EXPECT_EQ(zel::CommandWords("cmd  /c  a  b ").Behind(1), "a  b ");
}
