// Short text identifiers that are unique across machines, processes and time: names for temporary files, sessions and
// records of measurements.
//
//     TAUUIDGenerator generator;
//     const ZELString name = generator.Get();  // "Ba7kF00..." : copied before the next call
//
// An identifier is 20 characters of "+-0-9A-Za-z", safe in file names; where case counts they sort by time. They
// encode 15 bytes, most significant first:
//
//     0 to 3    seconds since 1970-01-01 00:00 UTC, modulo 2^32
//     4 to 7    the machine: four bytes of a network adapter's address, 0 without one
//     8         the constant 5
//     9 to 12   the process
//     13, 14    a count of this process, which begins at the current millisecond
//
// so they are no secret and no random numbers: who knows one can guess others. They are unique as long as one process
// draws at most 65,536 in one second and machines have numbers of their own (virtual machines that were copied may
// not). Setting the system's clock back can repeat them.
//
// NO LOCKS: all state is static, one for the process, and so is the text. Callers that draw from several threads
// serialise their calls of Get, and each copies the text before the next call. A forked child goes on with its own
// process number.
#ifndef TAUUIDGENERATOR_H
#define TAUUIDGENERATOR_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELPlatformTypes.h"

class ZEL_API TAUUIDGenerator : public ZELHeapObject {
public:
    TAUUIDGenerator() noexcept = default;
    TAUUIDGenerator(const TAUUIDGenerator&) noexcept = default;
    TAUUIDGenerator& operator=(const TAUUIDGenerator&) noexcept = default;
    virtual ~TAUUIDGenerator();

    // The next identifier, NUL-terminated, in the one static buffer that the next call overwrites, whichever generator
    // it is. Never null, never fails. The first call in a process asks the system for the adapter.
    virtual const char* Get() noexcept;

protected:
    // Sets the members below, once: it does nothing while `init_done` is 1.
    static void Init() noexcept;
    // Seconds from `epoch` to now, rounded toward zero.
    static __int64 GetTime() noexcept;
    // The address a0 to a5 of the first network adapter as a5 * 2^24 + a4 * 2^16 + a3 * 2^8 + a2; 0 without one. Asks
    // the system each time.
    static int GetMachineIdent() noexcept;
    // `process_ident`.
    static int GetProcessIdent() noexcept;
    // The milliseconds of the current second, so that processes that start in the same second count from different
    // numbers.
    static short FirstCounter() noexcept;
    // Stores 1970-01-01 00:00 UTC as a FILETIME value; null is ignored.
    static void ComputeEpoch(__int64* result) noexcept;
    // Copies the 64-bit value; does nothing when either is null.
    static void FileTimeToInt(FILETIME* time, __int64* result) noexcept;
    // Turns byte order around: copies `count` bytes in reverse order. Nothing for `count` below 1; no overlap.
    static void Copy(void* to, const void* from, int count) noexcept;
    // Encodes 15 bytes to 20 characters and a terminator.
    static void Convert(const unsigned char* block, char* text) noexcept;
    // "Unable to allocate an UUID" on standard output.
    static void Error() noexcept;

    static short counter;      // of the next identifier; goes on from -1 to 0 and from 32767 to -32768
    static __int64 epoch;      // 1970-01-01 00:00 UTC, in units of 100 ns from 1601-01-01
    static int init_done;      // 1: Init has run
    static int machine_ident;  // see GetMachineIdent
    static int process_ident;  // the process's number
};

#endif
