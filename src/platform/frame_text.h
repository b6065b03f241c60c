// Fills a FrameName from what the systems tell.
#ifndef PLATFORM_FRAME_TEXT_H
#define PLATFORM_FRAME_TEXT_H

#include <cstdint>

#include "platform/stack.h"

namespace zel {

// Keeps the last component of `path`.
void SetModule(FrameName& name, const char* path, std::uintptr_t offset) noexcept;

// Turns a symbol of the C++ ABI that g++ and clang++ share into its source form; keeps any other as it is.
void SetFunction(FrameName& name, const char* symbol, std::uintptr_t offset) noexcept;

}  // namespace zel

#endif
