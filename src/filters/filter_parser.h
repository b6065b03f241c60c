// The text of a filter becomes lexemes and character operations.
#ifndef FILTERS_FILTER_PARSER_H
#define FILTERS_FILTER_PARSER_H

#include <cstddef>
#include <string_view>

#include "ZELUnicodeString.h"

namespace zel {

struct FilterLexeme {
    enum Type : int { Terminal = -1, Literal = 0, AnyRun = 1, AnyOne = 2, Block = 3, NegatedBlock = 4 };

    bool IsBlock() const noexcept { return type >= Block; }

    int start;  // in the filter
    Type type;
    int size;   // in characters of the candidate; -1 for any number
    int first;  // of its operations; -1 where the lexeme is no block
    int last;
    int block;  // the number of blocks before this one
};

struct CharacterOperation {
    int op;  // 0: equal to c1; 1: from c1 to c2; 2 and more: a class; -1: unknown yet
    ZELUnicodeChar c1;
    ZELUnicodeChar c2;
};

// Parses one text. The caller provides both arrays: room for a lexeme for each character and two more, and for an
// operation for each character.
class FilterParser {
public:
    FilterParser(std::u32string_view text, FilterLexeme* lexemes, CharacterOperation* operations) noexcept
        : _text(text), _length(static_cast<int>(text.size())), _lexemes(lexemes), _operations(operations) {}

    // False when the syntax is rejected. The arrays then contain the lexemes up to that place.
    bool Parse() noexcept;

    std::u32string_view Text() const noexcept { return _text; }
    const FilterLexeme* Lexemes() const noexcept { return _lexemes; }
    const CharacterOperation* Operations() const noexcept { return _operations; }
    // Without the last lexeme, which is the terminal one.
    std::size_t LexemeCount() const noexcept { return static_cast<std::size_t>(_lastLexeme); }
    std::size_t OperationCount() const noexcept { return static_cast<std::size_t>(_lastOperation + 1); }
    std::size_t BlockCount() const noexcept { return static_cast<std::size_t>(_blockCount); }

private:
    char32_t At(int position) const noexcept {
        return position < _length ? _text[static_cast<std::size_t>(position)] : U'\0';
    }
    void AddPlaceholder() noexcept;
    bool ParseLexeme() noexcept;
    bool ParseBlock(FilterLexeme& block) noexcept;
    bool ParseElement() noexcept;
    bool ParseClass(CharacterOperation& operation) noexcept;
    bool ParseRepetition(FilterLexeme& block) noexcept;
    bool ParseCount(FilterLexeme& block) noexcept;

    const std::u32string_view _text;
    const int _length;
    FilterLexeme* const _lexemes;
    CharacterOperation* const _operations;
    int _position = 0;
    int _lastLexeme = -1;
    int _lastOperation = -1;
    int _blockCount = 0;
};

}  // namespace zel

#endif
