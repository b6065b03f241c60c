// A mutex of the seam, shared by count; the mark that it is closed is what makes all copies end together.

#include "TAMutex.h"

#include <atomic>
#include <string_view>

#include "base/failure_report.h"
#include "platform/named_mutex.h"

using namespace zel;

struct TAMutex::Shared {
    explicit Shared(std::string_view name) noexcept : mutex(name) {}

    NamedMutex mutex;
    std::atomic<bool> isClosed{false};
};

TAMutex::TAMutex(ZELString name) noexcept
    : _shared(name.IsIncomplete() ? ZELShared<Shared>() : ZELShared<Shared>::Make(name.View())) {
    if (!_shared) ReportAllocFailure("TAMutex", sizeof(Shared));
}

TAMutex::~TAMutex() {
    // The last of all copies gives the system's mutex back, so that nobody waits in one that is gone.
    if (_shared) _shared->isClosed.store(true);
}

int TAMutex::Lock() {
    const ZELShared<Shared> shared = _shared;
    return shared && !shared->isClosed.load() ? shared->mutex.Lock() : -1;
}

int TAMutex::Unlock() {
    const ZELShared<Shared> shared = _shared;
    return shared && !shared->isClosed.load() && shared->mutex.Unlock() ? 1 : 0;
}

TALockProcess::TALockProcess(ZELString name) noexcept : _mutex(name) {}
TALockProcess::~TALockProcess() = default;

int TALockProcess::Lock() {
    return _mutex.Lock();
}

int TALockProcess::Unlock() {
    return _mutex.Unlock();
}
