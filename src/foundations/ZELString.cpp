// ZELString keeps a text of up to 31 bytes in the object and a longer one in one heap block of its own; _room tells
// which (0: in the object). A block, once had, is kept until the string ends or takes over another: a string that is
// filled again and again settles.
//
// Invariants: Text()[_length] is NUL; without the bit for incomplete texts, _room is 0 or more than 31, and not less
// than _length when it is not 0.
// The dangerous case is an argument that lies inside the string that is being changed: nothing of the old text may be
// freed or overwritten before the argument has been copied.

#include "ZELString.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "base/ascii.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "foundations/text_search.h"

using namespace zel;

namespace {

// Lengths and positions are int in the interface.
constexpr std::size_t MaxLength = 0x7FFFFFFE;

char* AllocateText(std::size_t length) noexcept {
    char* const text = length <= MaxLength ? AllocateArray<char>(length + 1) : nullptr;
    if (text == nullptr) ReportAllocFailure("ZELString", length);
    return text;
}

}  // namespace

// Not only of long texts: the destructor calls it for short ones too that are incomplete.
void ZELString::FreeText() noexcept {
    if (IsLong()) Free(_long);
}

// Replaces the text by `text`, which may be a part of the old one.
void ZELString::AssignBytes(const char* text, std::size_t length) noexcept {
    if (length <= Room()) {
        std::memmove(Text(), text, length);
        SetLength(length);
        _room &= ~IncompleteBit;
        return;
    }
    char* const block = AllocateText(length);
    if (block == nullptr) {
        _room |= IncompleteBit;
        return;
    }
    std::memcpy(block, text, length);
    FreeText();
    _long = block;
    _room = static_cast<std::uint32_t>(length);
    SetLength(length);
}

// Moves the text into a block with room for at least `length` characters; false when there is none.
bool ZELString::Grow(std::size_t length) noexcept {
    // Twice the room, so that a text that is built piece by piece is moved a logarithmic number of times.
    const std::size_t room = length > MaxLength ? length : std::min(std::max(length, 2 * Room()), MaxLength);
    // realloc moves large blocks by their pages; small ones are cheaper to copy by hand.
    constexpr std::uint32_t ReallocatedFrom = 1024;
    if (Room() >= ReallocatedFrom && room <= MaxLength) {
        if (char* const moved = static_cast<char*>(Reallocate(_long, room + 1))) {
            _long = moved;
            SetRoom(room);
            return true;
        }
    }
    char* const block = AllocateText(room);
    if (block == nullptr) return false;
    std::memcpy(block, Text(), std::size_t{_length} + 1);
    FreeText();
    _long = block;
    SetRoom(room);
    return true;
}

// Appends what does not fit. `text` may lie in the block that is about to move: it is found again by its offset.
void ZELString::AppendGrowing(const char* text, std::size_t length) noexcept {
    const std::less<const char*> before;
    const char* const old = Text();
    const bool inside = !before(text, old) && !before(old + _length, text);
    const std::size_t offset = inside ? static_cast<std::size_t>(text - old) : 0;
    if (!Grow(_length + length)) {
        _room |= IncompleteBit;
        return;
    }
    std::memcpy(Text() + _length, inside ? Text() + offset : text, length);
    SetLength(_length + length);
}

void ZELString::Reserve(std::size_t length) noexcept {
    if (length > Room()) Grow(length);
}

ZELString ZELString::JoinBytes(const char* left, std::size_t leftLength, const char* right,
                               std::size_t rightLength) noexcept {
    ZELString joined;
    const std::size_t length = leftLength + rightLength;
    if (length > InlineCapacity && !joined.Grow(length)) {
        joined._room |= IncompleteBit;
        return joined;
    }
    char* const text = joined.Text();
    std::memcpy(text, left, leftLength);
    std::memcpy(text + leftLength, right, rightLength);
    joined.SetLength(length);
    return joined;
}

int ZELString::FindPosition(const ZELString& what, int from) const noexcept {
    if (from < 0) return -1;
    const std::size_t position = FindText(View(), what.View(), static_cast<std::size_t>(from));
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

ZELString ZELString::SubString(std::size_t start, std::size_t count) const noexcept {
    ZELString part;
    if (start < _length) part.Assign(View().substr(start, count));
    part._room |= _room & IncompleteBit;
    return part;
}

int ZELString::ReplaceSubString(const ZELString& what, const ZELString& by) noexcept {
    constexpr std::size_t npos = std::string_view::npos;
    const std::string_view text = View();
    const std::string_view old = what.View();
    _room |= what._room & IncompleteBit;
    std::size_t occurrences = 0;
    for (std::size_t at = FindText(text, old, 0); at != npos; at = FindText(text, old, at + old.size())) ++occurrences;
    if (occurrences == 0) return 0;

    // Built apart, since either argument may be this very string.
    const std::size_t length = text.size() - occurrences * old.size() + occurrences * by._length;
    ZELString result;
    if (by.IsIncomplete() || (length > InlineCapacity && !result.Grow(length))) {
        _room |= IncompleteBit;
        return 0;
    }
    std::size_t done = 0;
    for (std::size_t at = FindText(text, old, 0); at != npos; at = FindText(text, old, done)) {
        result.Append(text.substr(done, at - done)).Append(by.View());
        done = at + old.size();
    }
    result.Append(text.substr(done));
    result._room |= _room & IncompleteBit;
    *this = std::move(result);
    return static_cast<int>(occurrences);
}

ZELString& ZELString::ToUpper() noexcept {
    char* const text = Text();
    for (std::size_t i = 0; i < _length; ++i) text[i] = ToAsciiUpper(text[i]);
    return *this;
}
