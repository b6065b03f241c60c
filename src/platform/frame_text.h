// Fills a FrameName from what the systems tell.
#ifndef PLATFORM_FRAME_TEXT_H
#define PLATFORM_FRAME_TEXT_H

#include <cstdint>

#include "platform/stack.h"

namespace zel {

// Keeps the last component of `path`.
void SetModule(FrameName& name, const char* path, std::uintptr_t offset) noexcept;

// The source form of a symbol, in a block of the C heap that the caller frees; null for an invalid symbol and without
// memory. Each half of the seam implements it by the ABI of its compilers.
char* Demangle(const char* symbol) noexcept;

// Stores the source form of a mangled symbol; any other symbol is stored unchanged.
void SetFunction(FrameName& name, const char* symbol, std::uintptr_t offset) noexcept;

}  // namespace zel

#endif
