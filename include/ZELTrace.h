// A named trace channel with printf-style output, silent until somebody switches its name on.
//
// For messages that help to follow a run from inside: they cost a call and a load while the channel is off. What the
// user of a tool should always see goes through TADiagnostics.h instead.
//
//     ZELTrace trace("TASKLIST", nullptr, ZELTraAppend, "STDERR", 1024);
//     trace.TraPrint("%d tasks\n", count);  // nothing
//     ZELTrace::Activate("TASKLIST");
//     trace.TraPrint("%d tasks\n", count);  // written and flushed
//
// Every member may be called from every thread; messages of one channel never mix.
#ifndef ZELTRACE_H
#define ZELTRACE_H

#include "ZELExport.h"

// What becomes of a file that already exists when the first message is written.
enum ZELTraMode {
    ZELTraAppend = 0,    // messages are added at its end
    ZELTraTruncate = 1,  // it is emptied first
};

namespace zel {
struct ZELTraceName;  // a channel name with its switch; kept for the life of the process
}  // namespace zel

class ZEL_API ZELTrace {
public:
    // Opens the channel `name` (null counts as the empty name); copies what it needs of its arguments.
    // `reserved` is not used. `destination` is "STDERR" (also null or empty: standard error), "STDOUT" (standard
    // output) or the path of a file, which is opened when the first message is written; if it cannot be opened, that
    // message is lost and the next one tries again. `size` is the number of bytes that are reserved at once for a
    // message; a longer message is still written whole, and 0 or less stands for a small size.
    ZELTrace(const char* name, const char* reserved, ZELTraMode mode, const char* destination, int size) noexcept;
    ZELTrace(const ZELTrace&) = delete;
    ZELTrace& operator=(const ZELTrace&) = delete;
    // Closes the channel's file, if it has one.
    ~ZELTrace();

    // Switch every channel of this name on or off, those that exist and those that will. Names are case-sensitive.
    static void Activate(const char* name) noexcept;
    static void Deactivate(const char* name) noexcept;

    // 1 while the channel's name is switched on, else 0.
    int IsActive() const noexcept;

    // Writes the message in one piece and flushes; adds nothing to it, so lines end with "\n". Does nothing while the
    // channel is off or when `format` is null. Failures of the destination are ignored.
    void TraPrint(const char* format, ...) noexcept ZEL_PRINTF_LIKE(2, 3);

private:
    struct Channel;

    zel::ZELTraceName* _name;  // null when memory ran out: the channel then stays off
    Channel* _channel;         // owned; destination and message buffer
};

#endif
