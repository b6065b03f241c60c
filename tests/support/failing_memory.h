// Work whose allocations fail, each in its turn.
#ifndef TESTS_SUPPORT_FAILING_MEMORY_H
#define TESTS_SUPPORT_FAILING_MEMORY_H

#include "base/memory.h"
#include "support/testing.h"

// Whether each failed allocation must be reported, or may have a fallback, which succeeds and reports nothing: a list
// grows by one element when it cannot grow by half.
enum class Fallback { None, Possible };

// One round of FailEachAllocation: what is allocated between Begin and End counts.
class FailingMemory {
public:
    explicit FailingMemory(int number, Fallback fallback = Fallback::None) : _number(number), _fallback(fallback) {}
    ~FailingMemory() { End(); }

    void Begin() {
        testing::internal::CaptureStdout();
        FailAllocation(_number);
        _isBetween = true;
    }
    // Whether an allocation failed.
    bool End() {
        if (!std::exchange(_isBetween, false)) return _hasFailed;
        _hasFailed = !IsAllocationFailureDue();
        FailAllocation(0);
        _said = WithoutReturns(testing::internal::GetCapturedStdout());
        const bool isReported = Holds(_said, "# Alloc failed in ") || Holds(_said, "# Error");
        EXPECT_TRUE(isReported == _hasFailed || (_hasFailed && _fallback == Fallback::Possible)) << _said;
        return _hasFailed;
    }
    const std::string& Said() const { return _said; }

private:
    const int _number;
    const Fallback _fallback;
    bool _isBetween = false;
    bool _hasFailed = false;
    std::string _said;
};

struct AllocationFailures {
    int count = 0;
    std::string said;  // in all rounds
};

// Calls `round(memory)` for the first allocation, the second and so on, up to a round in which none fails.
template <class Round>
AllocationFailures FailEachAllocation(Round round, Fallback fallback = Fallback::None) {
    AllocationFailures failures;
    for (;; ++failures.count) {
        SCOPED_TRACE("allocation " + std::to_string(failures.count + 1));
        FailingMemory memory(failures.count + 1, fallback);
        round(memory);
        const bool hasFailed = memory.End();
        failures.said += memory.Said();
        if (!hasFailed || testing::Test::HasFatalFailure()) return failures;
    }
}

// Changes a copy of `before` once for each allocation that may fail. Where the failure is reported, the copy must show
// what `before` shows, and otherwise the effect of the change. `show` returns what is compared.
template <class Object, class Change, class Show>
void ExpectAllOrNothing(const Object& before, Change change, Show show) {
    Object after(before);
    change(after);
    const AllocationFailures failures = FailEachAllocation(
        [&](FailingMemory& memory) {
            Object object(before);
            memory.Begin();
            change(object);
            memory.End();
            EXPECT_TRUE(show(object) == show(memory.Said().empty() ? after : before)) << memory.Said();
        },
        Fallback::Possible);
    EXPECT_GE(failures.count, 1);
}

#endif
