#include "TAFileUtilities.h"
#include "ZELDirectory.h"
#include "platform/tree_cursor.h"
#include "support/failing_memory.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

namespace fs = std::filesystem;
using Names = std::multiset<std::string>;

std::string PathValue(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

Names FilesOf(const std::string& directory) {
    ZELListValZELString list;
    ReadRecursiveDirectory(directory.c_str(), list);
    const auto names = Texts(list);
    return {names.begin(), names.end()};
}

int Clean(const std::string& directory) {
    return TACleanDirectory(directory.c_str());
}

struct Trees : testing::Test {
    Trees() { fs::create_directory(tree); }

    // Makes `count` files and directories at random places, some of them read-only. Returns the paths of the files.
    Names Grow(unsigned seed, int count) const {
        std::mt19937 random(seed);
        std::vector<std::string> directories = {tree};
        Names files;
        for (int i = 0; i < count; ++i) {
            const std::string path = directories[random() % directories.size()] + "/" + std::to_string(i);
            if (random() % 4 == 0 && path.size() < 180) {
                fs::create_directory(path);
                directories.push_back(path);
                continue;
            }
            WriteBytes(path, "x");
            if (random() % 8 == 0) fs::permissions(path, fs::perms::owner_read);
            files.insert(PathValue(path));
        }
        return files;
    }

    const TemporaryFolder folder;
    const std::string tree = folder / "tree";
};

}  // namespace

TEST_F(Trees, RandomTreesAreListedAndRemovedWhole) {
    for (unsigned seed = 0; seed < 5; ++seed) {
        fs::create_directories(tree);
        const Names files = Grow(seed, 400);
        EXPECT_EQ(FilesOf(tree), files);
        EXPECT_EQ(FilesOf(tree + "/").size(), files.size());
        EXPECT_EQ(Clean(seed % 2 == 0 ? tree : tree + "/"), 0);
        EXPECT_FALSE(fs::exists(tree));
    }
}

TEST_F(Trees, EachFailedAllocationLeavesAPartAndIsReported) {
    const auto grow = [this] {
        fs::create_directories(tree + "/a/" + std::string(100, 'b') + "/c");
        WriteBytes(tree + "/a/one", "x");
        WriteBytes(tree + "/a/" + std::string(100, 'b') + "/two", "x");
    };
    FailEachAllocation(
        [&](FailingMemory& memory) {
            grow();
            ZELListValZELString list;
            const ZELString top(tree.c_str());
            ZELDirectoryHandle handle;
            memory.Begin();
            const int opened = ZELOpenDirectory(tree.c_str(), &handle);
            ZELCloseDirectory(&handle);  // an open directory may stay
            ReadRecursiveDirectory(top, list);
            const int removed = TACleanDirectory(tree.c_str());
            const bool isWhole = opened == 0 && list.Size() == 2 && removed == 0;
            EXPECT_TRUE(memory.End() || isWhole);
            EXPECT_EQ(fs::exists(tree), removed != 0);
        },
        Fallback::Possible);
}

