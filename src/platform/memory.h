// Memory for the texts of whole files.
#ifndef PLATFORM_MEMORY_H
#define PLATFORM_MEMORY_H

#include <cstddef>

namespace platform {

// std::realloc, and the result is given back by std::free like any other; but a new block that is large lies so that
// the system can fill it in few steps. (Page faults are three quarters of the time that reading 64 MiB takes.)
void* ResizeBlock(void* block, std::size_t size) noexcept;

}  // namespace platform

#endif
