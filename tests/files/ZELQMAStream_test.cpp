#include "ZELQMAStream.h"

#include "support/test_system.h"
#include "support/testing.h"

namespace {

// Every line, and the end for good.
void Check(ZELQMAStream& stream, std::string_view text) {
    char* line = nullptr;
    for (std::size_t end; (end = text.find('\n')) != text.npos; text.remove_prefix(end + 1)) {
        ASSERT_EQ(stream.getline(line), 1);
        ASSERT_EQ(std::string_view(line, end), text.substr(0, end));
        ASSERT_EQ(line[end], '\0');
        std::memset(line, '\n', end);  // the line is the caller's
    }
    char* const last = line;
    for (int again = 0; again < 3; ++again) ASSERT_EQ(stream.getline(line), 0);
    ASSERT_EQ(line, last);
}

struct LinesInPlace : testing::Test {
    void CheckFile(const std::string& text) {
        WriteBytes(file, text);
        ASSERT_NE(stream.fopen(file.c_str(), "rb"), nullptr);
        ASSERT_NO_FATAL_FAILURE(Check(stream, text)) << text.size();
        ASSERT_EQ(stream.ReadError(), 0);
        ASSERT_EQ(stream.fclose(), 0);
        ASSERT_EQ(stream.fclose(), 1);
    }

    const TemporaryFolder folder;
    const std::string file = folder / "text";
    ZELQMAStream stream;
};

}  // namespace

TEST_F(LinesInPlace, OfEveryLengthAroundStepsAndBuffers) {
    std::mt19937 random(5);
    for (std::size_t size = 0; size < 150; ++size) {
        std::string text(size, 'x');
        for (char& c : text) c = random() % 20 == 0 ? '\n' : static_cast<char>(random() % 2);
        ASSERT_NO_FATAL_FAILURE(CheckFile(text));
    }
    for (const std::size_t length :
         {63998u, 63999u, 64000u, 64001u, 64063u, 64064u, 127999u, 128000u, 200000u, 1000000u})
        for (const char* const begin : {"", "\n", "abc\n"})
            for (const char* const end : {"", "\n", "\nmore", "\nmore\n"})
                ASSERT_NO_FATAL_FAILURE(CheckFile(begin + std::string(length, 'y') + end));
}

TEST_F(LinesInPlace, OfRandomTextsOfManyBuffers) {
    std::mt19937 random(6);
    for (const unsigned longest : {3u, 100u, 5000u, 90000u, 300000u}) {
        std::string text;
        while (text.size() < 1000000)
            text += std::string(random() % longest, static_cast<char>(random() % 64 + 32)) + '\n';
        ASSERT_NO_FATAL_FAILURE(CheckFile(text + "rest"));
    }
}

TEST_F(LinesInPlace, CopiesShareTheFileWhichIsTheCallers) {
    WriteBytes(file, "head\none\r\ntwo\nthree\n");
    char* line = nullptr;
    EXPECT_EQ(stream.getline(line) + 1 - stream.fclose(), 0);
    std::FILE* const own = stream.fopen(file.c_str(), "rt");
    char head[10] = "";
    EXPECT_STREQ(std::fgets(head, sizeof head, own), "head\n");  // read first, and left out then
    EXPECT_EQ(stream.getline(line), 1);
    EXPECT_STREQ(line, onWindows ? "one" : "one\r");
    {
        ZELQMAStream copy(stream), assigned;
        assigned = copy;
        EXPECT_EQ(assigned.getline(line), 1);
        EXPECT_STREQ(line, "two");
    }
    EXPECT_EQ(stream.getline(line), 1);
    EXPECT_STREQ(line, "three");
    EXPECT_EQ(ZELQMAStream(stream).fclose(), 0);
    EXPECT_EQ(stream.fclose(), 1);
    EXPECT_EQ(stream.getline(line), 0);
    for (const std::string& path : {folder.Path(), folder / "missing", std::string()})
        EXPECT_EQ(stream.fopen(path.c_str(), "rt"), nullptr) << path;
    EXPECT_EQ(stream.fopen(nullptr, "r"), nullptr);
}

TEST_F(LinesInPlace, AReadErrorIsNoEnd) {
    if (UnreadableFile.empty()) GTEST_SKIP() << "every file can be read";
    char* line = nullptr;
    EXPECT_EQ(stream.ReadError(), 1);
    ASSERT_NE(stream.fopen(UnreadableFile.c_str(), "r"), nullptr);
    EXPECT_EQ(stream.ReadError() + stream.getline(line), 0);
    EXPECT_EQ(stream.ReadError(), 1);
    EXPECT_EQ(stream.fclose(), 0);
}
