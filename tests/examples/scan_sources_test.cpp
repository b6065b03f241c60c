#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/files.h"
#include "support/programs.h"

TEST(ScanSources, CountsATreeAndSaysWhatItCouldNotRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "a/b");
    WriteBytes(folder / "one.h", "int one; // int\nint 1x _y;\n");
    WriteBytes(folder / "a/two.h", "one\r\ntwo");
    WriteBytes(folder / "a/b/empty", "");
    WriteBytes(folder / "a/b/bytes", std::string("int\0\xFFint", 8));

    const ProgramResult all = RunProgram("scan_sources", {"--top", "2", folder.Path()});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_NE(all.out.find("   int                                         5   55.56%\n"
                           "   one                                         2   22.22%\n"),
              std::string::npos)
        << all.out;
    EXPECT_NE(all.out.find("\n   4 files, 3 lines, 43 bytes, 9 identifiers, 4 distinct\n"), std::string::npos)
        << all.out;

    const ProgramResult missing = RunProgram("scan_sources", {folder / "none"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "scan_sources: " + (folder / "none") + " is no directory that can be read\n");
}

TEST(ScanSources, RefusesACommandLineThatItDoesNotUnderstand) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--top"}, {"--top", "0"}, {"--top", "x"}, {"--bad"}, {"a", "b"}}) {
        const ProgramResult result = RunProgram("scan_sources", arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err, "usage: scan_sources [--top N] [DIRECTORY]\n");
    }
    EXPECT_EQ(RunProgram("scan_sources", {"--help"}).out, "usage: scan_sources [--top N] [DIRECTORY]\n");
}
