// What a tool did, for other programs to read: lines of fields with a tab between them, of which the first tells what
// the line is about. A control character inside a field becomes a blank, so every line has the fields it should have.
//
//     Record record(options.record);
//     if (!record.IsWhole()) ...                      // before the work: the file cannot be written
//     record.Add({"scan", directory.View(), std::to_string(files)});
//     record.AddCounters();
//     if (!record.Finish()) ...
#ifndef EXAMPLES_SUPPORT_RECORD_H
#define EXAMPLES_SUPPORT_RECORD_H

#include <initializer_list>
#include <string_view>

#include "YAVFStream.h"
#include "ZELString.h"

class Record {
public:
    // Replaces the file. Without a name there is no record: everything succeeds, and nothing is written.
    explicit Record(const ZELString& file);

    void Add(std::initializer_list<std::string_view> fields);
    // "counter" and its report, for each counter of the process (TAPerfo).
    void AddCounters();
    // False when the file could not be opened, or something did not get into it.
    bool IsWhole() const { return _isWhole; }
    // Closes the file; the same afterwards.
    bool Finish();

private:
    YAVOFStream _stream;
    bool _isWanted;
    bool _isWhole = true;
};

#endif
