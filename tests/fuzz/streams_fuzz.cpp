// Streams over files: reading in any steps, lines in place, whole files, and writing, beside plain texts.
#include "ZELFileBuffer.h"
#include "ZELQMAStream.h"
#include "files/stream_model.h"
#include "fuzz/input.h"

namespace {

void CheckLinesInPlace(const std::string& path, const std::string& bytes) {
    ZELQMAStream stream;
    ASSERT_NE(stream.fopen(path.c_str(), "rb"), nullptr);
    std::size_t at = 0;
    for (char* line = nullptr; stream.getline(line) == 1;) {
        const std::size_t end = bytes.find('\n', at);
        ASSERT_NE(end, std::string::npos);
        ASSERT_EQ(std::string_view(line, end - at), std::string_view(bytes).substr(at, end - at));
        ASSERT_EQ(line[end - at], '\0');
        std::fill(line, line + (end - at), 'x');
        at = end + 1;
    }
    ASSERT_EQ(bytes.find('\n', at), std::string::npos);
    ASSERT_EQ(stream.fclose(), 0);
}

void CheckWriting(const std::string& path, Input& input) {
    std::string expected;
    YAVOFStream stream(path.c_str(), "wb");
    while (input.remaining_bytes() > 0) {
        const std::string text = input.Text(300);
        const int number = input.ConsumeIntegral<int>();
        switch (input.Number(0, 4)) {
            case 0:
                ASSERT_EQ(stream.write(text.data(), text.size()), 0);
                expected += text;
                break;
            case 1:
                ASSERT_EQ(stream.Print("%s%d", text.c_str(), number), 0);
                expected += text.c_str() + std::to_string(number);
                break;
            case 2:
                stream << text.c_str() << number << endl;
                expected += text.c_str() + std::to_string(number) + '\n';
                break;
            case 3:
                ASSERT_EQ(stream.Putc(number), 0);
                expected += static_cast<char>(number);
                break;
            default: {
                YAVOFStream copy(stream);
                copy << static_cast<char>(number) << 1LL * number * number;
                expected += static_cast<char>(number) + std::to_string(1LL * number * number);
            }
        }
    }
    ASSERT_EQ(stream.close(), 0);
    ASSERT_EQ(ReadBytes(path), expected);
}

}  // namespace

FUZZ_TARGET(input) {
    static const TemporaryFolder folder;
    const std::string path = folder / "file";
    if (input.Flip()) return CheckWriting(path, input);
    std::mt19937 random(input.ConsumeIntegral<unsigned>());  // the steps of the reader
    std::string bytes = Repeat(input.Text(64), input.Number(0, 2000)) + input.Rest();
    WriteBytes(path, bytes);
    YAVIFStream own(path.c_str(), "rb");
    Compare(own, nullptr, StreamModel(bytes), random);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> lent(std::fopen(path.c_str(), "rb"), std::fclose);
    YAVIFStream borrowed(lent.get());
    Compare(borrowed, lent.get(), StreamModel(bytes), random);
    CheckLinesInPlace(path, bytes);
    auto* const whole = new ZELFileBuffer(path.c_str());
    ASSERT_NE(whole->getBuffer(), nullptr);
    ASSERT_EQ(std::string_view(whole->getBuffer(), static_cast<std::size_t>(whole->getBufferSize())), bytes);
    ASSERT_EQ(whole->Release(), 0);
}
