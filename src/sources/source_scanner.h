// Takes comments, preprocessor lines and literals out of source text; ZELFilePrepro.h tells the rules.
#ifndef SOURCES_SOURCE_SCANNER_H
#define SOURCES_SOURCE_SCANNER_H

#include <cstddef>

namespace zel {

// What may be read behind the text, and written behind the output.
inline constexpr std::size_t SourceScannerSlack = 16;

// Copies the `length` bytes at `text` to `output`, without what `removed` (flags of ZELFilePrepro) says; the two must
// not overlap. Returns the length of the output, which is never more than `length`; nothing is put behind it.
// `complete` tells whether the text ended outside of every element.
std::size_t StripSource(const char* text, std::size_t length, int removed, char* output, bool& complete) noexcept;

}  // namespace zel

#endif
