// Matching against a slow model, on small texts completely and on long ones at random; and on what is meant to hurt.

#include "TAUnicodeRegularExpression.h"
#include "filters/filter_model.h"
#include "support/testing.h"

namespace {

std::vector<std::u32string> AllTexts(const std::u32string& alphabet, std::size_t longest) {
    std::vector<std::u32string> texts{U""};
    for (std::size_t i = 0; texts[i].size() < longest; ++i)
        for (const char32_t letter : alphabet) texts.push_back(texts[i] + letter);
    return texts;
}

std::string Show(const std::u32string& text) {
    return ZELUnicodeString(std::u32string_view(text)).ConvertToChar();
}

// All filters of `count` elements on all texts.
void CompareWithWalk(std::size_t count, const std::vector<std::u32string>& texts) {
    std::size_t combinations = 1;
    for (std::size_t i = 0; i < count; ++i) combinations *= allElements.size();
    std::vector<ZELUnicodeString> candidates;
    for (const std::u32string& text : texts) candidates.emplace_back(std::u32string_view(text));
    TAUnicodeRegularExpression filter;
    for (std::size_t number = 0; number < combinations; ++number) {
        Elements elements;
        for (std::size_t rest = number; elements.size() < count; rest /= allElements.size())
            elements.push_back(allElements[rest % allElements.size()]);
        if (!CanBeSpelled(elements)) continue;
        ASSERT_EQ(filter.SetFilter(ZELUnicodeString(std::u32string_view(Spell(elements))), URE_NotMemoised), 0);
        for (std::size_t i = 0; i < texts.size(); ++i)
            ASSERT_EQ(filter.CheckFromFilter(candidates[i]), Walk(elements, texts[i]).Decide(100000))
                << Show(Spell(elements)) << " on " << Show(texts[i]);
    }
}

std::u32string RandomText(std::mt19937& random, std::size_t size) {
    std::u32string text(size, U'a');
    for (char32_t& letter : text) letter = random() % 16 == 0 ? U"ab\u00E9\u03A9"[random() % 4] : U'a';
    return text;
}

Element RandomElement(std::mt19937& random) {
    if (random() % 3 != 0) return allElements[random() % allElements.size()];
    const std::u32string literal = RandomText(random, 1 + random() % 40);
    return {literal, Element::Literal, literal, static_cast<int>(literal.size())};
}

// A text that the filter would match but for negated blocks and what random changes do.
std::u32string RandomMatch(std::mt19937& random, const Elements& elements) {
    std::u32string text;
    for (const Element& element : elements) {
        const std::size_t count = element.size >= 0 ? static_cast<std::size_t>(element.size) : random() % 500;
        if (element.kind == Element::Literal)
            text += element.characters;
        else if (element.kind == Element::Block && !element.isNegated)
            for (std::size_t i = 0; i < count; ++i) text += element.characters[random() % element.characters.size()];
        else
            text += RandomText(random, count);
    }
    if (random() % 4 == 0 && !text.empty()) text[random() % text.size()] = U'b';
    return text;
}

}  // namespace

TEST(FilterMatch, DecidesWhatTryingEveryWayWould) {
    for (std::size_t count = 1; count <= 3; ++count) CompareWithWalk(count, AllTexts(U"ab\u03A9", 5));
    CompareWithWalk(4, AllTexts(U"ab", 5));
}

TEST(FilterMatch, CarriesPositionsThroughLongTexts) {
    std::mt19937 random(7);
    int counts[] = {0, 0, 0};
    for (int round = 0; round < 4000; ++round) {
        Elements elements;
        do elements.push_back(RandomElement(random));
        while (random() % 7 != 0);
        if (!CanBeSpelled(elements)) continue;
        TAUnicodeRegularExpression filter;
        ASSERT_EQ(filter.SetFilter(ZELUnicodeString(std::u32string_view(Spell(elements))), URE_NotMemoised), 0);
        for (int i = 0; i < 3; ++i) {
            const std::u32string text = i == 0 ? RandomText(random, random() % 1500) : RandomMatch(random, elements);
            const int expected = Walk(elements, text).Decide(100000);
            ++counts[expected + 1];
            if (expected == -1) continue;
            ASSERT_EQ(filter.CheckFromFilter(ZELUnicodeString(std::u32string_view(text))), expected)
                << Show(Spell(elements)) << " on " << Show(text);
        }
    }
    EXPECT_LT(counts[0], 1000);
    EXPECT_GT(std::min(counts[1], counts[2]), 1000);
}

TEST(FilterMatch, BearsWhatIsMeantToHurt) {
    constexpr int Size = 1 << 20;
    const std::string many(Size, 'a');
    const std::tuple<std::string, std::string, int> rows[] = {
        {Repeat("[a-z]*", 32) + "1", std::string(1000, 'a'), 0},
        {Repeat("[a-z]*", 32) + "1", std::string(1000, 'a') + "1", 1},
        {Repeat("[a-z]*", 32) + "1*", many, 0},
        {std::string("*") + Repeat("a*", 2000) + "b*", many, 0},
        {std::string("*") + std::string(Size / 2, 'a') + "b*", many, 0},
        {std::string("*") + std::string(Size / 2, 'a') + "*" + std::string(Size / 2 - 1, 'a') + ".", many, 1},
        {"*[a]\\{500000\\}[b]*b", many, 0},
        {"*[a]\\{500000\\}[a]\\{548576\\}*", many, 1},
        {"[a]\\{99999999999999999999\\}*", many, 0},
        {Repeat("[a]\\{2147483647\\}", 5) + "*", many, 0},
        {std::string("*") + Repeat("a[b]*", 20) + "[b]*c*", Repeat("ab", Size / 2), 0},
        {std::string("*") + Repeat("ab", 10) + "[ab]*[^ab]*a[ab]*", Repeat("ab", Size / 2), 1},
        {many, many, 1},
        {Repeat("[a]", 1000) + "*", many, 1},
        {Repeat("*.", 1000), many, 1},
    };
    for (const auto& [text, candidate, expected] : rows) {
        TAUnicodeRegularExpression filter;
        ASSERT_EQ(filter.SetFilter(text.c_str(), URE_NotMemoised), 0);
        EXPECT_EQ(filter.CheckFromFilter(candidate.c_str()), expected) << text.substr(0, 40);
    }
}
