#include "network/checksum.h"
#include "TARunLength.h"
#include "network/codes_model.h"
#include "support/testing.h"

namespace {

// What the first n bytes of the text leave, for each n.
std::vector<unsigned> Remainders(const std::string& text) {
    std::vector<unsigned> remainders = {0};
    for (const char byte : text) remainders.push_back(Feed(remainders.back(), static_cast<unsigned char>(byte), 8));
    return remainders;
}

std::string RandomText(std::mt19937& random, std::size_t length) {
    std::string text(length, 'x');
    for (char& byte : text) byte = static_cast<char>(1 + random() % 255);
    return text;
}

}  // namespace

TEST(Checksum, HasTheValuesOfTheBitwiseDefinitionAtEveryLength) {
    const std::pair<const char*, unsigned> known[] = {{"", 0}, {"a", 0x2925}, {"123456789", 0x93BCE8CF}, {nullptr, 0}};
    for (const auto& [text, sum] : known) EXPECT_EQ(crc(text, 0), sum);
    EXPECT_EQ(crc("", 1), 1U);
    EXPECT_EQ(crc("", 0xFFFFFFFF), 0xFFFFFFFF);

    std::mt19937 random(1);
    const std::string text = RandomText(random, 200000);
    const std::vector<unsigned> remainders = Remainders(text);
    const auto check = [&](std::size_t length) {
        const unsigned number = random();
        ASSERT_EQ(crc(text.substr(0, length).c_str(), number), Feed(remainders[length], number, 32)) << length;
    };
    for (std::size_t length = 0; length < 2500; ++length) check(length);
    // Around the pieces in which texts are taken, and where other forms begin.
    for (const std::size_t middle : {16384U, 65536U, 131072U})
        for (std::size_t length = middle - 40; length < middle + 40; ++length) check(length);
    for (int i = 0; i < 50; ++i) check(random() % text.size());
}

TEST(Checksum, HasFormsThatAgree) {
    const AppendBytes forms[] = {AppendByShifts, AppendByUnits, AppendByProducts(), AppendByWideUnits()};
    std::mt19937 random(2);
    for (int round = 0; round < 600; ++round) {
        // A block of its own, so that a read beyond it is seen; every alignment; any bits before it.
        const std::string block = RandomText(random, 16 + random() % (round % 3 == 0 ? 20000 : 600));
        const std::size_t from = random() % 16;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(block.data()) + from;
        const std::uint64_t before = round % 2 == 0 ? 0 : std::uint64_t{random()} << 32 | random();
        unsigned expected = Feed(Feed(0, static_cast<unsigned>(before >> 32), 32), static_cast<unsigned>(before), 32);
        for (std::size_t i = from; i < block.size(); ++i)
            expected = Feed(expected, static_cast<unsigned char>(block[i]), 8);
        for (const AppendBytes& append : forms) {
            if (append == nullptr) continue;
            ASSERT_EQ(RemainderOf(append(before, bytes, block.size() - from)), expected)
                << round << ", form " << &append - forms << ", size " << block.size() - from;
        }
    }
}
