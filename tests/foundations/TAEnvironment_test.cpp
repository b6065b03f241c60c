#include "TAEnvironment.h"

#include <ctime>

#include "foundations/date_text.h"
#include "support/programs.h"
#include "support/testing.h"

namespace {

// As the runtime writes a moment.
std::string Written(std::time_t moment, const char* format) {
    char text[80];
    std::strftime(text, sizeof text, format, std::localtime(&moment));
    return text;
}

}  // namespace

TEST(TAEnvironment, DatesHaveTheirLayouts) {
    const std::tuple<zel::LocalTime, const char*, const char*, const char*> rows[] = {
        {{2024, 3, 5, 7, 8, 9}, "05/03/2024", "03-05.07:08", "2024-03-05-07-08-09"},
        {{1999, 12, 31, 23, 59, 60}, "31/12/1999", "12-31.23:59", "1999-12-31-23-59-60"},
        {{12345, 1, 1, 0, 0, 0}, "01/01/12345", "01-01.00:00", "12345-01-01-00-00-00"},
        {{-2147483647, 10, 10, 10, 10, 10}, "10/10/-2147483647", "10-10.10:10", "-2147483647-10-10-10-10-10"},
    };
    for (const auto& [time, day, shortDate, sortDate] : rows) {
        EXPECT_EQ(FormatDay(time), day);
        EXPECT_EQ(FormatShortDate(time), shortDate);
        EXPECT_EQ(FormatSortDate(time), sortDate);
    }
    // Two thousand moments, among them the ends of years and of months.
    for (int step = 0; step < 2000; ++step) {
        const std::time_t moment = 1000000000 + std::time_t{step} * 777777;
        zel::LocalTime time;
        char text[zel::ClockTextLength + 1];
        ASSERT_TRUE(zel::ToLocalTime(moment, time) && zel::ToClockText(moment, text));
        ASSERT_EQ(FormatSortDate(time), Written(moment, "%Y-%m-%d-%H-%M-%S").c_str());
        ASSERT_EQ(text, std::string(std::ctime(&moment)).substr(0, 24));
    }
    for (const std::time_t moment : {-30620000000, -60000000000, -70000000000, 250000000000, 260000000000}) {
        const char* const line = std::ctime(&moment);  // of years before 1000 and beyond 9999
        const std::string expected = line != nullptr ? std::string(line, std::strcspn(line, "\n")) : "";
        char text[zel::ClockTextLength + 1];
        EXPECT_EQ(zel::ToClockText(moment, text), !expected.empty() && expected.size() <= 24) << expected;
        EXPECT_EQ(text, expected.size() <= 24 ? expected : "");
    }
    // The public functions between two readings of the clock.
    std::time_t moment = std::time(nullptr);
    const std::string date(GetDate()), sorted(GetSortDate());
    while (moment < std::time(nullptr) && sorted != Written(moment, "%Y-%m-%d-%H-%M-%S")) ++moment;
    EXPECT_EQ(sorted, Written(moment, "%Y-%m-%d-%H-%M-%S"));
    EXPECT_TRUE(date.size() == 24 && date.substr(20) == sorted.substr(0, 4)) << date;
}

TEST(TAEnvironment, SystemFacts) {
    EXPECT_TRUE(GetHostName().Length() > 0 && GetProcessorsNumber() >= 1 && TAGetTempDir() == "C:\\temp");
    const ZELString before = GetWorkDir();
    EXPECT_TRUE(SetWorkDir("missing") == -1 && SetWorkDir("..") == 0 && GetWorkDir() != before);
    EXPECT_TRUE(SetWorkDir(before) == 0 && GetWorkDir() == before);
}

