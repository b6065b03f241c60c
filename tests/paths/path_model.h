// Path values by their rules.
#ifndef TESTS_PATHS_PATH_MODEL_H
#define TESTS_PATHS_PATH_MODEL_H

#include "support/testing.h"

// The rules one by one, each repeated on the whole text until it changes nothing.
inline std::string NormalisedByRules(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    for (std::size_t at; (at = path.find("\\\\", 1)) != std::string::npos;) path.erase(at, 1);
    for (std::size_t at; (at = path.find("\\.\\")) != std::string::npos;) path.erase(at, 2);
    if (path.size() >= 3 && path.ends_with("\\.")) path.pop_back();
    if (path.size() >= 3 && path.starts_with(".\\")) path.erase(0, 2);
    for (std::size_t at = 0; (at = path.find("\\..", at)) != std::string::npos;) {
        const std::size_t end = at + 3;
        const std::size_t before = at == 0 ? std::string::npos : path.rfind('\\', at - 1);
        const std::string component = before == std::string::npos ? "" : path.substr(before + 1, at - before - 1);
        if ((end == path.size() || path[end] == '\\') && component.find_first_not_of('.') != std::string::npos)
            path.erase(before, end - before), at = before;
        else
            at += 1;
    }
    if (path.size() >= 2 && path.back() == '\\') path.pop_back();
    return path;
}

#endif
