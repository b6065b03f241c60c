// The line that is printed when memory runs out.
#ifndef FOUNDATIONS_ALLOC_FAILURE_H
#define FOUNDATIONS_ALLOC_FAILURE_H

#include <cstddef>
#include <cstdio>

inline void ReportFailedAllocation(const char* className, std::size_t bytes) noexcept {
    std::printf("# Alloc failed in %s (size: %zu)\n", className, bytes);
    std::fflush(stdout);
}

#endif
