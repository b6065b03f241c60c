#include "support/machine.h"

#include <io.h>
#include <windows.h>

#include <cstdlib>

// The first directory of INCLUDE, which a developer's prompt sets; under Wine the headers of the machine below.
ZELString DefaultHeaderDirectory() {
    if (const char* include = std::getenv("INCLUDE"); include != nullptr && *include != '\0') {
        const ZELString directories(include);
        const int end = directories.FindPosition(";", 0);
        return end < 0 ? directories : directories.SubString(0, static_cast<std::size_t>(end));
    }
    const char* const belowWine = "Z:\\usr\\include\\c++";
    return GetFileAttributesA(belowWine) != INVALID_FILE_ATTRIBUTES ? belowWine : "";
}

bool IsTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}
