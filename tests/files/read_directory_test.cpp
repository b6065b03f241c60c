#include "TAFileUtilities.h"
#include "support/testing.h"

namespace {

using Paths = std::vector<std::string>;

Paths Select(const std::string& pattern) {
    ZELListValZELString names;
    ReadDirectory(pattern.c_str(), names, 1);
    return Texts(names);
}

struct SelectedPaths : testing::Test {
    SelectedPaths() {
        for (const char* const directory : {"a/sub", "b", "Empty"})
            std::filesystem::create_directories(folder / directory);
        for (const char* const file :
             {"a/x.txt", "a/Y.TXT", "a/sub/deep.txt", "b/x.txt", "b/.hidden", "b/z.c", "c.txt"})
            WriteBytes(folder / file, std::filesystem::path(file).filename().string());
        EXPECT_EQ(TAFileName::SetWorkDir(folder.Path().c_str()), 0);
    }
    ~SelectedPaths() override { TAFileName::SetWorkDir(outside); }

    const TAFileName outside = TAFileName::GetWorkDir();
    const TemporaryFolder folder;
};

}  // namespace

TEST_F(SelectedPaths, OfEveryFormOfPattern) {
    const std::pair<const char*, Paths> rows[] = {
        {"", {}},
        {"*", {"Empty", "a", "b", "c.txt"}},
        {"*.txt", {"c.txt"}},
        {"a/*", {"a\\Y.TXT", "a\\sub", "a\\x.txt"}},
        {"a\\*.txt", {"a\\Y.TXT", "a\\x.txt"}},
        {"*\\*.TXT", {"a\\Y.TXT", "a\\x.txt", "b\\x.txt"}},
        {"*/x.txt", {"a\\x.txt", "b\\x.txt"}},
        {"*\\sub", {"a\\sub"}},
        {"*\\sub\\*", {"a\\sub\\deep.txt"}},
        {"*\\*\\*", {"a\\sub\\deep.txt"}},
        {"A*\\..//b\\*.c", {"a\\..\\b\\z.c"}},
        {"b\\.*", {"b\\.hidden"}},
        {".\\*\\*.c\\", {".\\b\\z.c"}},
        {"c.txt", {"c.txt"}},
        {"c.txt\\*", {}},
        {"*.txt\\*", {}},
        {"missing", {}},
        {"missing\\*", {}},
        {"Empty\\*", {}},
        {"*mp*\\", {"Empty"}},
    };
    std::string prefix = folder.Path();
    std::replace(prefix.begin(), prefix.end(), '/', '\\');
    for (const auto& [pattern, selected] : rows) {
        EXPECT_EQ(Select(pattern), selected) << pattern;
        for (const char* const drive : {"", "C:"}) {
            if (*pattern == '\0' || (onWindows && *drive != '\0')) continue;  // there the folder names its drive
            Paths full;
            for (const std::string& path : selected) full.push_back(drive + prefix + "\\" + path);
            EXPECT_EQ(Select(drive + folder.Path() + "/" + pattern), full) << drive << pattern;
        }
    }
    EXPECT_EQ(Select("A\\*.c").size() + Select("A\\x.txt").size(), onWindows ? 1u : 0u);
    EXPECT_EQ(Select("\\"), Paths{"\\"});
    EXPECT_EQ(Select("//no such host/*"), Paths());
}

TEST_F(SelectedPaths, AreAppendedInEveryForm) {
    ZELListValZELString sorted, listed;
    sorted.Append("first");
    ReadDirectory("a\\*", sorted, 1);
    EXPECT_EQ(Texts(sorted), (Paths{"first", "a\\Y.TXT", "a\\sub", "a\\x.txt"}));
    ReadDirectory(ZELString("a\\*"), listed, 0);
    ZELListValTAFileName names;
    ReadDirectory("a\\*", names);
    ReadDirectory(ZELString("a\\.\\*"), names);
    Paths twice = Texts(listed);
    for (int i = 1; i <= listed.Size(); ++i) twice.emplace_back(listed[i].View());
    EXPECT_EQ(Texts(names), twice);
    ReadDirectory(static_cast<const char*>(nullptr), sorted, 1);
    ReadDirectory(static_cast<const char*>(nullptr), names);
    EXPECT_EQ(sorted.Size(), 4);
    EXPECT_EQ(names.Size(), 6);
    EXPECT_EQ(FileSelectionSize("*\\*.txt"), 15);  // each file holds its name
    EXPECT_EQ(FileSelectionSize("missing*"), 0);
}

TEST_F(SelectedPaths, FollowLinksAndNeverReadANameAsAPath) {
    if (onWindows) GTEST_SKIP() << "names of Windows hold no backslash";
    std::filesystem::create_directory_symlink(folder / "a", folder / "link");
    std::filesystem::create_symlink(folder / "c.txt", folder / "b/file link");
    std::filesystem::create_symlink("nowhere", folder / "b/dead");
    EXPECT_EQ(Select("l*\\*"), (Paths{"link\\Y.TXT", "link\\sub", "link\\x.txt"}));
    EXPECT_EQ(Select("b\\*l*\\*"), Paths());
    EXPECT_EQ(Select("b\\file link"), Paths{"b\\file link"});
    EXPECT_EQ(Select("b\\dead"), Paths());
    EXPECT_EQ(Select("b\\d*"), Paths{"b\\dead"});
    for (const char* const name : {"C:", "a\\..", "\\etc"}) {
        std::filesystem::create_directory(folder / ("Empty/" + std::string(name)));
        std::filesystem::create_directory(folder / name);
    }
    EXPECT_EQ(Select("Empty\\*"), Paths{"Empty\\C:"});
    EXPECT_EQ(Select("*\\x.txt"), (Paths{"a\\x.txt", "b\\x.txt", "link\\x.txt"}));
    EXPECT_EQ(Select("*:"), Paths());
}

TEST(FileSelectionSize, Saturates) {
    const TemporaryFolder folder;
    for (const char* const name : {"1", "2", "3"}) {
        WriteBytes(folder / name, "");
        std::filesystem::resize_file(folder / name, std::uintmax_t{1} << 30);  // without blocks on the disk
        EXPECT_EQ(FileSelectionSize((folder / "*").c_str()), *name == '1' ? 1 << 30 : 2147483647);
    }
}
