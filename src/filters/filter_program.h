// A compiled filter: the text, its lexemes and operations, and the tables of the matcher.
//
// No function changes a program, so copies of a filter share one, also in several threads.
#ifndef FILTERS_FILTER_PROGRAM_H
#define FILTERS_FILTER_PROGRAM_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZELAtomic.h"
#include "filters/block_set.h"
#include "filters/filter_parser.h"

namespace zel {

class FilterProgram {
public:
    // A new program with one owner. Null when memory runs out, which is reported.
    static FilterProgram* Compile(std::u32string_view text) noexcept;
    FilterProgram(const FilterProgram&) = delete;
    FilterProgram& operator=(const FilterProgram&) = delete;
    // One owner more, and one less. Null is ignored.
    static FilterProgram* Keep(FilterProgram* program) noexcept;
    static void Drop(FilterProgram* program) noexcept;

    // False when the syntax was rejected: the program matches nothing.
    bool IsValid() const noexcept { return _isValid; }
    std::u32string_view Text() const noexcept { return _text; }
    // Without the terminal lexeme.
    int LexemeCount() const noexcept { return _lexemeCount; }
    int OperationCount() const noexcept { return _operationCount; }
    const FilterLexeme& Lexeme(int index) const noexcept { return _lexemes[index]; }
    const CharacterOperation& Operation(int index) const noexcept { return _operations[index]; }

    // All lexemes from this one on have a fixed size, and the sum of these sizes.
    int Tail() const noexcept { return _tail; }
    std::int64_t TailSize() const noexcept { return _tailSize; }
    // The literal to look for before all else, or -1.
    int RequiredLiteral() const noexcept { return _requiredLiteral; }
    std::u32string_view TextOf(const FilterLexeme& literal) const noexcept {
        return {_text.data() + literal.start, static_cast<std::size_t>(literal.size)};
    }
    // See FindBorders(); only of a literal longer than ShortLiteralSize.
    const int* BordersOf(const FilterLexeme& literal) const noexcept { return _borders + literal.start; }
    const BlockSet& SetOf(const FilterLexeme& block) const noexcept { return _sets[block.block]; }
    // Whether the operations of the block admit the character. Slower than asking the set.
    bool IsAdmitted(const FilterLexeme& block, ZELUnicodeChar character) const noexcept;

private:
    FilterProgram(const FilterParser& parsed, bool isValid) noexcept;
    void Analyse() noexcept;
    void FindTail() noexcept;
    void FindRequiredLiteral() noexcept;
    void MakeSet(const FilterLexeme& block) noexcept;
    bool EndsRun(const FilterLexeme& block, const BlockSet& set) const noexcept;

    // The members that each match reads come first.
    std::int64_t _tailSize = 0;
    int _tail = 0;
    int _lexemeCount;
    // These arrays follow the program in its block of memory, and so does the text.
    FilterLexeme* _lexemes;
    std::u32string_view _text;
    BlockSet* _sets;
    CharacterOperation* _operations;
    int* _borders;  // of the same index as the character of a long literal
    int _requiredLiteral = -1;
    int _operationCount;
    bool _isValid;
    ZELAtomic<int> _owners{1};
};

}  // namespace zel

#endif
