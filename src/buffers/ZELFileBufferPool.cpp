// A pool is a thread or none; load_queue.h has the work.

#include "ZELFileBufferPool.h"

#include <atomic>
#include <cstdint>

#include "base/failure_report.h"
#include "base/memory.h"
#include "buffers/load_queue.h"

using namespace zel;

namespace {

constexpr std::int64_t Ceiling = std::int64_t{64} << 20;

std::atomic<bool> poolsGetThreads{false};

FileBufferLoader* StartLoader() noexcept {
    auto* const loader = ZELNew<FileBufferLoader>(Ceiling);
    if (loader == nullptr) {
        ReportAllocFailure("ZELFileBufferPool", sizeof(FileBufferLoader));
        return nullptr;
    }
    if (loader->Start()) return loader;
    ZELDelete(loader);
    return nullptr;
}

}  // namespace

ZELFileBufferPool::ZELFileBufferPool() noexcept : _loader(poolsGetThreads ? StartLoader() : nullptr) {}

ZELFileBufferPool::~ZELFileBufferPool() {
    ZELDelete(_loader);
}

void ZELFileBufferPool::append(ZELFileBuffer* buffer) noexcept {
    if (buffer != nullptr && _loader != nullptr) _loader->Queue()->Append(buffer);
}

void ZELFileBufferPool::enableMultiThread() noexcept {
    poolsGetThreads = true;
}

void ZELFileBufferPool::disableMultiThread() noexcept {
    poolsGetThreads = false;
}
