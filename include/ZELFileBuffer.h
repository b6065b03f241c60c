// The whole text of one file in memory, shared by count.
//
//     ZELFileBuffer* const file = new ZELFileBuffer("main.cpp");
//     if (const char* text = file->getBuffer()) fwrite(text, 1, file->getBufferSize(), stdout);
//     file->Release();
//
// The file is read when its text is first asked for, or ahead of that by a ZELFileBufferPool. It is read as text: on
// Windows CR LF arrives as LF and a byte 0x1A ends it, and the size counts what arrived. A file that grows or shrinks
// meanwhile ends where it ended at that moment; of one that is larger than 2^31 - 2 bytes the rest is left out.
// For files that are wanted once, in an order known beforehand, TAFileBuffer keeps fewer of them in memory; for a text
// line by line use a stream.
//
// Every operation may be called from any thread that has a reference. While one thread loads, who asks for the text
// waits. Nothing throws. When memory runs out, a line that starts with "# Error: malloc failed in ZELFileBuffer" goes
// to standard output and the buffer holds what was read until then: perhaps nothing.
#ifndef ZELFILEBUFFER_H
#define ZELFILEBUFFER_H

#include <cstddef>
#include <cstdint>

#include "TACallback.h"
#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListPtr.h"
#include "ZELShared.h"
#include "ZELThreads.h"

namespace zel {
class LoadQueue;  // of the pool; for the library alone
}  // namespace zel
class ZELFileBuffer;

class ZELListPtrZELFileBuffer : public ZELListPtr<ZELFileBuffer> {
public:
    using ZELListPtr<ZELFileBuffer>::ZELListPtr;
};

// Publishes the event "EventBufferDeletion" once, when it lets go of a text that it holds: the text and its size are
// still there during the calls, which are made without any lock.
class ZEL_API ZELFileBuffer : public TACallbackPublisher {
public:
    // NotOpened also stands for a file that could not be read whole: after a read error there is no text, and when
    // memory runs out the text ends early.
    enum Status { Loaded = 0, NotOpened = 1, NotLoaded = 2, NoFileName = 3 };

    // Made by `new`; the caller holds the first reference. The name is copied, null is no name. Reads nothing yet.
    explicit ZELFileBuffer(const char* fileName) noexcept;
    ZELFileBuffer(const ZELFileBuffer&) = delete;
    ZELFileBuffer& operator=(const ZELFileBuffer&) = delete;

    void AddRef() noexcept { _count.fetch_add(1); }
    // Gives a reference back and returns how many are left. The last one publishes the event and deletes the buffer.
    int Release();
    // Publishes the event and frees the text at once, for all who have references, and gives one reference back. From
    // now on the buffer never loads.
    void destroy();

    // Reads the file, unless that was done or the buffer was destroyed. Blocks as long as the disk does.
    void loadFile() noexcept;
    // The text with a NUL behind it, loaded first if need be; valid until destroy() or the last Release(). Null, and a
    // size of 0, when there is none: see getStatus(). An empty file has an empty text.
    const char* getBuffer() noexcept;
    int getBufferSize() noexcept;

    const char* getFileName() const noexcept { return _fileName; }
    // One of Status. A buffer that was destroyed before it was loaded stays at NotLoaded.
    int getStatus() const noexcept { return _status; }
    int isDestroyed() const noexcept { return _isDestroyed; }
    // 1 as soon as nothing more will be read, whether or not there is a text.
    int isLoaded() const noexcept { return _isLoaded; }

    // As those of the publisher, but safe while a pool loads the buffer.
    void AddSubscriber(TACallbackSubscriber* subscriber) noexcept;
    void RemoveSubscriber(TACallbackSubscriber* subscriber) noexcept;

private:
    friend class zel::LoadQueue;

    class DeletionEvent final : public TAEvent {
    public:
        const char* GetEventName() const override;
    };

    ~ZELFileBuffer() override;
    void LoadFor(const ZELShared<zel::LoadQueue>& queue) noexcept;
    void Load() noexcept;
    void DropText();

    ZELAtomic<std::int32_t> _count{1};
    DeletionEvent _deletion;
    ZELAtomic<std::int32_t> _isLoaded{0};
    ZELAtomic<std::int32_t> _status{NotLoaded};
    ZELAtomic<std::int32_t> _isDestroyed{0};
    char* _fileName;
    ZELAtomic<char*> _text{nullptr};
    ZELAtomic<std::int32_t> _size{0};
    ZELMutex _lock;                    // held while the file is read
    ZELShared<zel::LoadQueue> _queue;  // the subscriber of the pool that loaded this, which may be gone
};

#endif
