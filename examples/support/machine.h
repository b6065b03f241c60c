// What the tools in examples/ need to know of the machine they run on.
#ifndef EXAMPLES_SUPPORT_MACHINE_H
#define EXAMPLES_SUPPORT_MACHINE_H

#include <cstdio>

#include "ZELString.h"

// Where this machine keeps its C++ headers; empty when it does not tell.
ZELString DefaultHeaderDirectory();

// Whether lines may be rewritten in place because a person is looking at them.
bool IsTerminal(std::FILE* stream);

#endif
