// Signals that interrupt calls on pipes: each byte arrives once, in order, whichever end is slower.
#include "TAFileBuffer.h"
#include "TAFileUtilities.h"
#include "YAVFStream.h"
#include "ZELQMAStream.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

using Lines = std::vector<std::string>;

// More than a pipe holds, in lines of every length around the buffers of streams.
Lines MakeLines() {
    std::mt19937 random(3);
    Lines lines;
    for (int i = 0; i < 6000; ++i)
        lines.emplace_back(random() % (i % 500 == 0 ? 9000 : 60), static_cast<char>('a' + i % 26));
    return lines;
}

std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
}

void Pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(4));
}

// A file of the caller's, opened while signals interrupt that.
struct Lent {
    Lent(const std::string& path, const char* mode, int buffering, std::size_t size) {
        while ((file = std::fopen(path.c_str(), mode)) == nullptr && errno == EINTR) {
        }
        std::setvbuf(file, nullptr, buffering, size);
    }
    ~Lent() { std::fclose(file); }

    std::FILE* file;
};

int WriteInTurns(YAVOFStream& out, const Lines& lines) {
    int failures = out.isOpen() ? 0 : 1;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i % 64 == 0) failures += out.Print("%s", lines[i].c_str());
        if (i % 64 == 1) failures += out.write(lines[i].data(), lines[i].size());
        if (i % 64 > 1) out << lines[i].c_str();
        if (i % 64 == 3)
            failures += out.Putc('\n');
        else
            out << '\n';
    }
    return failures;
}

struct Writer {
    const char* name;
    std::function<int(const std::string& path, const Lines& lines)> write;
};

int WriteLent(const std::string& path, const Lines& lines, int buffering, std::size_t size) {
    const Lent lent(path, "w", buffering, size);
    YAVOFStream out(lent.file);
    return WriteInTurns(out, lines) + out.flush() + out.close();
}

const Writer writers[] = {
    {"WriteFile",
     [](const std::string& path, const Lines& lines) {
         ZELListValZELString list;
         for (const std::string& line : lines) list.Append(line.c_str());
         return WriteFile(path.c_str(), list);
     }},
    {"own stream",
     [](const std::string& path, const Lines& lines) {
         YAVOFStream out(path.c_str(), 0);
         return WriteInTurns(out, lines) + out.close();
     }},
    {"borrowed stream",
     [](const std::string& path, const Lines& lines) { return WriteLent(path, lines, _IOFBF, BUFSIZ); }},
    {"borrowed stream, large buffer",
     [](const std::string& path, const Lines& lines) { return WriteLent(path, lines, _IOFBF, 200'000); }},
    {"borrowed stream, lines",
     [](const std::string& path, const Lines& lines) { return WriteLent(path, lines, _IOLBF, BUFSIZ); }},
    {"borrowed stream, no buffer",
     [](const std::string& path, const Lines& lines) { return WriteLent(path, lines, _IONBF, 0); }},
    {"file buffer",
     [](const std::string& path, const Lines& lines) {
         WriteBytes(path + ".text", Joined(lines));
         TAFileBuffer buffer((path + ".text").c_str(), 0);
         TAFileName target(path.c_str());
         const int result = buffer.SaveAs(target);
         TAFileBuffer::ASyncCleanup();
         return result;
     }},
};

struct Reader {
    const char* name;
    std::function<std::string(const std::string& path)> read;
};

std::string ReadLines(YAVIFStream& in) {
    std::string text;
    char block[50];
    ZELString line;
    for (int i = 0;; ++i) {
        if (i % 3 == 0) {
            const std::size_t count = in.read(block, sizeof block);
            if (text.append(block, count), count == 0) break;
        } else if (i % 3 == 1) {
            if (in.getline(line, '\n', 0) != 0) break;
            text.append(line.View()) += '\n';
        } else {
            if (in.getline(block, sizeof block, '\n') != 0) break;
            text += block;  // at its full length a line goes on
            if (std::strlen(block) < sizeof block - 1) text += '\n';
        }
    }
    return in.ReadError() != 0 ? "failed after " + std::to_string(text.size()) : text;
}

const Reader readers[] = {
    {"ReadFile",
     [](const std::string& path) {
         ZELListValZELString list;
         return ReadFile(path.c_str(), list, 100'000) == 0 ? Joined(Texts(list)) : "";
     }},
    {"own stream",
     [](const std::string& path) {
         YAVIFStream in(path.c_str(), 0);
         return ReadLines(in);
     }},
    {"borrowed stream",
     [](const std::string& path) {
         const Lent lent(path, "r", _IOFBF, BUFSIZ);
         YAVIFStream in(lent.file);
         return ReadLines(in);
     }},
    {"lines in place",
     [](const std::string& path) {
         ZELQMAStream in;
         std::string text;
         if (in.fopen(path.c_str(), "r") == nullptr) return text;
         for (char* line = nullptr; in.getline(line) == 1;) (text += line) += '\n';
         return in.fclose() == 0 ? text : "";
     }},
};

struct InterruptedPipes : testing::Test {
    void SetUp() override {
        if (!MakeNamedPipe(pipe)) GTEST_SKIP() << "no pipes among the files";
    }

    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    const Lines lines = MakeLines();
    const std::string text = Joined(lines);
};

}  // namespace

TEST_F(InterruptedPipes, TakeEachByteOnce) {
    for (const Writer& writer : writers) {
        SCOPED_TRACE(writer.name);
        std::string arrived;
        std::jthread reader([&] {
            Pause();  // opening waits as well
            std::ifstream in(pipe, std::ios::binary);
            for (std::string block(30'000, '\0'); in.read(block.data(), 30'000) || in.gcount() > 0; Pause())
                arrived.append(block, 0, static_cast<std::size_t>(in.gcount()));
        });
        {
            const Interruptions interruptions;
            EXPECT_EQ(writer.write(pipe, lines), 0);
        }
        reader.join();
        EXPECT_EQ(arrived.size(), text.size());
        EXPECT_TRUE(arrived == text);
    }
}

TEST_F(InterruptedPipes, GiveEachByteOnce) {
    for (const Reader& reader : readers) {
        SCOPED_TRACE(reader.name);
        std::jthread writer([&] {
            Pause();
            std::ofstream out(pipe, std::ios::binary);
            for (std::size_t at = 0; at < text.size(); at += 30'011, Pause())
                out << text.substr(at, 30'011) << std::flush;
        });
        const Interruptions interruptions;
        const std::string arrived = reader.read(pipe);
        EXPECT_EQ(arrived.size(), text.size());
        EXPECT_TRUE(arrived == text);
        writer.join();
    }
}

// Without a position to go back to, an interrupted buffer is lost: flush() or close() must say so.
TEST(InterruptedBuffers, AreLostAndReported) {
    for (int number = 1; number < 20; ++number) {
        std::string arrived, written;
        std::FILE* const file = OpenInterrupted(arrived, number);
        if (file == nullptr) GTEST_SKIP() << "no streams of one's own";
        YAVOFStream out(file);
        for (int i = 0; i < 100; ++i) {
            const std::string text(static_cast<std::size_t>(i % 40), 'x');
            out << text.c_str();
            written += text;
        }
        const int failed = out.flush();
        std::fclose(file);
        EXPECT_EQ(failed, arrived == written ? 0 : 1) << number;
    }
}
