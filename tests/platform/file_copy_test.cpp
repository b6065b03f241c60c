#include "platform/file_copy.h"

#include "platform/text_reader.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

using zel::CopyStatus;

using std::filesystem::perms;

std::string Pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

// A folder with a source, in which no temporary file may be left.
struct FileCopy : testing::Test {
    FileCopy() { WriteBytes(source, "new contents"); }
    ~FileCopy() {
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
    }

    CopyStatus Copy(const std::string& from, const std::string& to, bool replace = true) {
        return zel::CopyWholeFile(from.c_str(), to.c_str(), replace);
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
        EXPECT_EQ(Copy(source, target), CopyStatus::Done);
        EXPECT_EQ(ReadBytes(target), bytes) << size;
    }
    // A file of unknown size, where the system has one, is copied to its end.
    if (ReadBytes("/proc/cpuinfo").empty()) return;
    EXPECT_EQ(Copy("/proc/cpuinfo", target), CopyStatus::Done);
    EXPECT_GT(ReadBytes(target).size(), 100u);
}

TEST_F(FileCopy, KeepsPermissionsWhateverTheUmaskAndReplacesOnlyWhatItMay) {
    const perms written = perms::owner_read | perms::owner_write | perms::group_write | perms::others_write;
    for (const perms permissions : {written, perms::owner_read | perms::group_read | perms::others_read}) {
        std::filesystem::permissions(source, permissions);
        EXPECT_EQ(Copy(source, target), CopyStatus::Done);
        EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::status(source).permissions());
    }
    EXPECT_EQ(Copy(source, target), CopyStatus::TargetUnwritable);
    EXPECT_EQ(ReadBytes(target), "new contents");

    WriteBytes(folder / "other", "old");
    EXPECT_EQ(Copy(source, folder / "other", false), CopyStatus::TargetExists);
    EXPECT_EQ(ReadBytes(folder / "other"), "old");
    EXPECT_EQ(Copy(source, folder / "fresh", false), CopyStatus::Done);
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
    for (const std::string& name : names) {
        EXPECT_EQ(Copy(source, name), CopyStatus::Done) << name;
        EXPECT_EQ(Copy(name, source), CopyStatus::Done) << name;
        EXPECT_EQ(ReadBytes(source), "new contents") << name;
    }
    EXPECT_TRUE(std::filesystem::equivalent(folder / "hard", source));
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
        EXPECT_EQ(Copy(source, target), CopyStatus::Done);
        EXPECT_EQ(ReadBytes(folder / "sub/real"), contents);
        EXPECT_TRUE(std::filesystem::is_symlink(target) && std::filesystem::is_symlink(folder / "link"));
    }
    EXPECT_EQ(Copy(source, folder / "loop"), CopyStatus::TargetUnwritable);
    EXPECT_EQ(Copy(target, folder / "copy"), CopyStatus::Done);
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "copy"));
}

TEST_F(FileCopy, FailuresAreToldApartAndLeaveNothing) {
    std::filesystem::create_directory(folder / "sub");
    std::vector<std::tuple<std::string, std::string, CopyStatus>> rows = {
        {"", target, CopyStatus::NullArgument},
        {source, "", CopyStatus::NullArgument},
        {folder / "missing", target, CopyStatus::SourceUnreadable},
        {folder / "sub", target, CopyStatus::SourceNotRegular},
        {EndlessDevice, target, CopyStatus::SourceNotRegular},
        {source, folder / "sub", CopyStatus::TargetUnwritable},
        {source, folder / "missing/target", CopyStatus::TargetUnwritable},
        {source, source + "/target", CopyStatus::TargetUnwritable},
        {source, EndlessDevice, CopyStatus::TargetUnwritable},
        {source, folder / std::string(300, 'n'), CopyStatus::TargetUnwritable},
        {source, folder.Path() + std::string(5000, '/') + "x", CopyStatus::TargetUnwritable},
    };
    if (!FullDevice.empty()) {
        rows.push_back({source, FullDevice, CopyStatus::TargetUnwritable});
        rows.push_back({"/proc/self/mem", target, CopyStatus::SourceUnreadable});  // opens, and fails when it is read
    }
    if (MakeNamedPipe(folder / "pipe")) {
        rows.push_back({folder / "pipe", target, CopyStatus::SourceNotRegular});
        rows.push_back({source, folder / "pipe", CopyStatus::TargetUnwritable});
    }
    for (const auto& [from, to, expected] : rows) EXPECT_EQ(Copy(from, to), expected) << from << " -> " << to;
    EXPECT_EQ(zel::CopyWholeFile(nullptr, "x", true), CopyStatus::NullArgument);
    EXPECT_EQ(zel::CopyWholeFile("x", nullptr, true), CopyStatus::NullArgument);
    EXPECT_FALSE(std::filesystem::exists(target));
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
    EXPECT_EQ(Copy(folder / "secret", folder / "copy"), CopyStatus::SourceUnreadable);
    EXPECT_EQ(Copy(source, folder / "closed/copy"), CopyStatus::TargetUnwritable);
    EXPECT_EQ(Copy(source, target), CopyStatus::TargetUnwritable);
    EXPECT_EQ(Copy(source, folder / "copy"), CopyStatus::Done);
}

TEST_F(FileCopy, ReadersAlwaysSeeOneWholeTarget) {
    const std::string contents[] = {Pattern(300000), std::string(100000, 'z')};
    // Several copies at once take distinct temporary names; a loser may be refused, but the target stays whole.
    std::atomic<int> done = 0;
    std::vector<std::jthread> writers;
    for (const std::string& bytes : contents) {
        const std::string from = folder / std::to_string(writers.size());
        WriteBytes(from, bytes);
        writers.emplace_back([this, &done, from] {
            for (int round = 0; round < 40; ++round) done += Copy(from, target) == CopyStatus::Done;
        });
    }
    for (int look = 0; look < 40; ++look) {
        const std::string seen = ReadBytes(target);
        EXPECT_TRUE(seen.empty() || seen == contents[0] || seen == contents[1]) << seen.size();
    }
    writers.clear();
    EXPECT_GT(done, 0);
}

TEST_F(FileCopy, StreamsAppendOrEmptyAndAreUnbuffered) {
    for (const char* const expected : {"ab", "abab", "ab"}) {
        std::FILE* const stream = zel::OpenTextForWriting(target.c_str(), std::strlen(expected) > 2);
        ASSERT_NE(stream, nullptr);
        std::fputs("ab", stream);
        EXPECT_EQ(ReadBytes(target), expected);
        std::fclose(stream);
    }
    EXPECT_EQ(zel::OpenTextForWriting(nullptr, true), nullptr);
}
