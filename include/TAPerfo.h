// Named event counters for tools that run long: blocks and bytes of a server, files of a scan.
//
//     TAPerfoAv bytes("bytes sent");     // an average for each period of 60 seconds
//     bytes.Count(5000);
//     ZELString line = bytes.Report();   // "bytes sent 9.76k per 1m, 4.88k in 30s"
//     TAPerfo::GlobalReport(std::cout);  // a line for each counter that lives, the newest first
//
// TAPerfo counts, TAPerfoAv also reports the average of each period, TAPerfoLoad the amount of the last period. They
// are meters for people: times are whole seconds, and amounts are 32 bits wide in reports. For exact measurements of
// short work use a benchmark and a precise clock.
//
// Format: amounts up to 1000 are written in full, larger ones by steps of 1024 with a unit: "0.97k", "4.88k", "146k",
//   "2.5M", "1.99T". The third unit is written T. Times read "59s", "1h2m5s", "1d1m5s"; a time with days and hours has
//   no smaller units. A negative amount or time reads 0.
// Errors: none, and no exceptions.
// Threads: Count and Reset of TAPerfo take no lock: one thread counts, and others may report. All other operations of
//   the three classes take the counter's own lock, so several threads may count with a TAPerfoAv or TAPerfoLoad and no
//   amount is lost. `globalList` has no lock: while counters are created or destroyed, no other thread creates,
//   destroys or reports all counters.
#ifndef TAPERFO_H
#define TAPERFO_H

#include <cstddef>
#include <ostream>

#include "TAThreadLock.h"
#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListPtr.h"
#include "ZELListValZELString.h"
#include "ZELPlatformTypes.h"
#include "ZELString.h"

class TAPerfo;

class ZELListPtrTAPerfo : public ZELListPtr<TAPerfo> {
public:
    using ZELListPtr<TAPerfo>::ZELListPtr;
};

// The amount since the counter was made or reset: "name 4.88k in 30s".
class ZEL_API TAPerfo : public ZELHeapObject {
public:
    // Starts at 0 now and is appended to `globalList`.
    TAPerfo() noexcept;  // named "no-name"
    explicit TAPerfo(ZELString name) noexcept;
    // A copy has the name, the amounts and the times, and a lock of its own. It is not in `globalList`.
    TAPerfo(const TAPerfo& other) noexcept;
    TAPerfo& operator=(const TAPerfo& other) noexcept;

    // Starts again from 0 at the present time.
    virtual void Reset();
    virtual void Count(int amount);
    // Writes the text and an end of line into the stream's buffer, and flushes it. Text that the stream rejects is
    // lost.
    virtual void Report(std::ostream& stream);
    virtual ZELString Report();
    virtual ~TAPerfo();

    ZELString GetName() const noexcept;
    void SetName(ZELString name) noexcept;

    // Report every counter in `globalList`, from the newest to the oldest: as a line each, or appended to `texts`.
    static void GlobalReport(std::ostream& stream);
    static void GlobalReport(ZELListValZELString& texts);

    // The counters that live, except copies, in the order of their creation; also in static constructors and
    // destructors. The list owns none of them.
    static ZELListPtrTAPerfo& globalList;

protected:
    // Copies while `held` keeps the lock of `other`.
    TAPerfo(const TAPerfo& other, const TALocker& held) noexcept;

    // Takes over the numbers of `other`, which no other thread uses. The caller holds the lock of this counter.
    void Assign(const TAPerfo& other) noexcept;
    // " 4.88k in 30s": the end of every report.
    ZELString TotalText() const noexcept;

    // Adds without the lock, for one thread at a time.
    void Add(int amount) noexcept;

    ZELString _name;
    ZELAtomic<__int64> _start;  // seconds since 1970-01-01 00:00 UTC
    ZELAtomic<__int64> _count;  // atomic, because other threads read it while one counts
    mutable TAThreadLock _lock;
};

// The common part of the two following classes: a counter with a period. All of its operations take its lock.
class ZEL_API TAPerfoPeriod : public TAPerfo {
public:
    ~TAPerfoPeriod() override;

    // Writes the text of Report() as TAPerfo does.
    void Report(std::ostream& stream) override;
    using TAPerfo::Report;

    // Sets the period in seconds and calls Reset. A period below 1 counts as 1.
    void SetLength(int length);

protected:
    TAPerfoPeriod(ZELString name, int length) noexcept;
    TAPerfoPeriod(const TAPerfoPeriod& other, const TALocker& held) noexcept;
    TAPerfoPeriod& operator=(const TAPerfoPeriod& other) noexcept = delete;

    void Assign(const TAPerfoPeriod& other) noexcept;

    int _length;
};

// Also reports the average: "name 9.76k per 1m, 4.88k in 30s". The average is 0 in the first second.
class ZEL_API TAPerfoAv : public TAPerfoPeriod {
public:
    TAPerfoAv() noexcept;  // named "no-name"
    explicit TAPerfoAv(ZELString name) noexcept;
    // `length`: the period in seconds, 60 by default; a period below 1 counts as 1.
    TAPerfoAv(ZELString name, int length) noexcept;
    TAPerfoAv(const TAPerfoAv& other) noexcept;
    TAPerfoAv& operator=(const TAPerfoAv& other) noexcept;
    ~TAPerfoAv() override;

    // Starts the time again and keeps the amount.
    void Reset() override;
    void Count(int amount) override;
    ZELString Report() override;
    using TAPerfoPeriod::Report;
};

// Also reports the amount of the last period: "name 4k in last 1m, 4.88k in 30s".
//
// The period is cut into 20 slices. An amount enters the report when a later Count falls into a later slice, and leaves
// it a period afterwards. Only Count moves the slices, so a counter that is not fed keeps its last report. Slices are
// whole seconds: choose a multiple of 20. With other periods the slices drift. Below 20 seconds, where a slice would be
// shorter than a second, the amount is that of the latest calls at best.
class ZEL_API TAPerfoLoad : public TAPerfoPeriod {
public:
    TAPerfoLoad() noexcept;  // named "no-name"
    explicit TAPerfoLoad(ZELString name) noexcept;
    // `length`: as of TAPerfoAv.
    TAPerfoLoad(ZELString name, int length) noexcept;
    TAPerfoLoad(const TAPerfoLoad& other) noexcept;
    TAPerfoLoad& operator=(const TAPerfoLoad& other) noexcept;
    ~TAPerfoLoad() override;

    void Reset() override;
    void Count(int amount) override;
    ZELString Report() override;
    using TAPerfoPeriod::Report;

private:
    static constexpr int Slices = 20;
    static constexpr int Buckets = Slices + 1;  // and the one that is being filled

    TAPerfoLoad(const TAPerfoLoad& other, const TALocker& held) noexcept;
    void MoveOn(__int64 now) noexcept;
    int Recent() const noexcept;

    struct Ring {
        int buckets[Buckets];
        __int64 bucketStart;
        int current;
    };
    Ring _ring;
};

#endif
