// A mutex that processes share by its name.
//
//     TAMutex mutex("report_archive");
//     if (mutex.Lock() == 128) Repair();  // the last owner died over its work
//     Append(archive);
//     mutex.Unlock();
//
// For what several processes touch; among threads of one process TAThreadLock and std::mutex cost far less.
//
// Processes of one user that use the same name share one mutex, whoever makes it first; on Windows within one session.
// An empty name gives a mutex of this object's own. It is owned by a thread, which may lock it several times and
// unlocks it as often. A mutex is there as long as somebody has it open: a name that nobody has open counts as new.
// Any bytes serve as a name on Linux, in any length. On Windows the name goes through the ANSI code page, backslashes
// are for the system's own prefixes, and a name that an object of another kind has is refused; so is, on Linux, a file
// in shared memory that is not the user's own. A mutex that was refused, or got no memory, gives -1 and 0.
// The two classes differ in their virtual functions alone.
//
// Copies share one mutex. When one of them ends, it is closed for all: the others give -1 and 0. What is locked as it
// is closed stays locked until its thread ends. Every operation may be called from any thread. Nothing throws.
#ifndef TAMUTEX_H
#define TAMUTEX_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELShared.h"
#include "ZELString.h"

class ZEL_API TAMutex : public ZELHeapObject {
public:
    explicit TAMutex(ZELString name) noexcept;
    TAMutex(const TAMutex&) noexcept = default;
    TAMutex& operator=(const TAMutex&) noexcept = default;
    virtual ~TAMutex();

    // Waits without time limit. 0 when locked; 128 when locked and the thread or process that had it last ended without
    // unlocking, so that what it protects may be half done; -1 on failure.
    virtual int Lock();
    // Not 0 on success; 0 when this thread has not locked it.
    virtual int Unlock();

private:
    struct Shared;

    ZELShared<Shared> _shared;  // empty without memory
};

class ZEL_API TALockProcess : public ZELHeapObject {
public:
    explicit TALockProcess(ZELString name) noexcept;
    TALockProcess(const TALockProcess&) noexcept = default;
    TALockProcess& operator=(const TALockProcess&) noexcept = default;
    virtual ~TALockProcess();

    // As those of TAMutex.
    int Lock();
    int Unlock();

private:
    TAMutex _mutex;
};

#endif
