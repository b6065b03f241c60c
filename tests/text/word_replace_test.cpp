#include "TATextUtilities.h"
#include "support/testing.h"

namespace {

struct Outcome {
    int result;
    std::string text;
    bool operator==(const Outcome&) const = default;
};

Outcome Replace(const std::string& text, const char* word, const char* open, const char* close, const char* by) {
    char* block = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    const int result = replace(block, word, open, close, by);
    Outcome outcome{result, block};
    std::free(block);
    return outcome;
}

bool IsPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$';
}

// The rules step by step; nothing when they would go on for ever.
std::optional<Outcome> ReplaceByRules(std::string text, const std::string& word, const std::string& open,
                                      const std::string& close, const std::string& by) {
    int result = 0;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(word, from)) != std::string::npos;) {
        from = at + 1;
        if (at > 0 && IsPart(text[at - 1])) continue;
        std::size_t end = at + word.size();
        bool fits = true;
        for (const std::string& follower : {open, close}) {
            if (!fits || follower.empty()) continue;
            const std::size_t found = text.find(follower, end);
            if (found == std::string::npos) return Outcome{0, text};
            fits = text.substr(end, found - end).find_first_not_of(" \t\n\v\f\r") == std::string::npos;
            end = found + follower.size();
        }
        if (!fits || (at + word.size() < text.size() && IsPart(text[at + word.size()]))) continue;
        text.replace(at, end - at, by);
        from = at;
        if (++result > 100) return std::nullopt;
    }
    return Outcome{result > 0 ? 1 : 0, text};
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
