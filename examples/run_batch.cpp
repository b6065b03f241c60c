// run_batch: runs the commands of a file, one a line, several of them at once.
//
//     run_batch commands.txt
//     run_batch --limit 8 --timeout 600 --output logs --record batch.txt commands.txt
//
// Empty lines and lines that begin with "#" are left out. What the command in line 12 writes goes to the file 12.log in
// the output directory, "run_batch" when none is named. A command that takes longer than the time-out, in seconds, is
// killed with all that it started; so is every command on Ctrl-C.
//
// The record, for report_run, has lines of fields with a tab between them:
//
//     batch    the file of commands, milliseconds in all
//     command  line, exit code, milliseconds, how it went ("ended", "killed", "not found", "not run"), log, text
//     counter  a counter's report
//
// Exit code 0 when every command ended with 0, 1 when one did not, 2 for a wrong command line, a file that cannot be
// read, or a record that cannot be written, 130 when the run was interrupted.

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "TADiagnostics.h"
#include "TAFileName.h"
#include "TAPerfo.h"
#include "TAProcessList.h"
#include "TATextUtilities.h"
#include "YAVFStream.h"
#include "ZELString.h"
#include "support/interruption.h"
#include "support/lines.h"
#include "support/numbers.h"
#include "support/output.h"
#include "support/progress.h"
#include "support/record.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
    int limit = static_cast<int>(std::thread::hardware_concurrency());
    int timeout = 0;
    ZELString output = "run_batch";
    ZELString record;
    ZELString file;
};

struct Command {
    int line;
    ZELString text;
    int number = 0;  // in the batch; -1: memory ran out for it
    int status = 0;  // of the batch: waiting, running, done
    Clock::time_point begin;
    double seconds = 0;
    bool wasStarted = false;
};

enum : int { Waiting = 0, Running = 1, Done = 2 };
constexpr int KilledForTime = 99;
constexpr int KilledOnRequest = 15;

// False when the file cannot be read.
bool ReadCommands(const ZELString& file, std::vector<Command>& commands) {
    YAVIFStream stream(TAFileName(file).GetNativeName(), "r");
    if (stream.isOpen() == 0) return false;
    ZELString text;
    for (int line = 1; NextLine(stream, text); ++line)
        if (IsComment(text) == 0) commands.push_back({line, text, 0, Waiting, {}, 0, false});
    return WasReadWhole(stream, text);
}

TAFileName LogOf(const Command& command, const Options& options) {
    return TAFileName(options.output) + (toString(command.line) + ".log");
}

class Batch {
public:
    Batch(std::vector<Command>& commands, const Options& options) : _commands(commands), _list(options.limit) {
        // The list starts the newest first, and a file is read from its beginning.
        for (auto command = commands.rbegin(); command != commands.rend(); ++command) {
            const ZELString log(LogOf(*command, options));
            command->number = _list.Start(command->text, options.timeout, log, -1);
        }
    }

