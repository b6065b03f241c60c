// The programs of a test, and the texts that start them.
#ifndef TESTS_SUPPORT_WINDOWS_COMMAND_LINE_H
#define TESTS_SUPPORT_WINDOWS_COMMAND_LINE_H

#include <windows.h>

#include <string>

#include "support/quoted.h"

// Ends with a separator.
inline std::string FolderOfThisProgram() {
    char path[MAX_PATH];
    const std::string whole(path, GetModuleFileNameA(nullptr, path, sizeof path));
    return whole.substr(0, whole.find_last_of('\\') + 1);
}

#endif
