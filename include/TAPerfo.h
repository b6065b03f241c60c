// Named counters of events for tools that run long: blocks and bytes of a server, files of a scan.
//
//     TAPerfoAv bytes("bytes sent");     // an average for each period of 60 seconds
//     bytes.Count(5000);
//     ZELString line = bytes.Report();   // "bytes sent 9.76k per 1m, 4.88k in 30s"
//     TAPerfo::GlobalReport(std::cout);  // a line for each counter that lives, the newest first
//
// TAPerfo counts, TAPerfoAv also tells the average of each period, TAPerfoLoad how much came in the last period. They
// are meters for people: times are whole seconds, and amounts are 32 bits wide in reports. For exact measurements of
// short work use a benchmark and a precise clock.
//
// Amounts go up to 1000 as they are and then by steps of 1024 with a unit: "0.97k", "4.88k", "146k", "2.5M", "1.99T".
// The third unit is written T. Times read "59s", "1h2m5s", "1d1m5s"; where days and hours are told, smaller units are
// left out. A negative amount or time reads 0.
//
// Count and Reset of TAPerfo take no lock: one thread counts, and others may report. All else of the three classes
// takes the counter's own lock, so several threads may count with a TAPerfoAv or TAPerfoLoad and nothing is lost.
// `globalList` has no lock: while counters are made or end, no other thread makes, ends or reports all counters.
// Nothing fails and nothing throws.
#ifndef TAPERFO_H
#define TAPERFO_H

#include <ostream>

#include "TAThreadLock.h"
#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELListPtr.h"
#include "ZELListValZELString.h"
#include "ZELMemory.h"
#include "ZELPlatformTypes.h"
#include "ZELString.h"

class TAPerfo;

class ZELListPtrTAPerfo : public ZELListPtr<TAPerfo> {
public:
    using ZELListPtr<TAPerfo>::ZELListPtr;
};

// The amount since the counter was made or reset: "name 4.88k in 30s".
class ZEL_API TAPerfo {
public:
    // Starts at 0 now and is entered in `globalList`.
    TAPerfo() noexcept;  // named "no-name"
    explicit TAPerfo(ZELString name) noexcept;
    // A copy has the name, the amounts and the times, a lock of its own, and is not entered in `globalList`.
    TAPerfo(const TAPerfo& other) noexcept;
    TAPerfo& operator=(const TAPerfo& other) noexcept;

    // Starts again from 0 at the present time.
    virtual void Reset();
    virtual void Count(int amount);
    // Writes the text and an end of line into the stream's buffer, and flushes it. What the stream refuses is lost.
    virtual void Report(std::ostream& stream);
    virtual ZELString Report();
    virtual ~TAPerfo();

    ZELString GetName() const noexcept;
    void SetName(ZELString name) noexcept;

    // Every counter in `globalList`, from the newest to the oldest: a line each, or its text behind those in `texts`.
    static void GlobalReport(std::ostream& stream);
    static void GlobalReport(ZELListValZELString& texts);

    // The counters that live, but for copies, in the order in which they were made; also in static constructors and
    // destructors. It owns none of them.
    static ZELListPtrTAPerfo& globalList;

protected:
    // Copies while `held` keeps other's lock.
    TAPerfo(const TAPerfo& other, const TALocker& held) noexcept;

    void Assign(const TAPerfo& other) noexcept;
    // " 4.88k in 30s": what every report ends with.
    ZELString TotalText() const noexcept;

    // Adds without the lock, for one thread at a time.
    void Add(int amount) noexcept;

    ZELString _name;
    ZELAtomic<__int64> _start;  // seconds since 1970-01-01 00:00 UTC
    ZELAtomic<__int64> _count;  // atomic, because other threads read it while one counts
    mutable TAThreadLock _lock;
};

// Tells the average too: "name 9.76k per 1m, 4.88k in 30s". The average is 0 in the first second.
class ZEL_API TAPerfoAv : public TAPerfo {
public:
    TAPerfoAv() noexcept;  // named "no-name"
    explicit TAPerfoAv(ZELString name) noexcept;
    // `length`: the period in seconds, 60 where none is told; one below 1 counts as 1.
    TAPerfoAv(ZELString name, int length) noexcept;
    TAPerfoAv(const TAPerfoAv& other) noexcept;
    TAPerfoAv& operator=(const TAPerfoAv& other) noexcept;
    ~TAPerfoAv() override;

    // Starts the time again and keeps the amount.
    void Reset() override;
    void Count(int amount) override;
    void Report(std::ostream& stream) override;
    ZELString Report() override;

    // Sets the period and calls Reset.
    void SetLength(int length);

private:
    TAPerfoAv(const TAPerfoAv& other, const TALocker& held) noexcept;

    int _length;
};

// Tells the amount of the last period too: "name 4k in last 1m, 4.88k in 30s".
//
// The period is cut into 20 slices. What is counted enters the report when a later Count falls into a later slice, and
// leaves it a period afterwards; only Count moves on, so a counter that nobody feeds keeps its last report. Slices are
// whole seconds: choose a multiple of 20. With other periods the slices drift, and below 20 seconds, where a slice
// would be less than a second, the amount is that of the latest calls at best.
class ZEL_API TAPerfoLoad : public TAPerfo {
public:
    TAPerfoLoad() noexcept;  // named "no-name"
    explicit TAPerfoLoad(ZELString name) noexcept;
    // `length`: the period in seconds, 60 where none is told; one below 1 counts as 1.
    TAPerfoLoad(ZELString name, int length) noexcept;
    TAPerfoLoad(const TAPerfoLoad& other) noexcept;
    TAPerfoLoad& operator=(const TAPerfoLoad& other) noexcept;
    ~TAPerfoLoad() override;

    void Reset() override;
    void Count(int amount) override;
    void Report(std::ostream& stream) override;
    ZELString Report() override;

    // Sets the period and calls Reset.
    void SetLength(int length);

private:
    static constexpr int Slices = 20;
    static constexpr int Buckets = Slices + 1;  // and the one that is being filled

    TAPerfoLoad(const TAPerfoLoad& other, const TALocker& held) noexcept;
    void CopyRing(const TAPerfoLoad& other) noexcept;
    void MoveOn(__int64 now) noexcept;
    int Recent() const noexcept;

    int _buckets[Buckets];
    __int64 _bucketStart;
    int _length;
    int _current;
};

#endif
