// Text utilities by their rules: fields, escapes, whole words, sorted lists, UTF-16.
#include "TATextUtilities.h"
#include "fuzz/input.h"
#include "support/utf8.h"
#include "text/text_model.h"

namespace {

ZELString String(const std::string& text) {
    return ZELString(std::string_view(text));
}

// The result of a function on a block that is exactly as large as the text.
template <class Change>
Outcome OnHeap(const std::string& text, Change change) {
    char* block = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    const int result = change(block);
    Outcome outcome{result, block};
    std::free(block);
    return outcome;
}

void CheckFields(const std::string& text, const std::string& separator, int n) {
    ZELString line = String(text);
    ZELListValZELString list;
    Fields fields = SplitByRules(text, separator, NoLimit);
    ASSERT_EQ(Split(line, list, String(separator)), std::ssize(fields));
    ASSERT_EQ(Texts(list), fields);
    ZELString joined;
    ToLine(list, joined, String(separator));
    std::string expected = fields.empty() ? "" : fields[0];
    for (std::size_t i = 1; i < fields.size(); ++i) expected += separator + fields[i];
    ASSERT_EQ(joined.View(), expected);
    Split(line, list, String(separator), n);
    ASSERT_EQ(Texts(list), SplitByRules(text, separator, std::max(n, 0)));
    TAIndex index;
    const std::set<std::string> sorted(fields.begin(), fields.end());
    if (text.find('\0') == std::string::npos) ASSERT_EQ(Split(line, index, String(separator)), std::ssize(sorted));
    ZELListValZELString inserted;
    for (const std::string& field : fields) {
        ZELString entry = String(field);
        InsertInList(entry, inserted);
    }
    ASSERT_EQ(Texts(inserted), Fields(sorted.begin(), sorted.end()));
    for (const std::string& field : fields) {
        ZELString entry = String(field);
        const int found = SearchInStringList(entry, inserted);
        ASSERT_TRUE(found > 0 && entry.View().starts_with(inserted[found].View()));
    }
}

void CheckEscapes(const std::string& text) {
    const std::string encoded = EncodedByPasses(text), decoded = DecodedByPasses(text);
    ASSERT_EQ(OnHeap(text, encodeXMLString), (Outcome{encoded != text, encoded}));
    ASSERT_EQ(OnHeap(text, decodeXMLString), (Outcome{decoded != text, decoded}));
    std::string marked = text;
    for (std::size_t at; (at = marked.find("toreplace")) != std::string::npos;) marked.replace(at, 9, 1, '&');
    ZELString source = String(text);
    ASSERT_EQ(substituteEntities(source).View(), EncodedByPasses(marked));
}

void CheckUnits(const std::string& text, int capacity) {
    std::u16string expected;
    for (const char32_t code : Decode(text)) {
        const char32_t unit = IsScalar(code) ? code : 0xFFFD;
        if (unit >= 0x10000) expected += static_cast<char16_t>(0xD7C0 + (unit >> 10));
        expected += static_cast<char16_t>(unit < 0x10000 ? unit : 0xDC00 | (unit & 0x3FF));
    }
    std::vector<unsigned short> units(static_cast<std::size_t>(capacity) + 1, 7);
    const bool fits = !expected.empty() && std::ssize(expected) <= capacity;
    ASSERT_EQ(ZELToolsToUnicode(String(text), units.data(), capacity), fits ? 0 : 1);
    if (fits) ASSERT_TRUE(std::equal(expected.begin(), expected.end(), units.begin()));
    ASSERT_EQ(units[fits ? expected.size() : 0], 0);
}

}  // namespace

FUZZ_TARGET(input) {
    const int n = input.Number(-2, 12);
    const bool isSpelled = input.Flip();
    const auto take = [&](std::size_t longest) {
        std::string text = isSpelled ? input.Spell({"a", "f",  "fg", "_",         "(", ")",        ".",
                                                    " ", "\n", ":",  "::",        "&", "amp;",     "&lt;",
                                                    "<", "\"", "'",  "toreplace", "#", "\xC3\xA9", "\xF0\x9F\x98\x80"},
                                                   static_cast<int>(longest) / 8)
                                     : input.Text(longest);
        std::replace(text.begin(), text.end(), '\0', '0');
        return text;
    };
    const std::string word = take(16), open = take(16), close = take(16), by = take(32), text = take(2000);
    CheckFields(text, word, n);
    CheckEscapes(text);
    CheckUnits(text, input.Number(0, 600));
    const Outcome replaced = OnHeap(
        text, [&](char*& block) { return replace(block, word.c_str(), open.c_str(), close.c_str(), by.c_str()); });
    if (!word.empty()) ASSERT_EQ(replaced, ReplaceByRules(text, word, open, close, by).value_or(replaced));
    const char* const found = Q_strstr(text.c_str(), word.c_str(), n);
    ASSERT_TRUE(found == nullptr || word.empty() || std::string_view(found).starts_with(word));
    const std::size_t first = text.find_first_not_of(' ');
    ASSERT_EQ(IsComment(text.c_str()), first == std::string::npos || text[first] == '#' ? 1 : 0);
}
