// What nearly every test begins with.
#ifndef TESTS_SUPPORT_TESTING_H
#define TESTS_SUPPORT_TESTING_H

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "support/files.h"

// White-box tests name the internals of the library as its own sources do.
namespace zel {}
using namespace zel;

// Something to store where a pointer is asked for; never null, and of its own for each number.
inline void* Value(int number) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number) + 1);
}

inline bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline std::string Repeat(const std::string& text, int count) {
    std::string repeated;
    while (count-- > 0) repeated += text;
    return repeated;
}

// At most `longest` of the letters.
inline std::string RandomText(std::mt19937& random, const std::string& letters, std::size_t longest) {
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text) c = letters[random() % letters.size()];
    return text;
}

// The elements of a list of strings or of file names.
template <class List>
std::vector<std::string> Texts(const List& list) {
    std::vector<std::string> texts;
    for (const auto& text : list) texts.emplace_back(text.View());
    return texts;
}

// What `work` writes to standard output; line ends are "\n" on both targets.
template <class Work>
std::string Printed(Work work) {
    testing::internal::CaptureStdout();
    work();
    return WithoutReturns(testing::internal::GetCapturedStdout());
}

#endif