TEST(TAEnvVariable, CountsTheValueAlone) {
    TAEnvVariable variable("ZEL_TEST_VALUE", 16);
    EXPECT_STREQ(variable.Value(), "");
    EXPECT_EQ(variable.PutEnvironmentValue("0123456789abcde"), 0);
    EXPECT_STREQ(variable.Value(), "ZEL_TEST_VALUE=0123456789abcde");
    const ProgramResult refused = RunProgram("probe", {"warnings"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.out,
              "## WARNING : impossible to execute putenv because of argument value size= 17 \n"
              "## WARNING : is greater than the allowed size 16 \n");
    // Values that lie in the buffer or in the environment itself.
    EXPECT_EQ(variable.PutEnvironmentValue(variable.Value() + 15), 0);
    EXPECT_STREQ(variable.GetEnvironmentValue(), "0123456789abcde");
    EXPECT_EQ(variable.PutEnvironmentValue(variable.GetEnvironmentValue() + 5), 0);
    EXPECT_STREQ(variable.GetEnvironmentValue(), "56789abcde");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(variable.UnsetEnvironmentValue(), 0);
        EXPECT_EQ(variable.GetEnvironmentValue(), nullptr);
        EXPECT_STREQ(variable.Value(), "ZEL_TEST_VALUE=");
    }
}

TEST(TAEnvVariable, StaysSetAfterItsObject) {
    EXPECT_EQ(TAEnvVariable("ZEL_TEST_KEPT", 40).PutEnvironmentValue("kept"), 0);
    EXPECT_STREQ(std::getenv("ZEL_TEST_KEPT"), "kept");
    EXPECT_EQ(TAEnvVariable("ZEL_TEST_KEPT", 1).UnsetEnvironmentValue(), 0);
    EXPECT_EQ(std::getenv("ZEL_TEST_KEPT"), nullptr);
}

TEST(TAEnvVariable, NamesOfEveryKind) {
    for (const char* const name : {static_cast<const char*>(nullptr), ""}) {
        TAEnvVariable variable(name, 16);
        EXPECT_TRUE(variable.PutEnvironmentValue("x") == 0 && variable.UnsetEnvironmentValue() == 0);
        EXPECT_STREQ(variable.GetEnvironmentValue(), "");
        EXPECT_EQ(variable.Name(), nullptr);
    }
    TAEnvVariable split("ZEL_TEST_A=B", 16);
    EXPECT_EQ(split.PutEnvironmentValue("c"), 0);
    EXPECT_STREQ(std::getenv("ZEL_TEST_A"), "B=c");
    EXPECT_EQ(split.PutEnvironmentValue(nullptr), 0);
    for (const int capacity : {0, -1, INT_MIN}) {
        const TAEnvVariable none("ZEL_TEST_NONE", capacity);
        EXPECT_TRUE(none.Value() == nullptr && none.PutEnvironmentValue("") == 1);
    }
}

TEST(TAEnvVariable, CopiesTakeTheNameAndTheLastText) {
    TAEnvVariable first("ZEL_TEST_FIRST", 100);
    TAEnvVariable second("ZEL_TEST_SECOND", 8);
    second = first;  // nothing was put: no buffer, and the capacity stays 8
    EXPECT_STREQ(second.Name(), "ZEL_TEST_FIRST");
    EXPECT_EQ(second.Value(), nullptr);
    EXPECT_EQ(second.PutEnvironmentValue("1234567"), 0);
    EXPECT_STREQ(second.GetEnvironmentValue(), "1234567");
    EXPECT_EQ(second.PutEnvironmentValue("12345678"), 1);

    EXPECT_EQ(first.PutEnvironmentValue("abc"), 0);
    TAEnvVariable copy(first);
    EXPECT_STREQ(copy.Value(), "ZEL_TEST_FIRST=abc");
    // The capacity is now that of the whole text, and the longest value fits the buffer beside the name.
    EXPECT_EQ(copy.PutEnvironmentValue("0123456789abcdefgh"), 0);
    EXPECT_EQ(copy.PutEnvironmentValue("0123456789abcdefghi"), 1);
    copy = *&copy;
    EXPECT_STREQ(copy.Value(), "ZEL_TEST_FIRST=0123456789abcdefgh");
    copy = TAEnvVariable(nullptr, 0);
    EXPECT_TRUE(copy.Name() == nullptr && copy.Value() == nullptr);
}
