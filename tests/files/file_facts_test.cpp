#include <chrono>
#include <ctime>

#include "TAFileUtilities.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

namespace fs = std::filesystem;

struct FileFacts : testing::Test {
    FileFacts() { WriteBytes(file, "contents"); }

    const TemporaryFolder folder;
    const std::string file = folder / "name.txt";
};

}  // namespace

TEST_F(FileFacts, CopiesReplaceAndAreRefused) {
    for (const char* const name : {"name.txt", "copy", "copy"}) {
        EXPECT_EQ(CopyFile(file.c_str(), (folder / name).c_str()), 0) << name;
        EXPECT_EQ(ReadBytes(folder / name), "contents") << name;
    }
    for (const std::string& path : {folder.Path(), std::string()}) {
        EXPECT_NE(CopyFileA(path.c_str(), (folder / "new").c_str()), 0) << path;
        EXPECT_NE(CopyFileW(file.c_str(), path.c_str()), 0) << path;
    }
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(FileFacts, ExistenceTimeAndDescription) {
    EXPECT_EQ(FileExists(file.c_str()), 1);
    for (const std::string& path : {folder.Path(), folder / "missing", std::string(), folder / std::string(5000, 'x')})
        EXPECT_EQ(FileExists(path.c_str()), 0) << path;

    const auto system = std::chrono::file_clock::to_sys(fs::last_write_time(file));
    const std::time_t seconds =
        std::chrono::system_clock::to_time_t(std::chrono::time_point_cast<std::chrono::system_clock::duration>(system));
    const std::string time = std::string(std::ctime(&seconds)).substr(0, 24);
    EXPECT_EQ(GetModifTime(file.c_str()), time.c_str());
    EXPECT_EQ(GetModifTime(folder.Path().c_str()).Length(), 24);
    EXPECT_EQ(GetModifTime(""), "");
    EXPECT_EQ(GetModifTime((folder / "missing").c_str()), "");

    const TAFileName name(file.c_str());
    fs::permissions(file, fs::perms::owner_read);
    const OrdinaryUser user;
    for (const bool both : {false, true}) {
        const ZELXMLNode node = both ? GetFileDescriptionRW(name) : GetFileDescription(name);
        EXPECT_STREQ(node.GetTag(), both ? "FileRW" : "File");
        EXPECT_STREQ(node.GetAttr("Size"), "8");
        EXPECT_STREQ(node.GetAttr("Time"), time.c_str());
        EXPECT_STREQ(node.GetAttr("Writable"), both ? "0" : nullptr);
        EXPECT_STREQ(node.GetNode(node.LocateNode("Path"))->GetText(), name);
        EXPECT_STREQ(node.GetNode(node.LocateNode("Name"))->GetText(), "name.txt");
        EXPECT_STREQ(node.GetNode(node.LocateNode("Directory"))->GetText(), name.dirname(1));
    }
    EXPECT_EQ(GetFileDescriptionRW("missing").GetAttrCount(), 0);
    EXPECT_EQ(GetFileDescriptionRW("missing").GetNodeCount(), 3);
}
