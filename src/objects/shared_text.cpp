// A block is a counter, two lengths, and the characters with a terminator.
//
// A block that grows gets twice the room, so a text that is appended piece by piece is moved a logarithmic number of
// times.
// Hazard: the tail may be in the block that is replaced, so that block is freed last.

#include "objects/shared_text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

// The longest text of a ZELString.
constexpr std::size_t MaxLength = 0x7FFFFFFE;

SharedText* NewBlock(std::string_view text, std::size_t room, const char* owner) noexcept {
    const std::size_t size = sizeof(SharedText) + room + 1;
    void* const memory = room <= MaxLength ? Allocate(size) : nullptr;
    if (memory == nullptr) {
        ReportAllocFailure(owner, size);
        return nullptr;
    }
    SharedText* const block = ::new (memory) SharedText;
    block->owners.store(1, std::memory_order_relaxed);
    block->length = static_cast<std::uint32_t>(text.size());
    block->room = static_cast<std::uint32_t>(room);
    if (!text.empty()) std::memcpy(block->Characters(), text.data(), text.size());
    block->Characters()[text.size()] = '\0';
    return block;
}

}  // namespace

SharedText* SharedText::Make(std::string_view text, const char* owner) noexcept {
    return text.empty() ? nullptr : NewBlock(text, text.size(), owner);
}

bool SharedText::Append(SharedText*& text, std::string_view tail, const char* owner) noexcept {
    const std::string_view head = View(text);
    const std::size_t length = head.size() + tail.size();
    if (text == nullptr || !text->IsAlone() || length > text->room) {
        const std::size_t room = length > MaxLength ? length : std::clamp(2 * head.size(), length, MaxLength);
        SharedText* const block = NewBlock(head, room, owner);
        if (block == nullptr) return false;
        std::memcpy(block->Characters() + head.size(), tail.data(), tail.size());
        Drop(text);
        text = block;
    } else {
        std::memmove(text->Characters() + head.size(), tail.data(), tail.size());
    }
    text->length = static_cast<std::uint32_t>(length);
    text->Characters()[length] = '\0';
    return true;
}
