// Evaluates a formula of patterns. The rules cut the expression, never parse it: parentheses are taken off the ends,
// the operators outside parentheses are overwritten with "~~", and the text is split there. That is done literally
// here, in one copy of the expression, so a "~" of the caller's next to an operator shifts the cut as the rules have
// it.
//
// Looking for the operators of each level anew would take quadratic time on nested formulas. So an index is made first:
// for each place the depth of parentheses, the next operator at that same depth, and the next "~~" that the caller
// wrote. A range then finds its operators, and after them its pieces, by leaps, and each operator is met by one level
// only. What still has to be evaluated stands on a stack of levels in the heap: depth costs no recursion.
//
// Invariants: levels nest only where at least one operator was found, so there are no more of them than operators;
// pieces hold no "~~", and overwritten characters are never parentheses, so the depths stay true.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "TATextUtilities.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "text/wildcard.h"

using namespace zel;

namespace {

struct Range {
    int begin;
    int end;
};

struct Place {
    int depth;         // closing less opening parentheses from here on; may be negative
    int nextOperator;  // the first pair of "&" or "|" at this depth from here on, or Nowhere
    int nextTildes;    // the same for "~~", at any depth
};

// An operator level whose pieces are being evaluated.
struct Level {
    int next;  // where the next piece begins
    int end;
    int mark;  // an operator of the level, at or behind `next` when it was last looked at
    bool isAnd;
    bool isNegated;
};

enum class Truth { False, True, Pending };

constexpr int Nowhere = INT_MAX - 2;

Truth TruthOf(bool value) noexcept {
    return value ? Truth::True : Truth::False;
}

class Formula {
public:
    Formula(std::string_view text, std::string_view expression) noexcept
        : _text(text), _size(static_cast<int>(expression.size())) {
        if (MakeRoom(expression)) MakeIndex();
    }
    Formula(const Formula&) = delete;
    Formula& operator=(const Formula&) = delete;
    ~Formula() {
        if (_block != _room) Free(_block);
    }

    // False when there was no memory, too.
    bool Evaluate() noexcept {
        Truth truth = _block != nullptr ? Begin({0, _size}) : Truth::False;
        while (_levelCount > 0) {
            Level& level = _levels[_levelCount - 1];
            const bool isDecided = truth == TruthOf(!level.isAnd);
            Range piece;
            if (!isDecided && TakePiece(level, piece)) {
                truth = Begin(piece);
            } else {
                truth = TruthOf(level.isAnd != (isDecided != level.isNegated));
                --_levelCount;
            }
        }
        return truth == Truth::True;
    }

private:
    bool MakeRoom(std::string_view expression) noexcept;
    void MakeIndex() noexcept;
    Truth Begin(Range range) noexcept;
    char MarkOperators(Range range) noexcept;
    bool EvaluateAtom(Range range) const noexcept;
    bool TakePiece(Level& level, Range& piece) noexcept;
    int FindSeparator(Level& level) noexcept;

    bool StandsAt(int position, int end, char twice) const noexcept {
        return position + 1 < end && _copy[position] == twice && _copy[position + 1] == twice;
    }
    bool IsEnclosed(Range range) const noexcept { return _copy[range.begin] == '(' && _copy[range.end - 1] == ')'; }

