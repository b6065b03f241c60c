#include "platform/directories.h"

#include "support/test_system.h"
#include "support/testing.h"

namespace {

using zel::EntryKind;
using zel::ListingStep;

using Entries = std::map<std::string, EntryKind>;
const Entries nothing = {{".", EntryKind::Directory}, {"..", EntryKind::Directory}};

Entries List(const std::string& path) {
    Entries found;
    zel::DirectoryListing listing;
    EXPECT_TRUE(listing.Open(path.c_str())) << path;
    const char* name = nullptr;
    EntryKind kind;
    while (listing.Next(&name, &kind) == ListingStep::Entry)
        EXPECT_TRUE(found.emplace(name, kind).second) << name << " came twice";
    EXPECT_EQ(listing.Next(&name, &kind), ListingStep::End);
    return found;
}

}  // namespace

TEST(DirectoryListing, GivesEachOfManyEntriesOnceDespiteInterruptions) {
    const TemporaryFolder folder;
    Entries expected = nothing;
    for (int file = 0; file < 1200; ++file) {
        const std::string name = std::to_string(file) + ".txt";
        WriteBytes(folder / name, "");
        expected[name] = EntryKind::File;
    }
    const Interruptions interruptions;
    EXPECT_EQ(List(folder.Path()), expected);
}

TEST(DirectoryListing, TellsKindsWithoutFollowingLinks) {
    const TemporaryFolder folder;
    Entries expected = nothing;
    WriteBytes(folder / "file", "x");
    expected["file"] = EntryKind::File;
    std::filesystem::create_directory(folder / "sub");
    expected["sub"] = EntryKind::Directory;
    std::error_code refused;
    for (const std::string target : {"file", "sub", "missing"}) {
        std::filesystem::create_symlink(target, folder / ("to_" + target), refused);
        if (!refused) expected["to_" + target] = EntryKind::Link;
    }
    if (MakeNamedPipe(folder / "pipe")) expected["pipe"] = EntryKind::Other;
    for (const char* const suffix : {"", "/", "\\", "\\sub\\.."}) EXPECT_EQ(List(folder.Path() + suffix), expected);
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
    std::set<std::string> stored = {".", ".."}, found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        stored.insert(entry.path().filename().string());
    for (const auto& [name, kind] : List(folder.Path())) found.insert(name);
    EXPECT_EQ(found, stored);
    EXPECT_GE(found.size(), onWindows ? 4u : 8u);
}

TEST(DirectoryListing, RefusesWhatIsNoDirectory) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "x");
    zel::DirectoryListing listing;
    for (const std::string& path : {std::string(), folder / "missing", folder / "file", folder / "*", folder / "f*"})
        EXPECT_FALSE(listing.Open(path.c_str())) << path;
    EXPECT_FALSE(listing.Open(nullptr) || listing.IsOpen());
    EXPECT_EQ(listing.Next(nullptr, nullptr), ListingStep::Error);

    std::filesystem::create_directory(folder / "locked");
    std::filesystem::permissions(folder / "locked", std::filesystem::perms::none);
    const OrdinaryUser user;
    if (!user.IsOrdinary()) GTEST_SKIP() << "this user may read everything";
    EXPECT_FALSE(listing.Open((folder / "locked").c_str()));
}

TEST(DirectoryListing, ADriveAloneIsItsRoot) {
    const auto expected = List("C:\\");
    EXPECT_GT(expected.size(), 0u);
    EXPECT_EQ(List("C:"), expected);
    zel::DirectoryListing first;
    ASSERT_TRUE(first.Open("C:\\"));
    EXPECT_TRUE(zel::DirectoryListing(std::move(first)).IsOpen());
}
