// Locks for the threads of one process, and a guard for a scope.
//
//     TAThreadLock lock;
//     {
//         TALocker guard(&lock);
//         ++shared;
//     }
//
// TAThreadLock excludes. It has no owner: any thread may release it, so it serves as a signal as well, and a thread
// that takes it twice waits for another to release it. Waiting knows no time limit; a waiting thread sleeps.
// Uncontended it costs one atomic operation each way. The two derived classes exclude nothing: they are locks in name,
// for code that is written against TAThreadLock and wants to be let through. For several processes use TAMutex; where
// copies, virtual functions and release by others are not needed, std::mutex does as well.
//
// Copies share one lock. When one of them ends, the lock is closed for all: the others, and who waits in them, go on
// without effect. Do not copy a lock that somebody uses.
// Every result is 1, also without effect. Every operation may be called from any thread. Nothing throws; a lock that
// got no memory when it was made (a line that starts "# Alloc failed in TAThreadLock" says so) excludes nothing.
#ifndef TATHREADLOCK_H
#define TATHREADLOCK_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELShared.h"

class ZEL_API TAThreadLock : public ZELHeapObject {
public:
    TAThreadLock() noexcept;
    TAThreadLock(const TAThreadLock&) noexcept = default;
    TAThreadLock& operator=(const TAThreadLock&) noexcept = default;

    // Waits until the lock is free and takes it.
    virtual int GetLock();
    // Frees the lock and lets one waiting thread on; nothing when it is free already.
    virtual int ReleaseLock();
    virtual ~TAThreadLock();

private:
    struct Shared;

    ZELShared<Shared> _shared;  // empty without memory
};

// Excludes nothing.
class ZEL_API TAThreadLongLock : public TAThreadLock {
public:
    int GetLock() override;
    int ReleaseLock() override;
    ~TAThreadLongLock() override;
};

// Excludes neither readers nor writers.
class ZEL_API TAThreadRWLock : public TAThreadLock {
public:
    int GetLock() override;
    int ReleaseLock() override;
    ~TAThreadRWLock() override;
    virtual int GetWriteLock();
    virtual int ReleaseWriteLock();
};

// Takes a lock of any of the three classes for its own life. The lock must live longer; null is no lock.
class TALocker {
public:
    explicit TALocker(TAThreadLock* lock) : _lock(lock) {
        if (_lock != nullptr) _lock->GetLock();
    }
    // Copies hold the same lock, and each releases it at its end.
    TALocker(const TALocker&) = default;
    TALocker& operator=(const TALocker&) = default;
    ~TALocker() {
        if (_lock != nullptr) _lock->ReleaseLock();
    }

private:
    TAThreadLock* _lock;
};

#endif