    std::string_view _text;
    int _size;
    Place* _places = nullptr;  // _size + 1
    int* _lastAtDepth = nullptr;
    Level* _levels = nullptr;
    int _levelCount = 0;
    char* _copy = nullptr;   // the expression, with the operators of the levels so far overwritten
    void* _block = nullptr;  // what the four lie in: _room or a heap block; null without memory
    alignas(Place) unsigned char _room[2048];
};

bool Formula::MakeRoom(std::string_view expression) noexcept {
    const std::size_t size = expression.size();
    const std::size_t depths = 2 * size + 1;
    const std::size_t levels = size / 2 + 1;
    const std::size_t bytes = (size + 1) * sizeof(Place) + levels * sizeof(Level) + depths * sizeof(int) + size;
    _block = bytes <= sizeof _room ? _room : Allocate(bytes);
    if (_block == nullptr) {
        ReportAllocFailure("TestMatchWithLogExp", bytes);
        return false;
    }
    _places = static_cast<Place*>(_block);
    _levels = reinterpret_cast<Level*>(_places + size + 1);
    _lastAtDepth = reinterpret_cast<int*>(_levels + levels) + size;  // depths reach from -size to size
    _copy = reinterpret_cast<char*>(_lastAtDepth + size + 1);
    if (size != 0) std::memcpy(_copy, expression.data(), size);
    return true;
}

// Backwards, so that each place knows what stands behind it.
void Formula::MakeIndex() noexcept {
    std::fill_n(_lastAtDepth - _size, 2 * static_cast<std::size_t>(_size) + 1, Nowhere);
    int depth = 0;
    int tildes = Nowhere;
    _places[_size] = {depth, Nowhere, Nowhere};
    for (int i = _size - 1; i >= 0; --i) {
        switch (_copy[i]) {
            case '(':
                --depth;
                break;
            case ')':
                ++depth;
                break;
            case '&':
            case '|':
                if (StandsAt(i, _size, _copy[i])) _lastAtDepth[depth] = i;
                break;
            case '~':
                if (StandsAt(i, _size, '~')) tildes = i;
                break;
            default:
                break;
        }
        _places[i] = {depth, _lastAtDepth[depth], tildes};
    }
}

// Evaluates a range without operators; one with some becomes the top level and is Pending.
Truth Formula::Begin(Range range) noexcept {
    bool isNegated = false;
    while (range.end - range.begin >= 3 && _copy[range.begin] == '!' && IsEnclosed({range.begin + 1, range.end})) {
        if (range.end - range.begin == 3) return TruthOf(isNegated);
        isNegated = !isNegated;
        range = {range.begin + 2, range.end - 1};
    }
    while (range.end - range.begin >= 2 && IsEnclosed(range)) range = {range.begin + 1, range.end - 1};
    if (_places[range.begin].depth != _places[range.end].depth) return TruthOf(isNegated);
    const char kind = MarkOperators(range);
    if (kind == '!') return TruthOf(isNegated);
    if (kind == '\0') return TruthOf(EvaluateAtom(range) != isNegated);
    _levels[_levelCount++] = {range.begin, range.end, _places[range.begin].nextOperator, kind == '&', isNegated};
    return Truth::Pending;
}

// Overwrites the operators outside parentheses. Tells their character; NUL when there are none, "!" when they differ.
char Formula::MarkOperators(Range range) noexcept {
    char kind = '\0';
    for (int at = _places[range.begin].nextOperator; at + 1 < range.end;) {
        const char character = _copy[at];
        if (character == '~' || _copy[at + 1] != character) {
            // Its first half belongs to an operator of the level above.
            at = _places[at + 1].nextOperator;
            continue;
        }
        if (kind != '\0' && kind != character) return '!';
        kind = character;
        _copy[at] = _copy[at + 1] = '~';
        at = _places[at + 2].nextOperator;
    }
    return kind;
}

bool Formula::EvaluateAtom(Range range) const noexcept {
    bool isNegated = false;
    for (; range.end - range.begin > 1; ++range.begin) {
        if (_copy[range.begin] == '!')
            isNegated = !isNegated;
        else if (!IsEnclosed(range))
            break;
        else if (range.end - range.begin == 2)
            --range.end;
    }
    const std::string_view pattern(_copy + range.begin, static_cast<std::size_t>(range.end - range.begin));
    return MatchesWildcard(_text, pattern) != isNegated;
}

// The level's next piece that is not empty; false when there is none left.
bool Formula::TakePiece(Level& level, Range& piece) noexcept {
    while (level.next < level.end) {
        piece = {level.next, FindSeparator(level)};
        level.next = piece.end + 2;
        if (piece.begin != piece.end) return true;
    }
    return false;
}

// The first "~~" at or behind the level's next piece, or the level's end: the second half of an operator with what
// follows it, a pair that the caller wrote, or an operator with a "~" of the caller's in front of it or without.
int Formula::FindSeparator(Level& level) noexcept {
    if (StandsAt(level.next, level.end, '~')) return level.next;
    while (level.mark < level.next || (level.mark + 1 < level.end && !StandsAt(level.mark, level.end, '~')))
        level.mark = _places[level.mark + 1].nextOperator;
    int mark = level.mark;
    if (mark > level.next && mark < level.end && _copy[mark - 1] == '~') --mark;
    const int separator = std::min(mark, _places[level.next].nextTildes);
    return separator + 1 < level.end ? separator : level.end;
}

}  // namespace

unsigned short TestMatchWithLogExp(ZELString& text, ZELString expression) noexcept {
    const bool isWhole = !text.IsIncomplete() && !expression.IsIncomplete();
    return isWhole && Formula(text.View(), expression.View()).Evaluate() ? 1 : 0;
}