TEST_F(Trees, WhatIsNoDirectoryStays) {
    WriteBytes(folder / "file", "x");
    for (const std::string& path :
         {std::string(), folder / "missing", folder / "file", folder / std::string(5000, 'x')}) {
        EXPECT_EQ(Clean(path), 1) << path;
        EXPECT_EQ(FilesOf(path), Names()) << path;
    }
    EXPECT_EQ(TACleanDirectory(nullptr), 1);
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST_F(Trees, DepthTakesNeitherStackNorDescriptors) {
    const int levels = MakeDeepTree(tree, 5000);
    EXPECT_GT(levels, 50);
    RunConfined([&] {
        ZELListValZELString names;
        ReadRecursiveDirectory(tree.c_str(), names);
        EXPECT_EQ(names.Size(), levels);
        EXPECT_EQ(Clean(tree), 0);
    });
    EXPECT_FALSE(fs::exists(tree));
}

TEST_F(Trees, LinksAndNamesWithSeparatorsLeadNowhere) {
    if (onWindows) GTEST_SKIP() << "needs the right to make links, and names of Windows hold no backslash";
    const std::string outside = folder / "outside";
    fs::create_directory(outside);
    WriteBytes(outside + "/keep", "x");
    fs::permissions(outside + "/keep", fs::perms::owner_read);
    fs::permissions(outside, fs::perms::owner_read | fs::perms::owner_exec);
    fs::create_directory_symlink(outside, tree + "/directory link");
    fs::create_symlink(outside + "/keep", tree + "/file link");
    fs::create_symlink("loop", tree + "/loop");
    fs::create_directory(tree + "/..\\outside");
    WriteBytes(tree + "/..\\outside\\keep", "x");
    WriteBytes(tree + "/..\\outside/file", "x");
    EXPECT_TRUE(MakeNamedPipe(tree + "/pipe"));
    fs::create_directory_symlink(tree, folder / "top link");

    EXPECT_EQ(FilesOf(tree), Names{PathValue(tree) + "\\..\\outside\\file"});
    EXPECT_EQ(Clean(folder / "top link"), 1);
    EXPECT_EQ(Clean(folder / "top link/"), 1);
    EXPECT_TRUE(fs::exists(tree + "/file link"));
    EXPECT_EQ(Clean(tree), 0);
    EXPECT_FALSE(fs::exists(tree));
    EXPECT_EQ(fs::status(outside).permissions(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(fs::status(outside + "/keep").permissions(), fs::perms::owner_read);
    fs::permissions(outside, fs::perms::owner_all);
}

TEST_F(Trees, UsersGrantThemselvesWhatTheirOwnDirectoriesLack) {
    fs::permissions(folder.Path(), fs::perms::all);
    const OrdinaryUser user;
    const std::string own = folder / "own";
    fs::create_directories(own + "/none/below");
    fs::create_directories(own + "/fixed");
    WriteBytes(own + "/none/below/file", "x");
    WriteBytes(own + "/fixed/file", "x");
    fs::permissions(own + "/none/below", fs::perms::none);
    fs::permissions(own + "/none", fs::perms::none);
    fs::permissions(own + "/fixed", fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(own, fs::perms::none);
    EXPECT_EQ(Clean(own), 0);
    EXPECT_FALSE(fs::exists(own));
}

TEST_F(Trees, AFileThatStaysIsToldAndDoesNotKeepTheOthers) {
    const std::string sub = tree + "/sub";
    fs::create_directory(sub);
    WriteBytes(sub + "/held", "x");
    // On Linux another user's file in a directory like the one for temporary files, on Windows a file that is open.
    for (const std::string& path : {tree, sub}) fs::permissions(path, fs::perms::all | fs::perms::sticky_bit);
    const OrdinaryUser user;
    const std::ifstream held(sub + "/held");
    WriteBytes(sub + "/a", "x");
    WriteBytes(sub + "/z", "x");
    int result = 0;
    const std::string told = Printed([&] { result = Clean(tree); });
    if (!fs::exists(sub + "/held")) GTEST_SKIP() << "needs a file of another user";
    EXPECT_EQ(result, 1);
    EXPECT_EQ(told,
              "   Unable to delete file " + tree + "\\sub\\held\n   Unable to delete directory " + tree + "\\sub\n");
    EXPECT_FALSE(fs::exists(sub + "/a") || fs::exists(sub + "/z"));
}

TEST_F(Trees, CannotBeRacedOutOfTheTree) {
    const std::string outside = folder / "outside";
    fs::create_directory(outside);
    for (const char* const name : {"/1", "/2", "/3"}) WriteBytes(outside + name, "x");
    std::atomic<bool> stop{false};
    std::thread racer([&] {
        std::error_code ignored;
        while (!stop) {
            fs::rename(tree + "/d", folder / "aside", ignored);
            fs::create_directory_symlink(outside, tree + "/d", ignored);
            fs::remove(tree + "/d", ignored);
            fs::rename(folder / "aside", tree + "/d", ignored);
        }
    });
    testing::internal::CaptureStdout();
    const int rounds = onWindows ? 20 : 300;
    for (int round = 0; round < rounds; ++round) {
        std::error_code ignored;
        fs::create_directories(tree + "/d/e", ignored);
        for (const char* const name : {"/d/1", "/d/e/2", "/d/3"}) WriteBytes(tree + name, "x");
        Clean(tree);
    }
    stop = true;
    racer.join();
    testing::internal::GetCapturedStdout();
    // What the test itself wrote through the link may have come to it.
    for (const char* const name : {"/1", "/2", "/3"}) EXPECT_TRUE(fs::exists(outside + name)) << name;
}

TEST_F(Trees, ACursorRefusesAWayUpThatLeadsElsewhere) {
    constexpr int Depth = 40, Moved = 10;
    EXPECT_EQ(MakeDeepTree(tree, Depth), Depth);
    zel::TreeCursor cursor(zel::TreeCursor::Purpose::Remove);
    ASSERT_TRUE(cursor.Open(tree.c_str()));
    for (int i = 0; i < Depth; ++i) ASSERT_TRUE(cursor.Enter("d"));
    EXPECT_FALSE(cursor.Enter("d"));
    std::string path = tree;
    for (int i = 0; i < Moved; ++i) path += "/d";
    std::error_code refused;
    fs::rename(path, folder / "elsewhere", refused);
    int left = 0;
    while (cursor.Leave()) ++left;
    EXPECT_EQ(left, refused ? Depth : Depth - Moved);
}
