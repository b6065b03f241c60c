// Reads records by a table of the kinds of lines. Nothing in a record is believed: a line has as many fields as its
// kind has, numbers are numbers of their range, and what belongs to something comes behind it.

#include "report/run.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "TADiagnostics.h"
#include "TAFileName.h"
#include "support/lines.h"
#include "support/numbers.h"

namespace {

using Fields = std::vector<std::string_view>;

Fields Cut(std::string_view line) {
    Fields fields;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find('\t', begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return fields;
}

bool Amount(std::string_view field, long long& amount) {
    return ReadNumber(field, 0LL, std::numeric_limits<long long>::max(), amount);
}

bool TakeScan(const Fields& fields, Run& run) {
    Scan scan{ZELString(fields[1]), 0, 0, 0, 0, 0, 0, 0, {}};
    std::size_t next = 2;
    for (long long* const amount : {&scan.files, &scan.unreadable, &scan.lines, &scan.bytes, &scan.identifiers,
                                    &scan.distinct, &scan.milliseconds})
        if (!Amount(fields[next++], *amount)) return false;
    run.scans.push_back(scan);
    return true;
}

bool TakeIdentifier(const Fields& fields, Run& run) {
    if (run.scans.empty()) return false;
    Word word{ZELString(fields[1]), 0};
    if (!Amount(fields[2], word.count)) return false;
    run.scans.back().words.push_back(word);
    return true;
}

bool TakeBatch(const Fields& fields, Run& run) {
    Batch batch{ZELString(fields[1]), 0, {}};
    if (!Amount(fields[2], batch.milliseconds)) return false;
    run.batches.push_back(batch);
    return true;
}

bool TakeCommand(const Fields& fields, Run& run) {
    if (run.batches.empty()) return false;
    Command command{0, 0, 0, ZELString(fields[4]), ZELString(fields[5]), ZELString(fields[6]), {}};
    constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    if (!ReadNumber(fields[1], 1, most, command.line) || !ReadNumber(fields[2], least, most, command.code) ||
        !Amount(fields[3], command.milliseconds))
        return false;
    run.batches.back().commands.push_back(command);
    return true;
}

bool TakeCounter(const Fields& fields, Run& run) {
    return run.counters.Append(ZELString(fields[1])) == 0;
}

struct Kind {
    std::string_view name;
    std::size_t fields;
    bool (*take)(const Fields& fields, Run& run);
};
constexpr Kind kinds[] = {{"scan", 9, TakeScan},
                          {"identifier", 3, TakeIdentifier},
                          {"batch", 3, TakeBatch},
                          {"command", 7, TakeCommand},
                          {"counter", 2, TakeCounter}};

bool TakeLine(std::string_view line, Run& run) {
    const Fields fields = Cut(line);
    const auto* const kind =
        std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& each) { return each.name == fields[0]; });
    return kind != std::end(kinds) && fields.size() == kind->fields && kind->take(fields, run);
}

}  // namespace

int Batch::Failed() const {
    const auto hasFailed = [](const Command& each) { return each.WasRun() && !each.Passed(); };
    return static_cast<int>(std::count_if(commands.begin(), commands.end(), hasFailed));
}

int Batch::NotRun() const {
    const auto wasNotRun = [](const Command& each) { return !each.WasRun(); };
    return static_cast<int>(std::count_if(commands.begin(), commands.end(), wasNotRun));
}

bool ReadRecord(const ZELString& file, Run& run) {
    YAVIFStream stream(TAFileName(file).GetNativeName(), "r");
    ZELString line;
    for (int number = 1; NextLine(stream, line); ++number)
        if (!TakeLine(line.View(), run)) {
            TraceStdErr(ZELString("report_run: ") + file + ", line " + toString(number) + " is none of a record");
            return false;
        }
    if (WasReadWhole(stream, line)) return true;
    TraceStdErr(ZELString("report_run: cannot read ") + file);
    return false;
}
