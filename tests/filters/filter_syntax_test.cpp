// What filters mean, what is refused, how they are compiled, and what they remember.

#include "TAUnicodeRegularExpression.h"
#include "filters/filter_dump.h"
#include "filters/filter_program.h"
#include "support/failing_memory.h"
#include "support/testing.h"

namespace {

std::string Dump(const ZELUnicodeString& text) {
    FilterProgram* const program = FilterProgram::Compile(text.View());
    const std::string dump = Printed([&] { DumpProgram(*program); });
    FilterProgram::Drop(program);
    return dump;
}

int Match(const char* text, const ZELUnicodeString& candidate) {
    TAUnicodeRegularExpression filter;
    EXPECT_EQ(filter.SetFilter(text, URE_NotMemoised), 0) << text;
    return filter.CheckFromFilter(candidate);
}

}  // namespace

TEST(FilterSyntax, MeansWhatTheDocumentTells) {
    // Filters, what they match, and what they do not.
    const std::tuple<const char*, std::vector<const char*>, std::vector<const char*>> rows[] = {
        // The table of docs/filters.md.
        {"*.txt", {"x.txt", "xtxt", ".txt"}, {"txt", "x.txt2"}},
        {"a*", {"a", "abc"}, {"ba", ""}},
        {"*", {"", "abc"}, {}},
        {"lib*[.]so", {"lib.so", "libm.so"}, {"libmso", "lib.so.1"}},
        {"[a-c]", {"b"}, {"d", "ab", ""}},
        {"[^a-c]", {"d", "\xCE\xA9"}, {"b", ""}},
        {"[a-z]*_[0-9]*", {"scan_12", "_"}, {"Scan_12", "scan_1x"}},
        {"[:digit:]*", {"", "7", "123"}, {"12a"}},
        {"[:alpha:_]*", {"my_name", "\xC3\xA4_"}, {"name2"}},
        {"[0-9]\\{3\\}x", {"123x"}, {"12x", "1234x"}},
        {"[0-9]\\{3\\}", {"1\\}"}, {"123"}},
        {"[ab]\\{2\\}*", {"ab", "bax"}, {"a", "acb"}},
        {"[a-c-e]", {"a", "d", "e"}, {"-", "f"}},
        {"[a-]", {"a", "-"}, {"b"}},
        {"*[*]", {"*", "a*"}, {"a", ""}},
        {" a b ", {"a b", "  a b"}, {"ab"}},
        // What the table leaves out.
        {"", {}, {"", "a"}},
        {" ", {}, {"", " "}},
        {"[]", {}, {"", "]", "a"}},
        {"[^]*", {"", "a]"}, {}},
        {"[^]", {"a", "]"}, {""}},
        {"*[a]", {"ba", "a"}, {"b", ""}},
        {"[abc", {"b"}, {"[abc", "ab"}},
        {"[a-", {"a", "-"}, {"a-", ""}},
        {"[a", {"a"}, {""}},
        {"[", {}, {"", "["}},
        {"[c-a]", {"a"}, {"b", "c"}},
        {"[^:digit::upper:]", {"a", "-"}, {"1", "A"}},
        {"[--/]", {"-", ".", "/"}, {"0"}},
        {"[]]", {}, {"]", "]]"}},
        {"[a]\\{\\}x", {"ax"}, {"x", "aax"}},
        {"[a]\\{0\\}x", {"x"}, {"ax"}},
        {"[a]\\{0\\}*", {"b"}, {""}},
        {"*[a]\\{0\\}x[a]\\{0\\}", {}, {"x", "xx"}},
        {"[a]\\{", {"a"}, {"a\\{", ""}},
        {"[a]\\{1", {"a"}, {"a1"}},
        {"[a]\\{12x", {"a2x"}, {"a12x"}},
        {"[a]\\x", {"a\\x"}, {"ax"}},
        {"[a]**b", {"b", "aab", "aaxb"}, {"a"}},
        {"a\\*", {"a\\", "a\\b"}, {"a*"}},
    };
    for (const auto& [filter, matches, fails] : rows) {
        for (const char* text : matches) EXPECT_EQ(Match(filter, text), 1) << filter << " on " << text;
        for (const char* text : fails) EXPECT_EQ(Match(filter, text), 0) << filter << " on " << text;
    }
}

TEST(FilterSyntax, RefusesUnknownClassesAndBadCounts) {
    for (const char* text : {"[:foo:]", "[:xdigit:]", "[:digit]", "[:digit", "a[a-:]", "[:]", "[:", "[:Digit:]",
                             "[a]\\{1x\\}yyy", "[a]\\{-1\\}yyy", "[a]\\{1\\x}yyy"}) {
        TAUnicodeRegularExpression filter("a*");
        EXPECT_EQ(filter.SetFilter(ZELUnicodeString(" ") + text, URE_Memoised), 1) << text;
        EXPECT_TRUE(filter.GetFilter() == text);
        EXPECT_EQ(filter.CheckFromFilter("a"), 0) << text;
        EXPECT_EQ(TAUnicodeRegularExpression(filter).CheckFromFilter("a"), 0);
        EXPECT_EQ(filter.SetFilter("a*", URE_Memoised), 0);
        EXPECT_EQ(filter.CheckFromFilter("a"), 1);
    }
}

