// The rest of a time limit, for waits that are interrupted and continue.
#ifndef BASE_DEADLINE_H
#define BASE_DEADLINE_H

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>

namespace zel {

class Deadline {
public:
    // Below 0: no limit.
    explicit Deadline(std::int64_t milliseconds) noexcept
        : _isLimited(milliseconds >= 0),
          _end(_isLimited ? Clock::now() + Bounded(milliseconds) : Clock::time_point()) {}

    // Milliseconds, rounded up so that a wait does not return too early; 0 after the deadline, -1 without a limit.
    // Longer times are INT_MAX: the caller asks again after such a wait.
    int Left() const noexcept {
        if (!_isLimited) return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(_end - Clock::now()).count();
        return static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
    }

private:
    using Clock = std::chrono::steady_clock;

    // At most a century, so that the sum does not overflow.
    static std::chrono::milliseconds Bounded(std::int64_t milliseconds) noexcept {
        constexpr std::int64_t Century = std::int64_t{100} * 365 * 24 * 3600 * 1000;
        return std::chrono::milliseconds(std::min(milliseconds, Century));
    }

    bool _isLimited;
    Clock::time_point _end;
};

}  // namespace zel

#endif