    void Run() {
        Progress progress;
        while (_list.NDone() < _list.Size()) {
            if (interruption::Happened()) {
                _list.KillInternalListOfProcess();
                _list.Check();
                Look();
                return;
            }
            if (_list.Check() != 0) Look();
            progress.Show([&] {
                return toString(_list.NDone()) + " of " + toString(_list.Size()) + " done, " +
                       toString(_list.NRunning()) + " running, " + toString(Failed()) + " failed";
            });
            if (_list.NDone() < _list.Size()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    int Code(const Command& command) const { return _list.GetReturnCode(command.number); }
    int Failed() const {
        int failed = 0;
        for (const Command& command : _commands)
            failed += command.number < 0 || (command.status == Done && Code(command) != 0);
        return failed;
    }

private:
    // Notes when commands began and ended.
    void Look() {
        const Clock::time_point now = Clock::now();
        for (Command& command : _commands) {
            const int status = _list.GetStatus(command.number);
            if (status == command.status) continue;
            if (command.status == Waiting) {
                command.begin = now;
                command.wasStarted = status == Running;
            }
            if (status == Done) {
                command.seconds = std::chrono::duration<double>(now - command.begin).count();
                _ended.Count(1);
            }
            command.status = status;
        }
    }

    std::vector<Command>& _commands;
    TAProcessList _list;
    TAPerfoAv _ended{"commands ended"};
};

const char* HowItWent(const Command& command, int code, const Options& options) {
    const bool isLate =
        options.timeout > 0 && code == KilledForTime && command.seconds >= static_cast<double>(options.timeout) * 0.9;
    const bool wasInterrupted = interruption::Happened() && code == KilledOnRequest;
    return command.status != Done     ? "not run"
           : !command.wasStarted      ? "not found"
           : isLate || wasInterrupted ? "killed"
                                      : "ended";
}

void Report(const Batch& batch, const std::vector<Command>& commands, const Options& options) {
    std::printf("   line   code  seconds              command\n");
    for (const Command& command : commands) {
        const int code = batch.Code(command);
        std::printf("   %4d %6d %8.2f  %-9s   %s\n", command.line, code, command.seconds,
                    HowItWent(command, code, options), command.text.CastToCharPtr());
    }
    std::printf("\n   %d commands, %d failed\n", static_cast<int>(commands.size()), batch.Failed());
    std::fflush(stdout);
}

// The logs go in by their full names, so that the record may be read anywhere.
void WriteRecord(const Batch& batch, const std::vector<Command>& commands, const Options& options, double seconds,
                 Record& record) {
    const auto milliseconds = [](double time) { return std::to_string(static_cast<long long>(time * 1000)); };
    record.Add({"batch", options.file.View(), milliseconds(seconds)});
    for (const Command& command : commands) {
        const int code = batch.Code(command);
        const ZELString log = LogOf(command, options).GetFullPath().GetNativeName();
        record.Add({"command", std::to_string(command.line), std::to_string(code), milliseconds(command.seconds),
                    HowItWent(command, code, options), log.View(), command.text.View()});
    }
    record.AddCounters();
}

int NoRecord(const Options& options) {
    TraceStdErr(ZELString("run_batch: cannot write ") + options.record);
    return 2;
}

int Usage(std::FILE* stream, int result) {
    std::fputs(
        "usage: run_batch [--limit N] [--timeout SECONDS] [--output DIRECTORY] [--record FILE] FILE\n"
        "\n"
        "  --limit    runs so many commands at once, one for each processor at first\n"
        "  --timeout  kills a command that takes longer; 0, as at first, none\n"
        "  --output   puts what the commands write there, \"run_batch\" at first\n"
        "  --record   leaves in FILE how each command went, for report_run\n",
        stream);
    return result;
}

// False for a command line that makes no sense.
bool Read(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        const char* const value = i + 1 < argc ? argv[i + 1] : "";
        if (argument == "--limit" || argument == "--timeout") {
            const bool isLimit = argument == "--limit";
            if (!ReadNumber(value, isLimit ? 1 : 0, 1000000, isLimit ? options.limit : options.timeout)) return false;
            ++i;
        } else if ((argument == "--output" || argument == "--record") && *value != '\0') {
            (argument == "--output" ? options.output : options.record) = value;
            ++i;
        } else if (argument.starts_with("-") || options.file.Length() > 0) {
            return false;
        } else {
            options.file = argv[i];
        }
    }
    return options.file.Length() > 0;
}

int Main(int argc, char** argv) {
    Options options;
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) return Usage(stdout, 0);
    if (!Read(argc, argv, options)) return Usage(stderr, 2);
    std::vector<Command> commands;
    if (!ReadCommands(options.file, commands)) {
        TraceStdErr(ZELString("run_batch: cannot read ") + options.file);
        return 2;
    }
    if (TAFileName(options.output).CreateRecursiveDirectory() != 0) {
        TraceStdErr(ZELString("run_batch: cannot make the directory ") + options.output);
        return 2;
    }
    Record record(options.record);
    if (!record.IsWhole()) return NoRecord(options);
    interruption::Heed();

    Trace(ZELString("run_batch ") + options.file, 1);
    Batch batch(commands, options);
    const Clock::time_point begin = Clock::now();
    batch.Run();
    const std::chrono::duration<double> elapsed = Clock::now() - begin;
    Report(batch, commands, options);
    WriteRecord(batch, commands, options, elapsed.count(), record);
    if (!record.Finish()) return NoRecord(options);
    return interruption::Happened() ? 130 : batch.Failed() == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    return ExitCode("run_batch", Main(argc, argv));
}
