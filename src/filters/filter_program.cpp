// Compiling: the parser writes its records into a scratch area, so their numbers are known when the program and its
// arrays get one block of memory of their size. Then the tables of the matcher are made: the set of each block, the
// borders of long literals, and the tail of lexemes whose sizes are fixed.
//
// Cost: a text of up to SmallText characters needs one allocation, a longer one two.

#include "filters/filter_program.h"

#include <algorithm>
#include <memory>

#include "base/failure_report.h"
#include "base/memory.h"
#include "filters/literal_search.h"

using namespace zel;

namespace {

void* AllocateOrReport(std::size_t size) noexcept {
    void* const block = Allocate(size);
    if (block == nullptr) ReportAllocFailure("TAUnicodeRegularExpression", size);
    return block;
}

// Cuts arrays from a block, one after the other. Their types come in the order of their alignments, the strictest
// first.
class Cutter {
public:
    explicit Cutter(void* block) noexcept : _next(static_cast<char*>(block)) {}

    template <class Element>
    Element* Cut(std::size_t count) noexcept {
        auto* const array = reinterpret_cast<Element*>(_next);
        _next += count * sizeof(Element);
        return array;
    }
    template <class Element>
    Element* CutCopy(const Element* from, std::size_t count) noexcept {
        return std::copy_n(from, count, Cut<Element>(count)) - count;
    }

private:
    char* _next;
};
static_assert(alignof(FilterProgram) >= alignof(BlockSet) && alignof(BlockSet) >= alignof(FilterLexeme) &&
              alignof(FilterLexeme) >= alignof(CharacterOperation) && alignof(CharacterOperation) >= alignof(int) &&
              alignof(int) >= alignof(char32_t));

// Room for the records of a text: a lexeme for each character and two more, and an operation for each character.
class Scratch {
public:
    explicit Scratch(std::size_t characters) noexcept {
        if (characters <= SmallText) return;
        const std::size_t lexemes = characters + 2;
        _block.reset(AllocateOrReport(lexemes * sizeof(FilterLexeme) + characters * sizeof(CharacterOperation)));
        _lexemes = nullptr;
        if (_block == nullptr) return;
        Cutter cutter(_block.get());
        _lexemes = cutter.Cut<FilterLexeme>(lexemes);
        _operations = cutter.Cut<CharacterOperation>(characters);
    }

    // Null without memory.
    FilterLexeme* Lexemes() noexcept { return _lexemes; }
    CharacterOperation* Operations() noexcept { return _operations; }

private:
    static constexpr std::size_t SmallText = 64;

    alignas(FilterLexeme) char _smallLexemes[(SmallText + 2) * sizeof(FilterLexeme)];
    alignas(CharacterOperation) char _smallOperations[SmallText * sizeof(CharacterOperation)];
    std::unique_ptr<void, FreeBlock> _block;
    FilterLexeme* _lexemes = reinterpret_cast<FilterLexeme*>(_smallLexemes);
    CharacterOperation* _operations = reinterpret_cast<CharacterOperation*>(_smallOperations);
};

bool IsLongLiteral(const FilterLexeme& lexeme) noexcept {
    return lexeme.type == FilterLexeme::Literal && lexeme.size > static_cast<int>(ShortLiteralSize);
}

// The number of borders that a program keeps.
std::size_t CountBorders(const FilterParser& parsed) noexcept {
    const FilterLexeme* const lexemes = parsed.Lexemes();
    return std::any_of(lexemes, lexemes + parsed.LexemeCount(), IsLongLiteral) ? parsed.Text().size() : 0;
}

}  // namespace

FilterProgram* FilterProgram::Compile(std::u32string_view text) noexcept {
    Scratch scratch(text.size());
    if (scratch.Lexemes() == nullptr) return nullptr;
    FilterParser parser(text, scratch.Lexemes(), scratch.Operations());
    const bool isValid = parser.Parse();
    const std::size_t size = sizeof(FilterProgram) + parser.BlockCount() * sizeof(BlockSet) +
                             (parser.LexemeCount() + 1) * sizeof(FilterLexeme) +
                             parser.OperationCount() * sizeof(CharacterOperation) + CountBorders(parser) * sizeof(int) +
                             text.size() * sizeof(char32_t);
    void* const block = AllocateOrReport(size);
    return block != nullptr ? ::new (block) FilterProgram(parser, isValid) : nullptr;
}

