#include "platform/system.h"

#include "platform/clock.h"
#include "platform/directories.h"
#include "platform/frame_text.h"
#include "platform/text_reader.h"
#include "support/test_system.h"
#include "support/testing.h"

TEST(Children, InheritNothingOfTheLibrarys) {
    const std::vector<long> before = InheritedDescriptors();
    EXPECT_FALSE(before.empty());
    const TemporaryFolder folder;
    std::FILE* const stream = zel::OpenTextForWriting((folder / "stream").c_str(), true);
    zel::DirectoryListing listing;
    ASSERT_TRUE(stream != nullptr && listing.Open(folder.Path().c_str()));
    EXPECT_EQ(InheritedDescriptors(), before);
    std::fclose(stream);
}

TEST(System, RefusesWhatCannotBeWrittenOrSet) {
    char name[256];
    EXPECT_TRUE(zel::GetHost(name, sizeof name) && !zel::GetHost(name, 1));
    constexpr std::int64_t Year11000 = 285000000000;
    char text[zel::ClockTextLength + 1] = "old";
    for (const std::int64_t moment : {Year11000, std::int64_t{INT64_MAX}, std::int64_t{INT64_MIN}}) {
        EXPECT_FALSE(zel::ToClockText(moment, text));
        EXPECT_STREQ(text, "");
    }
    zel::LocalTime time;
    EXPECT_FALSE(zel::ToLocalTime(INT64_MAX, time));
    for (const char* const refused : {"=x", "ZEL_SEAM", ""}) EXPECT_FALSE(zel::PutEnvironment(refused));
}

TEST(Frames, NamesAreReadableAndCut) {
    zel::FrameName name = {};
    zel::SetFunction(name, "_Z5FATALiPKc", 4);
    EXPECT_STREQ(name.function, "FATAL(int, char const*)");
    zel::SetFunction(name, "f", 4);  // spells the type float
    EXPECT_STREQ(name.function, "f");
    zel::SetFunction(name, ("_Z" + std::string(3000, 'x')).c_str(), 4);
    EXPECT_EQ(std::strlen(name.function), sizeof name.function - 1);
    zel::SetModule(name, "C:\\tools/bin\\a.exe", 7);
    EXPECT_STREQ(name.module, "a.exe");
    EXPECT_EQ(name.moduleOffset, 7u);
}
