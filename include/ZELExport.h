// The export mark of every public class and function, in its three states:
//   building the library    ZEL_BUILDING is defined (by the library's own build alone): symbols are exported;
//   linking the object code ZEL_STATIC is defined: the mark is empty;
//   using the library       neither is defined: symbols are imported.
#ifndef ZELEXPORT_H
#define ZELEXPORT_H

#if defined(ZEL_STATIC)
#define ZEL_API
#elif defined(_WIN32)
#if defined(ZEL_BUILDING)
#define ZEL_API __declspec(dllexport)
#else
#define ZEL_API __declspec(dllimport)
#endif
#else
#define ZEL_API __attribute__((visibility("default")))
#endif

// Lets compilers check the arguments of printf-style functions; positions count from 1, `this` included.
#if defined(__MINGW32__) && !defined(__clang__)
#define ZEL_PRINTF_LIKE(text, first) __attribute__((__format__(__gnu_printf__, text, first)))
#elif defined(__GNUC__)
#define ZEL_PRINTF_LIKE(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define ZEL_PRINTF_LIKE(text, first)
#endif

#endif
