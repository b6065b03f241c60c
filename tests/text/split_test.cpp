#include "TATextUtilities.h"
#include "support/testing.h"
#include "text/text_model.h"

namespace {

Fields Texts(const TAIndex& index) {
    Fields fields;
    for (int i = 0; i < index.Size(); ++i) {
        fields.emplace_back(index[i]);
        EXPECT_EQ(index.Get(i), nullptr);
    }
    return fields;
}

Fields Sorted(const Fields& fields) {
    const std::set<std::string> sorted(fields.begin(), fields.end());
    return Fields(sorted.begin(), sorted.end());
}

}  // namespace

TEST(Split, FollowsTheRulesInAllFormsWhateverTheListHeld) {
    std::mt19937 random(3);
    ZELListValZELString list;
    TAIndex index;
    for (int round = 0; round < 30000; ++round) {
        std::string text = RandomText(random, "  ::ab", 13);
        if (round % 50 == 0) text += std::string(40, 'x') + ":" + std::string(50, 'y');
        const std::string separator = std::vector<std::string>{"", " ", ":", "::", ":::", "a:"}[random() % 6];
        const int n = static_cast<int>(random() % 7);
        ZELString line(text.c_str());
        const ZELString by(separator.c_str());
        SCOPED_TRACE(text + "|" + separator + "|" + std::to_string(n));

        const auto expect = [&](Fields fields, int result, int indexResult) {
            ASSERT_EQ(Texts(list), fields);
            ASSERT_EQ(Texts(index), Sorted(fields));
            ASSERT_EQ(result, list.Size());
            ASSERT_EQ(indexResult, index.Size());
        };
        expect(SplitByRules(text, " ", NoLimit), Split(line, list), Split(line, index));
        expect(SplitByRules(text, separator, NoLimit), Split(line, list, by), Split(line, index, by));
        expect(SplitByRules(text, separator, n), Split(line, list, by, n), Split(line, index, by, n));

        Fields filled = SplitByRules(text, " ", n);
        Fields filledKeys = Sorted(filled);
        if (static_cast<int>(filledKeys.size()) < n) filledKeys.insert(filledKeys.begin(), "");
        filled.resize(std::max(filled.size(), static_cast<std::size_t>(n)));
        ASSERT_EQ(Split(line, list, n), static_cast<int>(filled.size()));
        ASSERT_EQ(Texts(list), filled);
        ASSERT_EQ(Split(line, index, n), static_cast<int>(filledKeys.size()));
        ASSERT_EQ(Texts(index), filledKeys);
    }
}

TEST(Split, KeepsTheExamplesOfTheContract) {
    ZELListValZELString fields;
    ZELString blanks("  a  b ");
    EXPECT_EQ(Split(blanks, fields, 4), 4);
    EXPECT_EQ(Texts(fields), (Fields{"a", "b", "", ""}));
    ZELString colons("a::b::c");
    EXPECT_EQ(Split(colons, fields, "::", 3), 3);
    EXPECT_EQ(Texts(fields), (Fields{"a", ":b", ":c"}));
    EXPECT_EQ(Split(blanks, fields, -5), 1);
    EXPECT_EQ(Texts(fields), (Fields{"  a  b "}));

    // The line may be an element of the list.
    for (const char* text : {"x y z", "a line that does not fit into the object itself"}) {
        fields.Append(text);
        const int last = fields.Size();
        Split(fields[last], fields);
        EXPECT_EQ(Texts(fields), SplitByRules(text, " ", NoLimit));
        Split(fields[1], fields);
        EXPECT_EQ(fields.Size(), 1);
    }
}

TEST(ToLine, JoinsAndLeavesTheLineOfAnEmptyList) {
    ZELListValZELString fields;
    ZELString line("old");
    EXPECT_EQ(ToLine(fields, line, ";"), 0);
    EXPECT_EQ(line, "old");
    for (const char* field : {"a", "", "c"}) fields.Append(field);
    EXPECT_EQ(ToLine(fields, line), 0);
    EXPECT_EQ(line, "a  c");
    EXPECT_EQ(ToLine(fields, fields[1], "--"), 0);
    EXPECT_EQ(fields[1], "a----c");
}
