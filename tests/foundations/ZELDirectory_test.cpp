#include "ZELDirectory.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/files.h"

TEST(ZELDirectory, ListsOpensAndClosesAsItsResultsTell) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "x");
    std::filesystem::create_directory(folder / "sub");
    ZELDirectoryHandle directory;
    ZELDirectoryEntry entry;
    int end = 0;
    EXPECT_EQ(ZELCloseDirectory(&directory), 1);
    for (int round = 0; round < 2; ++round) {  // a closed handle may be opened again
        ASSERT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 0);
        EXPECT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 1);  // and goes on as it was
        std::set<std::pair<std::string, int>> found;
        while (ZELReadDirectory(&directory, &entry, &end) == 0 && end == 0) found.emplace(entry.name, entry.kind);
        EXPECT_EQ(found, (std::set<std::pair<std::string, int>>{{".", ZELEntryDirectory},
                                                                {"..", ZELEntryDirectory},
                                                                {"file", ZELEntryFile},
                                                                {"sub", ZELEntryDirectory}}));
        EXPECT_EQ(end, 1);
        EXPECT_STREQ(entry.name, "");
        EXPECT_EQ(ZELCloseDirectory(&directory), 0);
        EXPECT_EQ(ZELCloseDirectory(&directory), 1);
        EXPECT_EQ(ZELReadDirectory(&directory, &entry, &end), 1);
        EXPECT_EQ(end, 1);
    }
}

TEST(ZELDirectory, NullArgumentsAndMissingDirectoriesFail) {
    const TemporaryFolder folder;
    ZELDirectoryHandle directory;
    ZELDirectoryEntry entry;
    int end = 0;
    EXPECT_EQ(ZELOpenDirectory(nullptr, &directory), 1);
    EXPECT_EQ(ZELOpenDirectory("", &directory), 1);
    EXPECT_EQ(ZELOpenDirectory((folder / "missing").c_str(), &directory), 1);
    EXPECT_EQ(ZELOpenDirectory(folder.Path().c_str(), nullptr), 1);
    EXPECT_EQ(ZELCloseDirectory(nullptr), 1);
    ASSERT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 0);
    EXPECT_EQ(ZELReadDirectory(nullptr, &entry, &end), 1);
    EXPECT_EQ(ZELReadDirectory(&directory, nullptr, &end), 1);
    EXPECT_EQ(ZELReadDirectory(&directory, &entry, nullptr), 1);
    EXPECT_EQ(ZELReadDirectory(&directory, &entry, &end), 0);  // the handle's end closes it
}
