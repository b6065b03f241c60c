// What nearly every test begins with.
#ifndef TESTS_SUPPORT_TESTING_H
#define TESTS_SUPPORT_TESTING_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Something to store where a pointer is asked for; never null, and of its own for each number.
inline void* Value(int number) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number) + 1);
}

#endif
