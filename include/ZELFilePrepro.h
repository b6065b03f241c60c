// The text of a source file without chosen parts: comments, preprocessor lines, literals.
//
//     ZELFilePrepro source("main.cpp");
//     char* words = nullptr;
//     if (source.preprocess(ZELFilePrepro::REMOVE_SLCOMMENTS | ZELFilePrepro::REMOVE_MLCOMMENTS, words) != 1)
//         Scan(words);
//     free(words);
//
// For languages that look like C, to scan text for words without being misled by comments and strings. It strips and
// does not interpret: directives are not followed, and digraphs, raw strings, digit separators and backslashes at the
// end of a line comment mean nothing.
//
// One pass, in which every byte belongs to one element or to none:
// - "//" begins a comment that a line feed ends, "/*" one that "*/" ends.
// - "#" anywhere in a line begins a preprocessor line that a line feed ends. Comments and literals do not begin in it.
// - A single or double quote begins a literal that the same quote ends, also on a later line.
// - Outside comments a backslash takes the next byte with it: it neither ends nor begins anything. A pair inside of
//   something that is removed goes as a whole, also when its second byte is a line feed.
// All other line feeds stay, so that lines keep their numbers. The text ends at its first NUL.
//
// A scanner is not copied. Distinct ones may be used from distinct threads. Nothing throws.
#ifndef ZELFILEPREPRO_H
#define ZELFILEPREPRO_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELString.h"

class ZEL_API ZELFilePrepro : public ZELHeapObject {
public:
    // What to remove: any of these, added together.
    static constexpr int REMOVE_SLCOMMENTS = 1;
    static constexpr int REMOVE_MLCOMMENTS = 2;
    static constexpr int REMOVE_PREPRO = 4;
    static constexpr int REMOVE_SQSTRINGS = 8;
    static constexpr int REMOVE_DQSTRINGS = 16;

    // Reads nothing yet.
    explicit ZELFilePrepro(ZELString fileName) noexcept;
    // For `length` bytes that are in memory already, as in a ZELFileBuffer: copies them, up to the first NUL. Null is
    // the empty text.
    ZELFilePrepro(const char* text, std::size_t length) noexcept;
    ZELFilePrepro(const ZELFilePrepro&) = delete;
    ZELFilePrepro& operator=(const ZELFilePrepro&) = delete;
    virtual ~ZELFilePrepro();

    // 0, or 2 when the text ends inside an element (a last line comment or preprocessor line without a line feed is
    // one): `output` is a new block then, NUL-terminated and never longer than the text, which the caller frees with
    // free(). 1 and `output` untouched when the file cannot be read, or memory runs out after a line that starts with
    // "# Alloc failed in ZELFilePrepro". The file is read by the first call that can; the text is kept.
    int preprocess(int flags, char*& output) noexcept;

private:
    bool ObtainText() noexcept;
    void Keep(const char* text, std::size_t length) noexcept;

    ZELString _fileName;
    char* _text = nullptr;  // with room behind it for the scanner's last step
    std::size_t _length = 0;
};

#endif
