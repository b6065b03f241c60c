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
    FailingMemory(int number, Afterwards afterwards, Fallback fallback)
        : _number(number), _afterwards(afterwards), _fallback(fallback) {}
    ~FailingMemory() { End(); }

    void Begin() {
        testing::internal::CaptureStdout();
        FailAllocation(_number, _afterwards);
        _isBetween = true;
    }
    // Whether an allocation failed.
    bool End() {
        if (!std::exchange(_isBetween, false)) return _hasFailed;
        _hasFailed = HasAllocationFailed();
        FailAllocation(0);
        _said = WithoutReturns(testing::internal::GetCapturedStdout());
        const bool isReported = Holds(_said, "# Alloc failed in ") || Holds(_said, "# Error");
        EXPECT_TRUE(isReported == _hasFailed || (_hasFailed && _fallback == Fallback::Possible)) << _said;
        return _hasFailed;
    }
    const std::string& Said() const { return _said; }

private:
    const int _number;
    const Afterwards _afterwards;
    const Fallback _fallback;
    bool _isBetween = false;
    bool _hasFailed = false;
    std::string _said;
};

struct AllocationFailures {
    int count = 0;
    std::string said;  // in all rounds
};

// The ways in which allocations fail: one alone, and one with all that follow it.
using Ways = std::initializer_list<Afterwards>;

// Calls `round(memory)` for the first allocation, the second and so on, up to a round in which none fails; in each way.
template <class Round>
AllocationFailures FailEachAllocation(Round round, Fallback fallback = Fallback::None,
                                      Ways ways = {Afterwards::Succeed, Afterwards::Fail}) {
    AllocationFailures failures;
    for (const Afterwards afterwards : ways)
        for (int number = 1;; ++number) {
            SCOPED_TRACE("allocation " + std::to_string(number) + (afterwards == Afterwards::Fail ? " and on" : ""));
            FailingMemory memory(number, afterwards, fallback);
            round(memory);
            const bool hasFailed = memory.End();
            failures.said += memory.Said();
            if (testing::Test::HasFatalFailure()) return failures;
            if (!hasFailed) break;
            ++failures.count;
        }
    return failures;
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
