#include "text/wildcard.h"

#include "TATextUtilities.h"
#include "support/testing.h"
#include "text/wildcard_model.h"

namespace {

int Match(const std::string& text, const std::string& pattern) {
    return TestMatch(ZELString(std::string_view(text)), ZELString(std::string_view(pattern)));
}
int HoldsOn(const char* text, const std::string& formula) {
    ZELString subject(text);
    return TestMatchWithLogExp(subject, ZELString(std::string_view(formula)));
}

}  // namespace

TEST(TestMatch, FollowsTheRulesOnRandomTexts) {
    std::mt19937 random(4);
    for (int round = 0; round < 300000; ++round) {
        const std::string text = RandomText(random, round % 9 ? "ab" : "ab*", 9);
        const std::string pattern = RandomText(random, "ab*", 7);
        ASSERT_EQ(Match(text, pattern), MatchByRules(text, pattern)) << text << " " << pattern;
        std::string mixed = pattern;
        for (char& c : mixed) c = random() % 2 && c != '*' ? static_cast<char>(c - 'a' + 'A') : c;
        ASSERT_EQ(TestMatchNoCase(text.c_str(), mixed.c_str()), MatchByRules(text, pattern)) << text << " " << mixed;
        ASSERT_EQ(MatchesWildcardNoCase(mixed, pattern), MatchByRules(pattern, pattern));
    }
}

TEST(TestMatch, KeepsItsEdges) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"abc", "a*c", 1}, {"abc", "*", 1},  {"abc", "abc", 1},   {"abc", "*b*", 1},    {"abc", "**", 0},
        {"**", "**", 1},   {"abc", "b*", 0}, {"ab", "ab*ab", 1},  {"aba", "a", 1},      {"", "", 1},
        {"a", "", 0},      {"", "*", 1},     {"", "a*", 0},       {"abab", "*b*ab", 1}, {"a?c", "a?c", 1},
        {"abc", "a?c", 0}, {"ABC", "a*", 0}, {"xyz", "x***z", 1},
    };
    for (const auto& [text, pattern, expected] : rows) EXPECT_EQ(Match(text, pattern), expected) << text << pattern;
    EXPECT_EQ(TestMatchNoCase("Name.CPP", "*.cpp") + TestMatchNoCase("\xC3\xA4", "\xC3\x84"), 1);
}

TEST(TestMatch, BearsPatternsOfAMebibyte) {
    constexpr int Size = 1 << 20;
    const std::string many(Size, 'a');
    EXPECT_EQ(Match(many, Repeat("a*", Size / 2)), 1);
    EXPECT_EQ(Match(many, Repeat("a*", Size / 2) + "b"), 0);
    EXPECT_EQ(Match(many, std::string("*") + std::string(Size / 2, 'a') + "b*"), 0);
    EXPECT_EQ(Match(many, Repeat(std::string(1000, 'a') + "b*", 1000)), 0);
    EXPECT_EQ(Match("a", std::string(Size, '*')), 0);
    EXPECT_EQ(Match(many, std::string("*") + Repeat(std::string(1000, 'a') + "*", 1000)), 1);
}

TEST(TestMatchWithLogExp, FollowsTheRulesOnRandomFormulas) {
    const std::vector<std::string> pieces{"a", "b", "*", "&&", "||", "&",    "|",
                                          "!", "(", ")", "~",  "!(", "a*&&", "(a||b)"};
    std::mt19937 random(5);
    int holding = 0;
    for (int round = 0; round < 400000; ++round) {
        std::string formula;
        // Few operators of the other kind, so that most formulas are not false at once.
        const std::size_t other = random() % 2 ? 3 : 4;
        for (auto count = random() % 10; count > 0; --count) {
            const std::size_t piece = random() % pieces.size();
            formula += pieces[piece == other ? 7 - other : piece];
        }
        const std::string text = RandomText(random, "ab", 3);
        const int expected = EvaluateByRules(text, formula);
        ASSERT_EQ(HoldsOn(text.c_str(), formula), expected) << text << " " << formula;
        holding += expected;
    }
    EXPECT_GT(holding, 20000);
}

TEST(TestMatchWithLogExp, KeepsItsEdges) {
    const std::pair<const char*, int> rows[] = {
        // formulas, and whether they hold on the text "a"
        {"(a)||(b)", 0}, {"!(a)||(b)", 1}, {"(a||b)", 1}, {"((a))", 1}, {"&&", 1},      {"||", 0},
        {"(a", 0},       {"!!(a)", 0},     {"!()", 0},    {"()", 0},    {"a&&b||a", 0}, {"(a||b)&&!(c*)", 1},
        {"a&&", 1},      {"!b", 1},        {" a", 0},
    };
    for (const auto& [formula, expected] : rows) EXPECT_EQ(HoldsOn("a", formula), expected) << formula;
    EXPECT_EQ(HoldsOn("abc", "a*&&*c"), 1);
    EXPECT_EQ(HoldsOn("abc", "!(x*)"), 1);
}

TEST(TestMatchWithLogExp, TakesNoTimeOrStackForDepth) {
    constexpr int Depth = 100000;
    const std::pair<std::string, int> rows[] = {
        {Repeat("(", Depth) + "a" + Repeat(")", Depth), 1},
        {Repeat("!(", Depth) + "a" + Repeat(")", Depth), 1},
        {Repeat("a&&(", Depth) + "a" + Repeat(")", Depth), 1},
        {Repeat("b||(", Depth) + "b" + Repeat(")", Depth), 0},
        {Repeat("a&&!(", Depth) + "b" + Repeat(")", Depth), 0},
        {Repeat("~a||(", Depth) + "a" + Repeat(")", Depth), 1},
        {Repeat("a&&(", Depth) + Repeat("~~a", Depth) + Repeat(")", Depth), 0},
        {Repeat("a&&", Depth) + "a", 1},
        {Repeat("(", Depth) + "a", 0},
    };
    for (const auto& [formula, expected] : rows) EXPECT_EQ(HoldsOn("a", formula), expected) << formula.substr(0, 20);
}
