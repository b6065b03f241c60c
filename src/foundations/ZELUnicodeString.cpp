// ZELUnicodeString keeps up to 16 characters in the object and more of them in one heap block of its own; _room tells
// which (0: in the object). The 8-bit form is made when it is first asked for and dropped when the text changes.
//
// Invariants: _length <= _room where _room is not 0, else <= InlineCapacity; _isNull implies _length == 0; _bytes, once
// set, is the form of the present text.
// The dangerous case is two readers that ask for the 8-bit form at once: each makes one, the first to store it wins,
// and the other frees its own. Whoever changes the text is alone by contract.

#include "ZELUnicodeString.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ZELToken.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "base/utf8.h"

using namespace zel;

namespace {

// So that the 8-bit form, at four bytes per character, stays below 2^31 bytes.
constexpr std::size_t MaxLength = (std::size_t{1} << 29) - 1;

char* MakeBytes(std::u32string_view units) noexcept {
    std::size_t size = 0;
    for (const char32_t code : units) size += Utf8Length(code);
    auto* const bytes = AllocateArray<char>(size + 1);
    if (bytes == nullptr) {
        ReportAllocFailure("ZELUnicodeString", size + 1);
        return nullptr;
    }
    char* out = bytes;
    for (const char32_t code : units) {
        if (code < 0x80)
            *out++ = static_cast<char>(code);
        else
            out += PutUtf8(code, out);
    }
    *out = '\0';
    return bytes;
}

}  // namespace

ZELUnicodeString::ZELUnicodeString(const char* text) noexcept
    : ZELUnicodeString(text != nullptr ? std::string_view(text) : std::string_view()) {
    _isNull = text == nullptr;
}

void ZELUnicodeString::SetBytes(const char* bytes, std::size_t size) noexcept {
    // No text has more characters than bytes.
    char32_t* const units = MakeRoom(size);
    if (units == nullptr) return;
    std::string_view text(bytes, size);
    std::size_t length = 0;
    while (!text.empty()) {
        const auto byte = static_cast<unsigned char>(text.front());
        if (byte < 0x80) {
            units[length++] = byte;
            text.remove_prefix(1);
        } else {
            units[length++] = TakeUtf8(text);
        }
    }
    _length = static_cast<std::uint32_t>(length);
}

void ZELUnicodeString::SetUnits(const char32_t* units, std::size_t length) noexcept {
    char32_t* const room = MakeRoom(length);
    if (room == nullptr) return;
    std::copy_n(units, length, room);
    _length = static_cast<std::uint32_t>(length);
}

ZELUnicodeString::ZELUnicodeString(const ZELUnicodeChar& character, int count) noexcept : ZELUnicodeString() {
    if (count <= 0) return;
    char32_t* const units = MakeRoom(static_cast<std::size_t>(count));
    if (units == nullptr) return;
    std::fill_n(units, count, character.CodePoint());
    _length = static_cast<std::uint32_t>(count);
}

ZELUnicodeString::ZELUnicodeString(const ZELUnicodeString& other) noexcept : ZELUnicodeString(other.View()) {
    _isNull = other._isNull;
    _isIncomplete |= other._isIncomplete;
}

ZELUnicodeString::ZELUnicodeString(ZELUnicodeString&& other) noexcept : ZELUnicodeString() {
    Take(other);
}

ZELUnicodeString::~ZELUnicodeString() {
    DropBytes();
    if (_room != 0) Free(_long);
}

ZELUnicodeString& ZELUnicodeString::operator=(const ZELUnicodeString& other) noexcept {
    if (this == &other) return *this;
    char32_t* const units = MakeRoom(other._length);
    if (units == nullptr) return *this;
    DropBytes();
    std::copy_n(other.Units(), other._length, units);
    _length = other._length;
    _isNull = other._isNull;
    _isIncomplete = other._isIncomplete;
    return *this;
}

ZELUnicodeString& ZELUnicodeString::operator=(ZELUnicodeString&& other) noexcept {
    if (this == &other) return *this;
    DropBytes();
    if (_room != 0) Free(_long);
    Take(other);
    return *this;
}

// Takes over the text and the 8-bit form of `other` and leaves it empty; this string's own are gone already.
void ZELUnicodeString::Take(ZELUnicodeString& other) noexcept {
    std::memcpy(_short, other._short, sizeof _short);
    _length = std::exchange(other._length, 0u);
    _room = other._room;
    _isNull = other._isNull;
    _isIncomplete = other._isIncomplete;
    other._room = 0;
    other._isNull = 0;
    other._isIncomplete = 0;
    _bytes.store(other._bytes.exchange(nullptr, std::memory_order_relaxed), std::memory_order_relaxed);
}

