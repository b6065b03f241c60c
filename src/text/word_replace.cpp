// Replaces whole identifiers in a text, each together with an opening and a closing text behind it if asked for.
//
// The work goes on in a copy with a gap: in front of the gap stands what the search has left behind, and behind it what
// it has still to look at, which begins with the text that was inserted last (that is searched again together with what
// follows). So a replacement moves the bytes that were passed and no others. The caller's block is exchanged at the
// end, which leaves it alone when memory runs out, and a search that finds nothing takes no memory.
// Whether an opening text follows anywhere is asked at each word: one that was found far behind answers until it is
// passed. The cost is linear in text and insertions, except that a word of several parts is compared where it begins.
// The dangerous case is a replacement that holds the word: each replacement must use up some of the text behind the one
// before, so that there is an end.

#include <algorithm>
#include <cstring>
#include <string_view>

#include "TATextUtilities.h"
#include "base/ascii.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "foundations/text_search.h"

using namespace zel;

namespace {

constexpr std::size_t npos = std::string_view::npos;

bool IsIdentifierPart(char c) noexcept {
    return IsAsciiAlnum(c) || c == '_' || c == '$';
}

bool IsWhite(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The text with its gap. Reads the caller's block until the first replacement.
class GapText {
public:
    explicit GapText(const char* text) noexcept : _rest(text) {}
    GapText(const GapText&) = delete;
    GapText& operator=(const GapText&) = delete;
    ~GapText() { Free(_block); }

    std::string_view Rest() const noexcept { return _rest; }
    // The byte in front of `position` in the rest; NUL at the beginning of the text.
    char Before(std::size_t position) const noexcept {
        if (position > 0) return _rest[position - 1];
        return _passed > 0 ? _block[_passed - 1] : '\0';
    }

    // Puts `by` in the place of the bytes [begin, end) of the rest, which then begins with it. False without memory.
    bool Replace(std::size_t begin, std::size_t end, std::string_view by) noexcept {
        const std::size_t behind = _rest.size() - end;
        if (!MakeRoom(begin, by.size() + behind)) return false;
        std::memmove(_block + _passed, _rest.data(), begin);
        _passed += begin;
        char* const inserted = _block + _capacity - behind - by.size();
        std::memcpy(inserted, by.data(), by.size());
        _rest = {inserted, by.size() + behind};
        return true;
    }

    // The joined text as a block of the C heap, for free(); null while there was no replacement.
    char* Take() noexcept {
        if (_block == nullptr) return nullptr;
        std::memmove(_block + _passed, _rest.data(), _rest.size());
        const std::size_t length = _passed + _rest.size();
        _block[length] = '\0';
        char* const fitting = static_cast<char*>(Reallocate(_block, length + 1));
        char* const taken = fitting != nullptr ? fitting : _block;
        _block = nullptr;
        return taken;
    }

private:
    // Sees to it that `passing` bytes more in front of the gap and a rest of `restSize` fit together.
    bool MakeRoom(std::size_t passing, std::size_t restSize) noexcept {
        const std::size_t needed = _passed + passing + restSize;
        if (_block != nullptr && needed <= _capacity) return true;
        const std::size_t capacity = std::max(needed + needed / 2, _rest.size());
        char* const block = AllocateArray<char>(capacity + 1);  // and the terminator in the end
        if (block == nullptr) {
            ReportAllocFailure("replace", capacity + 1);
            return false;
        }
        if (_passed != 0) std::memcpy(block, _block, _passed);
        char* const rest = block + capacity - _rest.size();
        std::memcpy(rest, _rest.data(), _rest.size());
        Free(_block);
        _block = block;
        _capacity = capacity;
        _rest = {rest, _rest.size()};
        return true;
    }

    std::string_view _rest;  // in the caller's block, or at the end of _block
    char* _block = nullptr;
    std::size_t _passed = 0;  // bytes at the beginning of _block
    std::size_t _capacity = 0;
};

enum class Follows { Here, Later, Nowhere };

// A text that has to follow a word.
class Follower {
public:
    explicit Follower(const char* text) noexcept : _text(text != nullptr ? text : "") {}

    // Whether the text stands in `rest` at `position` behind white space at most; then `position` moves behind it.
    Follows Follow(std::string_view rest, std::size_t& position) noexcept {
        if (_text.empty()) return Follows::Here;
        std::size_t whiteEnd = position;
        while (whiteEnd < rest.size() && IsWhite(rest[whiteEnd])) ++whiteEnd;
        // Not only where the white space ends: the text may begin with some itself.
        const std::size_t found = FindText(rest.substr(0, whiteEnd + _text.size()), _text, position);
        if (found != npos) {
            position = found + _text.size();
            return Follows::Here;
        }
        return StandsBehind(rest, position) ? Follows::Later : Follows::Nowhere;
    }

    // The rest was changed in front of its last `intact` bytes.
    void Forget(std::size_t intact) noexcept {
        if (_knownSize > intact) _knownSize = 0;
    }

private:
    bool StandsBehind(std::string_view rest, std::size_t position) noexcept {
        if (_knownSize != 0 && _knownSize <= rest.size() - position) return true;
        const std::size_t found = FindText(rest, _text, position);
        _knownSize = found != npos ? rest.size() - found : 0;
        return found != npos;
    }

    std::string_view _text;
    std::size_t _knownSize = 0;  // how many bytes from an occurrence to the end of the text; 0: none is known
};

}  // namespace

int replace(char*& text, const char* word, const char* open, const char* close, const char* replacement) noexcept {
    if (text == nullptr || word == nullptr || *text == '\0' || *word == '\0') return 0;
    const std::string_view sought = word;
    const std::string_view by = replacement != nullptr ? replacement : "";
    Follower followers[] = {Follower(open), Follower(close)};
    GapText gap(text);
    int result = 0;
    bool isComplete = true;
    std::size_t unused = npos;  // bytes of the text that no replacement has used up
    std::size_t from = 0;
    for (std::size_t at; isComplete && (at = FindText(gap.Rest(), sought, from)) != npos;) {
        from = at + 1;
        if (IsIdentifierPart(gap.Before(at))) continue;
        const std::string_view rest = gap.Rest();
        const std::size_t wordEnd = at + sought.size();
        std::size_t end = wordEnd;
        Follows follows = Follows::Here;
        for (Follower& follower : followers)
            if (follows == Follows::Here) follows = follower.Follow(rest, end);
        isComplete = follows != Follows::Nowhere;
        const std::size_t behind = rest.size() - end;
        if (follows != Follows::Here || behind >= unused) continue;
        if (wordEnd < rest.size() && IsIdentifierPart(rest[wordEnd])) continue;
        if (!gap.Replace(at, end, by)) return 0;
        for (Follower& follower : followers) follower.Forget(behind);
        unused = behind;
        from = 0;
        result = 1;
    }
    if (char* const replaced = gap.Take()) {
        Free(text);
        text = replaced;
    }
    return isComplete ? result : 0;
}
