#include "platform/native_path.h"

#include "platform/system.h"
#include "support/testing.h"

TEST(NativePath, LeadsToTheFileAtEveryLength) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "x");
    std::string path = folder.Path();
    std::replace(path.begin(), path.end(), '/', '\\');
    // Around the length at which the path leaves the object, by backslashes that change nothing.
    for (const std::size_t length : {200u, 253u, 254u, 255u, 256u, 257u, 1000u}) {
        std::string longPath = path;
        while (longPath.size() + 7 <= length) longPath += "\\.";
        longPath += std::string(length - longPath.size() - 4, '\\') + "file";
        const zel::NativePath native(longPath.c_str());
        ASSERT_NE(native.Text(), nullptr);
        EXPECT_EQ(std::strlen(native.Text()), length);
        EXPECT_TRUE(length >= 250 || ReadBytes(native.Text()) == "x") << length;
    }
    EXPECT_EQ(zel::NativePath(nullptr).Text(), nullptr);
}

// Going to a directory and back is tested where names of files and the environment do it.
TEST(NativePath, TheWorkingDirectoryNeedsItsRoom) {
    char inside[2048], small[3];
    ASSERT_TRUE(zel::GetWorkingDirectory(inside, sizeof inside));
    EXPECT_EQ(std::string(inside).find('/'), std::string::npos);
    EXPECT_FALSE(zel::GetWorkingDirectory(small, sizeof small));
    for (const char* const refused : {"missing", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(zel::SetWorkingDirectory(refused));
}
