#include "TATextUtilities.h"
#include "support/testing.h"
#include "text/text_model.h"

namespace {

Outcome Replace(const std::string& text, const char* word, const char* open, const char* close, const char* by) {
    char* block = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    const int result = replace(block, word, open, close, by);
    Outcome outcome{result, block};
    std::free(block);
    return outcome;
}

}  // namespace

TEST(WordReplace, FollowsTheRulesOnRandomTexts) {
    std::mt19937 random(2);
    const auto make = [&](const char* letters, std::size_t longest) { return RandomText(random, letters, longest); };
    int endless = 0;
    for (int round = 0; round < 100000; ++round) {
        const std::string text = make("ff(). \n_$", 24);
        std::string word(1, 'f');
        if (round % 3 == 0) word += make("f.", 2);
        const std::string open = make("(. ", 1 + round % 2);
        const std::string close = make(").", 1);
        const std::string by = make("fg(. ", round % 5 ? 6 : 1);
        const auto expected = ReplaceByRules(text, word, open, close, by);
        const Outcome outcome = Replace(text, word.c_str(), open.c_str(), close.c_str(), by.c_str());
        endless += expected ? 0 : 1;
        ASSERT_EQ(outcome, expected.value_or(outcome))
            << text << "|" << word << "|" << open << "|" << close << "|" << by;
    }
    EXPECT_LT(endless, 50000);
}

TEST(WordReplace, TakesNullsLongTextsAndReplacementsThatHoldTheWord) {
    EXPECT_EQ(Replace("f (x) + ff(y)", "f", "(", "", "call "), (Outcome{1, "call x) + ff(y)"}));
    EXPECT_EQ(Replace("a b", "a", nullptr, nullptr, nullptr), (Outcome{1, " b"}));
    EXPECT_EQ(Replace("a b", nullptr, "", "", ""), (Outcome{0, "a b"}));
    EXPECT_EQ(Replace("a b a", "a", "", "", "(a)"), (Outcome{1, "(a) b (a)"}));
    EXPECT_EQ(Replace("\xC3\xA4x x", "x", "", "", "y"), (Outcome{1, "\xC3\xA4y y"}));
    char* none = nullptr;
    EXPECT_EQ(replace(none, "a", "", "", ""), 0);

    constexpr int Count = 300000;
    const std::string text = Repeat("w (", Count);
    EXPECT_EQ(Replace(text, "w", "(", "", "longer words "), (Outcome{0, Repeat("longer words ", Count)}));
    EXPECT_EQ(Replace(text, "w", "", "", ""), (Outcome{1, Repeat(" (", Count)}));
    // What follows stands far behind every word.
    EXPECT_EQ(Replace(text + "[", "w", "[", "", "x"), (Outcome{0, text + "["}));
}
