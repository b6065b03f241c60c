#include "platform/file_copy.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "platform/system.h"
#include "support/files.h"
#include "support/test_system.h"

namespace {

using std::filesystem::perms;

std::string Pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

// A folder with a source; after each copy nothing may be in it but the names that the test expects.
class FileCopy : public testing::Test {
protected:
    FileCopy() { WriteBytes(source, "new contents"); }

    ZELCopyStatus Copy(const std::string& from, const std::string& to, bool replace = true) {
        return platform::CopyWholeFile(from.c_str(), to.c_str(), replace);
    }
    std::size_t EntryCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
    }

    const TemporaryFolder folder;
    const std::string source = folder / "source";
    const std::string target = folder / "target";
};

}  // namespace

TEST_F(FileCopy, CopiesEverySizeDespiteInterruptions) {
    const Interruptions interruptions;
    for (const std::size_t size : {0u, 1u, 4095u, 4096u, 4097u, 65536u, (1u << 20) + 1}) {
        const std::string bytes = Pattern(size);
        WriteBytes(source, bytes);
        EXPECT_EQ(Copy(source, target), ZELCopyDone);
        EXPECT_EQ(ReadBytes(target), bytes) << size;
    }
    EXPECT_EQ(EntryCount(), 2u);
}

TEST_F(FileCopy, KeepsPermissionsWhateverTheUmaskAndRefusesReadOnlyTargets) {
    std::filesystem::permissions(source,
                                 perms::owner_read | perms::owner_write | perms::group_write | perms::others_write);
    EXPECT_EQ(Copy(source, target), ZELCopyDone);
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::status(source).permissions());

    std::filesystem::permissions(source, perms::owner_read | perms::group_read | perms::others_read);
    EXPECT_EQ(Copy(source, target), ZELCopyDone);
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::status(source).permissions());
    EXPECT_EQ(Copy(source, target), ZELCopyTargetUnwritable);
    EXPECT_EQ(EntryCount(), 2u);
    EXPECT_EQ(ReadBytes(target), "new contents");
}

TEST_F(FileCopy, OntoItselfUnderEveryNameLosesNothing) {
    std::filesystem::create_directory(folder / "sub");
    std::vector<std::string> names = {source, folder.Path() + "/./source", folder.Path() + "\\sub\\..\\source",
                                      folder / "hard"};
    std::filesystem::create_hard_link(source, folder / "hard");
    std::error_code refused;
    std::filesystem::create_symlink("source", folder / "link", refused);
    if (!refused) names.push_back(folder / "link");
    if (std::filesystem::exists(folder / "SOURCE")) names.push_back(folder / "SOURCE");
    const std::size_t entries = EntryCount();
    for (const std::string& name : names) {
        EXPECT_EQ(Copy(source, name), ZELCopyDone) << name;
        EXPECT_EQ(Copy(name, source), ZELCopyDone) << name;
        EXPECT_EQ(ReadBytes(source), "new contents") << name;
    }
    WriteBytes(folder / "hard", "still one file");
    EXPECT_EQ(ReadBytes(source), "still one file");
    EXPECT_EQ(EntryCount(), entries);
}

TEST_F(FileCopy, ReplacesOnlyWhenAsked) {
    WriteBytes(target, "old");
    EXPECT_EQ(Copy(source, target, false), ZELCopyTargetExists);
    EXPECT_EQ(ReadBytes(target), "old");
    EXPECT_EQ(Copy(source, target, true), ZELCopyDone);
    EXPECT_EQ(ReadBytes(target), "new contents");
    EXPECT_EQ(Copy(source, folder / "fresh", false), ZELCopyDone);
    EXPECT_EQ(EntryCount(), 3u);
}

TEST_F(FileCopy, ATargetThatIsALinkStaysOne) {
    std::error_code refused;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_symlink("sub/real", folder / "link", refused);
    std::filesystem::create_symlink("link", target, refused);
    std::filesystem::create_symlink("loop", folder / "loop", refused);
    if (refused) GTEST_SKIP() << "no symbolic links here";
    for (const char* const contents : {"first", "second"}) {  // the links lead nowhere, then to a file
        WriteBytes(source, contents);
        EXPECT_EQ(Copy(source, target), ZELCopyDone);
        EXPECT_EQ(ReadBytes(folder / "sub/real"), contents);
        EXPECT_TRUE(std::filesystem::is_symlink(target));
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    }
    EXPECT_EQ(Copy(source, folder / "loop"), ZELCopyTargetUnwritable);
    EXPECT_EQ(Copy(target, folder / "copy"), ZELCopyDone);
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "copy"));
}

