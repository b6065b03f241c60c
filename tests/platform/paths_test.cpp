#include "platform/paths.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/directories.h"
#include "platform/file_copy.h"
#include "platform/files.h"
#include "platform/slash_path.h"
#include "platform/system.h"
#include "support/files.h"

TEST(SlashPath, EveryFormOfTheBoundary) {
    const struct {
        const char* path;
        const char* expected;
    } rows[] = {
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
    for (const auto& row : rows) {
        // Exactly as long as promised, so that the sanitizer sees one byte more.
        const std::string path(row.path);
        const std::unique_ptr<char[]> result(new char[path.size() + 1]);
        platform::WriteSlashPath(row.path, result.get());
        EXPECT_STREQ(result.get(), row.expected) << row.path;
        EXPECT_EQ(platform::NeedsSlashPath(row.path), path != row.expected) << row.path;
    }
}

TEST(NativePath, LeadsToTheFileAtEveryLength) {
    const TemporaryFolder folder;
    // Around the length at which the path leaves the object, by backslashes that change nothing.
    std::string path = folder.Path();
    for (char& c : path)
        if (c == '/') c = '\\';
    const std::string name = "file";
    WriteBytes(folder / name, "x");
    for (const std::size_t length : {200u, 253u, 254u, 255u, 256u, 257u, 1000u}) {
        std::string longPath = path;
        while (longPath.size() + name.size() + 3 <= length) longPath += "\\.";
        longPath += std::string(length - longPath.size() - name.size(), '\\') + name;
        const platform::NativePath native(longPath.c_str());
        ASSERT_NE(native.Text(), nullptr);
        EXPECT_EQ(std::string(native.Text()).size(), length);
        EXPECT_TRUE(length >= 250 || ReadBytes(native.Text()) == "x") << length;
    }
    EXPECT_EQ(platform::NativePath(nullptr).Text(), nullptr);
}

TEST(NativePath, WorkingDirectoryGoesThereAndBack) {
    const TemporaryFolder folder;
    char before[2048];
    char inside[2048];
    ASSERT_TRUE(platform::GetWorkingDirectory(before, sizeof before));
    ASSERT_TRUE(platform::SetWorkingDirectory(folder.Path().c_str()));
    ASSERT_TRUE(platform::GetWorkingDirectory(inside, sizeof inside));
    EXPECT_EQ(std::string(inside).find('/'), std::string::npos);
    EXPECT_FALSE(platform::GetWorkingDirectory(before, 3));
    ASSERT_TRUE(platform::SetWorkingDirectory(".."));
    ASSERT_TRUE(platform::SetWorkingDirectory(inside));
    WriteBytes("here", "1");
    EXPECT_EQ(ReadBytes(folder / "here"), "1");
    EXPECT_FALSE(platform::SetWorkingDirectory("missing"));
    EXPECT_FALSE(platform::SetWorkingDirectory(""));
    EXPECT_FALSE(platform::SetWorkingDirectory(nullptr));
    platform::SetWorkingDirectory("..");
}
