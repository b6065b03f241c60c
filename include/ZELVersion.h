// The version of the library: the one that a program was compiled with, and the one that it runs with.
//
//     if (ZELVersionLinked() < ZEL_VERSION) puts("this tool needs a newer library");
//
// The build and the packages read these macros, so that a release changes this file alone. docs/abi.md describes when
// each number rises.
#ifndef ZELVERSION_H
#define ZELVERSION_H

#include "ZELExport.h"

#define ZEL_VERSION_MAJOR 0
#define ZEL_VERSION_MINOR 2
#define ZEL_VERSION_PATCH 0

// One number that grows with the version: MAJOR * 10000 + MINOR * 100 + PATCH.
#define ZEL_VERSION (ZEL_VERSION_MAJOR * 10000 + ZEL_VERSION_MINOR * 100 + ZEL_VERSION_PATCH)

// Rises when a program that was linked before must be compiled again; the number after ".so." on Linux.
#define ZEL_ABI_VERSION 2

// ZEL_VERSION of the library that the program is linked with, as it was compiled.
ZEL_API int ZELVersionLinked() noexcept;
// The same as text, for example "0.2.0"; never null, valid for the life of the process.
ZEL_API const char* ZELVersionText() noexcept;

#endif
