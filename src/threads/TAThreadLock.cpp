// A lock is a counted word, see threads/binary_semaphore.h. The first copy that is destroyed closes the word. A closed
// word lets every thread through, so no thread waits for a lock that no longer exists.

#include "TAThreadLock.h"

#include <cstdint>

#include "base/failure_report.h"
#include "threads/binary_semaphore.h"

using namespace zel;

struct TAThreadLock::Shared {
    ZELAtomic<std::uint32_t> word{0};
};

TAThreadLock::TAThreadLock() noexcept : _shared(ZELShared<Shared>::Make()) {
    if (!_shared) ReportAllocFailure("TAThreadLock", sizeof(Shared));
}

TAThreadLock::~TAThreadLock() {
    if (_shared) CloseSemaphore(_shared->word);
}

int TAThreadLock::GetLock() {
    if (_shared) AcquireSemaphore(_shared->word);
    return 1;
}

int TAThreadLock::ReleaseLock() {
    if (_shared) ReleaseSemaphore(_shared->word);
    return 1;
}

TAThreadLongLock::~TAThreadLongLock() = default;
int TAThreadLongLock::GetLock() {
    return 1;
}
int TAThreadLongLock::ReleaseLock() {
    return 1;
}

TAThreadRWLock::~TAThreadRWLock() = default;
int TAThreadRWLock::GetLock() {
    return 1;
}
int TAThreadRWLock::ReleaseLock() {
    return 1;
}
int TAThreadRWLock::GetWriteLock() {
    return 1;
}
int TAThreadRWLock::ReleaseWriteLock() {
    return 1;
}
