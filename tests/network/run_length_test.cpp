#include "network/codes_model.h"
#include "support/files.h"
#include "support/testing.h"

namespace {

constexpr unsigned char Untouched = 0xA5;

// Runs whose lengths lie around the borders of the format and of wide steps.
Bytes RandomBytes(std::mt19937& random, std::size_t limit) {
    const std::size_t lengths[] = {1, 2, 3, 15, 16, 17, 63, 64, 65, 66, 127, 128, 129, 500, 8064, 8065};
    const std::size_t most = std::size_t{1} << (random() % 5);  // from hardly any long run to many
    Bytes bytes;
    for (auto runs = random() % 60; runs > 0 && bytes.size() < limit; --runs) {
        const unsigned kind = random() % 3;
        for (std::size_t length = lengths[random() % most]; length > 0; --length)
            bytes.push_back(kind == 0 ? 0x00 : kind == 1 ? 0xFF : static_cast<unsigned char>(1 + random() % 254));
    }
    bytes.shrink_to_fit();  // so that a read beyond is seen
    return bytes;
}

// A stream of any codes; its header may tell less than there is, but no more.
Bytes RandomStream(std::mt19937& random) {
    Bytes stream(4);
    const unsigned kind = random() % 4;
    for (auto codes = random() % 700; codes > 0; --codes) {
        const unsigned code = random() % 256;
        const bool isLiteral = kind == 0 || (kind == 1 && code < 200);
        stream.push_back(static_cast<unsigned char>(isLiteral ? 0 : kind == 3 ? 1 + code % 127 : code));
        if (isLiteral) stream.push_back(static_cast<unsigned char>(random()));
    }
    SetHeader(stream, stream.size() - (random() % 4 == 0 ? random() % stream.size() : 0));
    return stream;
}

void ExpectTail(const Bytes& out, std::size_t from) {
    ASSERT_TRUE(std::all_of(out.begin() + static_cast<std::ptrdiff_t>(from), out.end(),
                            [](unsigned char byte) { return byte == Untouched; }))
        << "written behind " << from;
}

void CompressWithin(Bytes& in, const Bytes& expected, int capacity, std::string& messages) {
    Bytes out(static_cast<std::size_t>(std::max(capacity, 0)) + 64, Untouched);
    const int result = rle_compress(static_cast<int>(in.size()), in.data(), capacity, out.data());
    if (capacity < static_cast<int>(expected.size())) {
        ASSERT_EQ(result, 1) << capacity;
        messages += overflow;
        ExpectTail(out, static_cast<std::size_t>(std::max(capacity, 0)));
    } else {
        ASSERT_EQ(result, static_cast<int>(expected.size()));
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out.begin()));
        ExpectTail(out, expected.size());
    }
}

void ExpandWithin(Bytes& stream, int capacity, std::string& messages) {
    const Expansion expected = Expanded(stream, capacity);
    const std::size_t room = static_cast<std::size_t>(std::max(capacity, 0));
    Bytes out(room + 64, Untouched);
    ASSERT_EQ(rle_uncompress(stream.data(), capacity, out.data()), expected.result) << capacity;
    ASSERT_TRUE(std::equal(expected.bytes.begin(), expected.bytes.end(), out.begin())) << capacity;
    ExpectTail(out, expected.message.empty() ? expected.bytes.size() : std::max(room, expected.bytes.size()));
    messages += expected.message;
}

}  // namespace

TEST(RunLength, WritesTheStreamsOfItsFormat) {
    const auto zeros = [](std::size_t count) { return Bytes(count, 0x00); };
    const std::pair<Bytes, Bytes> rows[] = {
        {{}, {4, 0, 0, 0}},
        {zeros(300), {6, 0, 0, 0, 129, 44}},
        {zeros(8064), {5, 0, 0, 0, 190}},
        {zeros(8065), {6, 0, 0, 0, 190, 1}},
        {zeros(8192), {6, 0, 0, 0, 190, 128}},
        {Bytes(70, 0xFF), {6, 0, 0, 0, 255, 195}},
        {{0x41, 0x42}, {8, 0, 0, 0, 0, 0x41, 0, 0x42}},
    };
    for (auto [in, stream] : rows) {
        Bytes out(stream.size());
        ASSERT_EQ(rle_compress(static_cast<int>(in.size()), in.data(), static_cast<int>(out.size()), out.data()),
                  static_cast<int>(stream.size()));
        EXPECT_EQ(out, stream);
        EXPECT_EQ(rle_compressed_size(out.data()), static_cast<int>(stream.size()));
        Bytes expanded(in.size() + 1);
        EXPECT_EQ(rle_uncompress(out.data(), static_cast<int>(in.size()), expanded.data()),
                  static_cast<int>(in.size()));
    }
    const std::pair<int, int> rooms[] = {
        {0, 4}, {2, 8}, {-1, 4}, {INT_MIN, 4}, {1 << 30, INT_MAX}, {INT_MAX, INT_MAX}, {(1 << 30) - 3, INT_MAX - 1}};
    for (const auto& [size, room] : rooms) EXPECT_EQ(rle_max_compressed_size(size), room) << size;
}

