#include "TATextUtilities.h"
#include "support/testing.h"
#include "text/text_model.h"

namespace {

// What one of the two functions makes of a block that is exactly as large as the text.
std::pair<int, std::string> OnHeap(int (*function)(char*&), const std::string& text) {
    char* block = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    const int result = function(block);
    const std::string changed = block;
    std::free(block);
    return {result, changed};
}

}  // namespace

TEST(XMLEscape, WritesAndReadsWhatPassesForEachEntityWould) {
    const std::string pieces[] = {"&",        "amp;",      "lt;",    "&gt;", "&quot;", "&apos;", "<",
                                  ">",        "\"",        "'",      ";",    "&am",    "p",      "a long run of text",
                                  "\xC3\xA4", "toreplace", "torepl", "ace"};
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 12; count > 0; --count) text += pieces[random() % std::size(pieces)];

        const std::string encoded = EncodedByPasses(text);
        ASSERT_EQ(OnHeap(encodeXMLString, text), std::pair(encoded != text ? 1 : 0, encoded));
        ASSERT_EQ(OnHeap(decodeXMLString, text),
                  std::pair(DecodedByPasses(text) != text ? 1 : 0, DecodedByPasses(text)));

        std::string marked = text;
        for (std::size_t at; (at = marked.find("toreplace")) != std::string::npos;) marked.replace(at, 9, 1, '&');
        ZELString source(text.c_str());
        ASSERT_EQ(std::string(substituteEntities(source).View()), EncodedByPasses(marked)) << text;
        ASSERT_EQ(source, text.c_str());
    }
}

TEST(XMLEscape, TakesTimeInProportionToTheText) {
    constexpr std::size_t Count = 2000000;
    EXPECT_EQ(OnHeap(decodeXMLString, '&' + Repeat("amp;", Count)), std::pair(1, std::string("&")));
    EXPECT_EQ(OnHeap(encodeXMLString, std::string(Count, '\'')).second.size(), Count * 6);
    ZELString ampersands(std::string(Count, '&').c_str());
    EXPECT_EQ(substituteEntities(ampersands).View().size(), Count * 5);

    char* none = nullptr;
    EXPECT_EQ(encodeXMLString(none) + decodeXMLString(none), 0);
}
