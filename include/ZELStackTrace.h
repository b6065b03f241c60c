// The call stack of the calling thread: captured now, printed later.
//
// For reports about broken invariants (see FATAL in TADiagnostics.h) and for finding out who calls. Capturing costs
// some microseconds and no memory; printing looks names up and is slow. At most MaxFrames innermost calls are kept.
//
//     ZELStackTrace stack;         // this call
//     stack.GetTrace();            // or this one
//     stack.Print(stdout, 0, 0);   // all of it
//
// Distinct objects may be used from distinct threads.
#ifndef ZELSTACKTRACE_H
#define ZELSTACKTRACE_H

#include <cstdio>

#include "ZELExport.h"
#include "ZELHeapObject.h"

// What every stack trace has in common: the frames and their printing. How frames are gathered is the derived class's.
class ZEL_API ZELBasicStackTrace : public ZELHeapObject {
public:
    static constexpr int MaxFrames = 128;

    virtual ~ZELBasicStackTrace();

    // Replaces the frames by those of the moment. 0 on success; 1 when the system gives none (none are kept then).
    virtual int GetTrace() noexcept = 0;

    // Writes one line per frame, innermost first, and flushes: number, module with the offset in it, and the function
    // with the offset in it where the system knows a name (on Linux: where the module exports it).
    // `first` is the number of frames to leave out, `count` the most to write; 0 or less stands for none left out, and
    // for no limit. A null `stream` is ignored.
    void Print(FILE* stream, int first, int count) const noexcept;

    // The number of frames held.
    int Size() const noexcept { return _count; }

protected:
    ZELBasicStackTrace() noexcept = default;
    ZELBasicStackTrace(const ZELBasicStackTrace&) noexcept = default;
    ZELBasicStackTrace& operator=(const ZELBasicStackTrace&) noexcept = default;

    void* _frames[MaxFrames];  // return addresses, innermost first; the first _count are set
    int _count = 0;
};

// The stack of the thread that constructs the object or calls GetTrace; the caller of either is the innermost frame.
class ZEL_API ZELStackTrace : public ZELBasicStackTrace {
public:
    ZELStackTrace() noexcept;
    ZELStackTrace(const ZELStackTrace&) noexcept = default;
    ZELStackTrace& operator=(const ZELStackTrace&) noexcept = default;
    ~ZELStackTrace() override;

    int GetTrace() noexcept override;
};

#endif
