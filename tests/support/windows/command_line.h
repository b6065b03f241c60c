// Command lines as the C runtime of the started program takes them apart.
#ifndef TESTS_SUPPORT_WINDOWS_COMMAND_LINE_H
#define TESTS_SUPPORT_WINDOWS_COMMAND_LINE_H

#include <windows.h>

#include <string>

inline std::string Quoted(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        // Backslashes count twice in front of a quote, which needs one of its own.
        if (c == '"') quoted.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, '\\') + '"';
}

// Ends with a separator.
inline std::string FolderOfThisProgram() {
    char path[MAX_PATH];
    const std::string whole(path, GetModuleFileNameA(nullptr, path, sizeof path));
    return whole.substr(0, whole.find_last_of('\\') + 1);
}

#endif