TEST_F(FileCopy, FailuresAreToldApartAndLeaveNothing) {
    std::filesystem::create_directory(folder / "sub");
    struct Row {
        std::string from, to;
        ZELCopyStatus expected;
    };
    std::vector<Row> rows = {
        {"", target, ZELCopyNullArgument},
        {source, "", ZELCopyNullArgument},
        {folder / "missing", target, ZELCopySourceUnreadable},
        {folder / "sub", target, ZELCopySourceNotRegular},
        {EndlessDevice(), target, ZELCopySourceNotRegular},
        {source, folder / "sub", ZELCopyTargetUnwritable},
        {source, folder / "missing/target", ZELCopyTargetUnwritable},
        {source, source + "/target", ZELCopyTargetUnwritable},
        {source, EndlessDevice(), ZELCopyTargetUnwritable},
        {source, folder / std::string(300, 'n'), ZELCopyTargetUnwritable},
        {source, folder.Path() + std::string(5000, '/') + "x", ZELCopyTargetUnwritable},
    };
    if (!FullDevice().empty()) rows.push_back({source, FullDevice(), ZELCopyTargetUnwritable});
    if (MakeNamedPipe(folder / "pipe")) {
        rows.push_back({folder / "pipe", target, ZELCopySourceNotRegular});
        rows.push_back({source, folder / "pipe", ZELCopyTargetUnwritable});
    }
    const std::size_t entries = EntryCount();
    for (const Row& row : rows) EXPECT_EQ(Copy(row.from, row.to), row.expected) << row.from << " -> " << row.to;
    EXPECT_EQ(platform::CopyWholeFile(nullptr, "x", true), ZELCopyNullArgument);
    EXPECT_EQ(platform::CopyWholeFile("x", nullptr, true), ZELCopyNullArgument);
    EXPECT_EQ(EntryCount(), entries);
}

TEST_F(FileCopy, RightsThatAreMissingAreFailures) {
    std::filesystem::create_directory(folder / "closed");
    std::filesystem::permissions(folder / "closed", perms::owner_all | perms::others_exec | perms::others_read);
    std::filesystem::permissions(folder.Path(), perms::all);
    WriteBytes(folder / "secret", "x");
    WriteBytes(target, "old");
    std::filesystem::permissions(folder / "secret", perms::none);
    std::filesystem::permissions(target, perms::owner_all);
    const OrdinaryUser user;
    if (!user.IsOrdinary() || std::ifstream(folder / "secret")) GTEST_SKIP() << "this user may do everything";
    EXPECT_EQ(Copy(folder / "secret", folder / "copy"), ZELCopySourceUnreadable);
    EXPECT_EQ(Copy(source, folder / "closed/copy"), ZELCopyTargetUnwritable);
    EXPECT_EQ(Copy(source, target), ZELCopyTargetUnwritable);
    EXPECT_EQ(Copy(source, folder / "copy"), ZELCopyDone);
    EXPECT_EQ(EntryCount(), 5u);
}

TEST_F(FileCopy, FilesOfUnknownSizeAreCopiedToTheirEnd) {
    const std::string endless = "/proc/cpuinfo";
    if (ReadBytes(endless).empty()) GTEST_SKIP() << "no such file here";
    EXPECT_EQ(Copy(endless, target), ZELCopyDone);
    EXPECT_GT(ReadBytes(target).size(), 100u);
}

TEST_F(FileCopy, ReadersAlwaysSeeOneWholeTarget) {
    const std::string contents[] = {Pattern(300000), std::string(100000, 'z')};
    WriteBytes(folder / "0", contents[0]);
    WriteBytes(folder / "1", contents[1]);
    WriteBytes(target, contents[0]);
    // Several copies at once take distinct temporary names; a loser may be refused, but the target stays whole.
    std::atomic<int> done = 0;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 2; ++writer)
        writers.emplace_back([&, writer] {
            for (int round = 0; round < 40; ++round)
                done += Copy(folder / std::to_string(writer), target) == ZELCopyDone;
        });
    for (int look = 0; look < 40; ++look) {
        const std::string seen = ReadBytes(target);
        EXPECT_TRUE(seen.empty() || seen == contents[0] || seen == contents[1]) << seen.size();
    }
    for (std::thread& writer : writers) writer.join();
    EXPECT_GT(done, 0);
    EXPECT_EQ(EntryCount(), 4u);
}

TEST_F(FileCopy, StreamsAppendOrEmptyAndReportFailure) {
    for (const bool append : {false, true, true}) {
        std::FILE* const stream = platform::OpenTextForWriting(target.c_str(), append);
        ASSERT_NE(stream, nullptr);
        std::fputs("ab", stream);
        EXPECT_EQ(ReadBytes(target).substr(ReadBytes(target).size() - 2), "ab");  // unbuffered
        std::fclose(stream);
    }
    EXPECT_EQ(ReadBytes(target), "ababab");
    std::fclose(platform::OpenTextForWriting(target.c_str(), false));
    EXPECT_EQ(ReadBytes(target), "");
    EXPECT_EQ(platform::OpenTextForWriting((folder / "missing/x").c_str(), true), nullptr);
    EXPECT_EQ(platform::OpenTextForWriting(folder.Path().c_str(), true), nullptr);
    EXPECT_EQ(platform::OpenTextForWriting(nullptr, true), nullptr);
}
