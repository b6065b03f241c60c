// Reading a file as one text, for the buffers that hold whole files.
#ifndef BUFFERS_WHOLE_FILE_H
#define BUFFERS_WHOLE_FILE_H

#include <cstddef>
#include <cstdint>

#include "platform/large_block.h"

namespace zel {

struct WholeFile {
    bool isOpened = false;
    bool hasFailed = false;  // the system failed while it read, so there is no text
    char* text = nullptr;    // the caller's, from the C heap, with a NUL behind; null when not opened or without memory
    std::int32_t size = 0;
    std::size_t refused = 0;  // the bytes that memory did not suffice for, so that the text is cut; 0 when it did
};

// Others than these are for tests.
struct WholeFileRules {
    std::size_t most = 0x7FFFFFFE;           // sizes are int, and the NUL needs room as well
    std::size_t firstBlock = MostInAdvance;  // at most, however large the file says it is
    void* (*resize)(void* block, std::size_t size) = ResizeLargeBlock;
};

// Reads to the end that the file has at that moment. Prints nothing.
WholeFile ReadWholeFile(const char* path, const WholeFileRules& rules = {}) noexcept;

}  // namespace zel

#endif
