#include "fuzz/input.h"

namespace {

// The engine keeps the input of a process that aborts.
struct AbortOnFailure : testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        if (result.failed()) std::abort();
    }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    testing::UnitTest::GetInstance()->listeners().Append(new AbortOnFailure);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    RunTarget(input);
    return 0;
}
