#include "platform/paths.h"

#include <memory>

#include "platform/slash_path.h"
#include "platform/system.h"
#include "support/files.h"
#include "support/testing.h"

TEST(SlashPath, EveryFormOfTheBoundary) {
    const char* const rows[][2] = {
        {"", ""},
        {"plain", "plain"},
        {"/usr/lib", "/usr/lib"},
        {"a\\b\\c", "a/b/c"},
        {"\\a", "/a"},
        {"a\\", "a/"},
        {"\\\\server\\share", "//server/share"},
        {"C:\\temp", "/temp"},
        {"c:/temp", "/temp"},
        {"C:\\", "/"},
        {"C:", "/"},
        {"z:", "/"},
        {"C:\\\\temp", "//temp"},
        {"a:b", "a:b"},
        {"C:temp\\x", "C:temp/x"},
        {"1:\\x", "1:/x"},
        {"@:\\x", "@:/x"},
        {"[:\\x", "[:/x"},
        {":\\x", ":/x"},
        {"CC:\\x", "CC:/x"},
        {"x\\C:\\y", "x/C:/y"},
        {"\xC3\xA9:\\\xFF", "\xC3\xA9:/\xFF"},
    };
    for (const auto& [path, expected] : rows) {
        // Exactly as long as promised, so that the sanitizer sees one byte more.
        const std::unique_ptr<char[]> result(new char[std::strlen(path) + 1]);
        platform::WriteSlashPath(path, result.get());
        EXPECT_STREQ(result.get(), expected) << path;
        EXPECT_EQ(platform::NeedsSlashPath(path), std::strcmp(path, expected) != 0) << path;
    }
}

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
        const platform::NativePath native(longPath.c_str());
        ASSERT_NE(native.Text(), nullptr);
        EXPECT_EQ(std::strlen(native.Text()), length);
        EXPECT_TRUE(length >= 250 || ReadBytes(native.Text()) == "x") << length;
    }
    EXPECT_EQ(platform::NativePath(nullptr).Text(), nullptr);
}

TEST(NativePath, WorkingDirectoryGoesThereAndBack) {
    const TemporaryFolder folder;
    char inside[2048];
    ASSERT_TRUE(platform::SetWorkingDirectory(folder.Path().c_str()));
    ASSERT_TRUE(platform::GetWorkingDirectory(inside, sizeof inside));
    EXPECT_EQ(std::string(inside).find('/'), std::string::npos);
    char small[3];
    EXPECT_FALSE(platform::GetWorkingDirectory(small, sizeof small));
    ASSERT_TRUE(platform::SetWorkingDirectory(".."));
    ASSERT_TRUE(platform::SetWorkingDirectory(inside));
    WriteBytes("here", "1");
    EXPECT_EQ(ReadBytes(folder / "here"), "1");
    for (const char* const refused : {"missing", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(platform::SetWorkingDirectory(refused));
    platform::SetWorkingDirectory("..");
}
