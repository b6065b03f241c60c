// What a pool's thread is to load, and the account of what it has loaded.
//
// Shared by the pool, its thread and every buffer that was loaded for it: whoever needs it last ends it. So a pool may
// end before its buffers, and a subscriber that runs on the thread may even end the pool.
#ifndef BUFFERS_LOAD_QUEUE_H
#define BUFFERS_LOAD_QUEUE_H

#include <atomic>
#include <cstdint>

#include "TACallback.h"
#include "ZELAtomic.h"
#include "ZELFileBuffer.h"
#include "ZELShared.h"
#include "ZELThreads.h"

namespace zel {

class LoadQueue final : public TACallbackSubscriber {
public:
    static constexpr const char* DeletionEventName = "EventBufferDeletion";

    // Nothing is loaded while `ceiling` bytes or more are.
    explicit LoadQueue(std::int64_t ceiling) noexcept : _ceiling(ceiling) {}

    // Keeps a reference to `buffer` until it had its turn. Nothing once stopped.
    void Append(ZELFileBuffer* buffer) noexcept;
    // Gives back what waits and makes LoadAll return behind the buffer that it is loading. Does not wait.
    void Stop();
    // What the thread does until it is stopped.
    static void LoadAll(const ZELShared<LoadQueue>& queue);

    // The sizes of all buffers that LoadAll has loaded and that still have their texts.
    std::int64_t LoadedBytes() const noexcept { return _loadedBytes; }
    // For a buffer that was loaded by this queue, which gives its bytes back by its event.
    void Count(std::int32_t bytes) noexcept { _loadedBytes += bytes; }
    void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) override;

private:
    bool AwaitTurn(const ZELFileBuffer& buffer) const noexcept;
    ZELListPtrZELFileBuffer TakeWaiting() noexcept;
    void Announce() noexcept;

    const std::int64_t _ceiling;
    std::atomic<std::int64_t> _loadedBytes{0};
    std::atomic<bool> _isStopped{false};   // set under the lock
    ZELAtomic<std::uint32_t> _changes{0};  // counts what may end a wait of the thread
    ZELMutex _lock;                        // never held while anything is called that others wrote
    ZELListPtrZELFileBuffer _waiting;      // guarded by the lock
};

// The thread of a pool.
class FileBufferLoader final : public ZELThreads {
public:
    explicit FileBufferLoader(std::int64_t ceiling) noexcept;
    ~FileBufferLoader();

    // False when there is no memory or the system gives no thread.
    bool Start() noexcept;
    LoadQueue* Queue() const noexcept { return _queue.get(); }

protected:
    int Execute(int) override;

private:
    ZELShared<LoadQueue> _queue;  // empty without memory
};

}  // namespace zel

#endif
