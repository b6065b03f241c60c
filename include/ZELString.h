// 8-bit text with value semantics.
//
// A ZELString owns a counted run of bytes that is always followed by a NUL. Up to 31 bytes live inside the object, so
// most strings are copied without touching the heap; longer ones own one heap block each (copies never share).
// Positions are 0-based byte offsets. Bytes are compared as unsigned values; nothing here depends on the locale.
//
//     ZELString name("scan");
//     name += "_sources";
//     if (name.FindPosition("_", 0) == 4) puts(name.SubString(0, 4));
//
// A null `const char*` counts as the empty text everywhere. A position outside the text gives an empty result, -1 or a
// NUL character, never a read outside. When memory runs out, or a text would grow past 2^31 - 2 bytes, a line that
// starts with "# Alloc failed in ZELString" goes to standard output, the operation leaves the text as it was (a
// constructor: empty), and the text counts as incomplete from then on, and with it what is made of it; see
// IsIncomplete(). Nothing throws.
// Distinct objects may be used from distinct threads; one object that is being changed needs a lock of the caller's.
//
// Use ZELUnicodeString where characters rather than bytes matter.
#ifndef ZELSTRING_H
#define ZELSTRING_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string_view>

#include "ZELExport.h"

// The character at a position of a ZELString; used through its conversion to char.
class ZELChar {
public:
    constexpr explicit ZELChar(char value) noexcept : _value(value) {}
    constexpr operator char() const noexcept { return _value; }

private:
    char _value;
};

class ZELString;

// A name or a text of another class that knows whether something of it is missing.
template <class Text>
concept ZELMarkedText = !std::derived_from<Text, ZELString> && requires(const Text& text) {
    text.IsIncomplete();
    text.View();
    static_cast<const char*>(text);
};

class ZEL_API ZELString {
public:
    // The longest text that is kept inside the object.
    static constexpr std::size_t InlineCapacity = 31;

    constexpr ZELString() noexcept : _short{}, _length(0), _room(0) {}
    ZELString(const char* text) noexcept : ZELString(std::string_view(text ? text : "")) {}
    ZELString(char* text) noexcept : ZELString(static_cast<const char*>(text)) {}
    ZELString(std::nullptr_t) noexcept : ZELString() {}
    // The `length` bytes at `text`, which need no terminator and may hold NULs. A null `text` gives the empty string.
    ZELString(const char* text, std::size_t length) noexcept : ZELString(std::string_view(text, text ? length : 0)) {}
    explicit ZELString(std::string_view text) noexcept : ZELString() {
        if (text.size() <= InlineCapacity) {
            // Not assign(): a constructor has no old text to keep, and short texts must cost no call.
            if (!text.empty()) std::memcpy(_short, text.data(), text.size());
            _length = static_cast<std::uint32_t>(text.size());
        } else {
            Assign(text);
        }
    }
    // The 8-bit text of a TAFileName or a ZELUnicodeString, which takes over that it is incomplete. So do = and +=.
    template <ZELMarkedText Text>
    explicit ZELString(const Text& text) noexcept : ZELString(static_cast<const char*>(text)) {
        if (text.IsIncomplete() || (_length == 0 && !text.View().empty())) _room |= IncompleteBit;
    }
    // A string whose text is inside the object is copied whole, at a fixed size: no test of the length, no loop.
    ZELString(const ZELString& other) noexcept : ZELString() {
        if (other._room == 0)
            CopyObject(other);
        else
            AssignLong(other);
    }
    ZELString(ZELString&& other) noexcept {
        CopyObject(other);
        other.Forget();
    }
    ~ZELString() {
        if (_room != 0) FreeText();
    }

    ZELString& operator=(const ZELString& other) noexcept {
        if (_room == 0 && other._room == 0)
            CopyObject(other);
        else if (this != &other)
            AssignLong(other);
        return *this;
    }
    ZELString& operator=(ZELString&& other) noexcept {
        if (this != &other) {
            if (_room != 0) FreeText();
            CopyObject(other);
            other.Forget();
        }
        return *this;
    }
    // `text` may point into this string.
    ZELString& operator=(const char* text) noexcept {
        Assign(text ? text : "");
        return *this;
    }

    template <ZELMarkedText Text>
    ZELString& operator=(const Text& text) noexcept {
        return *this = ZELString(text);
    }

    // The NUL-terminated text, owned by the string and valid until it changes or ends. Never null.
    operator const char*() const noexcept { return Text(); }
    const char* CastToCharPtr() const noexcept { return Text(); }
    std::string_view View() const noexcept { return {Text(), _length}; }

    int Length() const noexcept { return static_cast<int>(_length); }
    int length() const noexcept { return Length(); }
    int GetLengthInChar() const noexcept { return Length(); }
    // Whether something may be missing, because memory ran out when the text was made or changed, or when a string was
    // that it was made from. Copies, joined strings and parts take it over; assigning a whole text ends it. Whoever is
    // handed a text to store, to send or to open checks it, as all of this library does.
    bool IsIncomplete() const noexcept { return (_room & IncompleteBit) != 0; }
    // An empty text that is incomplete: what a function returns that had no memory for its result.
    static ZELString Incomplete() noexcept {
        ZELString text;
        text._room = IncompleteBit;
        return text;
    }

    // The character at `position`; NUL outside 0 to Length() - 1.
    ZELChar operator[](int position) const noexcept { return At(static_cast<std::uint64_t>(position)); }
    template <std::integral Position>
    ZELChar operator[](Position position) const noexcept {
        return At(static_cast<std::uint64_t>(position));
    }

