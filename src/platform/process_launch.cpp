// What both halves of a launch say alike.

#include "platform/process_launch.h"

#include <cstdio>

using namespace zel;

void zel::DescribeTooLong(std::size_t length, std::size_t limit, LaunchFailure& failure) noexcept {
    failure.isTooLong = true;
    std::snprintf(failure.text, sizeof failure.text, "The command line has %zu characters, the limit is %zu", length,
                  limit);
}
