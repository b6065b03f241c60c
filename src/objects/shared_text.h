// A counted text that several owners share, so that copying takes constant time. Null is the empty text.
//
// The count is atomic: a copy is a text of its own as far as anybody can tell, also in another thread. The text grows
// in place only for an owner that has it alone.
#ifndef OBJECTS_SHARED_TEXT_H
#define OBJECTS_SHARED_TEXT_H

#include <atomic>
#include <cstdint>
#include <string_view>

#include "base/memory.h"

namespace zel {

struct SharedText {
    // Null for the empty text, and when there is no memory, which is reported under the name of the owner's class.
    static SharedText* Make(std::string_view text, const char* owner) noexcept;

    static SharedText* Keep(SharedText* text) noexcept {
        if (text != nullptr) text->owners.fetch_add(1, std::memory_order_relaxed);
        return text;
    }
    static void Drop(SharedText* text) noexcept {
        if (text == nullptr) return;
        if (text->IsAlone() || text->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(text);
    }
    // Lengthens the text of one owner by `tail`, which may be part of it. False, and no change, without memory.
    static bool Append(SharedText*& text, std::string_view tail, const char* owner) noexcept;

    static std::string_view View(const SharedText* text) noexcept {
        return text != nullptr ? std::string_view(text->Characters(), text->length) : "";
    }

    // They follow the block: room + 1.
    char* Characters() noexcept { return reinterpret_cast<char*>(this + 1); }
    const char* Characters() const noexcept { return reinterpret_cast<const char*>(this + 1); }

    bool IsAlone() const noexcept { return owners.load(std::memory_order_acquire) == 1; }

    std::atomic<std::uint32_t> owners;
    std::uint32_t length;
    std::uint32_t room;  // for characters, without the NUL
};

}  // namespace zel

#endif
