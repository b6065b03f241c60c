// Compiler attributes, and the decision whether intrinsics are used: one branch for g++ and clang++, and
// one for MSVC.
//
// ZEL_PORTABLE is a build option: the library then uses no intrinsics and runs on any little-endian processor. The
// macro for printf-like functions is public and therefore in ZELExport.h.
#ifndef BASE_COMPILER_H
#define BASE_COMPILER_H

#if defined(__GNUC__)

#define ZEL_MSVC 0
#define ZEL_ALWAYS_INLINE [[gnu::always_inline]] inline
// For code that runs where the sanitizers' own data must not change.
#define ZEL_NO_SANITIZE __attribute__((no_sanitize("address", "thread", "undefined")))
#define ZEL_PRAGMA(text) _Pragma(#text)
#if defined(__clang__)
#define ZEL_UNROLL(count) ZEL_PRAGMA(unroll count)
#else
#define ZEL_UNROLL(count) ZEL_PRAGMA(GCC unroll count)
#endif
// Compiles one function for processors that have these features; see CpuHasProducts() and CpuHasWideVectors().
#define ZEL_TARGET(features) __attribute__((target(features)))
#if defined(__x86_64__)
#define ZEL_X86_64 1
#endif

#else

#define ZEL_MSVC 1
#define ZEL_ALWAYS_INLINE __forceinline
#define ZEL_NO_SANITIZE
#define ZEL_UNROLL(count)
#define ZEL_TARGET(features)
#if defined(_M_X64)
#define ZEL_X86_64 1
#endif

#endif

// SSE2 is part of every x86-64.
#if defined(ZEL_X86_64) && !defined(ZEL_PORTABLE)
#define ZEL_HAS_INTRINSICS 1
#else
#define ZEL_HAS_INTRINSICS 0
#endif

namespace zel {

// A hint that memory will be needed soon. Any pointer is valid, null included.
inline void Prefetch([[maybe_unused]] const void* address) noexcept {
#if !ZEL_MSVC
    __builtin_prefetch(address);
#endif
}

}  // namespace zel

#endif
