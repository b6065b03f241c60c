#include "YAVFStream.h"

#include <cerrno>
#include <future>

#include "ZELFilePrepro.h"
#include "ZELQMAStream.h"
#include "files/stream_model.h"
#include "support/failing_memory.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

std::string RandomText(std::mt19937& random) {
    std::string text(random() % 8 == 0 ? random() % 200000 : random() % 2000, '\0');
    const unsigned kinds = 2 + random() % 254;
    for (char& c : text) c = static_cast<char>(random() % kinds == 0 ? '\n' : random() % kinds);
    return text;
}

struct Streams : testing::Test {
    const TemporaryFolder folder;
    const std::string file = folder / "text";
};

// A stream that says what it wrote, by closing it.
std::string Bytes(YAVOFStream& stream, const std::string& path) {
    EXPECT_EQ(stream.close(), 0);
    return ReadBytes(path);
}

}  // namespace

TEST_F(Streams, ReadingAgreesWithTheModelOnOwnAndBorrowedFiles) {
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        const std::string text = RandomText(random);
        WriteBytes(file, text);
        YAVIFStream own(file.c_str(), "rb");
        ASSERT_NO_FATAL_FAILURE(Compare(own, nullptr, StreamModel(text), random)) << round;
        std::FILE* const lent = std::fopen(file.c_str(), "rb");
        YAVIFStream borrowed(lent);
        ASSERT_NO_FATAL_FAILURE(Compare(borrowed, lent, StreamModel(text), random)) << round;
        EXPECT_EQ(borrowed.close(), 0);
        EXPECT_EQ(borrowed.isOpen(), 0);
        EXPECT_EQ(std::fclose(lent), 0);
    }
}

TEST_F(Streams, AFileThatGrowsIsReadOnAndTextModeTranslates) {
    YAVOFStream out(file.c_str(), 8);
    YAVIFStream in(file.c_str(), 8 + 2 + 64);
    ZELString line;
    EXPECT_EQ(out.Print("%s\n\n%d", "one", 2), 0);
    EXPECT_EQ(in.getline(line, '\n', 1) + in.getline(line, '\n', 1), 0);
    EXPECT_EQ(line, "2");
    EXPECT_EQ(in.getline(line, '\n', 1), 1);
    EXPECT_EQ(out.write("more\n", 5), 0);
    char bytes[10] = "";
    EXPECT_EQ(in.getline(line, '\n', 1), 1);  // the end lasts
    EXPECT_EQ(in.read(bytes, 5), 5u);
    EXPECT_STREQ(bytes, "more\n");
    EXPECT_EQ(Bytes(out, file), onWindows ? "one\r\n\r\n2more\r\n" : "one\n\n2more\n");
}

TEST_F(Streams, ModeBitsChooseTextAndAppending) {
    for (int mode = 0; mode < 64; ++mode) {
        WriteBytes(file, "old");
        YAVOFStream out;
        EXPECT_EQ(out.open(file.c_str(), mode), 0);
        out << "\n" << flush;
        const std::string lineFeed = (mode & 8) != 0 && onWindows ? "\r\n" : "\n";
        EXPECT_EQ(Bytes(out, file), ((mode & 2) != 0 ? "old" : "") + lineFeed) << mode;
    }
}

TEST_F(Streams, InsertionsPrintTheSameEverywhere) {
    YAVOFStream out(file.c_str(), "wb");
    void* const pointer = reinterpret_cast<void*>(std::uintptr_t{0x12345678abcdef});
    out << 'c' << static_cast<unsigned char>(200) << ' ' << -7 << ' ' << 4294967295u << ' ' << -8L << ' ' << 9UL << ' '
        << INT64_MIN << ' ' << UINT64_MAX << ' ' << 1e100 << ' ' << 0.1 << ' ' << 2.5L << ' ' << pointer << ' '
        << "text" << static_cast<const char*>(nullptr) << ZELString("!") << endl;
    EXPECT_EQ(out.Putc('p') + out.Print("%5.2f|%s", 3.14159, "x") + out.write("n\0l", 3) + out.write(nullptr, 3), 0);
    const char expected[] =
        "c\xC8 -7 4294967295 -8 9 -9223372036854775808 18446744073709551615 1e+100 0.1 2.5 "
        "0x78abcdef text!\np 3.14|xn\0l";
    EXPECT_EQ(Bytes(out, file), std::string(expected, sizeof expected - 1));
}

TEST_F(Streams, WhatCannotBeDoneIsToldByResultAndErrno) {
    YAVIFStream in;
    YAVOFStream out(static_cast<std::FILE*>(nullptr));
    ZELString line;
    char block[4] = "abc";
    EXPECT_EQ(out.GetErrno(), 22);
    out << "nothing" << endl << flush;
    for (const int result :
         {in.getline(line, '\n', 0), in.getline(block, 4, '\n'), in.close(), out.Print("x"), out.Putc('x'),
          out.write("x", 1), out.flush(), out.endOfFile(), out.ReadError(), 1 - in.isOpen(), in.open(nullptr, "r"),
          in.open(nullptr, 8), in.open("", 8), in.open(folder.Path().c_str(), 8), out.open(folder.Path().c_str(), 8)})
        EXPECT_EQ(result, 1);
    EXPECT_EQ(in.open((folder / "missing").c_str(), 8), 1);
    EXPECT_EQ(in.GetErrno(), ENOENT);
    EXPECT_EQ(in.read(block, 4), 0u);
    EXPECT_EQ(in.GetErrno(), 22);

    EXPECT_EQ(out.open(file.c_str(), "wb") + out.GetErrno(), 0);
    EXPECT_EQ(out.Print(nullptr), 1);
    EXPECT_EQ(out.GetErrno(), 22);
    EXPECT_EQ(in.open(file.c_str(), "wb") + in.GetErrno(), 0);  // opened, but not for reading
    EXPECT_EQ(in.getline(line, '\n', 0) + in.ReadError(), 2);
    EXPECT_EQ(in.GetErrno(), EBADF);
    EXPECT_EQ(in.getline(block, 1, '\n'), 1);
    EXPECT_EQ(in.GetErrno(), 22);
    EXPECT_EQ(in.read(block, 4), 0u);
    EXPECT_EQ(in.GetErrno(), EBADF);
    if (!FullDevice.empty()) {
        EXPECT_EQ(out.open(FullDevice.c_str(), 0), 0);
        EXPECT_EQ(out.Print("x") + out.Putc('x') + out.write("x", 1) + out.ReadError(), 4);
        EXPECT_EQ(out.GetErrno(), ENOSPC);
    }
}

