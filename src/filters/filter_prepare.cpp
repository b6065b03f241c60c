// What matching wants to know beside the lexemes: the set of each block, the borders of long literals, and the tail of
// lexemes whose sizes are all fixed.

#include "TAUnicodeRegularExpression.h"
#include "filters/block_set.h"
#include "filters/literal_search.h"
#include "filters/records.h"

using namespace zel;

int TAUnicodeRegularExpression::_prepare() noexcept {
    _tail = _lastLexeme;
    _tailSize = 0;
    for (; _tail > 0 && _lexemes[_tail - 1].size >= 0; --_tail) _tailSize += _lexemes[_tail - 1].size;

    // Behind two stars a literal is reached last and seldom; whether it is there at all is quickly seen.
    _telling = -1;
    for (int i = 0, runs = 0; i < _tail; ++i) {
        if (_lexemes[i].type == AnyRun) ++runs;
        if (runs > 1 && _lexemes[i].type == Literal) _telling = i;
    }

    if (!MakeRoomForRecords<8>(_sets, _setCapacity, _lastLexeme)) return 1;
    for (int i = _lastLexeme - 1; i >= 0; --i)
        if (_lexemes[i].first != -1) _prepareBlock(i);
    return _prepareLongLiterals();
}

// With the block behind it prepared already.
void TAUnicodeRegularExpression::_prepareBlock(int index) noexcept {
    BlockSet set{};
    for (int i = _lexemes[index].first; i <= _lexemes[index].last; ++i) {
        const CharacterOperation& operation = _operations[i];
        if (operation.op >= FirstClass)
            set.AddClass(operation.op);
        else
            set.AddRange(operation.c1.CodePoint(), (operation.op == 0 ? operation.c1 : operation.c2).CodePoint());
    }
    if (_lexemes[index].type == NegatedBlock) set.Invert();
    set.FindRanges();
    const Lexeme& next = _lexemes[index + 1];
    if (next.type == Literal && next.size > 0) {
        BlockSet begin{};
        begin.AddRange(_filter[next.start].CodePoint(), _filter[next.start].CodePoint());
        set.endsRun = set.IsDisjoint(begin);
    } else if (next.type >= Block && next.size > 0) {
        set.endsRun = set.IsDisjoint(_sets[index + 1]);
    }
    _sets[index] = set;
}

int TAUnicodeRegularExpression::_prepareLongLiterals() noexcept {
    for (int i = 0; i < _lastLexeme; ++i) {
        const auto size = static_cast<std::size_t>(_lexemes[i].size);
        if (_lexemes[i].type != Literal || size <= ShortLiteralSize) continue;
        if (!MakeRoomForRecords(_borders, _borderCapacity, _length)) return 1;
        const auto start = static_cast<std::size_t>(_lexemes[i].start);
        FindBorders(_filter.View().substr(start, size), _borders + start);
    }
    return 0;
}

bool TAUnicodeRegularExpression::_checkCharacterRule(const ZELUnicodeChar& ch, int index) const noexcept {
    const CharacterOperation& operation = _operations[index];
    if (operation.op == 0) return ch == operation.c1;
    if (operation.op == 1) return ch >= operation.c1 && ch <= operation.c2;
    return IsOfClass(operation.op, ch);
}
