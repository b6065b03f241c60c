// One argument as it has to stand in a command text, so that the started program gets it as it is.
#ifndef TESTS_SUPPORT_QUOTED_H
#define TESTS_SUPPORT_QUOTED_H

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

#endif
