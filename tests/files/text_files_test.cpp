#include "TAFileUtilities.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// What ReadFile owes, the slow way: the lines and the result.
struct Expected {
    std::vector<std::string> lines;
    int result = 0;
};

Expected Model(const std::string& bytes, std::size_t longest) {
    Expected expected;
    std::string line;
    const auto finish = [&] {
        if (line.size() > longest) return false;
        for (char& c : line)
            if (static_cast<signed char>(c) < 32) c = ' ';
        expected.lines.push_back(std::exchange(line, {}));
        return true;
    };
    for (const char c : bytes) {
        if (c != '\n') line += c;
        if (c == '\n' && !finish()) break;  // too long, and still there
    }
    expected.result = !line.empty() && !finish() ? 1 : 0;
    return expected;
}

struct TextFiles : testing::Test {
    // Reads `bytes` by every form that has the same length of lines.
    void Check(const std::string& bytes, int bufferSize) {
        WriteBytes(file, bytes);
        const int atLeast = bufferSize < 2 ? 2 : bufferSize;
        const Expected expected = Model(bytes, static_cast<std::size_t>(atLeast) - 1);
        const std::string warning = "   WARNING : ReadFile aborted on " + file + " : file.good() is false\n";
        testing::internal::CaptureStdout();
        ZELListValZELString lines;
        int result = ReadFile(file.c_str(), lines, bufferSize);
        ASSERT_EQ(result, expected.result) << bytes.size() << ' ' << bufferSize;
        ASSERT_EQ(Texts(lines), expected.lines) << bytes.size() << ' ' << bufferSize;
        if (bufferSize == 4096) {
            ZELListValZELString again;
            result += ReadFile(file.c_str(), again);
            ASSERT_EQ(Texts(again), expected.lines);
            TAIndex index;
            result += ReadFile(file.c_str(), index);
            for (const std::string& line : expected.lines) ASSERT_GE(index.IsIn(line.c_str()), 0) << line;
            const std::set<std::string> distinct(expected.lines.begin(), expected.lines.end());
            ASSERT_EQ(index.Size(), static_cast<int>(distinct.size()));
        }
        ASSERT_EQ(WithoutReturns(testing::internal::GetCapturedStdout()), Repeat(warning, result));
    }

    const TemporaryFolder folder;
    const std::string file = folder / "text";
};

}  // namespace

TEST_F(TextFiles, LinesAreCutCleanedAndLimited) {
    std::string everyByte;
    for (int c = 0; c < 256; ++c)
        if (!onWindows || (c != '\r' && c != 0x1A)) everyByte += static_cast<char>(c);
    for (const std::string& bytes : {std::string(), std::string("\n"), std::string("a"), std::string("a\n\nb\n\n"),
                                     everyByte, everyByte + "\n" + everyByte + "\nend"})
        ASSERT_NO_FATAL_FAILURE(Check(bytes, 4096));
    for (const std::size_t length : {4094u, 4095u, 4096u, 4097u})
        for (const char* const end : {"", "\n", "\nmore", "\n\n"})
            ASSERT_NO_FATAL_FAILURE(Check("first\n" + std::string(length, 'x') + end, 4096));
    for (const int size : {INT_MIN, -1, 0, 1, 2, 3, 4, INT_MAX})
        for (const char* const text : {"a", "a\nb", "ab\n", "a\n\nabc", "abcd"})
            ASSERT_NO_FATAL_FAILURE(Check(text, size));
    // Lines that are longer than the blocks that are read.
    ASSERT_NO_FATAL_FAILURE(Check(std::string(300000, 'x') + "\n" + std::string(70000, 'y') + "\nz", INT_MAX));
}

TEST_F(TextFiles, RandomTextsOfManyBlocksAgreeWithTheModel) {
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::string bytes;
        const std::size_t size = random() % 300000;
        const unsigned endOneIn = 1 + random() % 200;
        while (bytes.size() < size) {
            const char c = static_cast<char>(random());
            bytes += random() % endOneIn == 0 ? '\n' : c == '\r' || c == 0x1A ? 'x' : c;
        }
        ASSERT_NO_FATAL_FAILURE(Check(bytes, round % 4 == 0 ? static_cast<int>(random() % 3000) : 4096));
    }
}

TEST_F(TextFiles, WindowsEndsOfLinesAndOfTexts) {
    WriteBytes(file, "a\r\n\x1A" + std::string("b\n"));
    ZELListValZELString lines;
    EXPECT_EQ(ReadFile(file.c_str(), lines), 0);
    EXPECT_EQ(Texts(lines), onWindows ? std::vector<std::string>{"a"} : (std::vector<std::string>{"a ", " b"}));
}

TEST_F(TextFiles, WhatIsNoFileOrNeverEnds) {
    ZELListValZELString lines;
    TAIndex index;
    testing::internal::CaptureStdout();
    const std::string tooLong = folder / std::string(5000, 'x');
    for (const std::string& path : {folder.Path(), folder / "missing", std::string(), tooLong}) {
        EXPECT_EQ(ReadFile(path.c_str(), lines), 1) << path;
        EXPECT_EQ(ReadFile(path.c_str(), lines, 10), 1) << path;
        EXPECT_EQ(ReadFile(path.c_str(), index), 1) << path;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    if (!onWindows) {
        EXPECT_EQ(ReadFile(EndlessDevice.c_str(), lines), 1);
    }
    EXPECT_EQ(lines.Size(), 0);
}

TEST_F(TextFiles, WrittenListsComeBackAndFailuresAreTold) {
    ZELListValZELString lines;
    EXPECT_EQ(WriteFile(file.c_str(), lines), 0);
    EXPECT_EQ(ReadBytes(file), "");
    std::string bytes;
    for (const std::size_t length : {0u, 1u, 31u, 32u, 65535u, 65536u, 65537u, 0u, 200000u, 5u}) {
        const std::string line(length, static_cast<char>('a' + length % 26));
        lines.Append(line.c_str());
        bytes += line + '\n';
    }
    EXPECT_EQ(WriteFile(file.c_str(), lines), 0);
    EXPECT_EQ(WithoutReturns(ReadBytes(file)), bytes);
    const std::string newLine = onWindows ? "\r\n" : "\n";
    EXPECT_EQ(ReadBytes(file).substr(0, newLine.size()), newLine);
    ZELListValZELString again;
    EXPECT_EQ(ReadFile(file.c_str(), again, INT_MAX), 0);
    EXPECT_TRUE(again == lines);

    for (const std::string& path : {folder.Path(), folder / "missing/text", std::string(), FullDevice}) {
        if (path.empty() && onWindows) continue;
        EXPECT_EQ(Printed([&] { EXPECT_EQ(WriteFile(path.c_str(), lines), 1) << path; }),
                  "   WARNING : WriteFile aborted on line 1 : file.good() is false\n");
    }
}
