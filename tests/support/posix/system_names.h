// What the other target's system header does to names of functions.
#ifndef TESTS_SUPPORT_SYSTEM_NAMES_H
#define TESTS_SUPPORT_SYSTEM_NAMES_H

#if defined(UNICODE)
#define GetObject GetObjectW
#else
#define GetObject GetObjectA
#endif

#endif
