// The small text jobs of build and test tools: XML escapes, whole-word replacement, splitting and joining lines, sorted
// lists of names, comment lines, wildcard patterns and formulas of them, quoted arguments, search paths.
//
//     ZELListValZELString fields;
//     if (Split(line, fields, ";") == 2 && TestMatchWithLogExp(fields[1], "*.cpp&&!(*_test*)"))
//         puts(TANormalizeArg(fields[2]));
//
// Every comparison is of bytes, and letters, digits and white space are those of ASCII, whatever the locale. Lists
// count from 1. For character classes and repetitions use TAUnicodeRegularExpression; for XML documents ZELXMLNode.
//
// A `char*&` is a NUL-terminated block of the C heap (malloc): the function may move it and then stores the new
// address; the caller keeps it and ends it with free(). When memory runs out, a line that starts with "# Alloc failed
// in" goes to standard output, the block stays as it was, and the result says that nothing was done. Nothing throws.
//
// The functions keep no state: they may run in several threads at once on objects that no two of them change. Only
// SearchConcatenation blocks, as long as the disk does.
#ifndef TATEXTUTILITIES_H
#define TATEXTUTILITIES_H

#include "TAFileName.h"
#include "TAIndex.h"
#include "ZELExport.h"
#include "ZELListValZELString.h"
#include "ZELString.h"

// XML.

// Escapes & < > " and ' as entities. 1 when there was one of them, else 0 (also for a null or empty text).
ZEL_API int encodeXMLString(char*& text) noexcept;

// Replaces those five entities, and what becomes "&amp;" by that again, until no "&amp;" is left and then the others: a
// text that was escaped twice, "&amp;lt;", gives "<". 1 when there was an entity, else 0 (also for a null or empty
// text). Never moves or shrinks the block, and never needs memory.
ZEL_API int decodeXMLString(char*& text) noexcept;

// An escaped copy; empty when memory runs out. The word "toreplace" is the mark of an ampersand here: it becomes
// "&amp;" as well.
ZEL_API ZELString substituteEntities(ZELString& text) noexcept;

// Words.

// Replaces each `word` that stands as a whole identifier (no letter, digit, "_" or "$" before or behind it). With an
// `open`, only where `open` follows behind white space at most, and then up to the end of it; with a `close`, the same
// behind `open`. What stands behind `word`, not what stands behind the whole, must be no part of an identifier.
// What was inserted is searched again together with what follows, but is never replaced as long as it stands alone.
// 1 when something was replaced; 0 when nothing was, and at once, keeping what was replaced so far, when no `open`
// (or `close`) follows a `word` at all. A null or empty `text` or `word` gives 0; the others count as empty when null.
ZEL_API int replace(char*& text, const char* word, const char* open, const char* close,
                    const char* replacement) noexcept;

// Where `pattern` begins in the first line of `text`, looking at no more than `limit` characters; null when it does not
// occur there. A simple scan that never goes back in `text`: after a partial match it starts over at the character that
// differed, so "aab" is not found in "aaab". An empty `pattern` is found in an empty `text` alone; null for nulls.
ZEL_API char* Q_strstr(const char* text, const char* pattern, int limit) noexcept;

// Lines of fields.

// Splits `line` where `separator` (one blank when there is none) stands, after emptying the list or index: fields of at
// least one byte, in their order. Returns the size of the result. `line` may be an element of the list. An index gets
// the fields as keys without values: sorted, and each once. An empty `separator` is never found.
//
// With a limit `n`, at most n - 1 separators are used up, and the last field is the rest of the line. Separators before
// the first field do not count; each later one does, whether or not there is a field before it. The text goes on one
// byte behind the beginning of a separator, so the fields behind a longer one keep the rest of it: "a::b" at "::"
// gives "a" and ":b". A limit below 2 gives the whole line.
//
// When memory runs out there are no fields at all.
//
// The forms with a limit and no separator fill up with empty texts to `n` fields; an index takes one empty key at most.
ZEL_API int Split(ZELString& line, ZELListValZELString& fields) noexcept;
ZEL_API int Split(ZELString& line, ZELListValZELString& fields, int n) noexcept;
ZEL_API int Split(ZELString& line, ZELListValZELString& fields, ZELString separator) noexcept;
ZEL_API int Split(ZELString& line, ZELListValZELString& fields, ZELString separator, int n) noexcept;
ZEL_API int Split(ZELString& line, TAIndex& fields) noexcept;
ZEL_API int Split(ZELString& line, TAIndex& fields, int n) noexcept;
ZEL_API int Split(ZELString& line, TAIndex& fields, ZELString separator) noexcept;
ZEL_API int Split(ZELString& line, TAIndex& fields, ZELString separator, int n) noexcept;