FilterProgram::FilterProgram(const FilterParser& parsed, bool isValid) noexcept
    : _lexemeCount(static_cast<int>(parsed.LexemeCount())),
      _operationCount(static_cast<int>(parsed.OperationCount())),
      _isValid(isValid) {
    Cutter cutter(this + 1);
    _sets = cutter.Cut<BlockSet>(parsed.BlockCount());
    _lexemes = cutter.CutCopy(parsed.Lexemes(), parsed.LexemeCount() + 1);
    _operations = cutter.CutCopy(parsed.Operations(), parsed.OperationCount());
    _borders = cutter.Cut<int>(CountBorders(parsed));
    _text = {cutter.CutCopy(parsed.Text().data(), parsed.Text().size()), parsed.Text().size()};
    if (_isValid) Analyse();
}

FilterProgram* FilterProgram::Keep(FilterProgram* program) noexcept {
    if (program != nullptr) program->_owners.fetch_add(1, std::memory_order_relaxed);
    return program;
}

void FilterProgram::Drop(FilterProgram* program) noexcept {
    if (program != nullptr && program->_owners.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(program);
}

// Makes the tables of the matcher.
void FilterProgram::Analyse() noexcept {
    FindTail();
    FindRequiredLiteral();
    // The set of a block depends on that of the block after it.
    for (int i = _lexemeCount - 1; i >= 0; --i) {
        const FilterLexeme& lexeme = _lexemes[i];
        if (lexeme.IsBlock())
            MakeSet(lexeme);
        else if (IsLongLiteral(lexeme))
            FindBorders(TextOf(lexeme), _borders + lexeme.start);
    }
}

void FilterProgram::FindTail() noexcept {
    for (_tail = _lexemeCount; _tail > 0 && _lexemes[_tail - 1].size >= 0; --_tail)
        _tailSize += _lexemes[_tail - 1].size;
}

// After two stars a literal is reached last and seldom, and a quick search shows whether it is there at all.
void FilterProgram::FindRequiredLiteral() noexcept {
    for (int i = 0, runs = 0; i < _tail; ++i) {
        if (_lexemes[i].type == FilterLexeme::AnyRun) ++runs;
        if (runs > 1 && _lexemes[i].type == FilterLexeme::Literal) _requiredLiteral = i;
    }
}

void FilterProgram::MakeSet(const FilterLexeme& block) noexcept {
    BlockSet set{};
    for (int i = block.first; i <= block.last; ++i) {
        const CharacterOperation& operation = _operations[i];
        if (operation.op >= FirstClass)
            set.AddClass(operation.op);
        else
            set.AddRange(operation.c1.CodePoint(), (operation.op == 0 ? operation.c1 : operation.c2).CodePoint());
    }
    if (block.type == FilterLexeme::NegatedBlock) set.Invert();
    set.FindRanges();
    set.endsRun = EndsRun(block, set);
    _sets[block.block] = set;
}

// Whether no character of the block can begin the lexeme after it.
bool FilterProgram::EndsRun(const FilterLexeme& block, const BlockSet& set) const noexcept {
    const FilterLexeme& next = *(&block + 1);
    if (next.size <= 0) return false;
    if (next.IsBlock()) return set.IsDisjoint(SetOf(next));
    if (next.type != FilterLexeme::Literal) return false;
    BlockSet begin{};
    begin.AddRange(TextOf(next).front(), TextOf(next).front());
    return set.IsDisjoint(begin);
}

bool FilterProgram::IsAdmitted(const FilterLexeme& block, ZELUnicodeChar character) const noexcept {
    const auto accepts = [character](const CharacterOperation& operation) {
        if (operation.op == 0) return character == operation.c1;
        if (operation.op == 1) return character >= operation.c1 && character <= operation.c2;
        return IsOfClass(operation.op, character);
    };
    const bool isIn = std::any_of(_operations + block.first, _operations + block.last + 1, accepts);
    return isIn == (block.type == FilterLexeme::Block);
}