TEST(FilterSyntax, AsksTheClassesAndRangesOfEveryCharacter) {
    const std::pair<const char*, int (ZELUnicodeChar::*)() const noexcept> rows[] = {
        {"alnum", &ZELUnicodeChar::IsAlnum}, {"alpha", &ZELUnicodeChar::IsAlpha}, {"cntrl", &ZELUnicodeChar::IsCntrl},
        {"digit", &ZELUnicodeChar::IsDigit}, {"graph", &ZELUnicodeChar::IsGraph}, {"lower", &ZELUnicodeChar::IsLower},
        {"print", &ZELUnicodeChar::IsPrint}, {"punct", &ZELUnicodeChar::IsPunct}, {"space", &ZELUnicodeChar::IsSpace},
        {"upper", &ZELUnicodeChar::IsUpper},
    };
    const auto expectEverywhere = [](const ZELUnicodeString& block, const auto& holds) {
        for (const bool isNegated : {false, true}) {
            TAUnicodeRegularExpression filter(ZELUnicodeString(isNegated ? "x[^" : "x[") + block + "]*x");
            // Four characters at once go another way than fewer.
            for (char32_t code = 0; code < 0x200; ++code)
                for (const std::size_t count : {3, 4}) {
                    const auto text = U'x' + std::u32string(count, code) + U'x';
                    ASSERT_EQ(filter.CheckFromFilter(ZELUnicodeString(std::u32string_view(text))) == 1,
                              holds(ZELUnicodeChar(code)) != isNegated)
                        << block.ConvertToChar() << " " << static_cast<unsigned>(code);
                }
        }
    };
    for (const auto& row : rows)
        expectEverywhere(ZELUnicodeString(":") + row.first + ":", [&](auto c) { return (c.*row.second)() != 0; });
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const ZELUnicodeChar first(static_cast<char32_t>('a' + random() % (round % 2 ? 0x20 : 0x140)));
        const auto end = static_cast<char32_t>('a' + random() % (round % 2 ? 0x20 : 0x140));
        const ZELUnicodeChar last(round % 7 == 0 ? U'\u00FF' : end);
        const ZELUnicodeString block = ZELUnicodeString(first, 1) + "-" + ZELUnicodeString(last, 1);
        // The end of a range counts by itself as well.
        expectEverywhere(block, [&](ZELUnicodeChar c) { return (c >= first && c <= last) || c == last; });
    }
}

TEST(FilterSyntax, CompilesEveryBeginningOfAFilter) {
    const std::u32string_view whole = U"a*b.[^a-c-:digit:\u03A9]*x[a]\\{12\\}[b]*[:upper:]\\{3\\}yy[z";
    const std::size_t digit = whole.find(U":d");
    const std::size_t upper = whole.find(U":u");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const bool isInName = (size > digit && size < digit + 7) || (size > upper && size < upper + 7);
        TAUnicodeRegularExpression filter;
        EXPECT_EQ(filter.SetFilter(ZELUnicodeString(whole.substr(0, size)), URE_NotMemoised), isInName ? 1 : 0) << size;
        EXPECT_GT(Dump(filter.GetFilter()).size(), 150u);
        EXPECT_EQ(filter.CheckFromFilter("\xC3\xA4"), 0);
    }
}

TEST(FilterSyntax, ShowsTheCompiledForm) {
    EXPECT_EQ(Dump("*.txt[^a-c:digit:]*[x]\\{3\\}y"),
              std::string() +
                  " ----------> Regular Expression <----------\n"
                  " ----  Filter definition <*.txt[^a-c:digit:]*[x]\\{3\\}y> with 28 valid characters\n"
                  " ----  6 lexemes detected\n"
                  " ----  Lex / Start : Type  : Size  : First : Last  : Anl\n"
                  " ----    0 /    0  :    1  :   -1  :   -1  :   -1  :   -1\n"
                  " ----    1 /    1  :    2  :    1  :   -1  :   -1  :   -1\n"
                  " ----    2 /    2  :    0  :    3  :   -1  :   -1  :   -1\n"
                  " ----    3 /    5  :    4  :   -1  :    0  :    2  :   -1\n"
                  "     +++   0 /  1 : a : c\n"
                  "     +++   1 /  0 : c : " +
                  '\0' + "\n     +++   2 /  5 : : : " + '\0' +
                  "\n ----    4 /   19  :    3  :    3  :    3  :    3  :   -1\n"
                  "     +++   3 /  0 : x : " +
                  '\0' +
                  "\n ----    5 /   27  :    0  :    1  :   -1  :   -1  :   -1\n"
                  " ------------------------------------------\n");
}

