#include "base/bytes16.h"

#include "support/testing.h"

namespace {

using Bytes = std::array<std::uint8_t, Bytes16::Size>;

Bytes Out(Bytes16 value) {
    Bytes bytes;
    StoreBytes(bytes.data(), value);
    return bytes;
}

// Bytes that meet often, and at the ends of every comparison.
Bytes Draw(std::mt19937& random) {
    constexpr std::uint8_t Edges[] = {0, 1, 31, 32, 47, 92, 127, 128, 129, 254, 255};
    Bytes bytes;
    for (std::uint8_t& byte : bytes) byte = Edges[random() % std::size(Edges)];
    return bytes;
}

// The result of `operation` for each byte or word of two values.
template <class Element, class Operation>
Bytes Expect(const Bytes& left, const Bytes& right, Operation operation) {
    Bytes result;
    for (std::size_t i = 0; i < Bytes16::Size; i += sizeof(Element)) {
        Element one, other;
        std::memcpy(&one, left.data() + i, sizeof one);
        std::memcpy(&other, right.data() + i, sizeof other);
        const auto value = static_cast<Element>(operation(one, other));
        std::memcpy(result.data() + i, &value, sizeof value);
    }
    return result;
}

}  // namespace

TEST(Bytes16, EveryOperationAgreesWithItsDefinition) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        const Bytes left = Draw(random), right = Draw(random);
        const Bytes16 one = LoadBytes(left.data()), other = LoadBytes(right.data());
        ASSERT_EQ(Out(one & other), Expect<std::uint8_t>(left, right, std::bit_and()));
        ASSERT_EQ(Out(one | other), Expect<std::uint8_t>(left, right, std::bit_or()));
        ASSERT_EQ(Out(one ^ other), Expect<std::uint8_t>(left, right, std::bit_xor()));
        ASSERT_EQ(Out(Without(one, other)), Expect<std::uint8_t>(left, right, [](int a, int b) { return a & ~b; }));
        const auto negated = [](auto compare) { return [compare](auto a, auto b) { return compare(a, b) ? -1 : 0; }; };
        ASSERT_EQ(Out(EqualBytes(one, other)), Expect<std::int8_t>(left, right, negated(std::equal_to())));
        ASSERT_EQ(Out(LessBytes(one, other)), Expect<std::int8_t>(left, right, negated(std::less())));
        ASSERT_EQ(Out(EqualWords(one, other)), Expect<std::int32_t>(left, right, negated(std::equal_to())));
        ASSERT_EQ(Out(LessWords(one, other)), Expect<std::int32_t>(left, right, negated(std::less())));
        ASSERT_EQ(Out(PairsThatBeginWithZero(one)),
                  Expect<std::int16_t>(left, left, negated([](int a, int) { return (a & 0xFF) == 0; })));
        unsigned byteMask = 0, wordMask = 0;
        std::uint32_t number = 0;
        Bytes front, back;
        for (unsigned i = 0; i < Bytes16::Size; ++i) {
            byteMask |= (left[i] >> 7 & 1u) << i;
            if (i % 4 == 3) wordMask |= (left[i] >> 7 & 1u) << i / 4;
            number = number * 31 + static_cast<std::uint32_t>(static_cast<std::int8_t>(left[i]));
            front[i] = (i % 2 == 0 ? left : right)[i / 2];
            back[i] = (i % 2 == 0 ? left : right)[8 + i / 2];
        }
        ASSERT_EQ(ByteMask(one), byteMask);
        ASSERT_EQ(WordMask(one), wordMask);
        ASSERT_EQ(NumberToBase31(one), number);
        ASSERT_EQ(Out(InterleaveFront(one, other)), front);
        ASSERT_EQ(Out(InterleaveBack(one, other)), back);
        Bytes half = right;
        StoreFrontHalf(half.data(), SecondOfPairs(LoadBytes(front.data())));
        for (unsigned i = 0; i < Bytes16::Size; ++i) ASSERT_EQ(half[i], right[i]) << i;
    }
}
