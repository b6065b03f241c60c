// What every fuzz target begins with: the input, and assertions that end the process.
#ifndef TESTS_FUZZ_INPUT_H
#define TESTS_FUZZ_INPUT_H

#include <fuzzer/FuzzedDataProvider.h>

#include "support/testing.h"

class Input : public FuzzedDataProvider {
public:
    using FuzzedDataProvider::FuzzedDataProvider;

    bool Flip() { return ConsumeBool(); }
    int Number(int least, int greatest) { return ConsumeIntegralInRange(least, greatest); }
    // Any bytes.
    std::string Text(std::size_t longest = 4096) { return ConsumeRandomLengthString(longest); }
    std::string Rest() { return ConsumeRemainingBytesAsString(); }
    // One of the pieces after the other, so that short inputs mean something; `longest` of them at most.
    std::string Spell(const std::vector<std::string>& pieces, int longest) {
        std::string text;
        for (int count = Number(0, longest); count > 0 && remaining_bytes() > 0; --count)
            text += pieces[static_cast<std::size_t>(Number(0, static_cast<int>(pieces.size()) - 1))];
        return text;
    }
};

// The body of a target. A failed assertion of GoogleTest ends the process, and the engine keeps the input.
#define FUZZ_TARGET(input) void RunTarget(Input&(input))
void RunTarget(Input& input);

#endif