TEST(FilterMemory, GivesTheSameAnswersAgain) {
    const std::u32string many(5000, U'\u00E4');
    // The first are texts whose 8-bit forms are those of others, or theirs up to a NUL; each comes before and after
    // them.
    const std::vector<std::pair<std::u32string, int>> rows{
        {{U'a', U'\0', U'b'}, 0},
        {U"a\xD800", 0},
        {U"a\xDCC3\xDCA4", 0},
        {U"a", 1},
        {U"a\xFFFD", 1},
        {U"a\xE4", 1},
        {U"", 0},
        {U"  a ", 1},
        {U"a" + many, 1},
        {U"a" + many + U"b", 0},
    };
    // Nothing is remembered of simple filters.
    const std::string text = "a[\xEF\xBF\xBD\xC3\xA4]*" + Repeat("[x]*", 40);
    TAUnicodeRegularExpression filter;
    for (const char* other : {"b", "", "[:foo:]", "*", "\xC3"}) {
        EXPECT_EQ(filter.SetFilter(text.c_str(), URE_Memoised), 0);
        for (std::size_t i = 0; i < 2 * rows.size(); ++i) {
            const std::size_t at = i % rows.size();
            const ZELUnicodeString candidate{std::u32string_view(rows[at].first)};
            ASSERT_EQ(filter.CheckFromFilter(candidate), rows[at].second) << at << " after " << other;
        }
        filter.SetFilter(other, URE_Memoised);
        EXPECT_EQ(filter.CheckFromFilter("a"), std::string(other) == "*" ? 1 : 0) << other;
        EXPECT_EQ(filter.CheckFromFilter(ZELUnicodeString(static_cast<const char*>(nullptr))), 0);
        filter = TAUnicodeRegularExpression(filter);
    }
}

TEST(FilterMemory, SharesTheProgramWithCopiesButNotTheFilter) {
    TAUnicodeRegularExpression original("[a-c]*x");
    TAUnicodeRegularExpression copy(original);
    TAUnicodeRegularExpression& alias = copy;
    copy = alias;
    original.SetFilter("y", URE_NotMemoised);
    EXPECT_EQ(copy.CheckFromFilter("abcx"), 1);
    EXPECT_TRUE(copy.GetFilter() == "[a-c]*x");
    copy = original;
    EXPECT_EQ(copy.CheckFromFilter("abcx"), 0);
    EXPECT_EQ(copy.CheckFromFilter("y"), 1);
}

TEST(FilterMemory, LetsANullFilterBecomeAStar) {
    const ZELUnicodeString null(static_cast<const char*>(nullptr));
    TAUnicodeRegularExpression filter("b");
    EXPECT_EQ(filter.SetFilter(null, URE_Memoised), 0);
    EXPECT_EQ(filter.GetFilter().IsNull() + filter.CheckFromFilter("") + filter.CheckFromFilter("a"), 1);
    EXPECT_EQ(filter.SetFilter("b", URE_Memoised), 0);
    EXPECT_TRUE(filter.GetFilter() == "*");
    EXPECT_EQ(filter.CheckFromFilter("a"), 1);
    EXPECT_EQ(filter.SetFilter("b", URE_Memoised) + filter.CheckFromFilter("a"), 0);
    for (const TAUnicodeRegularExpression& made :
         {TAUnicodeRegularExpression(), TAUnicodeRegularExpression(ZELUnicodeString()),
          TAUnicodeRegularExpression(null), TAUnicodeRegularExpression(static_cast<const char*>(nullptr))})
        EXPECT_TRUE(made.GetFilter() == "*");
    EXPECT_TRUE(TAUnicodeRegularExpression("").GetFilter() == "");
}

TEST(FilterMemory, BearsThatAnyAllocationFails) {
    // Needs every kind of memory: many records, borders, bits for many positions, maps, keys longer than a buffer.
    const ZELUnicodeString text(
        std::string_view("*b[a]*a[a]*[a]*[a]*aaaaaaaaaaaaaaaaaaaaaaaa*" + Repeat("[b-c].*", 40)));
    const ZELUnicodeString candidate(std::string_view(Repeat("baa", 1500) + std::string(30, 'a') + Repeat("bx", 40)));
    const AllocationFailures failures = FailEachAllocation(
        [&](FailingMemory& memory) {
            TAUnicodeRegularExpression filter;
            memory.Begin();
            const int refused = filter.SetFilter(text, URE_Memoised);
            const int first = filter.CheckFromFilter(candidate);
            const int again = filter.CheckFromFilter(candidate);
            TAUnicodeRegularExpression copy(filter);
            const int copied = copy.CheckFromFilter(candidate);
            memory.End();
            EXPECT_EQ(again, 1 - refused);
            EXPECT_GE(copied + again, 1 - refused);
            EXPECT_LE(first, again);
            EXPECT_EQ(filter.SetFilter(text, URE_Memoised), 0);
            EXPECT_EQ(filter.CheckFromFilter(candidate), 1);
        },
        Fallback::None, {Afterwards::Succeed});
    EXPECT_GE(failures.count, 8);
}
