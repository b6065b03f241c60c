// The environment is read anew at each call, so that a tool can be watched without being started again.

#include "network/setup_trace.h"

#include <cstdarg>
#include <cstdio>

#include "ZELString.h"
#include "platform/system.h"

using namespace zel;

namespace {

bool IsSetForThisSide(const char* variable, const char* otherSide) noexcept {
    ZELString value(GetEnvironment(variable));
    value.ToUpper();
    return !(value == "") && !(value == otherSide);
}

}  // namespace

bool zel::WantsBothFamilies(const char* otherSide) noexcept {
    return IsSetForThisSide("TASocketIPv6", otherSide);
}

SetupTrace::SetupTrace(const char* operation, const char* otherSide) noexcept
    : _operation(operation),
      _showsSteps(GetEnvironment("TASocketIPv6EnableTraces") != nullptr),
      _showsTime(IsSetForThisSide("TASocketIPv6EnablePerfoTraces", otherSide)),
      _begin(_showsTime ? std::clock() : 0) {}

void SetupTrace::Print(const char* format, ...) const noexcept {
    char line[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    std::printf("%s: %s\n", _operation, line);
    std::fflush(stdout);
}

void SetupTrace::Time(const char* step) const noexcept {
    if (!_showsTime) return;
    const double milliseconds = 1000.0 * static_cast<double>(std::clock() - _begin) / CLOCKS_PER_SEC;
    std::printf("TASocket-perfo-%s: %s, elapsed time :%.2f ms\n", _operation, step, milliseconds);
    std::fflush(stdout);
}
