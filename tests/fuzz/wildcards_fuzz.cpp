// Wildcards and formulas of them, by their rules.
#include "TATextUtilities.h"
#include "fuzz/input.h"
#include "text/wildcard.h"
#include "text/wildcard_model.h"

FUZZ_TARGET(input) {
    const auto lower = [](std::string text) {
        for (char& c : text)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return text;
    };
    const bool isSpelled = input.Flip();
    const std::string pattern = isSpelled ? input.Spell({"a", "b", "AB", "*"}, 20) : input.Text(200);
    const std::string formula =
        isSpelled
            ? input.Spell({"a", "b", "*", "&&", "||", "&", "|", "!", "(", ")", "~~", "!(", "a*&&", "(a||b)", "~"}, 30)
            : input.Text(200);
    const std::string text = isSpelled ? input.Spell({"a", "b", "A", "*"}, 40) : input.Rest();
    ZELString subject{std::string_view(text)};
    ASSERT_EQ(TestMatch(subject, ZELString(std::string_view(pattern))), MatchByRules(text, pattern));
    ASSERT_EQ(TestMatchNoCase(subject, ZELString(std::string_view(pattern))),
              MatchByRules(lower(text), lower(pattern)));
    ASSERT_EQ(MatchesWildcardNoCase(text, pattern), MatchByRules(lower(text), lower(pattern)));
    ASSERT_EQ(TestMatchWithLogExp(subject, ZELString(std::string_view(formula))), EvaluateByRules(text, formula));
}
