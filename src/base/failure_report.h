// The lines that the library itself prints on the standard streams.
#ifndef BASE_FAILURE_REPORT_H
#define BASE_FAILURE_REPORT_H

#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <string_view>

namespace zel {

// Writes the pieces to `stream` as one text, in a single write, and flushes. Adds nothing; errors are ignored.
// It is a C stream, because a library and its callers share these on every target.
void WriteText(std::FILE* stream, std::initializer_list<std::string_view> pieces) noexcept;

// The line that every class prints on standard output when memory runs out; `size` in bytes.
void ReportAllocFailure(const char* className, std::size_t size) noexcept;

}  // namespace zel

#endif
