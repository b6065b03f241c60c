#include "support/programs.h"
#include "support/strip_model.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// The bits of line and block comments, characters and strings.
constexpr int WithoutCommentsAndLiterals = 1 | 2 | 8 | 16;

struct Counts {
    std::map<std::string, long> words;
    long files = 0, lines = 0, identifiers = 0;
    std::size_t bytes = 0;

    void Add(const std::string& text) {
        ++files;
        bytes += text.size();
        lines += std::count(text.begin(), text.end(), '\n');
        std::string word;
        for (const char c : StripByRules(text, WithoutCommentsAndLiterals).text + " ") {
            if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
                word += c;
                continue;
            }
            if (!word.empty() && std::isdigit(static_cast<unsigned char>(word[0])) == 0) ++identifiers, ++words[word];
            word.clear();
        }
    }
    // As the tool prints them.
    std::string Totals() const {
        return "\n   " + std::to_string(files) + " files, " + std::to_string(lines) + " lines, " +
               std::to_string(bytes) + " bytes, " + std::to_string(identifiers) + " identifiers, " +
               std::to_string(words.size()) + " distinct\n";
    }
};

}  // namespace

TEST(ScanSources, CountsWhatAnIndependentProgramCounts) {
    Counts counts;
    const std::filesystem::path sources = std::filesystem::path(ZEL_REPOSITORY) / "src";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources))
        if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h")
            counts.Add(WithoutReturns(ReadBytes(entry.path().string())));
    const ProgramResult result =
        RunProgram("scan_sources", {"--top", "1000000", "--match", "*.cpp||*.h", sources.string()});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find(counts.Totals()), std::string::npos)
        << counts.Totals() << result.out.substr(result.out.size() - 300);
    std::map<std::string, long> words;
    std::istringstream rows(result.out.substr(result.out.find("share") + 5));
    for (std::string word, share; rows >> word && word != std::to_string(counts.files); rows >> share)
        rows >> words[word];
    EXPECT_EQ(words, counts.words);
}

TEST(ScanSources, TellsWhatItCouldNotRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "a/b");
    WriteBytes(folder / "one.h", "int one; // int\nint 1x _y; \"int\"\n");
    WriteBytes(folder / "a/b/empty.h", "");
    WriteBytes(folder / "a/open.h", "one /* two");
    WriteBytes(folder / "a/other", "three");
    const ProgramResult all = RunProgram("scan_sources", {"--top", "2", "--match", "*.h", folder.Path()});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_NE(all.out.find("   int                                         2   40.00%\n"
                           "   one                                         2   40.00%\n\n"
                           "   3 files, 2 lines, 43 bytes, 5 identifiers, 3 distinct\n"
                           "   1 files end inside a comment, a literal or a directive\n"),
              std::string::npos)
        << all.out;

    const ProgramResult missing = RunProgram("scan_sources", {folder / "none"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "scan_sources: " + (folder / "none") + " is no directory that can be read\n");
}

TEST(ScanSources, RefusesACommandLineThatItDoesNotUnderstand) {
    const std::string usage = "usage: scan_sources [--top N] [--match FORMULA] [--record FILE] [DIRECTORY]\n";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--top"}, {"--top", "0"}, {"--top", "x"}, {"--top", "5x"}, {"--bad"}, {"a", "b"}}) {
        const ProgramResult result = RunProgram("scan_sources", arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_TRUE(result.err.starts_with(usage)) << result.err;
    }
    EXPECT_TRUE(RunProgram("scan_sources", {"--help"}).out.starts_with(usage));
}

// A tool that could not deliver its result must not claim success.
TEST(Tools, FailWhenStandardOutputIsFull) {
    if (FullDevice.empty()) GTEST_SKIP() << "this system has no device that is always full";
    const TemporaryFolder folder;
    WriteBytes(folder / "a.h", "int a;\n");
    WriteBytes(folder / "commands", "");
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"scan_sources", {folder.Path()}},
        {"scan_sources", {"--help"}},
        {"run_batch", {"--output", folder / "out", folder / "commands"}},
        {"report_run", {"--help"}},
        {"courier", {"--help"}},
    };
    for (const auto& [tool, arguments] : rows) {
        EXPECT_EQ(RunAndWait(tool, arguments, FullDevice, folder / "errors"), 2) << tool;
        EXPECT_TRUE(Holds(ReadBytes(folder / "errors"), "cannot write to standard output")) << tool;
    }
}

// A file that cannot be read whole, and a directory that cannot be listed whole, are missing from the counts.
TEST(ScanSources, FailsWhenAFileIsMissing) {
    if (UnreadableFile.empty()) GTEST_SKIP() << "no file of this system fails while it is read";
    const ProgramResult result = RunProgram("scan_sources", {"--match", "mem", "/proc/self/task"});
    EXPECT_EQ(result.exitCode, 1);
}
