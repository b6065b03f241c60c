#include "TADiagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "ZELStackTrace.h"
#include "platform/system.h"
#include "support/files.h"
#include "support/programs.h"
#include "support/test_system.h"

TEST(TADiagnostics, EachLineGoesToItsStream) {
    const ProgramResult result = RunProgram("probe", {"lines"});
    const std::string expected[] = {"   text\n",   "   \n",
                                    "   string\n", std::string("   nul\0inside\n", 14),
                                    "   ",         std::string(5000, 'l'),
                                    "\n",          "   ERROR :error\n   ERROR :\n"};
    EXPECT_EQ(result.out, std::accumulate(std::begin(expected), std::end(expected), std::string()));
    EXPECT_EQ(result.err, "to stderr\nand again\n\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(TADiagnostics, HeaderCarriesTheShortDate) {
    std::string out = RunProgram("probe", {"header"}).out;
    for (char& c : out)
        if (c >= '0' && c <= '9') c = '9';
    EXPECT_EQ(out, "\n\n## 99-99.99:99 - x\n\n");
}

TEST(TADiagnostics, LinesOfThreadsStayWhole) {
    const std::string out = RunProgram("probe", {"threads"}).out;
    const std::string line = "   " + std::string(60, 'w') + "\n";
    ASSERT_EQ(out.size(), 800 * line.size());
    for (std::size_t at = 0; at < out.size(); at += line.size()) ASSERT_EQ(out.compare(at, line.size(), line), 0) << at;
}

TEST(TADiagnostics, ServesStaticObjectsAndSurvivesDeadStreams) {
    ASSERT_TRUE(platform::PutEnvironment("ZEL_PROBE_STATIC=1"));
    EXPECT_EQ(RunProgram("probe", {"none"}).out, "   before\n   ERROR :after\n");
    EXPECT_EQ(RunProgram("probe", {"threads"}, FullDevice()).exitCode, 0);
    platform::PutEnvironment("ZEL_PROBE_STATIC=");
    EXPECT_EQ(RunProgram("probe", {"threads"}, ClosedStream).exitCode, 0);
}

TEST(TADiagnostics, FatalSaysWhyShowsTheStackAndAborts) {
    const std::string banner = "FATAL INTERNAL ERROR ------------------------\n";
    const std::string stack = "\nSTACK ---------------------------------------\n";
    for (const char* const message : {"Cache : negative count", ""}) {
        const ProgramResult result = RunProgram("probe", {"fatal", message});
        EXPECT_EQ(result.err.substr(0, banner.size() + std::string(message).size() + stack.size()),
                  banner + message + stack);
        EXPECT_NE(result.exitCode, 0);
        EXPECT_EQ(result.out.rfind("   progress\n#0 ", 0), 0u) << result.out;
        EXPECT_NE(result.out.find("probe"), std::string::npos) << result.out;
        EXPECT_EQ(result.out.back(), '\n');
    }
}

TEST(TADiagnostics, IntegersInEveryRadix) {
    for (const int value :
         {0, 1, -1, 7, -5, 255, 123456789, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(toString(value), std::to_string(value).c_str());
        for (int radix = -1; radix <= 40; ++radix) {
            char buffer[40];
            std::fill(std::begin(buffer), std::end(buffer), '#');
            ASSERT_EQ(TAItoa(value, buffer, radix), buffer);
            EXPECT_EQ(buffer[33], '#');
            if (radix < 2 || radix > 36) {
                EXPECT_STREQ(buffer, "") << radix;
            } else {
                const long long expected = radix == 10 ? value : static_cast<long long>(static_cast<unsigned>(value));
                EXPECT_EQ(std::strtoll(buffer, nullptr, radix), expected) << buffer;
                EXPECT_EQ(buffer[0] == '-', value < 0 && radix == 10) << buffer;
            }
        }
    }
    char letters[33];
    EXPECT_STREQ(TAItoa(-1, letters, 16), "ffffffff");
    EXPECT_EQ(TAItoa(1, nullptr, 10), nullptr);
}

namespace {

// Through a pointer that the compiler cannot see through, so that each call stays one.
void CaptureAt(ZELStackTrace& stack, int depth);
void (*volatile captureAt)(ZELStackTrace&, int) = CaptureAt;

void CaptureAt(ZELStackTrace& stack, int depth) {
    volatile int below = depth;
    if (depth == 0)
        stack.GetTrace();
    else
        captureAt(stack, depth - 1);
    below = below + 1;
}

std::vector<std::string> Printed(const ZELBasicStackTrace& stack, int first, int count) {
    const TemporaryFolder folder;
    std::FILE* const file = std::fopen((folder / "stack").c_str(), "wb");
    stack.Print(file, first, count);
    std::fclose(file);
    std::vector<std::string> lines;
    std::ifstream text(folder / "stack");
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

}  // namespace

TEST(ZELStackTrace, PrintsTheFramesThatWereAskedFor) {
    ZELStackTrace stack;
    EXPECT_GT(stack.Size(), 0);  // captured where it was made
    ASSERT_EQ(stack.GetTrace(), 0);
    const std::vector<std::string> all = Printed(stack, 0, 0);
    ASSERT_EQ(all.size(), static_cast<std::size_t>(stack.Size()));
    const int size = stack.Size();
    const int limits[] = {-5, 0, 1, 2, size - 1, size, size + 1, std::numeric_limits<int>::max()};
    for (const int first : limits)
        for (const int count : limits) {
            const int begin = std::min(std::max(first, 0), size);
            const int end = count <= 0 ? size : static_cast<int>(std::min<long long>(size, begin + 0LL + count));
            EXPECT_EQ(Printed(stack, first, count), std::vector<std::string>(all.begin() + begin, all.begin() + end));
        }
    stack.Print(nullptr, 0, 0);
    for (int frame = 0; frame < size; ++frame) {
        const std::string& text = all[static_cast<std::size_t>(frame)];
        EXPECT_EQ(text.rfind("#" + std::to_string(frame).append(" "), 0), 0u) << text;
        EXPECT_EQ(text.find("0x"), 5u) << text;
        EXPECT_NE(text.find("+0x"), std::string::npos) << text;
    }
    EXPECT_NE(all[0].find("foundations_tests"), std::string::npos) << all[0];
}

TEST(ZELStackTrace, GrowsWithTheDepthUpToItsLimit) {
    ZELStackTrace shallow, deep;
    CaptureAt(shallow, 1);
    EXPECT_LT(shallow.Size(), ZELStackTrace::MaxFrames);
    CaptureAt(deep, 1000);
    EXPECT_EQ(deep.Size(), ZELStackTrace::MaxFrames);
    const ZELStackTrace copy(deep);
    EXPECT_EQ(Printed(copy, 0, 3), Printed(deep, 0, 3));
}
