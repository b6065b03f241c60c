// Filters agree with the slow walk where it knows them; others give one result, remembered, copied or not.
#include "TAUnicodeRegularExpression.h"
#include "base/memory.h"
#include "filters/filter_model.h"
#include "fuzz/input.h"

namespace {

ZELUnicodeString Unicode(const std::u32string& text) {
    return ZELUnicodeString(std::u32string_view(text));
}

std::u32string Letters(Input& input, std::size_t longest) {
    std::u32string text;
    for (const char c : input.Text(longest)) text += U"aab\u03A9a\u00E9 "[static_cast<unsigned char>(c) % 7];
    return text;
}

void CompareWithWalk(Input& input) {
    Elements elements;
    for (int count = input.Number(1, 12); count > 0; --count) {
        const auto kind = static_cast<std::size_t>(input.Number(0, static_cast<int>(allElements.size())));
        std::u32string literal = kind == allElements.size() ? Letters(input, 60) : U"";
        std::erase(literal, U' ');
        if (kind < allElements.size())
            elements.push_back(allElements[kind]);
        else if (!literal.empty())
            elements.push_back({literal, Element::Literal, literal, static_cast<int>(literal.size())});
    }
    if (elements.empty() || !CanBeSpelled(elements)) return;
    std::u32string text = Letters(input, 1500);
    TAUnicodeRegularExpression filter;
    ASSERT_EQ(filter.SetFilter(Unicode(Spell(elements)), input.Flip() ? URE_Memoised : URE_NotMemoised), 0);
    std::u32string stripped = text.substr(std::min(text.size(), text.find_first_not_of(U' ')));
    stripped.resize(stripped.find_last_not_of(U' ') + 1);
    const int expected = Walk(elements, stripped).Decide(100000);
    if (expected < 0) return;
    for (int again = 0; again < 2; ++again) ASSERT_EQ(filter.CheckFromFilter(Unicode(text)), expected);
}

}  // namespace

FUZZ_TARGET(input) {
    if (input.Flip()) return CompareWithWalk(input);
    const bool isSpelled = input.Flip();
    const std::string spelled = input.Spell({"*", ".", "[", "]", "^", "-", "a", "z", "[:alpha:]", "[:", ":]", "\\{",
                                             "3", "\\}", "[a-z]*", "[^a]", "\xC3\xA9", " ", "[a-b]\\{2\\}"},
                                            isSpelled ? 40 : 0);
    const ZELUnicodeString text{std::string_view(isSpelled ? spelled : input.Text(300))};
    const ZELUnicodeString candidate{std::string_view(input.Text(3000))};
    zel::FailAllocation(input.Number(0, 12));
    {
        TAUnicodeRegularExpression failing(text);
        static_cast<void>(failing.CheckFromFilter(candidate));
    }
    zel::FailAllocation(0);
    TAUnicodeRegularExpression plain, remembering;
    const int refused = plain.SetFilter(text, URE_NotMemoised);
    ASSERT_EQ(remembering.SetFilter(text, URE_Memoised), refused);
    const int answer = plain.CheckFromFilter(candidate);
    TAUnicodeRegularExpression copy(remembering);
    for (int again = 0; again < 2; ++again) {
        ASSERT_EQ(remembering.CheckFromFilter(candidate), answer);
        ASSERT_EQ(copy.CheckFromFilter(candidate.Strip(ZELStripBoth, ' ')), answer);
    }
    ASSERT_TRUE(refused == 0 || answer == 0);
    ASSERT_TRUE(plain.GetFilter() == text.Strip(ZELStripBoth, ' '));
}
