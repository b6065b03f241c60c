// A counted file text. The count and all that is read without waiting are atomic, so that nobody who counts or looks
// waits for a disk; the lock makes loading one step, together with what the pool's queue does when it has loaded:
// subscribing itself and counting the bytes. The flag that it is loaded is stored last and publishes all that was
// read; the other stores need no order of their own, and with one each a small file would cost a tenth more.
//
// Who drops the text first marks the buffer as destroyed, under the lock; from then on nothing loads or subscribes, so
// the event goes out without the lock and a subscriber may use the buffer as it likes. The last reference is given up
// behind the event, not before it, for the same reason.
// The dangerous case is a buffer that outlives its pool: it shares the queue that subscribed, which therefore lives.

#include "ZELFileBuffer.h"

#include <cstdio>
#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "buffers/load_queue.h"
#include "buffers/whole_file.h"

using namespace zel;

const char* ZELFileBuffer::DeletionEvent::GetEventName() const {
    return LoadQueue::DeletionEventName;
}

ZELFileBuffer::ZELFileBuffer(const char* fileName) noexcept
    : _fileName(fileName != nullptr ? CopyText(fileName) : nullptr) {
    if (fileName != nullptr && _fileName == nullptr) ReportAllocFailure("ZELFileBuffer", std::strlen(fileName) + 1);
}

ZELFileBuffer::~ZELFileBuffer() {
    Free(_fileName);
}

int ZELFileBuffer::Release() {
    std::int32_t seen = _count;
    while (seen > 1)
        if (_count.compare_exchange_strong(seen, seen - 1)) return seen - 1;
    DropText();
    const std::int32_t left = _count.fetch_sub(1) - 1;
    if (left == 0) delete this;
    return left;
}

void ZELFileBuffer::destroy() {
    DropText();
    Release();
}

void ZELFileBuffer::DropText() {
    _lock.Lock();
    const bool isFirst = _isDestroyed == 0;
    _isDestroyed.store(1, std::memory_order_relaxed);
    _lock.Unlock();
    char* const text = _text;
    if (!isFirst || text == nullptr) return;
    SendCallback(&_deletion);
    _text.store(nullptr, std::memory_order_relaxed);
    _size.store(0, std::memory_order_relaxed);
    Free(text);
}

void ZELFileBuffer::loadFile() noexcept {
    _lock.Lock();
    Load();
    _lock.Unlock();
}

// For the queue of a pool, which subscribes and counts what was loaded for it in one step with the loading.
void ZELFileBuffer::LoadFor(const ZELShared<LoadQueue>& queue) noexcept {
    _lock.Lock();
    if (!_isLoaded) {
        Load();
        if (_text != nullptr) {
            _queue = queue;
            TACallbackPublisher::AddSubscriber(queue.get());
            queue->Count(_size);
        }
    }
    _lock.Unlock();
}

// The lock is held.
void ZELFileBuffer::Load() noexcept {
    if (_isLoaded) return;
    if (_fileName == nullptr) {
        _status = NoFileName;
    } else if (!_isDestroyed) {
        const WholeFile file = ReadWholeFile(_fileName);
        if (file.refused > 0) {
            std::printf("# Error: malloc failed in ZELFileBuffer::loadFile (size: %zu)\n", file.refused);
            std::fflush(stdout);
        }
        _text.store(file.text, std::memory_order_relaxed);
        _size.store(file.size, std::memory_order_relaxed);
        const bool isWhole = file.isOpened && !file.hasFailed && file.refused == 0;
        _status.store(isWhole ? Loaded : NotOpened, std::memory_order_relaxed);
    }
    _isLoaded.store(1, std::memory_order_release);
}

const char* ZELFileBuffer::getBuffer() noexcept {
    if (!_isLoaded) loadFile();
    return _text;
}

int ZELFileBuffer::getBufferSize() noexcept {
    if (!_isLoaded) loadFile();
    return _size;
}

void ZELFileBuffer::AddSubscriber(TACallbackSubscriber* subscriber) noexcept {
    _lock.Lock();
    TACallbackPublisher::AddSubscriber(subscriber);
    _lock.Unlock();
}

void ZELFileBuffer::RemoveSubscriber(TACallbackSubscriber* subscriber) noexcept {
    _lock.Lock();
    TACallbackPublisher::RemoveSubscriber(subscriber);
    _lock.Unlock();
}
