// What the other target's system header does to names of functions.
#ifndef TESTS_SUPPORT_SYSTEM_NAMES_H
#define TESTS_SUPPORT_SYSTEM_NAMES_H

#if defined(UNICODE)
#define CopyFile CopyFileW
#define CreateDirectory CreateDirectoryW
#define GetObject GetObjectW
#else
#define CopyFile CopyFileA
#define CreateDirectory CreateDirectoryA
#define GetObject GetObjectA
#endif

#endif
