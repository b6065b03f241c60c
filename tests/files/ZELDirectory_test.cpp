#include "ZELDirectory.h"

#include "support/testing.h"

TEST(ZELDirectory, ListsOpensAndClosesAsItsResultsTell) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "x");
    ZELDirectoryHandle directory;
    ZELDirectoryEntry entry;
    int end = 0;
    for (int round = 0; round < 2; ++round) {  // a closed handle may be opened again
        EXPECT_TRUE(ZELCloseDirectory(&directory) == 1 && ZELReadDirectory(&directory, &entry, &end) == 1 && end == 1);
        ASSERT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 0);
        EXPECT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 1);  // and goes on as it was
        std::map<std::string, int> found;
        while (ZELReadDirectory(&directory, &entry, &end) == 0 && end == 0) found[entry.name] = entry.kind;
        const std::map<std::string, int> expected = {
            {".", ZELEntryDirectory}, {"..", ZELEntryDirectory}, {"file", ZELEntryFile}};
        EXPECT_EQ(found, expected);
        EXPECT_TRUE(end == 1 && entry.name[0] == '\0');
        EXPECT_EQ(ZELCloseDirectory(&directory), 0);
    }
}

TEST(ZELDirectory, NullArgumentsAndMissingDirectoriesFail) {
    const TemporaryFolder folder;
    ZELDirectoryHandle directory;
    ZELDirectoryEntry entry;
    int end = 0;
    for (const char* const path : {static_cast<const char*>(nullptr), "", "missing"})
        EXPECT_EQ(ZELOpenDirectory(path, &directory), 1);
    EXPECT_TRUE(ZELOpenDirectory(folder.Path().c_str(), nullptr) == 1 && ZELCloseDirectory(nullptr) == 1);
    ASSERT_EQ(ZELOpenDirectory(folder.Path().c_str(), &directory), 0);
    EXPECT_EQ(ZELReadDirectory(nullptr, &entry, &end), 1);
    EXPECT_TRUE(ZELReadDirectory(&directory, nullptr, &end) == 1 && ZELReadDirectory(&directory, &entry, nullptr) == 1);
    EXPECT_EQ(ZELReadDirectory(&directory, &entry, &end), 0);  // the handle's end closes it
}
