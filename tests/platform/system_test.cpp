#include "platform/system.h"

#include "platform/clock.h"
#include "platform/directories.h"
#include "platform/files.h"
#include "platform/frame_text.h"
#include "support/files.h"
#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

TEST(Environment, IsTheRuntimesAndTheChildrensToo) {
    for (const std::string value : {"1", "two words=x", "", ""}) {
        EXPECT_TRUE(platform::PutEnvironment(("ZEL_SEAM=" + value).c_str())) << value;
        const char* const values[] = {platform::GetEnvironment("ZEL_SEAM"), std::getenv("ZEL_SEAM")};
        for (const char* const seen : values) {
            EXPECT_EQ(seen == nullptr, value.empty()) << value;  // the empty value unsets
            EXPECT_EQ(std::string(seen != nullptr ? seen : ""), value);
        }
        EXPECT_EQ(RunProgram("probe", {"env", "ZEL_SEAM"}).out, value.empty() ? "unset\n" : "[" + value + "]\n");
    }
    for (const char* const refused : {"=x", "ZEL_SEAM", ""}) EXPECT_FALSE(platform::PutEnvironment(refused));
}

TEST(Children, ReceiveArgumentsAsTheyAreAndReportTheirEnd) {
    std::vector<std::string> command = {"args",           "",  "a b",    "\"", "\\\"", "end\\",
                                        "a\\\\\"b c\\\\", "*", "%PATH%", "\t'"};
    const ProgramResult shown = RunProgram("child", command);
    EXPECT_EQ(shown.out,
              "\n612062\n22\n5c22\n656e645c\n615c5c2262"
              "20635c5c\n2a\n255041544825\n0927\n");
    EXPECT_EQ(RunProgram("child", {"exit", "99"}).exitCode, 99);
    EXPECT_EQ(RunProgram("child", {"signal", "9"}).exitCode, 128 + 9);
    EXPECT_EQ(RunProgram("child", {"stubborn", "1"}).out, "ready\n");
    EXPECT_EQ(RunProgram("child", {"out", "100000"}).out.size(), 100000u);
    EXPECT_EQ(RunProgram("child", {"nonsense"}).exitCode, 125);
}

TEST(Children, InheritNothingOfTheLibrarys) {
    const std::vector<long> before = InheritedDescriptors();
    EXPECT_FALSE(before.empty());
    const TemporaryFolder folder;
    std::FILE* const stream = platform::OpenTextForWriting((folder / "stream").c_str(), true);
    platform::DirectoryListing listing;
    ASSERT_TRUE(stream != nullptr && listing.Open(folder.Path().c_str()));
    EXPECT_EQ(InheritedDescriptors(), before);
    std::fclose(stream);
}

TEST(System, RefusesWhatCannotBeWritten) {
    char name[256];
    EXPECT_TRUE(platform::GetHost(name, sizeof name) && !platform::GetHost(name, 1));
    constexpr std::int64_t Year11000 = 285000000000;
    char text[platform::ClockTextLength + 1] = "old";
    for (const std::int64_t moment : {Year11000, std::int64_t{INT64_MAX}, std::int64_t{INT64_MIN}}) {
        EXPECT_FALSE(platform::ToClockText(moment, text));
        EXPECT_STREQ(text, "");
    }
    platform::LocalTime time;
    EXPECT_FALSE(platform::ToLocalTime(INT64_MAX, time));
}

TEST(Frames, NamesAreReadableAndCut) {
    platform::FrameName name = {};
    platform::SetFunction(name, "_Z5FATALiPKc", 4);
    EXPECT_STREQ(name.function, "FATAL(int, char const*)");
    platform::SetFunction(name, "f", 4);  // spells the type float
    EXPECT_STREQ(name.function, "f");
    platform::SetFunction(name, ("_Z" + std::string(3000, 'x')).c_str(), 4);
    EXPECT_EQ(std::strlen(name.function), sizeof name.function - 1);
    platform::SetModule(name, "C:\\tools/bin\\a.exe", 7);
    EXPECT_STREQ(name.module, "a.exe");
    EXPECT_EQ(name.moduleOffset, 7u);
}
