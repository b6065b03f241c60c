// One list of the buffers that wait to be read, one lock for it and for the states of all buffers, and one word that
// counts changes, on which everybody waits without the lock. A buffer goes from waiting in the list (Registered) over
// Loading to Loaded; leaving the list and becoming Loading is one step, so a file is read once, by the thread or by
// who asks, and nobody touches a buffer that its owner may end: he waits while it is Loading.
//
// The thread reads the first of the list while the budget lasts. Who asks for a text waits only for what somebody will
// do: he reads the file himself when the budget is used up or no thread runs, and looks again after every change.
// The thread ends itself, in the critical section in which it found nothing to do and the request to end; a buffer that
// comes earlier takes the request back, one that comes later starts another thread. So there is never more than one.
// It is started outside the lock, since making a TAThread may delete others, whose destructors are foreign code.

#include "TAFileBuffer.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "TAThread.h"
#include "ZELAtomic.h"
#include "ZELThreads.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "buffers/whole_file.h"
#include "platform/c_streams.h"
#include "platform/text_reader.h"
#include "platform/threads.h"
#include "platform/waiting.h"

using namespace zel;

namespace {

constexpr std::int64_t Budget = 10'240'000;

struct Shared {
    ZELMutex lock;
    ZELListPtrTAFileBuffer list;
    int nextPosition = 1;          // of the next buffer that is not a `first` one
    std::int64_t unconsumed = 0;   // bytes; below 0 when a `first` buffer came while some were counted
    bool isThreadRunning = false;  // from before it is started until it has decided to end
    bool isEndRequested = false;
    ZELAtomic<std::uint32_t> changes{0};  // changed under the lock

    bool IsOverBudget() const noexcept { return unconsumed > Budget; }
    void Announce() noexcept {
        changes.fetch_add(1);
        WakeAll(changes);
    }
    // Gives the lock up for the time of the wait.
    void AwaitChange() noexcept {
        const std::uint32_t seen = changes;
        lock.Unlock();
        WaitOnWord(changes, seen);
        lock.Lock();
    }
};

// Never ends: the thread may be alive at the end of the process.
Shared& TheShared() noexcept {
    alignas(Shared) static unsigned char room[sizeof(Shared)];
    static Shared* const made = new (room) Shared;
    return *made;
}

}  // namespace

TAFileBuffer::TAFileBuffer(const char* name, int first) noexcept : _name(name != nullptr ? CopyText(name) : nullptr) {
    if (name != nullptr && _name == nullptr) ReportAllocFailure("TAFileBuffer", std::strlen(name) + 1);
    Shared& shared = TheShared();
    shared.lock.Lock();
    const int position = first != 0 ? 1 : shared.nextPosition;
    if (first != 0) shared.unconsumed = 0;
    if (shared.list.InsertAt(position, this) == 0) {
        _state = Registered;
        shared.nextPosition = position + 1;
    }
    const bool isThreadWanted = !shared.isThreadRunning;
    shared.isThreadRunning = true;
    shared.isEndRequested = false;
    shared.Announce();
    shared.lock.Unlock();
    if (isThreadWanted) StartLoader();
}

void TAFileBuffer::StartLoader() noexcept {
    KeepLibraryLoaded();
    auto* const thread = ZELNew<TAThread>(ASyncLoad);
    if (thread == nullptr) ReportAllocFailure("TAFileBuffer", sizeof(TAThread));
    if (thread != nullptr && thread->StartDetach() == 0) return;
    ZELDelete(thread);
    Shared& shared = TheShared();
    shared.lock.Lock();
    shared.isThreadRunning = false;
    shared.Announce();
    shared.lock.Unlock();
}

void TAFileBuffer::ASyncCleanup() noexcept {
    Shared& shared = TheShared();
    shared.lock.Lock();
    shared.isEndRequested = shared.isThreadRunning;
    shared.Announce();
    shared.lock.Unlock();
}

