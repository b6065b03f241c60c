#include "ZELToken.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

// Character by character: what is no separator gathers, and the first separator behind it ends the token.
std::string NextToken(std::string& rest, const std::string& separators) {
    std::string token;
    while (!rest.empty()) {
        const char first = rest.front();
        rest.erase(0, 1);
        if (separators.find(first) == std::string::npos)
            token += first;
        else if (!token.empty())
            break;
    }
    return token;
}

}  // namespace

TEST(ZELToken, CutsLikeTheModelWhateverTheSeparators) {
    std::mt19937 random(1);
    const char* const separators[] = {";", "\\", ";\\", "", "xyz", ";;;\\:"};
    for (int round = 0; round < 5000; ++round) {
        std::string rest;
        for (auto length = random() % 20; length > 0; --length) rest += "ab;\\:x"[random() % 6];
        ZELToken tokens{ZELUnicodeString(rest.c_str())};
        for (int call = 0; call < 12; ++call) {
            const char* const now = separators[random() % std::size(separators)];
            const std::string text = rest;
            ASSERT_EQ(tokens.GetNextToken(now), NextToken(rest, now).c_str()) << text << " at " << now;
        }
    }
}

TEST(ZELToken, CutsAtCharactersNotAtBytes) {
    ZELToken tokens(
        "\xC3\xA9"
        "a\xC3\xA8"
        "b\xA9"
        "c");
    EXPECT_EQ(tokens.GetNextToken("\xC3\xA9"),
              "a\xC3\xA8"
              "b\xA9"
              "c");
    const ZELUnicodeString none = ZELToken(nullptr).GetNextToken(nullptr);
    EXPECT_TRUE(none == "" && !none.IsNull());
}
