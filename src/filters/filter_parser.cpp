// Parses a filter in one pass, without looking back.
//
// The last lexeme is a placeholder that begins at the current position. The character there turns it into a lexeme of
// its kind, and a new placeholder follows. A literal gets its size from the lexeme after it, and the last placeholder
// becomes the terminal lexeme. After an unclosed block it begins one character past the end.
// The syntax has oddities that existing filters rely on. They are decisions:
//   - the end of a range is read once more as an element of its own, so `[a-c-e]` contains a-c, c-e and e;
//   - a count is recognised only if a character follows its closing brace;
//   - an escape that is no count loses its first digit: `[a]\{3\}` is `[a]` and the text `\}`;
//   - class names are compared by their first six characters, colon included, so `[:xdigit:]` is rejected.

#include "filters/filter_parser.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <iterator>

#include "base/ascii.h"
#include "filters/block_set.h"

using namespace zel;

namespace {

constexpr std::u32string_view classNames[] = {
    U"alnum:", U"alpha:", U"cntrl:", U"digit:", U"graph:", U"lower:", U"print:", U"punct:", U"space:", U"upper:",
};
constexpr std::size_t ClassNameSize = 6;

// Whether the character ends a literal.
bool IsSpecial(char32_t code) noexcept {
    return code == U'*' || code == U'.' || code == U'[';
}

}  // namespace

bool FilterParser::Parse() noexcept {
    AddPlaceholder();
    do {
        if (!ParseLexeme()) return false;
        AddPlaceholder();
    } while (_position < _length);

    _lexemes[_lastLexeme].type = FilterLexeme::Terminal;
    for (int i = 0; i < _lastLexeme; ++i)
        if (_lexemes[i].type == FilterLexeme::Literal) _lexemes[i].size = _lexemes[i + 1].start - _lexemes[i].start;
    return true;
}

void FilterParser::AddPlaceholder() noexcept {
    _lexemes[++_lastLexeme] = {_position, FilterLexeme::Literal, -1, -1, -1, _blockCount};
}

// Gives the placeholder its kind and moves past it. An empty filter becomes a literal of no characters, which no
// candidate matches.
bool FilterParser::ParseLexeme() noexcept {
    FilterLexeme& lexeme = _lexemes[_lastLexeme];
    switch (At(_position)) {
        case U'[':
            if (!ParseBlock(lexeme)) return false;
            ++_position;
            return true;
        case U'*':
            lexeme.type = FilterLexeme::AnyRun;
            ++_position;
            return true;
        case U'.':
            lexeme.type = FilterLexeme::AnyOne;
            lexeme.size = 1;
            ++_position;
            return true;
        default:
            while (_position < _length && !IsSpecial(At(_position))) ++_position;
            return true;
    }
}

// Reads a block from its bracket on, with its repetition. The position is then on the last character of both, or at the
// end of a filter that does not close the block.
bool FilterParser::ParseBlock(FilterLexeme& block) noexcept {
    block = {_position, FilterLexeme::Block, 1, _lastOperation + 1, -1, _blockCount++};
    if (At(++_position) == U'^') {
        block.type = FilterLexeme::NegatedBlock;
        ++_position;
    }
    while (_position < _length && At(_position) != U']')
        if (!ParseElement()) return false;
    block.last = _lastOperation;
    return ParseRepetition(block);
}

bool FilterParser::ParseElement() noexcept {
    CharacterOperation& operation = _operations[++_lastOperation];
    operation = {-1, ZELUnicodeChar(At(_position++)), ZELUnicodeChar()};
    if (operation.c1 == U':') return ParseClass(operation);
    operation.op = 0;
    if (At(_position) == U'-' && _position + 1 < _length && At(_position + 1) != U']') {
        operation.op = 1;
        operation.c2 = ZELUnicodeChar(At(++_position));
    }
    return true;
}

bool FilterParser::ParseClass(CharacterOperation& operation) noexcept {
    const std::u32string_view name = _text.substr(static_cast<std::size_t>(_position), ClassNameSize);
    const auto* const found = std::find(std::begin(classNames), std::end(classNames), name);
    if (found == std::end(classNames)) return false;
    operation.op = FirstClass + static_cast<int>(found - classNames);
    _position += static_cast<int>(ClassNameSize);
    return true;
}

// From the closing bracket on.
bool FilterParser::ParseRepetition(FilterLexeme& block) noexcept {
    if (At(_position + 1) == U'*') {
        block.size = -1;
        ++_position;
    } else if (_position + 2 < _length && At(_position + 1) == U'\\' && At(_position + 2) == U'{') {
        _position += 3;
        return ParseCount(block);
    }
    return true;
}

// From the first digit on, where the position stays if no count is recognised. A count without digits is one. A count
// that is too large becomes the largest int.
bool FilterParser::ParseCount(FilterLexeme& block) noexcept {
    std::int64_t count = 0;
    for (int i = _position; i < _length - 2; ++i) {
        const char32_t code = At(i);
        if (code == U'\\' && At(i + 1) == U'}') {
            if (i > _position) block.size = static_cast<int>(count);
            _position = i + 1;
            return true;
        }
        if (!IsAsciiDigit(code)) return false;
        count = std::min<std::int64_t>(count * 10 + static_cast<std::int64_t>(code - U'0'), INT_MAX);
    }
    return true;
}
