#include "ZELFilePrepro.h"

#include "sources/source_scanner.h"
#include "support/strip_model.h"
#include "support/testing.h"

namespace {

StrippedText Strip(const std::string& text, int flags) {
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
        ASSERT_EQ(Strip(text, flags), StripByRules(text, flags)) << text << "\nflags " << flags;
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
    EXPECT_EQ(ZELFilePrepro(nullptr, 0).preprocess(0, output), 0);  // an empty view
    EXPECT_STREQ(output, "");
    std::free(output);
    const std::string text = "a // b\nx /* 1\n2 */y \"s\\\"t\" z 'q' \\\" k\n#define A \\\n B\nlast /* c */";
    WriteBytes(file, text + '\0' + "behind /*");
    const std::pair<int, std::string> rows[] = {
        {0, text},
        {ZELFilePrepro::REMOVE_SQSTRINGS | ZELFilePrepro::REMOVE_DQSTRINGS,
         "a // b\nx /* 1\n2 */y  z  \\\" k\n#define A \\\n B\nlast /* c */"},
        {31, "a \nx \ny  z  \\\" k\n\nlast "},
    };
    for (const auto& [flags, expected] : rows) {
        EXPECT_EQ(source.preprocess(flags, output), 0);
        EXPECT_EQ(output, expected);
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
