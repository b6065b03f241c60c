#include "TADiagnostics.h"

#include "ZELStackTrace.h"
#include "platform/system.h"
#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

TEST(TADiagnostics, EachLineGoesToItsStream) {
    const ProgramResult result = RunProgram("probe", {"lines"});
    const std::string nul("   nul\0inside\n", 14);
    EXPECT_EQ(result.out,
              "   text\n   \n   string\n" + nul + "   " + std::string(5000, 'l') + "\n   ERROR :error\n   ERROR :\n");
    EXPECT_EQ(result.err, "to stderr\nand again\n\n");
    std::string header = RunProgram("probe", {"header"}).out;
    for (char& c : header) c = std::isdigit(c) ? '9' : c;
    EXPECT_EQ(header, "\n\n## 99-99.99:99 - x\n\n");
}

TEST(TADiagnostics, LinesOfThreadsStayWhole) {
    const std::string out = RunProgram("probe", {"threads"}).out;
    const std::string line = "   " + std::string(60, 'w') + "\n";
    ASSERT_EQ(out.size(), 800 * line.size());
    for (std::size_t at = 0; at < out.size(); at += line.size()) ASSERT_EQ(out.compare(at, line.size(), line), 0) << at;
}

TEST(TADiagnostics, ServesStaticObjectsAndSurvivesDeadStreams) {
    ASSERT_TRUE(zel::PutEnvironment("ZEL_PROBE_STATIC=1"));
    EXPECT_EQ(RunProgram("probe", {"none"}).out, "   before\n   ERROR :after\n");
    for (const std::string& dead : {FullDevice, ClosedStream})
        EXPECT_EQ(RunProgram("probe", {"threads"}, dead).exitCode, 0);
    zel::PutEnvironment("ZEL_PROBE_STATIC=");
}

TEST(TADiagnostics, FatalSaysWhyShowsTheStackAndAborts) {
    for (const std::string message : {"Cache : negative count", ""}) {
        const ProgramResult result = RunProgram("probe", {"fatal", message});
        EXPECT_TRUE(result.err.starts_with("FATAL INTERNAL ERROR ------------------------\n" + message +
                                           "\nSTACK ---------------------------------------\n"));
        EXPECT_NE(result.exitCode, 0);
        EXPECT_TRUE(result.out.starts_with("   progress\n#0 ") && result.out.ends_with("\n")) << result.out;
        EXPECT_NE(result.out.find("probe"), std::string::npos) << result.out;
    }
}

TEST(TADiagnostics, IntegersInEveryRadix) {
    for (const int value : {0, 1, -1, 7, -5, 255, 123456789, INT_MIN, INT_MAX}) {
        EXPECT_EQ(toString(value), std::to_string(value).c_str());
        for (int radix = -1; radix <= 40; ++radix) {
            char buffer[40];
            std::fill(std::begin(buffer), std::end(buffer), '#');
            ASSERT_EQ(TAItoa(value, buffer, radix), buffer);
            EXPECT_EQ(buffer[33], '#');
            const bool serves = radix >= 2 && radix <= 36;
            const long long shown = radix == 10 ? value : static_cast<long long>(static_cast<unsigned>(value));
            EXPECT_EQ(std::strlen(buffer) > 0, serves) << radix;
            EXPECT_EQ(std::strtoll(buffer, nullptr, serves ? radix : 10), serves ? shown : 0) << buffer;
            EXPECT_EQ(std::count_if(buffer, buffer + 33, [](char c) { return c >= 'A' && c <= 'Z'; }), 0) << buffer;
        }
    }
    EXPECT_EQ(TAItoa(1, nullptr, 10), nullptr);
}

namespace {

// Through a pointer that the compiler cannot see through, so that each call stays one.
void CaptureAt(ZELStackTrace& stack, int depth);
void (*volatile captureAt)(ZELStackTrace&, int) = CaptureAt;

void CaptureAt(ZELStackTrace& stack, int depth) {
    volatile int below = depth;
    depth == 0 ? void(stack.GetTrace()) : captureAt(stack, depth - 1);
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
    const int size = stack.Size();
    const std::vector<std::string> all = Printed(stack, 0, 0);
    ASSERT_EQ(all.size(), static_cast<std::size_t>(size));
    const int limits[] = {-5, 0, 1, 2, size - 1, size, size + 1, INT_MAX};
    for (const int first : limits)
        for (const int count : limits) {
            const int begin = std::clamp(first, 0, size);
            const int end = count <= 0 ? size : static_cast<int>(std::min<long long>(size, begin + 0LL + count));
            EXPECT_EQ(Printed(stack, first, count), std::vector<std::string>(all.begin() + begin, all.begin() + end));
        }
    stack.Print(nullptr, 0, 0);
    for (int frame = 0; frame < size; ++frame) {
        const std::string& text = all[static_cast<std::size_t>(frame)];
        EXPECT_TRUE(text.starts_with("#" + std::to_string(frame).append(" "))) << text;
        EXPECT_TRUE(text.find("0x") == 5 && text.find("+0x") != std::string::npos) << text;
    }
    EXPECT_NE(all[0].find("foundations_tests"), std::string::npos) << all[0];
}

TEST(ZELStackTrace, GrowsWithTheDepthUpToItsLimit) {
    ZELStackTrace stack;
    CaptureAt(stack, 1);
    EXPECT_LT(stack.Size(), ZELStackTrace::MaxFrames);
    CaptureAt(stack, 1000);
    EXPECT_EQ(Printed(stack, 0, 0).size(), ZELStackTrace::MaxFrames + 0u);
}
