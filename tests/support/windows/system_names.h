// The system's header that turns names of functions into macros.
#ifndef TESTS_SUPPORT_SYSTEM_NAMES_H
#define TESTS_SUPPORT_SYSTEM_NAMES_H

#include <windows.h>

#endif
