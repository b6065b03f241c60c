// A channel's name is interned in a list that only grows and is never freed; the list entry carries the switch, so
// activation reaches channels that exist and those to come, and asking for it is one load. The list is pushed to
// without a lock: it works in static constructors and beside threads that are alive at exit.
//
// Destination and message buffer are the channel's own, under its lock: a message is formatted into the buffer, which
// is made on the first message and grows to the longest, and leaves it in one write.

#include "ZELTrace.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <string_view>

#include "base/failure_report.h"
#include "base/growing_array.h"
#include "base/memory.h"
#include "platform/c_streams.h"
#include "platform/text_reader.h"

using namespace zel;

struct zel::ZELTraceName {
    std::atomic<bool> active;
    ZELTraceName* next;
    std::size_t length;  // of the text, which follows this record in its block

    std::string_view Text() const noexcept { return {reinterpret_cast<const char*>(this + 1), length}; }
};

// Where the messages of one channel go.
struct ZELTrace::Channel {
    std::mutex lock;
    ZELTraMode mode;
    std::FILE* stream;  // null: the file has not been opened
    char* path;         // null: a standard stream
    GrowingArray<char> message;
    std::size_t firstRoom;  // bytes that are reserved for the first message

    ~Channel() {
        if (path != nullptr && stream != nullptr) std::fclose(stream);
        Free(path);
    }
    bool Open() noexcept;
    bool MakeRoom(std::size_t size) noexcept;
    int Format(const char* format, std::va_list arguments) noexcept;
};

namespace {

constinit std::atomic<ZELTraceName*> firstName = nullptr;

ZELTraceName* MakeName(std::string_view text) {
    const std::size_t size = sizeof(ZELTraceName) + text.size();
    void* const block = Allocate(size);
    if (block == nullptr) {
        ReportAllocFailure("ZELTrace", size);
        return nullptr;
    }
    ZELTraceName* const name = new (block) ZELTraceName{};
    name->length = text.size();
    std::memcpy(static_cast<void*>(name + 1), text.data(), text.size());
    return name;
}

// The entry of that name; null when it is new and memory runs out.
ZELTraceName* Intern(const char* name) {
    const std::string_view text(name != nullptr ? name : "");
    ZELTraceName* made = nullptr;
    ZELTraceName* head = firstName.load(std::memory_order_acquire);
    for (;;) {
        ZELTraceName* known = head;
        while (known != nullptr && known->Text() != text) known = known->next;
        if (known != nullptr) {
            Free(made);
            return known;
        }
        if (made == nullptr && (made = MakeName(text)) == nullptr) return nullptr;
        made->next = head;
        // Another thread's new entry may be this very name: look again.
        if (firstName.compare_exchange_strong(head, made, std::memory_order_acq_rel, std::memory_order_acquire))
            return made;
    }
}

}  // namespace

bool ZELTrace::Channel::Open() noexcept {
    if (stream == nullptr) stream = OpenTextForWriting(path, mode != ZELTraTruncate);
    return stream != nullptr;
}

bool ZELTrace::Channel::MakeRoom(std::size_t size) noexcept {
    if (message.Reserve(size)) return true;
    ReportAllocFailure("ZELTrace", size);
    return false;
}

// The length of the message, which is then complete; negative when it could not be made.
int ZELTrace::Channel::Format(const char* format, std::va_list arguments) noexcept {
    if (!MakeRoom(firstRoom)) return -1;
    std::va_list again;
    va_copy(again, arguments);
    int length = std::vsnprintf(message.Data(), message.Capacity(), format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) >= message.Capacity()) {
        const bool grown = MakeRoom(static_cast<std::size_t>(length) + 1);
        length = grown ? std::vsnprintf(message.Data(), message.Capacity(), format, again) : -1;
    }
    va_end(again);
    return length;
}

ZELTrace::ZELTrace(const char* name, const char*, ZELTraMode mode, const char* destination, int size) noexcept
    : _name(Intern(name)), _channel(ZELNew<Channel>()) {
    if (_channel == nullptr) {
        ReportAllocFailure("ZELTrace", sizeof(Channel));
        _name = nullptr;
        return;
    }
    constexpr int SmallestRoom = 128;
    constexpr int LargestRoom = 1 << 20;  // a size that is an error should not cost its memory
    _channel->firstRoom = static_cast<std::size_t>(std::clamp(size, SmallestRoom, LargestRoom));
    _channel->mode = mode;
    const std::string_view target(destination != nullptr ? destination : "");
    if (target.empty() || target == "STDERR") {
        _channel->stream = stderr;
    } else if (target == "STDOUT") {
        _channel->stream = stdout;
    } else if (char* const path = CopyText(target)) {
        _channel->path = path;
    } else {
        ReportAllocFailure("ZELTrace", target.size() + 1);
        _name = nullptr;
    }
}

ZELTrace::~ZELTrace() {
    ZELDelete(_channel);
}

void ZELTrace::Activate(const char* name) noexcept {
    if (ZELTraceName* const known = Intern(name)) known->active.store(true, std::memory_order_relaxed);
}

void ZELTrace::Deactivate(const char* name) noexcept {
    if (ZELTraceName* const known = Intern(name)) known->active.store(false, std::memory_order_relaxed);
}

int ZELTrace::IsActive() const noexcept {
    return _name != nullptr && _name->active.load(std::memory_order_relaxed) ? 1 : 0;
}

void ZELTrace::TraPrint(const char* format, ...) noexcept {
    if (!IsActive() || format == nullptr) return;
    const std::lock_guard guard(_channel->lock);
    if (!_channel->Open()) return;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = _channel->Format(format, arguments);
    va_end(arguments);
    if (length < 0) return;
    WriteStream(_channel->stream, {_channel->message.Data(), static_cast<std::size_t>(length)});
    FlushStream(_channel->stream);
}