void ZELUnicodeString::DropBytes() noexcept {
    if (char* const bytes = _bytes.load(std::memory_order_relaxed)) {
        _bytes.store(nullptr, std::memory_order_relaxed);
        Free(bytes);
    }
}

// The units, with room for `length` of them and the present text kept; null, and the text incomplete, without memory.
char32_t* ZELUnicodeString::MakeRoom(std::size_t length) noexcept {
    if (length <= (_room != 0 ? _room : InlineCapacity)) return Units();
    // Half as much again where a text grows, so that building one piece by piece stays linear.
    const std::size_t room = std::min(std::max(length, _length + std::size_t{_length} / 2), MaxLength);
    const std::size_t bytes = room * sizeof(char32_t);
    void* const old = _room != 0 ? _long : nullptr;
    auto* const units = length <= MaxLength ? static_cast<char32_t*>(Reallocate(old, bytes)) : nullptr;
    if (units == nullptr) {
        ReportAllocFailure("ZELUnicodeString", length * sizeof(char32_t));
        _isIncomplete = 1;
        return nullptr;
    }
    if (old == nullptr) std::copy_n(_short, _length, units);
    _long = units;
    _room = static_cast<std::uint32_t>(room) & 0x3FFFFFFF;
    return units;
}

const char* ZELUnicodeString::ConvertToChar() const noexcept {
    if (_length == 0) return "";
    char* known = _bytes.load(std::memory_order_acquire);
    if (known != nullptr) return known;
    char* const made = MakeBytes(View());
    if (made == nullptr) return "";
    if (_bytes.compare_exchange_strong(known, made, std::memory_order_acq_rel)) return made;
    Free(made);
    return known;
}

ZELUnicodeString ZELUnicodeString::Strip(ZELStripMode mode, const ZELUnicodeChar& c) const noexcept {
    if (_isNull) return *this;
    std::u32string_view rest = View();
    if (mode != ZELStripTrailing) rest.remove_prefix(std::min(rest.find_first_not_of(c.CodePoint()), rest.size()));
    if (mode != ZELStripLeading) rest = rest.substr(0, rest.find_last_not_of(c.CodePoint()) + 1);
    return Part(rest);
}

ZELUnicodeString ZELUnicodeString::SubString(int start, int length) const noexcept {
    if (start < 0 || length < 0 || static_cast<std::uint32_t>(start) >= _length) return Part({});
    return Part(View().substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
}

ZELUnicodeString& ZELUnicodeString::operator+=(const ZELUnicodeString& text) noexcept {
    const std::size_t oldLength = _length;
    const std::size_t added = text._length;
    char32_t* const units = MakeRoom(oldLength + added);
    if (units == nullptr) return *this;
    // Found only now: `text` may be this string, whose units have moved.
    std::copy_n(text.Units(), added, units + oldLength);
    DropBytes();
    _length = static_cast<std::uint32_t>(oldLength + added);
    _isNull = _isNull && text._isNull;
    _isIncomplete |= text._isIncomplete;
    Recompose(oldLength);
    return *this;
}

// Lone bytes on both sides of `joint` may have become a character. None is longer than four bytes, so three on either
// side are all that can take part.
void ZELUnicodeString::Recompose(std::size_t joint) noexcept {
    char32_t* const units = Units();
    std::size_t first = joint;
    std::size_t last = joint;
    while (first > 0 && joint - first < 3 && IsLoneByte(units[first - 1])) --first;
    while (last < _length && last - joint < 3 && IsLoneByte(units[last])) ++last;
    if (first == joint || last == joint) return;

    char bytes[6];
    for (std::size_t i = first; i < last; ++i) PutUtf8(units[i], bytes + (i - first));
    std::string_view rest(bytes, last - first);
    char32_t* out = units + first;
    while (!rest.empty()) *out++ = TakeUtf8(rest);
    out = std::copy(units + last, units + _length, out);
    _length = static_cast<std::uint32_t>(out - units);
}

// The tokenizer. Each call costs the length of the text that it passes, times the number of separators.

ZELToken::ZELToken(const ZELUnicodeString& text) noexcept : _text(text) {}

ZELToken::~ZELToken() = default;

ZELUnicodeString ZELToken::GetNextToken(const ZELUnicodeString& separators) noexcept {
    const std::u32string_view text = _text.View();
    const std::size_t start = std::min(text.find_first_not_of(separators.View(), _position), text.size());
    const std::size_t end = std::min(text.find_first_of(separators.View(), start), text.size());
    _position = std::min(end + 1, text.size());
    // As a part of the text, it is incomplete if the text is.
    return _text.SubString(static_cast<int>(start), static_cast<int>(end - start));
}
