// A filter over Unicode text, such as a pattern for file names: compiled once, then asked whether whole texts match.
//
//     TAUnicodeRegularExpression sources("*_[0-9]*.cpp");
//     if (sources.CheckFromFilter("scan_12.cpp") == 1) puts("a numbered source");
//
// The syntax (docs/filters.md tells all of it, with examples):
//     *          any run of characters, the empty one included
//     .          exactly one character, not a dot alone; [.] is a dot, [*] a star
//     [a-z_]     one character of a block of characters, ranges and classes ([:alnum:], alpha, cntrl, digit, graph,
//                lower, print, punct, space, upper)
//     [^a-z]     one character that is not of the block
//     [a-z]*     any number of characters of the block
//     [a-z]\{3\} three of them; recognised only where something follows in the filter
// Everything else stands for itself. Filters and candidates are stripped of blanks (U+0020) at both ends first. A
// match covers the whole candidate: nothing is sought inside a longer text, captured or replaced; use a library of
// regular expressions for that, and TestMatch for wildcards on 8-bit text.
//
// Deciding one candidate takes at most time in proportion to the elements of the filter times the length of the
// candidate, whatever the two are; a character above U+00FF may be compared with each element of a block in turn.
// Unless told otherwise a filter of so many elements (some thirty) that a look-up is faster remembers each answer for
// good: its memory grows with the number of different candidates.
//
// A filter is not used by two threads at once, asking included. No two that may remember are even asked or destroyed at
// once, nor beside any hash map that changes, since all maps share their spare nodes; filters set with URE_NotMemoised
// are independent.
// Nothing throws, nothing blocks. When memory runs out, a line that starts with "# Alloc failed in" goes to standard
// output; then SetFilter gives 1, an answer that needs the memory is 0, and one that cannot be kept is found again.
#ifndef TAUNICODEREGULAREXPRESSION_H
#define TAUNICODEREGULAREXPRESSION_H

#include "ZELExport.h"
#include "ZELUnicodeString.h"

class ZELHashSCMap;
namespace zel {
struct BlockSet;
class FilterMatcher;
class FilterInspector;
}  // namespace zel

// Whether a filter may remember its answers; they are the same either way.
enum URE_type { URE_Memoised = 0, URE_NotMemoised = 1 };

class ZEL_API TAUnicodeRegularExpression {
public:
    // Each may remember its answers. An empty ZELUnicodeString and a null pointer give the filter "*"; what SetFilter
    // refuses gives one that matches nothing.
    TAUnicodeRegularExpression() noexcept;
    TAUnicodeRegularExpression(const ZELUnicodeString& f) noexcept;
    TAUnicodeRegularExpression(const char* const f) noexcept;
    TAUnicodeRegularExpression(const ZELString& f) noexcept : TAUnicodeRegularExpression(ZELUnicodeString(f)) {}
    // Compile the text of `other` anew, as SetFilter does with URE_Memoised; its answers stay its own.
    TAUnicodeRegularExpression(const TAUnicodeRegularExpression& other) noexcept;
    const TAUnicodeRegularExpression& operator=(const TAUnicodeRegularExpression& other) noexcept;
    ~TAUnicodeRegularExpression();

    // Returns 0, or 1 for a class that does not exist (`[:foo:]`, and `[:xdigit:]`, whose name is too long for it), a
    // count that holds anything but digits, and exhausted memory; then nothing matches until a filter is set again.
    // The empty text gives a filter that matches nothing, and so does the null string; after the null string the
    // next call compiles "*" whatever it is given. Answers remembered under the same filter text are still known.
    int SetFilter(const ZELUnicodeString& f, URE_type type) noexcept;
    // The text that was compiled, or refused: without blanks at its ends.
    ZELUnicodeString GetFilter() const noexcept { return _filter; }
    // 1 when the whole candidate matches, else 0. A null candidate matches nothing.
    int CheckFromFilter(const ZELUnicodeString& candidate) noexcept;

private:
    friend class zel::FilterMatcher;
    friend class zel::FilterInspector;  // of the tests

    enum LexemeType { Terminal = -1, Literal = 0, AnyRun = 1, AnyOne = 2, Block = 3, NegatedBlock = 4 };
    struct Lexeme {
        int start;  // in the filter
        int type;
        int size;   // in characters of the candidate; -1 for any number
        int first;  // of its operations; -1 where the lexeme is no block
        int last;
        int anl;  // -1: matching keeps no position here
    };
    struct CharacterOperation {
        int op;  // 0: equal to c1; 1: from c1 to c2; 2 and more: a class; -1: not yet known
        ZELUnicodeChar c1;
        ZELUnicodeChar c2;
    };

    bool _takeText(const ZELUnicodeString& text) noexcept;
    int _compile() noexcept;
    int _compileLexeme(int& pos) noexcept;
    int _addLexeme(int start, int type) noexcept;
    int _addCharacterOperation(int op) noexcept;
    int _decodeFilteringBlock(int& pos) noexcept;
    int _decodeElement(int& pos) noexcept;
    int _decodeClass(CharacterOperation& operation, int& pos) noexcept;
    int _decodeRepetition(Lexeme& block, int& pos) noexcept;
    int _decodeCount(Lexeme& block, int& pos) noexcept;
    int _prepare() noexcept;
    void _prepareBlock(int index) noexcept;
    int _prepareLongLiterals() noexcept;
    bool _checkCharacterRule(const ZELUnicodeChar& ch, int index) const noexcept;
    bool _openAnswers() noexcept;
    void _print() const noexcept;

    ZELUnicodeString _filter;
    int _length = 0;                // of _filter
    ZELHashSCMap* _memo = nullptr;  // from filters to maps from candidates to answers; null until one is remembered
    int _lastLexeme = -1;           // the terminal one
    int _lexemeCapacity = 0;
    Lexeme* _lexemes = nullptr;
    int _operationCapacity = 0;
    int _lastOperation = -1;
    CharacterOperation* _operations = nullptr;

    // What matching needs beside the records.
    int _tail = 0;            // the lexeme from which on all have a fixed size
    long long _tailSize = 0;  // the sum of these sizes
    int _telling = -1;        // the literal whose absence tells most, or -1
    int _setCapacity = 0;
    zel::BlockSet* _sets = nullptr;  // of the same index as the block
    int _borderCapacity = 0;
    int* _borders = nullptr;           // of the same index as the character of a long literal
    ZELHashSCMap* _answers = nullptr;  // of the present filter, in _memo; null until one is remembered
    bool _isCompiled = false;
    bool _remembers = false;
};

#endif