    // Appending in place; a string may be appended to itself, and `text` may point into this string.
    ZELString& operator+=(const ZELString& text) noexcept {
        if (text.IsIncomplete()) _room |= IncompleteBit;
        return Append(text.View());
    }
    ZELString& operator+=(const char* text) noexcept { return Append(std::string_view(text ? text : "")); }
    template <ZELMarkedText Text>
    ZELString& operator+=(const Text& text) noexcept {
        return *this += ZELString(text);
    }
    template <std::same_as<char> Character>
    ZELString& operator+=(Character character) noexcept {
        return Append(std::string_view(&character, 1));
    }
    ZELString& Append(std::string_view text) noexcept {
        if (text.size() > Room() - _length) {
            AppendGrowing(text.data(), text.size());
        } else {
            std::memmove(Text() + _length, text.data(), text.size());
            SetLength(_length + text.size());
        }
        return *this;
    }

    ZELString operator+(const ZELString& text) const noexcept { return Join(View(), text.View(), _room | text._room); }
    ZELString operator+(const char* text) const noexcept { return Join(View(), text ? text : "", _room); }
    // A char and nothing that merely converts to it: `text + 1` stays pointer arithmetic on the C text.
    template <std::same_as<char> Character>
    ZELString operator+(Character character) const noexcept {
        return Join(View(), std::string_view(&character, 1), _room);
    }
    friend ZELString operator+(const char* left, const ZELString& right) noexcept {
        return Join(left ? left : "", right.View(), right._room);
    }

    // The position of the first occurrence of `what` that begins at or after `from`, or -1; -1 too when `what` is
    // empty or `from` is negative. Linear in both lengths, whatever the texts are.
    int FindPosition(const ZELString& what, int from = 0) const noexcept;
    // At most `count` bytes from `start` on; the empty string when `start` lies outside.
    ZELString SubString(std::size_t start, std::size_t count) const noexcept;
    // Replaces every occurrence of `what` from left to right, without looking again at what it inserted. Returns their
    // number: 0 when `what` is empty or when memory ran out (the text is then unchanged).
    int ReplaceSubString(const ZELString& what, const ZELString& by) noexcept;
    // Turns a to z into A to Z; every other byte stays.
    ZELString& ToUpper() noexcept;
    // Makes room for `length` bytes in all, so that appending up to there neither moves the text nor allocates.
    void Reserve(std::size_t length) noexcept;

    friend bool operator==(const ZELString& left, const ZELString& right) noexcept {
        return left.View() == right.View();
    }
    friend bool operator==(const ZELString& left, const char* right) noexcept {
        return left.View() == std::string_view(right ? right : "");
    }
    friend std::strong_ordering operator<=>(const ZELString& left, const ZELString& right) noexcept {
        return left.View() <=> right.View();
    }
    friend std::strong_ordering operator<=>(const ZELString& left, const char* right) noexcept {
        return left.View() <=> std::string_view(right ? right : "");
    }
    // Compiled into the caller, so that its own stream library writes.
    friend std::ostream& operator<<(std::ostream& stream, const ZELString& text) { return stream << text.View(); }

private:
    static constexpr std::uint32_t IncompleteBit = 0x80000000;

    bool IsLong() const noexcept { return (_room & ~IncompleteBit) != 0; }
    const char* Text() const noexcept { return IsLong() ? _long : _short; }
    char* Text() noexcept { return IsLong() ? _long : _short; }
    std::size_t Room() const noexcept { return IsLong() ? _room & ~IncompleteBit : InlineCapacity; }
    void SetRoom(std::size_t room) noexcept { _room = (_room & IncompleteBit) | static_cast<std::uint32_t>(room); }
    void SetLength(std::size_t length) noexcept {
        _length = static_cast<std::uint32_t>(length);
        Text()[length] = '\0';
    }
    // A negative position arrives here as a huge one.
    ZELChar At(std::uint64_t position) const noexcept { return ZELChar(position < _length ? Text()[position] : '\0'); }
    void CopyObject(const ZELString& other) noexcept {
        std::memcpy(_short, other._short, sizeof _short);
        _length = other._length;
        _room = other._room;
    }
    void Forget() noexcept {
        _short[0] = '\0';
        _length = 0;
        _room = 0;
    }
    void Assign(std::string_view text) noexcept { AssignBytes(text.data(), text.size()); }
    void AssignLong(const ZELString& other) noexcept {
        Assign(other.View());
        _room |= other._room & IncompleteBit;
    }
    void AssignBytes(const char* text, std::size_t length) noexcept;
    void AppendGrowing(const char* text, std::size_t length) noexcept;
    bool Grow(std::size_t length) noexcept;
    void FreeText() noexcept;
    // `rooms`: those of the strings that take part, which tell whether one is incomplete.
    static ZELString Join(std::string_view left, std::string_view right, std::uint32_t rooms) noexcept {
        ZELString joined = JoinBytes(left.data(), left.size(), right.data(), right.size());
        if ((rooms & IncompleteBit) != 0) joined._room |= IncompleteBit;
        return joined;
    }
    static ZELString JoinBytes(const char* left, std::size_t leftLength, const char* right,
                               std::size_t rightLength) noexcept;

    union {
        char _short[InlineCapacity + 1];
        char* _long;  // a heap block of _room + 1 bytes
    };
    std::uint32_t _length;
    // Characters that _long has room for, 0 while the text is inside the object; and the bit IncompleteBit.
    std::uint32_t _room;
};

#endif
