// report_run: makes a page of what scan_sources and run_batch recorded, and dumps the same as objects.
//
//     scan_sources --record scan.txt ../project
//     run_batch --record batch.txt commands.txt
//     report_run --note "nightly build" report scan.txt batch.txt
//
// The directory "report" stands alone: it may be sent or packed as it is. In it are
//
//     index.html      totals, the commands with times and results, the identifiers, counters, the run's identifier
//     css, pictures   its look; without them it is plain, which is told (docs/reports.md says where they come from)
//     logs            what the commands wrote, as far as they wrote something
//     dump            the run as a tree of objects, in text files (docs/dump-format.md)
//
// Files that are there already are replaced, others stay. Whatever the texts in a record are, the page shows them as
// texts. But a record also names the logs that are copied: make reports of your own records alone.
//
// Exit code 0 when all was written, 1 when something was not, 2 for a wrong command line, or a record that cannot be
// read or is none.

#include <cstdio>
#include <string_view>

#include "TADiagnostics.h"
#include "TAEnvironment.h"
#include "TAFileName.h"
#include "TAFileUtilities.h"
#include "TAHtmlBanner.h"
#include "TAPerfo.h"
#include "TAUUIDGenerator.h"
#include "report/dump.h"
#include "report/page.h"
#include "report/run.h"
#include "support/output.h"
#include "support/places.h"

namespace {

constexpr char StyleSheet[] = "css/TAReportDefaultStyle.css";
constexpr char Dump[] = "dump/Objects.txt";

// Copies the logs that hold something, and links them. False when one could not be copied.
bool TakeLogs(Run& run, const TAFileName& directory) {
    TAPerfo copied("bytes of logs copied");
    bool wereAllCopied = true;
    int number = 0;
    for (Batch& batch : run.batches) {
        const ZELString folder = ZELString("logs/") + toString(++number);
        for (Command& command : batch.commands) {
            const Place log = LookBehind(command.log);
            if (log.kind != Place::Kind::File || log.size == 0) continue;
            const ZELString link = folder + "/" + toString(command.line) + ".log";
            if ((directory + folder).CreateRecursiveDirectory() == 0 && CopyFileW(command.log, directory + link) == 0) {
                command.link = link;
                copied.Count(static_cast<int>(log.size));
            } else {
                wereAllCopied = false;
                TraceErr(ZELString("cannot copy ") + command.log);
            }
        }
    }
    run.counters.Append(copied.Report());
    return wereAllCopied;
}

// False when something could not be written.
bool WriteReport(Run& run, const ZELString& name) {
    const TAFileName directory(name);
    if (directory.CreateRecursiveDirectory() != 0) return false;
    bool isComplete = TakeLogs(run, directory);
    isComplete = CopyDefaultHtmlStyle(directory) == 0 && isComplete;
    const bool hasStyle = (directory + StyleSheet).IsFile() != 0;
    if (!hasStyle) Trace("no style sheet was found: RkrkROOT_PATH shall name the root that holds resources", 0);
    ZELListValZELString page = MakePage(run, hasStyle ? StyleSheet : "", Dump);
    const bool isWritten = page.Size() > 0 && WriteFile((directory + "index.html").GetNativeName(), page) == 0;
    isComplete = isWritten && isComplete;
    return DumpRun(run, (directory + Dump).dirname(1)) && isComplete;
}

int Usage(std::FILE* stream, int result) {
    std::fputs(
        "usage: report_run [--note TEXT] DIRECTORY RECORD...\n"
        "\n"
        "Writes index.html and all that it needs into DIRECTORY, from records that scan_sources and run_batch leave.\n"
        "\n"
        "  --note TEXT   what the reader should know of the run; stands on top\n",
        stream);
    return result;
}

int Main(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == "--help") return Usage(stdout, 0);
    const bool hasNote = argc > 2 && std::string_view(argv[1]) == "--note";
    const int first = hasNote ? 3 : 1;
    for (int i = first; i < argc; ++i)
        if (*argv[i] == '-' || *argv[i] == '\0') return Usage(stderr, 2);
    if (argc < first + 2) return Usage(stderr, 2);
    Run run{TAUUIDGenerator().Get(), GetDate(), GetHostName(), hasNote ? argv[2] : "", {}, {}, {}};
    for (int i = first + 1; i < argc; ++i)
        if (!ReadRecord(argv[i], run)) return 2;

    const char* const directory = argv[first];
    Trace(ZELString("report_run ") + directory, 1);
    if (!WriteReport(run, directory)) {
        TraceStdErr(ZELString("report_run: not all could be written into ") + directory);
        return 1;
    }
    Trace(ZELString("run ") + run.identifier + " stands in " + directory + "/index.html", 0);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    return ExitCode("report_run", Main(argc, argv));
}
