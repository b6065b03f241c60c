// Turns the text of a filter into lexemes and character operations, in one pass and without looking back.
//
// The last lexeme is a placeholder that begins where the pass stands: what stands there makes it a lexeme of its kind,
// and a new placeholder follows. So literals get their size from the lexeme behind them, and the last placeholder
// is the terminal one. Behind an unclosed block it begins one character past the end.
// The syntax has oddities that filters in use rely on; they are decisions:
//   - the end of a range is read once more as an element of its own, so that `[a-c-e]` holds a-c, c-e and e;
//   - a count is recognised only where a character follows its closing brace;
//   - an escape that is no count loses its first digit: `[a]\{3\}` is `[a]` and the text `\}`;
//   - class names are compared by their first six characters, colon included, so `[:xdigit:]` is refused.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "TAUnicodeRegularExpression.h"
#include "filters/block_set.h"
#include "filters/records.h"

using namespace zel;

namespace {

constexpr std::u32string_view classNames[] = {
    U"alnum:", U"alpha:", U"cntrl:", U"digit:", U"graph:", U"lower:", U"print:", U"punct:", U"space:", U"upper:",
};
constexpr std::size_t ClassNameSize = 6;

}  // namespace

int TAUnicodeRegularExpression::_compile() noexcept {
    _length = _filter.GetLengthInChar();
    _lastLexeme = -1;
    _lastOperation = -1;
    int pos = 0;
    if (_addLexeme(0, Literal) != 0) return 1;
    do {
        if (_compileLexeme(pos) != 0 || _addLexeme(pos, Literal) != 0) return 1;
    } while (pos < _length);

    _lexemes[_lastLexeme].type = Terminal;
    for (int i = 0; i < _lastLexeme; ++i)
        if (_lexemes[i].type == Literal) _lexemes[i].size = _lexemes[i + 1].start - _lexemes[i].start;
    return 0;
}

// Gives the placeholder its kind by what stands at `pos`, and moves behind it. An empty filter becomes a literal of no
// characters, which no candidate matches.
int TAUnicodeRegularExpression::_compileLexeme(int& pos) noexcept {
    Lexeme& lexeme = _lexemes[_lastLexeme];
    const std::u32string_view rest = _filter.View().substr(static_cast<std::size_t>(pos));
    const char32_t code = rest.empty() ? U'\0' : rest.front();
    if (code == U'[') {
        if (_decodeFilteringBlock(pos) != 0) return 1;
        ++pos;
    } else if (code == U'*' || code == U'.') {
        lexeme.type = code == U'*' ? AnyRun : AnyOne;
        lexeme.size = code == U'*' ? -1 : 1;
        ++pos;
    } else {
        pos += static_cast<int>(std::min(rest.find_first_of(U"*.["), rest.size()));
    }
    return 0;
}

int TAUnicodeRegularExpression::_addLexeme(int start, int type) noexcept {
    if (!MakeRoomForRecords(_lexemes, _lexemeCapacity, _lastLexeme + 2)) return 1;
    _lexemes[++_lastLexeme] = {start, type, -1, -1, -1, -1};
    return 0;
}

int TAUnicodeRegularExpression::_addCharacterOperation(int op) noexcept {
    if (!MakeRoomForRecords(_operations, _operationCapacity, _lastOperation + 2)) return 1;
    _operations[++_lastOperation] = {op, ZELUnicodeChar(), ZELUnicodeChar()};
    return 0;
}

// Reads the block whose bracket stands at `pos`, with what tells how often it is repeated, and leaves `pos` on the last
// character that belongs to it, or at the end of a filter that never closes the block.
int TAUnicodeRegularExpression::_decodeFilteringBlock(int& pos) noexcept {
    Lexeme& block = _lexemes[_lastLexeme];
    block = {pos, Block, 1, _lastOperation + 1, -1, -1};
    if (_filter[++pos] == U'^') {
        block.type = NegatedBlock;
        ++pos;
    }
    while (pos < _length && _filter[pos] != U']')
        if (_decodeElement(pos) != 0) return 1;
    block.last = _lastOperation;
    return _decodeRepetition(block, pos);
}

int TAUnicodeRegularExpression::_decodeElement(int& pos) noexcept {
    if (_addCharacterOperation(-1) != 0) return 1;
    CharacterOperation& operation = _operations[_lastOperation];
    operation.c1 = _filter[pos++];
    if (operation.c1 == U':') return _decodeClass(operation, pos);
    operation.op = 0;
    if (_filter[pos] == U'-' && pos + 1 < _length && _filter[pos + 1] != U']') {
        operation.op = 1;
        operation.c2 = _filter[++pos];
    }
    return 0;
}

int TAUnicodeRegularExpression::_decodeClass(CharacterOperation& operation, int& pos) noexcept {
    const std::u32string_view name = _filter.View().substr(static_cast<std::size_t>(pos), ClassNameSize);
    const auto* const found = std::find(std::begin(classNames), std::end(classNames), name);
    if (found == std::end(classNames)) return 1;
    operation.op = FirstClass + static_cast<int>(found - classNames);
    pos += static_cast<int>(ClassNameSize);
    return 0;
}

// With `pos` on the closing bracket.
int TAUnicodeRegularExpression::_decodeRepetition(Lexeme& block, int& pos) noexcept {
    if (_filter[pos + 1] == U'*') {
        block.size = -1;
        ++pos;
    } else if (pos + 2 < _length && _filter[pos + 1] == U'\\' && _filter[pos + 2] == U'{') {
        pos += 3;
        return _decodeCount(block, pos);
    }
    return 0;
}

// With `pos` on the first digit, where it stays when no count is recognised. A count without digits is one.
int TAUnicodeRegularExpression::_decodeCount(Lexeme& block, int& pos) noexcept {
    for (int i = pos; i < _length - 2; ++i) {
        if (_filter[i] == U'\\' && _filter[i + 1] == U'}') {
            if (i > pos && _filter.SubString(pos, i - pos).ConvertToNum(&block.size, "%d") == 0) return 1;
            pos = i + 1;
            return 0;
        }
        if (_filter[i].IsDigit() == 0) return 1;
    }
    return 0;
}
