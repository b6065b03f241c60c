// Run lengths: any bytes come back, any stream expands by its codes, within any room. The checksum bit by bit.
#include "fuzz/input.h"
#include "network/codes_model.h"

FUZZ_TARGET(input) {
    const int capacity = input.Number(-1, 20000);
    const auto number = input.ConsumeIntegral<unsigned>();
    const bool isStream = input.Flip();
    Bytes bytes = input.ConsumeRemainingBytes<unsigned char>();
    bytes.shrink_to_fit();  // so that a read beyond is seen
    if (isStream) {
        bytes.insert(bytes.begin(), 4, 0);
        SetHeader(bytes, bytes.size() - number % bytes.size());
        const Expansion expected = Expanded(bytes, capacity);
        Bytes out(static_cast<std::size_t>(std::max(capacity, 0)) + 1);  // the byte more that the header asks for
        ASSERT_EQ(rle_uncompress(bytes.data(), capacity, out.data()), expected.result);
        ASSERT_TRUE(std::equal(expected.bytes.begin(), expected.bytes.end(), out.begin()));
        return;
    }
    const int size = static_cast<int>(bytes.size());
    const Bytes expected = Compressed(bytes);
    ASSERT_LE(static_cast<int>(expected.size()), rle_max_compressed_size(size));
    Bytes packed(std::min(static_cast<std::size_t>(std::max(capacity, 0)), expected.size()));
    const int needed = static_cast<int>(expected.size());
    ASSERT_EQ(rle_compress(size, bytes.data(), capacity, packed.data()), capacity < needed ? 1 : needed);
    if (capacity >= needed) {
        ASSERT_EQ(packed, expected);
        ASSERT_EQ(rle_compressed_size(packed.data()), needed);
        Bytes again(bytes.size());
        ASSERT_EQ(rle_uncompress(packed.data(), size, again.data()), size);
        ASSERT_EQ(again, bytes);
    }
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    unsigned sum = 0;
    for (const char byte : text) {
        if (byte == '\0') break;
        sum = Feed(sum, static_cast<unsigned char>(byte), 8);
    }
    ASSERT_EQ(crc(text.c_str(), number), Feed(sum, number, 32));
}