// Joins the fields with `separator` (one blank when there is none) between them. Always 0; `line` stays as it was when
// the list is empty, and when memory runs out, which makes it incomplete.
ZEL_API int ToLine(ZELListValZELString& fields, ZELString& line) noexcept;
ZEL_API int ToLine(ZELListValZELString& fields, ZELString& line, ZELString separator) noexcept;

// 1 when `line` is empty or begins with "#", blanks before that left aside (tabs are no blanks here); else 0.
ZEL_API int IsComment(const char* line) noexcept;
ZEL_API int IsComment(ZELString line) noexcept;

// Sorted lists.

// Inserts `text` where it belongs in an ascending list, unless an equal text is there.
ZEL_API void InsertInList(ZELString& text, ZELListValZELString& list) noexcept;

// The position of an element that `text` begins with, or 0. A binary search for `text` itself in an ascending list ends
// between two neighbours and tests the lower one first, so an element that is a beginning of `text` is missed when
// others stand between the two.
ZEL_API int SearchInStringList(ZELString& text, ZELListValZELString& list) noexcept;

// Bytes as unsigned values: -1, 0 or 1. For QuickSort of a list. A null pointer counts as empty.
ZEL_API int CompareTAStrings(ZELString* left, ZELString* right) noexcept;
ZEL_API int CompareTAStrings(TAFileName* left, TAFileName* right) noexcept;

// Patterns.

// 1 when `text` matches `pattern`, in which "*" stands for any run of bytes and nothing else is special; else 0.
// The pieces between the stars must occur in `text`, each beginning at or behind the beginning of the one before, the
// first and the last piece at the text's ends where `pattern` has no star there. Pieces may overlap: "ab*ab" matches
// "ab", and "a", which is a first and a last piece, matches "aba". "*" matches every text, "**" none but itself.
ZEL_API int TestMatch(ZELString text, ZELString pattern) noexcept;

// The same without regard to the case of A to Z.
ZEL_API int TestMatchNoCase(ZELString text, ZELString pattern) noexcept;

// 1 when the formula holds for `text`, else 0. Its atoms are patterns of TestMatch, blanks included; its operators are
// "&&", "||", "!" and parentheses:
//
//     *.cpp&&!(*_test*)        (*.cpp||*.h)&&(src*||include*)
//
// There is no precedence: "&&" and "||" on one level make the formula false, and so do parentheses that do not balance.
// Write "!" in front of an atom or of a parenthesis that is negated as a whole. Sharp edges: an expression that begins
// with "(" and ends with ")" loses both without a look at whether they belong together, so "(a)||(b)" does not mean
// what it says; write "a||b". "&&" alone is true, "||" alone false. "~~" cuts like an operator wherever there is one.
// Takes time in proportion to the expression, plus one TestMatch for each atom, at any depth of parentheses.
ZEL_API unsigned short TestMatchWithLogExp(ZELString& text, ZELString expression) noexcept;

// For the system.

// The argument, in double quotes when it holds a blank and does not begin with one of them. Nothing inside is escaped.
ZEL_API ZELString TANormalizeArg(const ZELString& argument) noexcept;

// The first of the directories, separated by ";", in which a file of that name exists, joined with the name; the null
// name when there is none. Empty entries are left out.
ZEL_API TAFileName SearchConcatenation(ZELString name, ZELString directories) noexcept;

// Writes `text` as UTF-16 with a terminating 0 to `out`, which has room for `capacity` + 1 units. 8-bit text is in the
// system's ANSI code page on Windows and UTF-8 on Linux, where a byte that is none becomes U+FFFD. 0 on success; 1 when
// the text is empty, `out` is null, or `capacity` does not suffice (`out` then begins with the 0; a negative `capacity`
// leaves it alone).
ZEL_API int ZELToolsToUnicode(ZELString text, unsigned short* out, int capacity) noexcept;

#endif
