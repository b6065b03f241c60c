// A hint that memory will be needed soon. Any pointer will do, null included.
#ifndef BASE_PREFETCH_H
#define BASE_PREFETCH_H

#include <xmmintrin.h>  // SSE is part of every x86-64

namespace zel {

inline void Prefetch(const void* address) noexcept {
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
}

}  // namespace zel

#endif
