// Files, directories and streams.

#include "TAFileUtilities.h"
#include "TAHtmlBanner.h"
#include "YAVFStream.h"
#include "ZELDirectory.h"
#include "ZELQMAStream.h"
#include "ZELUnicodeString.h"
#include "faults/sweep.h"

namespace {

const std::string Lines = Repeat("a line of some length\n", 500) + "last\n";

Outcome CopyFiles(Round& round) {
    WriteBytes(round / "source", Lines);
    WriteBytes(round / "target", "as it was");
    ZELUnicodeString from((round / "source").c_str()), to((round / "target").c_str());
    round.Begin();
    const bool done = ZELFCopy(&from, &to, 1) >= 0;
    round.End();
    const std::string target = ReadBytes(round / "target");
    EXPECT_TRUE(target == "as it was" || target == Lines) << target.size();
    EXPECT_EQ(ReadBytes(round / "source"), Lines);
    return {done, target};
}

Outcome WriteLines(Round& round) {
    ZELListValZELString lines;
    for (int i = 0; i < 2000; ++i) lines.Append("one of the lines of the file");
    const ZELString path((round / "lines").c_str());
    round.Begin();
    const bool done = WriteFile(path, lines) == 0;
    round.End();
    return {done, ReadBytes(round / "lines")};
}

Outcome ReadLines(Round& round) {
    WriteBytes(round / "lines", Lines.substr(0, 2000));
    const ZELString path((round / "lines").c_str());
    ZELListValZELString lines;
    round.Begin();
    const bool done = ReadFile(path, lines) == 0;
    round.End();
    std::string state;
    for (const std::string& line : Texts(lines)) state += line + "\n";
    return {done, state};
}

Outcome StreamOut(Round& round) {
    round.Begin();
    YAVOFStream out((round / "out").c_str(), "wb");
    int failures = out.isOpen() ? 0 : 1;
    for (int i = 0; i < 300; ++i) out << "line " << i << '\n';
    failures += out.flush();
    failures += out.Print("%s %d\n", "printed", 7) + out.write(Lines.data(), Lines.size()) + out.Putc('c');
    failures += out.close();
    round.End();
    return {failures == 0, ReadBytes(round / "out")};
}

Outcome StreamIn(Round& round) {
    WriteBytes(round / "in", Lines);
    std::string state;
    round.Begin();
    YAVIFStream in((round / "in").c_str(), "rb");
    ZELString line;
    bool isOpen = in.isOpen() != 0;
    while (in.getline(line, '\n', 0) == 0) state += line.CastToCharPtr(), state += '\n';
    const bool done = isOpen && in.ReadError() == 0;
    round.End();
    return {done && in.GetErrno() == 0, state};
}

Outcome BorrowedIn(Round& round) {
    WriteBytes(round / "in", Lines);
    std::FILE* const file = std::fopen((round / "in").c_str(), "rb");
    std::string state;
    round.Begin();
    YAVIFStream in(file);
    ZELString line;
    while (in.getline(line, '\n', 0) == 0) state += line.CastToCharPtr(), state += '\n';
    round.End();
    const bool done = in.ReadError() == 0;
    std::fclose(file);
    return {done && in.GetErrno() == 0, state};
}

Outcome CleanTree(Round& round) {
    std::filesystem::create_directories(round / "tree/below/deep");
    for (const char* const name : {"tree/a", "tree/below/b", "tree/below/deep/c"}) WriteBytes(round / name, "x");
    WriteBytes(round / "outside", "stays");
    const std::string path = round / "tree";
    round.Begin();
    const bool done = TACleanDirectory(path.c_str()) == 0;
    round.End();
    EXPECT_EQ(ReadBytes(round / "outside"), "stays");
    if (std::filesystem::exists(path) && !done) {
        round.fault = nullptr;
        EXPECT_EQ(TACleanDirectory(path.c_str()), 0) << "what stayed can be removed later";
    }
    return {done, std::filesystem::exists(path) ? "there" : "gone"};
}

const Scenario scenarios[] = {
    {"CopiesFiles", CopyFiles},    {"WritesLines", WriteLines}, {"ReadsLines", ReadLines},
    {"StreamsOut", StreamOut, 20}, {"StreamsIn", StreamIn, 20}, {"StreamsInBorrowed", BorrowedIn, 20},
    {"CleansTrees", CleanTree},
};

}  // namespace
