// The few system types that appear in public signatures, for both targets.
//
// On Windows they are declared, not defined, exactly as the system's headers declare them, so <windows.h> may come
// before or after this header. Code that uses members of OSVERSIONINFOEXW or FILETIME includes <windows.h> as well.
// On Linux they are defined here with the same members.
#ifndef ZELPLATFORMTYPES_H
#define ZELPLATFORMTYPES_H

#if defined(_WIN32)

#include <cstdlib>  // mingw-w64 defines __int64 in its C headers

struct _OSVERSIONINFOEXW;
typedef struct _OSVERSIONINFOEXW OSVERSIONINFOEXW;
struct _FILETIME;
typedef struct _FILETIME FILETIME;
struct HWND__;
typedef struct HWND__* HWND;

#else

using __int64 = long long;  // NOLINT: the name is the other target's

struct OSVERSIONINFOEXW {
    unsigned int dwOSVersionInfoSize;  // bytes of the whole record
    unsigned int dwMajorVersion;
    unsigned int dwMinorVersion;
    unsigned int dwBuildNumber;
    unsigned int dwPlatformId;
    wchar_t szCSDVersion[128];
    unsigned short wServicePackMajor;
    unsigned short wServicePackMinor;
    unsigned short wSuiteMask;
    unsigned char wProductType;
    unsigned char wReserved;
};

struct FILETIME {
    unsigned int dwLowDateTime;
    unsigned int dwHighDateTime;
};

struct HWND__;
using HWND = HWND__*;

#endif

#endif