void TAFileBuffer::ASyncLoad(int, const char**) noexcept {
    Shared& shared = TheShared();
    shared.lock.Lock();
    for (;;) {
        const bool isIdle = shared.list.Size() == 0;
        if (isIdle && shared.isEndRequested) break;
        if (isIdle || shared.IsOverBudget()) {
            shared.AwaitChange();
            continue;
        }
        TAFileBuffer* const next = *shared.list.begin();
        next->TakeOut();
        shared.lock.Unlock();
        next->ReadText(true);
        shared.lock.Lock();
    }
    shared.isEndRequested = false;
    shared.isThreadRunning = false;
    shared.lock.Unlock();
}

// Out of the list, and Loading. The lock is held.
void TAFileBuffer::TakeOut() noexcept {
    Shared& shared = TheShared();
    const int position = shared.list.RemoveValue(this);
    if (position > 0 && position < shared.nextPosition) --shared.nextPosition;
    _state = Loading;
}

// What TakeOut began. The lock is not held; behind the last section the owner may end the buffer.
void TAFileBuffer::ReadText(bool isKnown) noexcept {
    WholeFile file;
    if (isKnown)
        file = ReadWholeFile(_name);
    else
        WriteText(stdout,
                  {" -> TAFileBuffer::LoadFile : trying to load an unknown (certainly deleted) TAFileBuffer\n"});
    if (file.refused > 0) ReportAllocFailure("TAFileBuffer", file.refused);
    Shared& shared = TheShared();
    shared.lock.Lock();
    _text = file.text;
    _size = file.size;
    _isWhole = file.isOpened && !file.hasFailed && file.refused == 0;
    shared.unconsumed += _size;
    _state = Loaded;
    shared.Announce();
    shared.lock.Unlock();
}

// 0 when somebody else has begun already.
int TAFileBuffer::LoadFile() noexcept {
    Shared& shared = TheShared();
    shared.lock.Lock();
    const State before = _state;
    if (before <= Registered) TakeOut();
    shared.lock.Unlock();
    if (before > Registered) return 0;
    ReadText(before == Registered);
    return 1;
}

void TAFileBuffer::AwaitText() noexcept {
    Shared& shared = TheShared();
    shared.lock.Lock();
    while (_state != Loaded) {
        const bool nobodyLoads = shared.IsOverBudget() || !shared.isThreadRunning;
        if (_state == Unregistered || (_state == Registered && nobodyLoads)) {
            shared.lock.Unlock();
            LoadFile();
            shared.lock.Lock();
        } else {
            shared.AwaitChange();
        }
    }
    GiveBack();
    shared.lock.Unlock();
}

// The bytes, once. The lock is held.
void TAFileBuffer::GiveBack() noexcept {
    if (_isConsumed) return;
    _isConsumed = true;
    Shared& shared = TheShared();
    const bool wasOver = shared.IsOverBudget();
    shared.unconsumed -= _size;
    if (wasOver && !shared.IsOverBudget()) shared.Announce();
}

TAFileBuffer::~TAFileBuffer() {
    Shared& shared = TheShared();
    shared.lock.Lock();
    const State before = _state;
    if (before == Registered) TakeOut();
    if (before > Registered) {
        while (_state != Loaded) shared.AwaitChange();
        GiveBack();
    }
    shared.lock.Unlock();
    if (before == Unregistered)
        WriteText(
            stdout,
            {" --> TAFileBuffer::~TAFileBuffer : trying to delete an unknown (certainly deleted) TAFileBuffer\n"});
    Free(_name);
    Free(_text);
}

char* TAFileBuffer::GetBuffer() noexcept {
    AwaitText();
    return _text;
}

int TAFileBuffer::GetSize() noexcept {
    AwaitText();
    return _size;
}

int TAFileBuffer::GetStatus() noexcept {
    AwaitText();
    return _isWhole ? 0 : 1;
}

int TAFileBuffer::SaveAs(TAFileName& file) noexcept {
    AwaitText();
    if (_text == nullptr || !_isWhole) return 1;
    std::FILE* const stream = OpenTextForWriting(file, false);
    if (stream == nullptr) return 1;
    const auto size = static_cast<std::size_t>(_size);
    const bool isWritten = WriteStream(stream, {_text, size}) == size;
    return CloseStream(stream) && isWritten ? 0 : 1;
}