TEST(RunLength, AgreesWithTheStepsOfTheFormatWhateverTheRoom) {
    std::mt19937 random(1);
    std::string messages;
    testing::internal::CaptureStderr();
    for (int round = 0; round < 1500; ++round) {
        Bytes in = RandomBytes(random, round % 10 == 0 ? 60000 : 1500);
        Bytes stream = Compressed(in);
        const int full = static_cast<int>(stream.size()), size = static_cast<int>(in.size());
        for (const int capacity : {full, full - 1, full + 500, static_cast<int>(random() % stream.size()), 3, -1})
            ASSERT_NO_FATAL_FAILURE(CompressWithin(in, stream, capacity, messages)) << "round " << round;
        for (const int capacity : {size, size - 1, size - 2, size + 1, size + 9000, size / 2, 0, -1})
            ASSERT_NO_FATAL_FAILURE(ExpandWithin(stream, capacity, messages)) << "round " << round;
    }
    EXPECT_EQ(WithoutReturns(testing::internal::GetCapturedStderr()), messages);
}

TEST(RunLength, ExpandsStreamsThatLieWithinTheirBounds) {
    std::mt19937 random(2);
    std::string messages;
    testing::internal::CaptureStderr();
    for (int round = 0; round < 3000; ++round) {
        Bytes stream = RandomStream(random);
        const Expansion whole = Expanded(stream, INT_MAX);
        const int size = static_cast<int>(whole.bytes.size());
        // In a block of its own, cut where the header ends it: a read beyond is seen.
        stream.resize(static_cast<std::size_t>(std::max(rle_compressed_size(stream.data()), 4)));
        stream.shrink_to_fit();
        for (const int capacity : {size, size - 1, size + 100, static_cast<int>(random() % 300)})
            ASSERT_NO_FATAL_FAILURE(ExpandWithin(stream, capacity, messages)) << "round " << round;
    }
    EXPECT_EQ(WithoutReturns(testing::internal::GetCapturedStderr()), messages);
}

TEST(RunLength, TakesBadSizesAndKeepsTheOneByteMore) {
    Bytes out(8, Untouched), byte = {0x41};
    testing::internal::CaptureStderr();
    EXPECT_EQ(rle_compress(-5, byte.data(), 8, out.data()), 4);
    EXPECT_EQ(rle_compress(1, nullptr, 8, out.data()), 4);
    EXPECT_EQ(rle_compress(1, byte.data(), 8, nullptr), 1);
    Bytes literal = {6, 0, 0, 0, 0, 0x41};
    EXPECT_EQ(rle_uncompress(literal.data(), 8, nullptr), 1);
    EXPECT_EQ(rle_uncompress(literal.data(), -1, out.data()), 1);
    EXPECT_EQ(WithoutReturns(testing::internal::GetCapturedStderr()), std::string(overflow) + overflow + overflow);

    out.assign(8, Untouched);
    EXPECT_EQ(rle_uncompress(literal.data(), 0, out.data()), 1);
    EXPECT_EQ(out[0], 0x41);
    ExpectTail(out, 1);
    EXPECT_EQ(rle_uncompress(nullptr, 8, out.data()), 0);
    EXPECT_EQ(rle_compressed_size(nullptr), 0);
    for (Bytes header : {Bytes{0, 0, 0, 0}, Bytes{4, 0, 0, 0}, Bytes{6, 0, 0, 0x80}, Bytes{0xFF, 0xFF, 0xFF, 0xFF}})
        EXPECT_EQ(rle_uncompress(header.data(), 8, out.data()), 0);
}
