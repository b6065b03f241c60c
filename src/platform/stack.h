// The calling thread's stack, and the names of its frames.
#ifndef PLATFORM_STACK_H
#define PLATFORM_STACK_H

#include <cstdint>

namespace zel {

// Writes up to `limit` return addresses, innermost first, and returns their number; 0 when the system gives none.
// `skip` frames are left out before: 0 begins with the function that called this one. At most 200 in all are walked.
int CaptureStack(void** frames, int limit, int skip) noexcept;

struct FrameName {
    char module[260];  // file name of the program or library, without its folder; empty when unknown
    std::uintptr_t moduleOffset;
    char function[512];  // readable, cut when longer; empty when the system knows none
    std::uintptr_t functionOffset;
};

// Finds out what an address belongs to. Slow; safe from every thread.
void DescribeFrame(const void* address, FrameName& name) noexcept;

}  // namespace zel

#endif
