#include "ZELToken.h"

#include "support/testing.h"

TEST(ZELToken, CutsLikeTheModelWhateverTheSeparators) {
    std::mt19937 random(1);
    const char* const separators[] = {";", "\\", ";\\", "", "xyz", ";;;\\:"};
    for (int round = 0; round < 5000; ++round) {
        std::string rest = RandomText(random, "ab;\\:x", 19);
        ZELToken tokens{ZELUnicodeString(rest.c_str())};
        for (int call = 0; call < 12; ++call) {
            const char* const now = separators[random() % std::size(separators)];
            const std::size_t start = std::min(rest.find_first_not_of(now), rest.size());
            const std::size_t end = std::min(rest.find_first_of(now, start), rest.size());
            ASSERT_EQ(tokens.GetNextToken(now), rest.substr(start, end - start).c_str()) << rest << " at " << now;
            rest.erase(0, end + 1);
        }
    }
}

TEST(ZELToken, CutsAtCharactersNotAtBytes) {
    EXPECT_EQ(ZELToken("\xC3\xA9x\xC3\xA8y\xA9z").GetNextToken("\xC3\xA9"), "x\xC3\xA8y\xA9z");
    const ZELUnicodeString none = ZELToken(nullptr).GetNextToken(nullptr);
    EXPECT_TRUE(none == "" && !none.IsNull());
}
