#include "TATextUtilities.h"

#include "support/failing_memory.h"
#include "support/testing.h"

TEST(QStrstr, FindsOnOneLineWithinTheLimitWithoutGoingBack) {
    const std::tuple<const char*, const char*, int, int> rows[] = {
        // the last: where it is found, -1 for nowhere
        {"abc", "bc", 9, 1},    {"abc", "bc", 3, 1},   {"abc", "bc", 2, -1},    {"a\nbc", "bc", 9, -1},
        {"aaab", "aab", 9, -1}, {"aabab", "ab", 9, 1}, {"ababc", "abc", 9, 2},  {"abc", "abcd", 9, -1},
        {"", "", 0, 0},         {"a", "", 9, -1},      {"", "a", 9, -1},        {"abc", "a", 0, -1},
        {"abc", "a", -1, -1},   {"abc", "a", 1, 0},    {"a\nb", "a\nb", 9, -1},
    };
    for (const auto& [text, pattern, limit, at] : rows)
        EXPECT_EQ(Q_strstr(text, pattern, limit), at < 0 ? nullptr : text + at) << text << " " << pattern;
    EXPECT_EQ(Q_strstr(nullptr, "a", 1), nullptr);
    EXPECT_EQ(Q_strstr("a", nullptr, 1), nullptr);
    // Nothing behind the limit is read: the text has no terminator.
    const std::vector<char> open{'a', 'b'};
    EXPECT_EQ(Q_strstr(open.data(), "abc", 2), nullptr);
    EXPECT_EQ(Q_strstr(open.data(), "b", 2), open.data() + 1);
}

TEST(SortedLists, StaySortedAndAreSearchedForBeginnings) {
    std::mt19937 random(6);
    for (int round = 0; round < 300; ++round) {
        ZELListValZELString list;
        std::vector<ZELString> model;
        for (int i = 0; i < 20; ++i) {
            ZELString entry(RandomText(random, "ab\xC3", 3).c_str());
            InsertInList(entry, list);
            if (std::find(model.begin(), model.end(), entry) == model.end()) model.push_back(entry);
        }
        std::sort(model.begin(), model.end());
        ASSERT_TRUE(std::equal(list.begin(), list.end(), model.begin(), model.end()));
        ZELListValZELString reversed;
        for (int i = list.Size(); i >= 1; --i) reversed.Append(list[i]);
        reversed.QuickSort(CompareTAStrings);
        ASSERT_EQ(reversed, list);
        for (int i = 1; i <= list.Size(); ++i) {
            const int found = SearchInStringList(list[i], list);
            // The pair that is left at the end may hold a shorter beginning in front.
            ASSERT_TRUE(found == i || (found == i - 1 && list[i].View().starts_with(list[i - 1].View())));
        }
    }
    ZELListValZELString list;
    ZELString text("abc");
    EXPECT_EQ(SearchInStringList(text, list), 0);
    for (const char* entry : {"a", "ab", "abd", "b"}) list.Append(entry);
    EXPECT_EQ(SearchInStringList(text, list), 2);
    ZELString other("c");
    EXPECT_EQ(SearchInStringList(other, list), 0);

    EXPECT_EQ(CompareTAStrings(static_cast<ZELString*>(nullptr), &text), -1);
    TAFileName names[] = {"src/b", "src/a"};
    EXPECT_EQ(CompareTAStrings(&names[0], &names[1]), 1);
    EXPECT_EQ(CompareTAStrings(&names[0], nullptr), 1);
}

TEST(Lines, TellCommentsAndQuoteArguments) {
    const std::pair<const char*, int> rows[] = {{"", 1}, {"   ", 1}, {"#x", 1}, {"  # x", 1}, {"\t#", 0}, {"x #", 0}};
    for (const auto& [line, expected] : rows) {
        EXPECT_EQ(IsComment(line), expected) << line;
        EXPECT_EQ(IsComment(ZELString(line)), expected) << line;
    }
    EXPECT_EQ(IsComment(nullptr), 1);
    const std::pair<const char*, const char*> arguments[] = {
        {"ab", "ab"}, {"a b", "\"a b\""}, {"\"a b", "\"a b"}, {"a \"b\"", "\"a \"b\"\""}, {"", ""}, {"a\tb", "a\tb"}};
    for (const auto& [argument, expected] : arguments) EXPECT_EQ(TANormalizeArg(argument), expected);
}

TEST(SearchConcatenation, GivesTheFirstDirectoryThatHasTheFile) {
    const TemporaryFolder first, second;
    WriteBytes(second / "tool.txt", "x");
    std::filesystem::create_directory(first / "tool.txt");  // no regular file
    const std::string both = std::string(";") + first.Path() + ";;" + second.Path() + ";";
    EXPECT_EQ(SearchConcatenation("tool.txt", both.c_str()), TAFileName((second / "tool.txt").c_str()));
    WriteBytes(first / "other.txt", "x");
    WriteBytes(second / "other.txt", "x");
    EXPECT_EQ(SearchConcatenation("other.txt", both.c_str()), TAFileName((first / "other.txt").c_str()));
    EXPECT_TRUE(SearchConcatenation("none.txt", both.c_str()).IsNull());
    EXPECT_TRUE(SearchConcatenation("tool.txt", "").IsNull());
}

TEST(ToolsToUnicode, TerminatesWhatFits) {
    for (int capacity = 0; capacity < 6; ++capacity) {
        std::vector<unsigned short> out(static_cast<std::size_t>(capacity) + 1, 7);
        const bool fits = capacity >= 3;
        EXPECT_EQ(ZELToolsToUnicode("abc", out.data(), capacity), fits ? 0 : 1);
        EXPECT_EQ(out[fits ? 3 : 0], 0);
        EXPECT_TRUE(!fits || out[1] == 'b');
    }
    unsigned short unit = 7;
    EXPECT_EQ(ZELToolsToUnicode("", &unit, 0) + ZELToolsToUnicode("a", nullptr, 9), 2);
    EXPECT_EQ(unit, 0);
    unit = 7;
    EXPECT_EQ(ZELToolsToUnicode("a", &unit, -1), 1);
    EXPECT_EQ(unit, 7);
}

TEST(TextUtilities, LeaveBlocksAsTheyWereWithoutMemory) {
    const std::string text = Repeat("word & ", 40);
    using Work = int (*)(char*&);
    const std::pair<Work, std::string> works[] = {
        {[](char*& block) { return encodeXMLString(block); }, Repeat("word &amp; ", 40)},
        {[](char*& block) { return replace(block, "word", nullptr, nullptr, "another word"); },
         Repeat("another word & ", 40)},
    };
    for (const auto& row : works)
        FailEachAllocation(
            [&](FailingMemory& memory) {
                char* block = CopyText(text);
                memory.Begin();
                const int result = row.first(block);
                memory.End();
                EXPECT_EQ(result, memory.Said().empty() ? 1 : 0);
                EXPECT_EQ(block, result == 0 ? text : row.second);
                Free(block);
            },
            Fallback::Possible);
    ZELString line(text.c_str());
    FailEachAllocation(
        [&](FailingMemory& memory) {
            memory.Begin();
            const ZELString entities = substituteEntities(line);
            EXPECT_EQ(entities.Length() == 0, memory.End());
        },
        Fallback::Possible);
}
