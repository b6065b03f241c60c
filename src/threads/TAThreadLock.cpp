// A lock is a counted word, see foundations/binary_semaphore.h. Every copy counts, and the first to end closes the
// word: a closed one lets everybody through, so nobody is left waiting for a lock that is no more.

#include "TAThreadLock.h"

#include <atomic>
#include <cstdint>
#include <new>

#include "base/failure_report.h"
#include "base/shared_body.h"
#include "threads/binary_semaphore.h"

using namespace zel;

struct TAThreadLock::Shared {
    std::atomic<std::uint32_t> word{0};
    std::atomic<int> owners{1};
};

TAThreadLock::TAThreadLock() noexcept : _shared(new (std::nothrow) Shared) {
    if (_shared == nullptr) ReportAllocFailure("TAThreadLock", sizeof(Shared));
}

TAThreadLock::TAThreadLock(const TAThreadLock& other) noexcept : _shared(KeepShare(other._shared)) {}

TAThreadLock& TAThreadLock::operator=(const TAThreadLock& other) noexcept {
    AssignShare(_shared, other._shared);
    return *this;
}

TAThreadLock::~TAThreadLock() {
    if (_shared != nullptr) CloseSemaphore(_shared->word);
    DropShare(_shared);
}

int TAThreadLock::GetLock() {
    if (_shared != nullptr) AcquireSemaphore(_shared->word);
    return 1;
}

int TAThreadLock::ReleaseLock() {
    if (_shared != nullptr) ReleaseSemaphore(_shared->word);
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
