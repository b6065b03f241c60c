#include "TAEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "foundations/date_text.h"
#include "support/files.h"
#include "support/programs.h"

TEST(TAEnvironment, DatesHaveTheirLayouts) {
    const struct {
        platform::LocalTime time;
        const char *day, *shortDate, *sortDate;
    } rows[] = {
        {{2024, 3, 5, 7, 8, 9}, "05/03/2024", "03-05.07:08", "2024-03-05-07-08-09"},
        {{1999, 12, 31, 23, 59, 60}, "31/12/1999", "12-31.23:59", "1999-12-31-23-59-60"},
        {{12345, 1, 1, 0, 0, 0}, "01/01/12345", "01-01.00:00", "12345-01-01-00-00-00"},
        {{-2147483647, 10, 10, 10, 10, 10}, "10/10/-2147483647", "10-10.10:10", "-2147483647-10-10-10-10-10"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FormatDay(row.time), row.day);
        EXPECT_EQ(FormatShortDate(row.time), row.shortDate);
        EXPECT_EQ(FormatSortDate(row.time), row.sortDate);
    }
    // The public functions between two readings of the clock.
    const std::time_t before = std::time(nullptr);
    const std::string date(GetDate()), sorted(GetSortDate());
    bool found = false;
    for (std::time_t moment = before; moment <= std::time(nullptr) && !found; ++moment) {
        char text[80];
        std::strftime(text, sizeof text, "%Y-%m-%d-%H-%M-%S", std::localtime(&moment));
        found = sorted == text;
    }
    EXPECT_TRUE(found) << sorted;
    EXPECT_EQ(date.size(), 24u);
    EXPECT_EQ(date.substr(20), sorted.substr(0, 4));
}

TEST(TAEnvironment, SystemFacts) {
    EXPECT_GT(GetHostName().Length(), 0);
    EXPECT_GE(GetProcessorsNumber(), 1);
    EXPECT_EQ(TAGetTempDir(), "C:\\temp");
    const TemporaryFolder folder;
    const ZELString before = GetWorkDir();
    ASSERT_EQ(SetWorkDir(folder.Path().c_str()), 0);
    const ZELString inside = GetWorkDir();
    EXPECT_EQ(SetWorkDir("missing"), -1);
    EXPECT_EQ(GetWorkDir(), inside);
    EXPECT_EQ(SetWorkDir(before), 0);
    EXPECT_EQ(GetWorkDir(), before);
    EXPECT_EQ(SetWorkDir(inside), 0);
    EXPECT_EQ(SetWorkDir(before), 0);
    EXPECT_EQ(SetWorkDir(""), -1);
}

TEST(TAEnvVariable, CountsTheValueAlone) {
    TAEnvVariable variable("ZEL_TEST_VALUE", 16);
    EXPECT_STREQ(variable.Value(), "");
    EXPECT_EQ(variable.PutEnvironmentValue("0123456789abcde"), 0);
    EXPECT_STREQ(std::getenv("ZEL_TEST_VALUE"), "0123456789abcde");
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
    EXPECT_EQ(variable.UnsetEnvironmentValue(), 0);
    EXPECT_EQ(variable.GetEnvironmentValue(), nullptr);
    EXPECT_STREQ(variable.Value(), "ZEL_TEST_VALUE=");
    EXPECT_EQ(variable.UnsetEnvironmentValue(), 0);
}

TEST(TAEnvVariable, StaysSetAfterItsObject) {
    {
        TAEnvVariable variable("ZEL_TEST_KEPT", 40);
        EXPECT_EQ(variable.PutEnvironmentValue("kept"), 0);
    }
    EXPECT_STREQ(std::getenv("ZEL_TEST_KEPT"), "kept");
    EXPECT_EQ(TAEnvVariable("ZEL_TEST_KEPT", 1).UnsetEnvironmentValue(), 0);
    EXPECT_EQ(std::getenv("ZEL_TEST_KEPT"), nullptr);
}

TEST(TAEnvVariable, NamesOfEveryKind) {
    for (const char* const name : {static_cast<const char*>(nullptr), ""}) {
        TAEnvVariable variable(name, 16);
        EXPECT_EQ(variable.PutEnvironmentValue("x"), 0);
        EXPECT_EQ(variable.UnsetEnvironmentValue(), 0);
        EXPECT_STREQ(variable.GetEnvironmentValue(), "");
        EXPECT_EQ(variable.Name(), nullptr);
    }
    TAEnvVariable split("ZEL_TEST_A=B", 16);
    EXPECT_EQ(split.PutEnvironmentValue("c"), 0);
    EXPECT_STREQ(std::getenv("ZEL_TEST_A"), "B=c");
    EXPECT_EQ(split.PutEnvironmentValue(nullptr), 0);
    for (const int capacity : {0, -1, -2147483647}) {
        TAEnvVariable none("ZEL_TEST_NONE", capacity);
        EXPECT_EQ(none.Value(), nullptr);
        EXPECT_EQ(none.PutEnvironmentValue(""), 1);
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
    EXPECT_STREQ(copy.Value(), "ZEL_TEST_FIRST=0123456789abcdefgh");
    EXPECT_EQ(copy.PutEnvironmentValue("0123456789abcdefghi"), 1);
    TAEnvVariable& same = copy;
    copy = same;
    EXPECT_STREQ(copy.Value(), "ZEL_TEST_FIRST=0123456789abcdefgh");
    copy = TAEnvVariable(nullptr, 0);
    EXPECT_EQ(copy.Name(), nullptr);
    EXPECT_EQ(copy.Value(), nullptr);
}
