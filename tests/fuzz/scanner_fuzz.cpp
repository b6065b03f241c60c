// Source text without chosen parts, by the rules.
#include "ZELFilePrepro.h"
#include "fuzz/input.h"
#include "support/strip_model.h"

FUZZ_TARGET(input) {
    const int flags = input.Number(0, 31);
    const std::string text =
        input.Flip()
            ? input.Spell({"\"", "'", "/", "*", "/*", "*/", "//", "#", "\\", "\n", "a", "0123456789abcdef"}, 200)
            : input.Rest();
    const std::vector<char> exact(text.begin(), text.end());
    ZELFilePrepro scanner(exact.empty() ? "" : exact.data(), exact.size());
    const StrippedText expected = StripByRules(text.c_str(), flags);
    for (int again = 0; again < 2; ++again) {
        char* output = nullptr;
        ASSERT_EQ(scanner.preprocess(flags, output), expected.complete ? 0 : 2);
        const std::unique_ptr<char, void (*)(void*)> owned(output, std::free);
        ASSERT_EQ(output, expected.text);
    }
}
