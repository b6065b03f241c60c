#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "process/processes.h"
#include "support/programs.h"

namespace {

struct ReportRun : testing::Test {
    const TemporaryFolder folder;
    const std::string report = folder / "report", record = folder / "record", scan = folder / "scan";
};

// The lines of one kind, without its name.
std::string LinesOf(const std::string& path, const std::string& kind) {
    std::istringstream lines(WithoutReturns(ReadBytes(path)));
    std::string found;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(kind + '\t')) found += line.substr(kind.size() + 1) + '\n';
    return found;
}

}  // namespace

TEST_F(ReportRun, TellsWhatTheToolsRecorded) {
    std::filesystem::create_directory(folder / "src");
    WriteBytes(folder / "src/a.h", "int one;\nint two;\n");
    ASSERT_EQ(RunProgram("scan_sources", {"--top", "2", "--record", scan, folder / "src"}).exitCode, 0);
    EXPECT_TRUE(LinesOf(scan, "scan").starts_with((folder / "src") + "\t1\t0\t2\t18\t4\t3\t"));
    EXPECT_EQ(LinesOf(scan, "identifier"), "int\t2\none\t1\n");
    EXPECT_TRUE(LinesOf(scan, "counter").starts_with("bytes scanned 18 in "));

    const std::string child = ChildCommand("").CastToCharPtr(), logs = folder / "logs";
    WriteBytes(folder / "commands",
               child + "out 5\n" + child + "exit\t3\n" + child + "sleep 60000\nno_such_program x\n");
    const ProgramResult batch = RunProgram(
        "run_batch", {"--limit", "1", "--timeout", "4", "--output", logs, "--record", record, folder / "commands"});
    EXPECT_EQ(batch.exitCode, 1) << batch.out;
    std::istringstream commands(LinesOf(record, "command"));
    for (const std::string& expected :
         {"1 0 ended " + child + "out 5", "2 3 ended " + child + "exit 3", "3 99 killed " + child + "sleep 60000",
          std::string("4 203 not found no_such_program x")}) {
        std::string line, code, milliseconds, how, log, text;
        for (std::string* const field : {&line, &code, &milliseconds, &how, &log}) std::getline(commands, *field, '\t');
        std::getline(commands, text);
        EXPECT_EQ(line + ' ' + code + ' ' + how + ' ' + text, expected);
        EXPECT_EQ(std::filesystem::path(log), std::filesystem::path(logs) / (line + ".log"));
    }

    const ProgramResult result = RunProgram("report_run", {"--note", "a < b", report, record, scan});
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_EQ(ReadBytes(report + "/logs/1/1.log"), "abcde");
    EXPECT_FALSE(std::filesystem::exists(report + "/logs/1/2.log")) << "it wrote nothing";
    const std::string page = ReadBytes(report + "/index.html"), texts = ReadBytes(report + "/dump/AttrString.txt");
    for (const char* part : {"<p>a &lt; b</p>", "<b>4</b> commands", "<span class=\"failed\">3</span>", "not found",
                             "50.00 %", "<li>bytes scanned 18 in ", "<li>bytes of logs copied 1"})
        EXPECT_TRUE(Holds(page, part)) << part << page;
    for (const char* part : {":a < b", ":killed", ":no_such_program x", ":one", ":bytes scanned 18 in "})
        EXPECT_TRUE(Holds(texts, part)) << part << texts;
}

TEST_F(ReportRun, RefusesWhatIsNoRecord) {
    const std::string good =
        "scan\td\t1\t2\t3\t5000000000\t5\t6\t7\nidentifier\tx\t0\nbatch\tb\t1\n"
        "command\t2147483647\t-2147483648\t3\tended\tl\tt\ncommand\t1\t0\t0\t\t\t\r\ncounter\tc\n";
    WriteBytes(record, good);
    EXPECT_EQ(RunProgram("report_run", {report, record}).exitCode, 0);
    EXPECT_TRUE(Holds(ReadBytes(report + "/dump/AttrString.txt"), ":5000000000")) << "beyond the integers of a dump";
    for (const char* line :
         {"", "unknown\t1", "scan", "scan\td\t1\t2\t3\t4\t5\t6", "scan\td\t1\t2\t3\t4\t5\t6\t7\t8",
          "scan\td\t1\t2\t3\t4\t5\t6\t-7", "identifier\tx\t99999999999999999999", "identifier\tx\t1 ", "batch\tb\t",
          "command\t0\t0\t0\tended\tl\tt", "command\t1\t2147483648\t0\tended\tl\tt", "command\t1\t0\t1.5\tended\tl\tt",
          "counter\tc\tc"}) {
        WriteBytes(record, good + line + '\n');
        EXPECT_EQ(RunProgram("report_run", {report, record}).err,
                  "report_run: " + record + ", line 7 is none of a record\n")
            << line;
    }
    for (const char* early : {"identifier\tx\t1", "command\t1\t0\t0\tended\tl\tt"}) {
        WriteBytes(record, early);
        EXPECT_EQ(RunProgram("report_run", {report, record}).exitCode, 2) << "of nothing: " << early;
    }
    EXPECT_EQ(RunProgram("report_run", {report, folder / "missing"}).exitCode, 2);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"d"}, {"--bad", "r"}, {"", "r"}, {"--note", "n", "d"}})
        EXPECT_EQ(RunProgram("report_run", arguments).exitCode, 2);
}

TEST_F(ReportRun, TellsWhatCannotBeWritten) {
    WriteBytes(record, "counter\tc\n");
    EXPECT_EQ(RunProgram("report_run", {record, record}).err,
              "report_run: not all could be written into " + record + "\n");
    for (const std::string file : {"index.html", "dump/Objects.txt", "dump/AttrString.txt", "dump/AttrList.txt"}) {
        std::filesystem::remove_all(report);
        std::filesystem::create_directories(report + '/' + file);
        EXPECT_EQ(RunProgram("report_run", {report, record}).exitCode, 1) << file;
        if (FullDevice.empty()) continue;
        std::filesystem::remove(report + '/' + file);
        std::filesystem::create_symlink(FullDevice, report + '/' + file);
        EXPECT_EQ(RunProgram("report_run", {report, record}).exitCode, 1) << file;
    }
    std::filesystem::remove_all(report);
    EXPECT_EQ(RunProgram("report_run", {report, record}).exitCode, 0);
    const std::string nowhere = record + "/x";
    EXPECT_EQ(RunProgram("scan_sources", {"--record", nowhere, folder.Path()}).err,
              "scan_sources: cannot write " + nowhere + "\n");
    const ProgramResult batch = RunProgram("run_batch", {"--output", folder / "logs", "--record", nowhere, record});
    EXPECT_EQ(batch.exitCode, 2);
    EXPECT_EQ(batch.err, "run_batch: cannot write " + nowhere + "\n");
}
