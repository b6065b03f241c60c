// Nearly every path is clean but for its slashes. One pass over 16 bytes at a time turns these round and looks for the
// only thing that can need more work inside a path: a separator that is followed by a separator or a dot. Where none
// is found, the two ends are all that is left to look at. Otherwise the rules run one after the other, each a single
// pass that leaps from one such place to the next and moves the text between them as it stands.

#include "paths/path_value.h"

#include <bit>
#include <cstring>

#include "base/bytes16.h"

using namespace zel;

namespace {

constexpr char Separator = '\\';

// Rule 1. Tells whether some separator is followed by a separator or a dot; bytes behind the text may only make it
// answer yes too often.
bool TurnSlashes(char* text, std::size_t length) noexcept {
    const Bytes16 slash = RepeatByte('/');
    const Bytes16 backslash = RepeatByte(Separator);
    const Bytes16 slashToBackslash = RepeatByte('/' ^ Separator);
    const Bytes16 dot = RepeatByte('.');
    unsigned suspicious = 0;
    unsigned separatorBefore = 0;  // bit 0: the last byte of the previous 16 was a separator
    for (std::size_t i = 0; i < length; i += PathPadding) {
        Bytes16 bytes = LoadBytes(text + i);
        bytes = bytes ^ (EqualBytes(bytes, slash) & slashToBackslash);
        StoreBytes(text + i, bytes);
        const unsigned separators = ByteMask(EqualBytes(bytes, backslash));
        const unsigned dots = ByteMask(EqualBytes(bytes, dot));
        suspicious |= ((separators << 1) | separatorBefore) & (separators | dots);
        separatorBefore = separators >> (PathPadding - 1);
    }
    return suspicious != 0;
}

// The first place at or behind `from` where a separator is followed by a separator or a dot, which is where the rules
// may find something; `length` when there is none.
std::size_t FindCandidate(const char* text, std::size_t from, std::size_t length) noexcept {
    const Bytes16 backslash = RepeatByte(Separator);
    const Bytes16 dot = RepeatByte('.');
    for (; from + PathPadding < length; from += PathPadding) {
        const Bytes16 next = LoadBytes(text + from + 1);
        const Bytes16 either = EqualBytes(next, backslash) | EqualBytes(next, dot);
        const unsigned found = ByteMask(EqualBytes(LoadBytes(text + from), backslash) & either);
        if (found != 0) return from + static_cast<std::size_t>(std::countr_zero(found));
    }
    for (; from + 1 < length; ++from)
        if (text[from] == Separator && (text[from + 1] == Separator || text[from + 1] == '.')) return from;
    return length;
}

// A text that is rewritten in place: read at one position and written at another, which is never ahead of it.
struct Rewriting {
    char* text;
    std::size_t length;
    std::size_t read = 0;
    std::size_t write = 0;

    void KeepUpTo(std::size_t end) noexcept {
        const std::size_t count = end - read;
        if (write != read && count != 0) std::memmove(text + write, text + read, count);
        read += count;
        write += count;
    }
    // Whether a ".." component begins behind the separator that is read next.
    bool IsAtUpward() const noexcept {
        const std::size_t rest = length - read;
        return rest >= 3 && text[read + 1] == '.' && text[read + 2] == '.' &&
               (rest == 3 || text[read + 3] == Separator);
    }
};

// Rules 2 and 3 together. A separator stands for everything behind it that would vanish into it: further separators,
// and dots that stand alone between separators.
std::size_t CollapseSeparators(char* text, std::size_t length) noexcept {
    Rewriting at{text, length};
    if (length >= 2 && text[0] == Separator && text[1] == Separator) at.KeepUpTo(1);
    for (;;) {
        at.KeepUpTo(FindCandidate(text, at.read, length));
        if (at.read == length) return at.write;
        at.KeepUpTo(at.read + 1);
        for (;;) {
            while (at.read < length && text[at.read] == Separator) ++at.read;
            if (at.read + 1 >= length || text[at.read] != '.' || text[at.read + 1] != Separator) break;
            at.read += 2;
        }
    }
}

// Rules 4 and 5.
std::size_t TrimDots(char* text, std::size_t length) noexcept {
    if (length >= 3 && text[length - 1] == '.' && text[length - 2] == Separator) --length;
    if (length >= 3 && text[0] == '.' && text[1] == Separator) {
        length -= 2;
        std::memmove(text, text + 2, length);
    }
    return length;
}

// The start of the separator and the component that end text[0..end), when a ".." behind them takes them back;
// `end` when it does not.
std::size_t StartOfTakenBack(const char* text, std::size_t end) noexcept {
    std::size_t begin = end;
    bool onlyDots = true;
    while (begin > 0 && text[begin - 1] != Separator) onlyDots &= text[--begin] == '.';
    return begin == 0 || onlyDots ? end : begin - 1;
}

// Rule 6.
std::size_t TakeBackComponents(char* text, std::size_t length) noexcept {
    constexpr std::size_t UpwardLength = 3;  // with the separator in front of it
    Rewriting at{text, length};
    for (;;) {
        at.KeepUpTo(FindCandidate(text, at.read, length));
        if (at.read == length) return at.write;
        const bool isUpward = at.IsAtUpward();
        const std::size_t begin = isUpward ? StartOfTakenBack(text, at.write) : at.write;
        if (begin == at.write) {
            at.KeepUpTo(at.read + (isUpward ? UpwardLength : 1));
        } else {
            at.write = begin;
            at.read += UpwardLength;
        }
    }
}

}  // namespace

std::size_t zel::NormalisePath(char* text, std::size_t length) noexcept {
    if (length == 0) return 0;
    if (TurnSlashes(text, length)) {
        length = TrimDots(text, CollapseSeparators(text, length));
        length = TakeBackComponents(text, length);
    } else if (text[0] == '.') {
        length = TrimDots(text, length);
    }
    return length >= 2 && text[length - 1] == Separator ? length - 1 : length;
}
