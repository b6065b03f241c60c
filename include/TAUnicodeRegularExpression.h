// A filter over Unicode text, such as a pattern for file names: compiled once, then asked whether whole texts match.
//
//     TAUnicodeRegularExpression sources("*_[0-9]*.cpp");
//     if (sources.CheckFromFilter("scan_12.cpp") == 1) puts("a numbered source");
//
// The syntax (docs/filters.md describes all of it, with examples):
//     *          any run of characters, the empty one included
//     .          exactly one character, not a dot alone; [.] is a dot, [*] a star
//     [a-z_]     one character of a block of characters, ranges and classes ([:alnum:], alpha, cntrl, digit, graph,
//                lower, print, punct, space, upper)
//     [^a-z]     one character that is not in the block
//     [a-z]*     any number of characters of the block
//     [a-z]\{3\} three of them; recognised only if another character follows in the filter
// Every other character is literal. Filters and candidates lose the blanks (U+0020) at both ends first. A match covers
// the whole candidate: nothing is searched in a longer text, captured or replaced. Use a library of regular expressions
// for that, and TestMatch for wildcards on 8-bit text.
//
// Errors: no exceptions. When memory runs out, a line that starts with "# Alloc failed in" goes to standard output.
// Then
//   SetFilter returns 1, an answer that needs the memory is 0, and an answer that cannot be kept is found again.
// Memory: copies share the compiled form. By default a filter of many elements (some thirty), for which a look-up is
//   faster, remembers each answer for good: its memory grows with the number of different candidates.
// Threads: a filter is not used by two threads at the same time, asking included. Two filters that may remember are not
//   asked or destroyed at the same time, nor beside any hash map that changes, since all maps share their spare nodes.
//   Filters set with URE_NotMemoised are independent.
// Blocking: none.
// Complexity: an answer takes at most time in proportion to the elements of the filter times the length of the
//   candidate. A character above U+00FF may be compared with each element of a block in turn.
#ifndef TAUNICODEREGULAREXPRESSION_H
#define TAUNICODEREGULAREXPRESSION_H

#include "ZELExport.h"
#include "ZELUnicodeString.h"

namespace zel {
struct FilterState;  // the text, the compiled program and the remembered answers
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
    // Set the text of `other`, as SetFilter does with URE_Memoised. The compiled form is shared; the remembered answers
    // are not.
    TAUnicodeRegularExpression(const TAUnicodeRegularExpression& other) noexcept;
    const TAUnicodeRegularExpression& operator=(const TAUnicodeRegularExpression& other) noexcept;
    ~TAUnicodeRegularExpression();

    // Returns 0, or 1 for a class that does not exist (`[:foo:]`, and `[:xdigit:]`, whose name is too long for it), a
    // count that holds anything but digits, and exhausted memory; then nothing matches until a filter is set again.
    // The empty text gives a filter that matches nothing, and so does the null string; after the null string the
    // next call compiles "*" whatever it is given. Answers remembered under the same filter text are still known.
    int SetFilter(const ZELUnicodeString& f, URE_type type) noexcept;
    // The text that was compiled, or refused: without blanks at its ends.
    ZELUnicodeString GetFilter() const noexcept;
    // 1 when the whole candidate matches, else 0. A null candidate matches nothing.
    int CheckFromFilter(const ZELUnicodeString& candidate) noexcept;

private:
    zel::FilterState* _state = nullptr;  // owned; null without memory
};

#endif
