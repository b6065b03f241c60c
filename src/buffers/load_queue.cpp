// The thread takes over all that waits, loads it one by one, and waits at two places: for something to do, and for room
// under the ceiling before each buffer. Both waits sleep on one word that counts changes and hold no lock, so that an
// append, a deletion or the stop never waits for the thread.
//
// The dangerous case is a reference that is given back: it may be the last one, and then the buffer's subscribers run,
// which may append to this queue or end the pool. So references are given back without the lock, and the thread's body
// shares the queue instead of using the thread's object.

#include "buffers/load_queue.h"

#include <cstring>
#include <utility>

#include "base/failure_report.h"
#include "platform/threads.h"
#include "platform/waiting.h"

using namespace zel;

void LoadQueue::Append(ZELFileBuffer* buffer) noexcept {
    buffer->AddRef();
    _lock.Lock();
    const bool isTaken = !_isStopped && _waiting.Append(buffer) == 0;
    _lock.Unlock();
    if (isTaken)
        Announce();
    else
        buffer->Release();
}

void LoadQueue::Stop() {
    _lock.Lock();
    _isStopped = true;
    _lock.Unlock();
    Announce();
    for (ZELFileBuffer* const buffer : TakeWaiting()) buffer->Release();
}

void LoadQueue::LoadAll(const ZELShared<LoadQueue>& queue) {
    while (!queue->_isStopped) {
        const std::uint32_t seen = queue->_changes;
        const ZELListPtrZELFileBuffer taken = queue->TakeWaiting();
        for (ZELFileBuffer* const buffer : taken) {
            if (queue->AwaitTurn(*buffer)) buffer->LoadFor(queue);
            buffer->Release();
        }
        if (taken.Size() == 0 && !queue->_isStopped) WaitOnWord(queue->_changes, seen);
    }
}

// Waits for room. False when the buffer need not be loaded.
bool LoadQueue::AwaitTurn(const ZELFileBuffer& buffer) const noexcept {
    for (;;) {
        const std::uint32_t seen = _changes;
        if (_isStopped || buffer.isLoaded() || buffer.isDestroyed()) return false;
        if (_loadedBytes < _ceiling) return true;
        WaitOnWord(_changes, seen);
    }
}

ZELListPtrZELFileBuffer LoadQueue::TakeWaiting() noexcept {
    _lock.Lock();
    ZELListPtrZELFileBuffer taken(std::move(_waiting));
    _lock.Unlock();
    return taken;
}

void LoadQueue::ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) {
    if (std::strcmp(event->GetEventName(), DeletionEventName) != 0) return;
    const std::int64_t bytes = static_cast<ZELFileBuffer*>(publisher)->getBufferSize();
    const std::int64_t before = _loadedBytes.fetch_sub(bytes);
    if (before >= _ceiling && before - bytes < _ceiling) Announce();
}

void LoadQueue::Announce() noexcept {
    _changes.fetch_add(1);
    WakeOne(_changes);
}

FileBufferLoader::FileBufferLoader(std::int64_t ceiling) noexcept
    : ZELThreads("FileBufferPoolThread"), _queue(ZELShared<LoadQueue>::Make(ceiling)) {
    if (!_queue) ReportAllocFailure("ZELFileBufferPool", sizeof(LoadQueue));
}

FileBufferLoader::~FileBufferLoader() {
    if (_queue) _queue->Stop();
    Join();
}

bool FileBufferLoader::Start() noexcept {
    KeepLibraryLoaded();
    return _queue && Run(0) == 0;
}

int FileBufferLoader::Execute(int) {
    const ZELShared<LoadQueue> queue = _queue;
    LoadQueue::LoadAll(queue);
    return 0;
}
