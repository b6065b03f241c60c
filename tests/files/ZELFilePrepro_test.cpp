#include "ZELFilePrepro.h"

#include "files/source_scanner.h"
#include "support/files.h"
#include "support/testing.h"

namespace {

struct Stripped {
    std::string text;
    bool complete;
    bool operator==(const Stripped&) const = default;
};

// The rules of the header, one byte after the other.
Stripped Model(const std::string& text, int flags) {
    enum State { None = 0, Line = 1, Block = 2, Prepro = 4, Single = 8, Double = 16 } state = None;
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool more = i + 1 < text.size();
        const auto write = [&](State element, int count) {
            if ((element & flags) == 0) out.append(text, i, static_cast<std::size_t>(count));
            i += static_cast<std::size_t>(count) - 1;
        };
        if (state == Block && c == '*' && more && text[i + 1] == '/') {
            write(Block, 2);
            state = None;
        } else if (state != None && c == '\n') {
            out += c;
            if (state == Line || state == Prepro) state = None;
        } else if (state == Block || state == Line) {
            write(state, 1);
        } else if (c == '\\' && more) {
            write(state, 2);
        } else if (state != None) {
            write(state, 1);
            if ((state == Double && c == '"') || (state == Single && c == '\'')) state = None;
        } else if (c == '/' && more && (text[i + 1] == '*' || text[i + 1] == '/')) {
            state = text[i + 1] == '*' ? Block : Line;
            write(state, 2);
        } else {
            state = c == '"' ? Double : c == '\'' ? Single : c == '#' ? Prepro : None;
            write(state, 1);
        }
    }
    return {out, state == None};
}

Stripped Strip(const std::string& text, int flags) {
    // Blocks of exactly the size that is promised, for the address sanitizer.
    std::vector<char> padded(text.begin(), text.end());
    padded.resize(text.size() + SourceScannerSlack, '"');
    std::vector<char> output(text.size() + SourceScannerSlack);
    bool complete = false;
    const std::size_t length = StripSource(padded.data(), text.size(), flags, output.data(), complete);
    return {std::string(output.data(), length), complete};
}

}  // namespace

TEST(SourceScanner, AgreesWithTheModelOnRandomTexts) {
    std::mt19937 random(3);
    const std::string letters = "/*\"'#\\\n/*a";
    for (int round = 0; round < 60000; ++round) {
        std::string text(random() % (round % 4 == 0 ? 100 : 14), ' ');
        const std::size_t kinds = 2 + random() % 30;  // few: dense texts, many: runs
        for (char& c : text) {
            const std::size_t kind = random() % kinds;
            c = kind < letters.size() ? letters[kind] : 'x';
        }
        const int flags = static_cast<int>(random() % 64);
        ASSERT_EQ(Strip(text, flags), Model(text, flags)) << text << "\nflags " << flags;
        ASSERT_EQ(Strip(text, 0).text, text);
    }
}

TEST(ZELFilePrepro, ReadsAFileOnceAndTellsHowItEnded) {
    const TemporaryFolder folder;
    const std::string file = folder / "source.c";
    char untouched[] = "untouched";
    char* output = untouched;
    ZELFilePrepro source(file.c_str());
    EXPECT_EQ(source.preprocess(0, output), 1);
    EXPECT_EQ(output, untouched);
    const std::string text = "a // b\nx /* 1\n2 */y \"s\\\"t\" z 'q' \\\" k\n#define A \\\n B\nlast /* c */";
    WriteBytes(file, text + '\0' + "behind /*");
    const struct {
        int flags;
        std::string expected;
    } rows[] = {
        {0, text},
        {ZELFilePrepro::REMOVE_SQSTRINGS | ZELFilePrepro::REMOVE_DQSTRINGS,
         "a // b\nx /* 1\n2 */y  z  \\\" k\n#define A \\\n B\nlast /* c */"},
        {31, "a \nx \ny  z  \\\" k\n\nlast "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(source.preprocess(row.flags, output), 0);
        EXPECT_EQ(output, row.expected);
        std::free(output);
        std::filesystem::remove(file);  // the text is kept
    }
    for (const char* const unfinished : {"a // b", "#", "/* *", "\"", "'\\'", "/*/"}) {
        WriteBytes(file, unfinished);
        EXPECT_EQ(ZELFilePrepro(file.c_str()).preprocess(0, output), 2) << unfinished;
        EXPECT_STREQ(output, unfinished);
        std::free(output);
    }
}
