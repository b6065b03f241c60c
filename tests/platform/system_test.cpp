#include "platform/system.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include "platform/clock.h"
#include "platform/directories.h"
#include "platform/files.h"
#include "platform/frame_text.h"
#include "support/files.h"
#include "support/programs.h"

TEST(Environment, IsTheRuntimesAndTheChildrensToo) {
    const struct {
        const char* assignment;
        const char* name;
        const char* expected;  // null: not set
    } rows[] = {
        {"ZEL_SEAM=1", "ZEL_SEAM", "1"},
        {"ZEL_SEAM=two words=x", "ZEL_SEAM", "two words=x"},
        {"ZEL_SEAM=", "ZEL_SEAM", nullptr},
        {"ZEL_SEAM=", "ZEL_SEAM", nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(platform::PutEnvironment(std::string(row.assignment).c_str())) << row.assignment;
        const std::string expected = row.expected != nullptr ? row.expected : "";
        const char* const seen[] = {platform::GetEnvironment(row.name), std::getenv(row.name)};
        for (const char* const value : seen) {
            ASSERT_EQ(value != nullptr, row.expected != nullptr) << row.assignment;
            EXPECT_EQ(std::string(value != nullptr ? value : ""), expected);
        }
        const std::string line = row.expected != nullptr ? "[" + expected + "]\n" : "unset\n";
        EXPECT_EQ(RunProgram("child", {"env", row.name}).out, line);
    }
    EXPECT_FALSE(platform::PutEnvironment("=x"));
    EXPECT_FALSE(platform::PutEnvironment("ZEL_SEAM"));
    EXPECT_FALSE(platform::PutEnvironment(""));
}

TEST(Children, ReceiveArgumentsAsTheyAreAndReportTheirEnd) {
    const std::string arguments[] = {"", "a b", "\"", "\\\"", "end\\", "a\\\\\"b c\\\\", "*", "%PATH%", "\t'"};
    std::vector<std::string> command = {"args"};
    std::string expected;
    for (const std::string& argument : arguments) {
        command.push_back(argument);
        for (const char c : argument) {
            expected += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
            expected += "0123456789abcdef"[c & 15];
        }
        expected += '\n';
    }
    EXPECT_EQ(RunProgram("child", command).out, expected);
    EXPECT_EQ(RunProgram("child", {"exit", "99"}).exitCode, 99);
    EXPECT_EQ(RunProgram("child", {"signal", "9"}).exitCode, 128 + 9);
    EXPECT_EQ(RunProgram("child", {"stubborn", "1"}).out, "ready\n");
    EXPECT_EQ(RunProgram("child", {"out", "100000"}).out.size(), 100000u);
    EXPECT_EQ(RunProgram("child", {"nonsense"}).exitCode, 125);
}

TEST(Children, InheritNothingOfTheLibrarys) {
    const std::string before = RunProgram("child", {"descriptors"}).out;
    const TemporaryFolder folder;
    std::FILE* const stream = platform::OpenTextForWriting((folder / "stream").c_str(), true);
    platform::DirectoryListing listing;
    ASSERT_TRUE(stream != nullptr && listing.Open(folder.Path().c_str()));
    EXPECT_EQ(RunProgram("child", {"descriptors"}).out, before);
    std::fclose(stream);
}

TEST(System, FactsArePlausible) {
    char name[256];
    ASSERT_TRUE(platform::GetHost(name, sizeof name));
    EXPECT_GT(std::string(name).size(), 0u);
    EXPECT_FALSE(platform::GetHost(name, 1));
    EXPECT_GE(platform::GetProcessorCount(), 1);
    EXPECT_GT(platform::GetOwnProcessId(), 0);
}

TEST(Clock, ConvertsAsTheRuntimeDoes) {
    // Two thousand moments, among them the ends of years and of months, against the runtime's own conversion.
    for (int step = 0; step < 2000; ++step) {
        const std::time_t moment = 1000000000 + std::time_t{step} * 777777;
        const std::tm expected = *std::localtime(&moment);
        platform::LocalTime time;
        ASSERT_TRUE(platform::ToLocalTime(moment, time));
        EXPECT_EQ(time.year, expected.tm_year + 1900);
        EXPECT_EQ(time.month, expected.tm_mon + 1);
        EXPECT_EQ(time.day, expected.tm_mday);
        EXPECT_EQ(time.hour, expected.tm_hour);
        EXPECT_EQ(time.minute, expected.tm_min);
        EXPECT_EQ(time.second, expected.tm_sec);
        char text[platform::ClockTextLength + 1];
        ASSERT_TRUE(platform::ToClockText(moment, text));
        EXPECT_EQ(text, std::string(std::ctime(&moment)).substr(0, 24));
    }
}

TEST(Clock, RefusesWhatCannotBeWritten) {
    constexpr std::int64_t year11000 = 285000000000;
    char text[platform::ClockTextLength + 1] = "old";
    for (const std::int64_t moment :
         {year11000, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_FALSE(platform::ToClockText(moment, text));
        EXPECT_STREQ(text, "");
    }
    platform::LocalTime time;
    EXPECT_FALSE(platform::ToLocalTime(std::numeric_limits<std::int64_t>::max(), time));
}

TEST(Frames, NamesAreReadableAndCut) {
    platform::FrameName name = {};
    platform::SetFunction(name, "_Z5FATALiPKc", 4);
    EXPECT_STREQ(name.function, "FATAL(int, char const*)");
    platform::SetFunction(name, "f", 4);  // spells the type float
    EXPECT_STREQ(name.function, "f");
    platform::SetFunction(name, ("_Z" + std::string(3000, 'x')).c_str(), 4);
    EXPECT_EQ(std::string(name.function).size(), sizeof name.function - 1);
    platform::SetModule(name, "C:\\tools/bin\\a.exe", 7);
    EXPECT_STREQ(name.module, "a.exe");
    EXPECT_EQ(name.moduleOffset, 7u);
}
