// What the records of a run tell.
#ifndef EXAMPLES_REPORT_RUN_H
#define EXAMPLES_REPORT_RUN_H

#include <vector>

#include "ZELListValZELString.h"
#include "ZELString.h"

struct Word {
    ZELString text;
    long long count;
};

struct Scan {
    ZELString directory;
    long long files, unreadable, lines, bytes, identifiers, distinct, milliseconds;
    std::vector<Word> words;  // in the order of the record, the most frequent first
};

struct Command {
    int line, code;
    long long milliseconds;
    ZELString how;  // "ended", or why it did not
    ZELString log, text;
    ZELString link;  // of the log's copy, below the report; empty without one

    bool WasRun() const { return how != "not run"; }
    bool Passed() const { return how == "ended" && code == 0; }
};

struct Batch {
    ZELString file;
    long long milliseconds;
    std::vector<Command> commands;

    // Of those that were run.
    int Failed() const;
    int NotRun() const;
};

struct Run {
    ZELString identifier, date, host;
    ZELString note;  // empty for none
    std::vector<Scan> scans;
    std::vector<Batch> batches;
    ZELListValZELString counters;
};

// Adds what a record of scan_sources or run_batch tells. False, after a message, when it cannot be read to its end or
// has a line that no such record has; the run is of no use then.
bool ReadRecord(const ZELString& file, Run& run);

#endif