// Output that an insertion lost stays lost, whatever is written after it.
TEST_F(Streams, LostOutputMakesFlushAndCloseFail) {
    WriteBytes(file, "read only");
    std::vector<std::tuple<std::string, const char*, int>> rows = {{file, "rb", EBADF}};
    if (!FullDevice.empty()) rows.emplace_back(FullDevice, "wb", ENOSPC);
    for (const auto& [path, mode, error] : rows) {
        YAVOFStream out(path.c_str(), mode);
        for (int i = 0; i < 10'000; ++i) out << "a line of " << i << '\n';
        EXPECT_EQ(out.GetErrno(), 0) << path;
        for (int round = 0; round < 3; ++round) EXPECT_EQ(out.flush(), 1) << path;
        EXPECT_EQ(out.GetErrno(), error) << path;
        YAVOFStream copy(out);
        EXPECT_EQ(copy.close(), 1) << path;
        EXPECT_EQ(copy.GetErrno(), error) << path;
    }
    YAVOFStream out(file.c_str(), "wb");
    out << "kept" << endl;
    EXPECT_EQ(out.close(), 0);
    EXPECT_EQ(ReadBytes(file), "kept\n");
}

TEST_F(Streams, CopiesShareAnOwnFileAndItsPosition) {
    const std::vector<long> before = InheritedDescriptors();
    WriteBytes(file, "one\ntwo\nthree\n");
    ZELString line;
    YAVIFStream last;
    {
        YAVIFStream first(file.c_str(), "r");
        EXPECT_EQ(InheritedDescriptors(), before);
        YAVIFStream second(first);
        EXPECT_EQ(first.getline(line, '\n', 0) + second.getline(line, '\n', 0), 0);
        EXPECT_EQ(line, "two");
        last = second;
        last = *&last;
    }
    EXPECT_EQ(last.getline(line, '\n', 0), 0);
    EXPECT_EQ(line, "three");
    YAVIFStream closing(last);
    EXPECT_EQ(closing.close() + last.isOpen(), 0);
    EXPECT_EQ(last.getline(line, '\n', 0) + last.close(), 2);
    EXPECT_EQ(last.GetErrno(), 22);

    std::FILE* const lent = std::fopen(file.c_str(), "rb");
    {
        YAVIFStream borrowed(lent);
        EXPECT_EQ(borrowed.getline(line, '\n', 0), 0);
        last = borrowed;
    }
    EXPECT_EQ(last.getline(line, '\n', 0), 0);
    EXPECT_EQ(line, "two");
    EXPECT_EQ(std::fclose(lent), 0);
}

TEST_F(Streams, ALineIsGivenAsSoonAsItIsThere) {
    if (!MakeNamedPipe(file)) GTEST_SKIP() << "no pipes among the files";
    std::promise<void> got;
    std::jthread writer([&, gotten = got.get_future()]() mutable {
        YAVOFStream out(file.c_str(), 0);
        out << "first\nsec" << flush;
        gotten.wait();
        out << "ond\n";
    });
    YAVIFStream in(file.c_str(), 0);
    ZELString line;
    EXPECT_EQ(in.getline(line, '\n', 0), 0);
    EXPECT_EQ(line, "first");
    got.set_value();
    EXPECT_EQ(in.getline(line, '\n', 0), 0);
    EXPECT_EQ(line, "second");
    EXPECT_EQ(in.getline(line, '\n', 0), 1);
}

TEST_F(Streams, EachFailedAllocationIsAFailureAndNoMore) {
    WriteBytes(file, "line\n");
    std::FILE* const lent = std::fopen(file.c_str(), "rb");
    FailEachAllocation(
        [&](FailingMemory& memory) {
            std::rewind(lent);
            memory.Begin();
            ZELString line;
            char* text = nullptr;
            YAVIFStream own(file.c_str(), 0), borrowed(lent);
            ZELQMAStream reader;
            const int failures = own.getline(line, '\n', 0) + borrowed.getline(line, '\n', 0) +
                                 (reader.fopen(file.c_str(), "r") == nullptr || reader.getline(text) == 0 ? 1 : 0) +
                                 (ZELFilePrepro(file.c_str()).preprocess(0, text) != 0 ? 1 : (std::free(text), 0));
            EXPECT_EQ(failures, memory.End() ? 1 : 0);
            reader.fclose();
        },
        Fallback::None, {Afterwards::Succeed});
    EXPECT_EQ(std::fclose(lent), 0);
}

TEST_F(Streams, TheStandardStreamsServeBeforeAndAfterMain) {
    EXPECT_EQ(RunAndWait("stream_probe", {}, file, folder / "errors"), 0);
    EXPECT_EQ(WithoutReturns(ReadBytes(file)), "before 1\nmain\nafter\n");
    EXPECT_EQ(WithoutReturns(ReadBytes(folder / "errors")), "error after\n");
}
