// A text is composed before it is written, so that lines of several threads and processes do not mix. Short texts,
// which are nearly all, are composed on the stack. If the allocation for a long text fails, its pieces are written in
// sequence.

#include "base/failure_report.h"

#include <algorithm>
#include <cstdlib>

using namespace zel;

void zel::WriteText(std::FILE* stream, std::initializer_list<std::string_view> pieces) noexcept {
    char room[1024];
    std::size_t length = 0;
    for (const std::string_view piece : pieces) length += piece.size();
    if (length == 0) return;
    char* const text = length <= sizeof room ? room : static_cast<char*>(std::malloc(length));
    if (text != nullptr) {
        char* end = text;
        for (const std::string_view piece : pieces) end = std::copy(piece.begin(), piece.end(), end);
        std::fwrite(text, 1, length, stream);
    } else {
        for (const std::string_view piece : pieces) std::fwrite(piece.data(), 1, piece.size(), stream);
    }
    if (text != room) std::free(text);
    std::fflush(stream);
}

void zel::ReportAllocFailure(const char* className, std::size_t size) noexcept {
    std::printf("# Alloc failed in %s (size: %zu)\n", className, size);
    std::fflush(stdout);
}
