#include "faults/sweep.h"

#include "support/test_system.h"

namespace {

// Whether every call fails, however many of a kind there are (script/test --all).
const bool isLong = std::getenv("ZEL_LONG_TESTS") != nullptr;

// What a round may not leave behind.
struct Remains {
    std::size_t descriptors = OpenDescriptors();
    std::size_t threads = RunningThreads();
    bool operator==(const Remains&) const = default;
};

std::set<std::string> FilesIn(const std::string& folder) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        files.insert(std::filesystem::relative(entry, folder).generic_string());
    return files;
}

struct Result {
    Outcome outcome;
    std::set<std::string> files;
    bool hasFailed;
};

class Sweeper {
public:
    Sweeper(Outcome (*run)(Round&), int most)
        : _run(run), _most(most != 0 ? std::max(most * StormPercent / 100, 1) : 0) {
        std::filesystem::create_directory(_folder / "round");
        std::filesystem::current_path(_folder / "round");
        Whole();                    // what is made once in a process
        std::thread([] {}).join();  // a sanitizer may start one of its own then
        for (int i = 0; i < 100; ++i, std::this_thread::yield())
            _before.threads = std::min(_before.threads, RunningThreads());
        _whole = Whole();
        _before.descriptors = OpenDescriptors();
        EXPECT_TRUE(_whole.outcome.success) << _whole.outcome.state;
        for (FaultyCall* const call : FaultyCall::All()) _counts.push_back(call->count);
    }

    ~Sweeper() { std::filesystem::current_path(_home); }

    void FailAllocations(zel::Afterwards afterwards) {
        for (int number = 1;; ++number) {
            Round round(_folder / "round");
            round.allocation = number;
            round.afterwards = afterwards;
            if (!Check(round, "allocation")) return;
        }
    }

    void FailCalls(zel::Afterwards afterwards) {
        for (std::size_t i = 0; i < _counts.size(); ++i)
            for (const Fault& fault : FaultyCall::All()[i]->faults) {
                const int most = _most != 0 && !isLong ? std::min(_most, _counts[i]) : _counts[i];
                for (int number = 1; number <= most; ++number) {
                    Round round(_folder / "round");
                    round.call = FaultyCall::All()[i];
                    round.fault = &fault;
                    round.number = number;
                    round.afterwards = afterwards;
                    if (!Check(round, std::string(round.call->name) + " " + fault.name)) break;
                }
            }
    }

    Result Whole() {
        Round round(_folder / "round");
        return Run(round);
    }

    // Nothing that failed has an effect on what comes later.
    void ExpectAsAtFirst() {
        const Result last = Whole();
        EXPECT_TRUE(last.outcome.success);
        EXPECT_EQ(last.outcome.state, _whole.outcome.state);
        EXPECT_EQ(last.files, _whole.files);
    }

private:
    Result Run(Round& round) {
        Result result{_run(round), FilesIn(_folder / "round"), false};
        result.hasFailed = round.End();
        for (const auto& entry : std::filesystem::directory_iterator(_folder / "round"))
            std::filesystem::remove_all(entry);
        return result;
    }

    // False when nothing failed, or when an expectation did: one is enough.
    bool Check(Round& round, const std::string& what) {
        SCOPED_TRACE(what + " " + std::to_string(round.number + round.allocation) +
                     (round.afterwards == zel::Afterwards::Fail ? " and on" : ""));
        const Result result = Run(round);
        if (result.outcome.success) {
            EXPECT_EQ(result.outcome.state, _whole.outcome.state) << "silent success";
            EXPECT_EQ(result.files, _whole.files) << "silent success";
        }
        for (const std::string& file : result.files) EXPECT_TRUE(_whole.files.contains(file)) << file;
        // A thread that was waited for may still be on its way out of the system.
        for (int tries = 0; tries < 1000 && Remains() != _before; ++tries) std::this_thread::yield();
        const Remains after;
        EXPECT_EQ(after.descriptors, _before.descriptors);
        EXPECT_EQ(after.threads, _before.threads);
        return result.hasFailed && !testing::Test::HasFailure();
    }

    Outcome (*const _run)(Round&);
    const int _most;
    const std::filesystem::path _home = std::filesystem::current_path();
    TemporaryFolder _folder;
    Result _whole;
    Remains _before = {0, SIZE_MAX};
    std::vector<int> _counts;
};

}  // namespace

void Round::Begin() {
    testing::internal::CaptureStdout();
    _isBetween = true;
    BeginFaults(call, fault, number, afterwards);
    zel::FailAllocation(allocation, afterwards);
}

bool Round::End() {
    if (!std::exchange(_isBetween, false)) return _hasFailed;
    _hasFailed = zel::HasAllocationFailed();
    zel::FailAllocation(0);
    _hasFailed |= EndFaults();
    _said = WithoutReturns(testing::internal::GetCapturedStdout());
    return _hasFailed;
}

Scenario::Scenario(const char* name, Outcome (*run)(Round& round), int most) {
    class Test : public testing::Test {
    public:
        Test(Outcome (*runOnce)(Round&), int mostCalls) : _sweeper(runOnce, mostCalls) {}
        void TestBody() override {
            for (const zel::Afterwards afterwards : {zel::Afterwards::Succeed, zel::Afterwards::Fail}) {
                _sweeper.FailAllocations(afterwards);
                _sweeper.FailCalls(afterwards);
            }
            _sweeper.ExpectAsAtFirst();
        }

    private:
        Sweeper _sweeper;
    };
    testing::RegisterTest("Faults", name, nullptr, nullptr, __FILE__, __LINE__,
                          [run, most]() -> testing::Test* { return new Test(run, most); });
}
