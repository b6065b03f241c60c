#include "platform/directories.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "support/files.h"
#include "support/test_system.h"

namespace {

using platform::EntryKind;
using platform::ListingStep;

std::map<std::string, EntryKind> List(const std::string& path) {
    std::map<std::string, EntryKind> found;
    platform::DirectoryListing listing;
    EXPECT_TRUE(listing.Open(path.c_str())) << path;
    const char* name = nullptr;
    EntryKind kind;
    ListingStep step;
    while ((step = listing.Next(&name, &kind)) == ListingStep::Entry)
        EXPECT_TRUE(found.emplace(name, kind).second) << name << " came twice";
    EXPECT_EQ(step, ListingStep::End);
    EXPECT_EQ(listing.Next(&name, &kind), ListingStep::End);
    return found;
}

}  // namespace

TEST(DirectoryListing, GivesEachOfManyEntriesOnceDespiteInterruptions) {
    const TemporaryFolder folder;
    for (int file = 0; file < 1200; ++file) WriteBytes(folder / (std::to_string(file) + ".txt"), "");
    const Interruptions interruptions;
    const auto found = List(folder.Path());
    EXPECT_EQ(found.size(), 1202u);
    EXPECT_EQ(found.count("1199.txt"), 1u);
    EXPECT_EQ(found.at("."), EntryKind::Directory);
    EXPECT_EQ(found.at(".."), EntryKind::Directory);
}

TEST(DirectoryListing, TellsKindsWithoutFollowingLinks) {
    const TemporaryFolder folder;
    std::map<std::string, EntryKind> expected = {{".", EntryKind::Directory},
                                                 {"..", EntryKind::Directory},
                                                 {"file", EntryKind::File},
                                                 {"sub", EntryKind::Directory}};
    WriteBytes(folder / "file", "x");
    std::filesystem::create_directory(folder / "sub");
    std::error_code refused;
    for (const char* const target : {"file", "sub", "missing"}) {
        const std::string link = std::string("to_") + target;
        std::filesystem::create_symlink(target, folder / link, refused);
        if (!refused) expected[link] = EntryKind::Link;
    }
    if (MakeNamedPipe(folder / "pipe")) expected["pipe"] = EntryKind::Other;
    EXPECT_EQ(List(folder.Path()), expected);
    EXPECT_EQ(List(folder.Path() + "/"), expected);
    EXPECT_EQ(List(folder.Path() + "\\"), expected);
    EXPECT_EQ(List(folder.Path() + "\\sub\\.."), expected);
}

TEST(DirectoryListing, GivesNamesAsTheyWereStored) {
    const TemporaryFolder folder;
    std::string allBytes;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') allBytes += static_cast<char>(byte);
    for (const std::string& name : {std::string("a:b"), std::string("back\\slash"), std::string("C:"),
                                    std::string(" blank "), allBytes, std::string(255, 'n')})
        std::ofstream(std::filesystem::path(folder.Path()) / name) << "x";
    // Not every system takes all of them; what it took is what has to come.
    std::set<std::string> stored = {".", ".."};
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        stored.insert(entry.path().filename().string());
    std::set<std::string> found;
    for (const auto& [name, kind] : List(folder.Path())) found.insert(name);
    EXPECT_EQ(found, stored);
    EXPECT_GE(found.size(), std::filesystem::path::preferred_separator == '/' ? 8u : 4u);
}

TEST(DirectoryListing, RefusesWhatIsNoDirectory) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "x");
    std::filesystem::create_directory(folder / "locked");
    platform::DirectoryListing listing;
    for (const std::string& path : {std::string(), folder / "missing", folder / "file", folder / "*", folder / "f*"})
        EXPECT_FALSE(listing.Open(path.c_str())) << path;
    EXPECT_FALSE(listing.Open(nullptr));
    EXPECT_FALSE(listing.IsOpen());
    const char* name = nullptr;
    EntryKind kind;
    EXPECT_EQ(listing.Next(&name, &kind), ListingStep::Error);

    std::filesystem::permissions(folder / "locked", std::filesystem::perms::none);
    const OrdinaryUser user;
    if (!user.IsOrdinary()) GTEST_SKIP() << "this user may read everything";
    EXPECT_FALSE(listing.Open((folder / "locked").c_str()));
}

TEST(DirectoryListing, ADriveAloneIsItsRoot) {
    const auto expected = List("C:\\");
    EXPECT_GT(expected.size(), 0u);
    EXPECT_EQ(List("C:"), expected);
    platform::DirectoryListing first;
    ASSERT_TRUE(first.Open("C:\\"));
    platform::DirectoryListing second(std::move(first));
    EXPECT_TRUE(second.IsOpen());
}
