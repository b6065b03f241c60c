#include "TADatabase.h"

#include "support/files.h"
#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// What the commands print, as one text, with slashes alone.
std::string OutputOf(const std::string& folder, const std::vector<std::string>& files) {
    std::vector<std::string> arguments = {"database", folder};
    arguments.insert(arguments.end(), files.begin(), files.end());
    std::string out = RunProgram("objects_probe", arguments).out;
    std::replace(out.begin(), out.end(), '\\', '/');
    return out;
}

}  // namespace

TEST(TAOracleDatabase, RunsTheToolsThatStandAlongThePath) {
    const TemporaryFolder folder;
    EXPECT_EQ(OutputOf(folder.Path(), {"script.sql"}).find("status 0"), std::string::npos);
    const std::string tool = ProgramPath("objects_fake_tool");
    const std::string suffix = std::filesystem::path(tool).extension().string();
    for (const std::string name : {"plus80", "sqlldr80"}) std::filesystem::copy_file(tool, folder / (name + suffix));

    const struct {
        std::vector<std::string> files;
        std::string arguments;
    } rows[] = {
        {{"script.sql"}, "[-s][user/password@base][@script.sql]"},
        {{"a/./b/my script.sql"}, "[-s][user/password@base][@a/b/my][script.sql]"},
        {{"a/load.ctl", "b/load.dat"}, "[userid=user/password@base][control=a/load.ctl][data=b/load.dat]"},
        {{"", "two words"}, "[userid=user/password@base][control=][data=two][words]"},
    };
    // The exit code, or a status of waitpid that holds it.
    const std::string windows = "\nstatus 3, message []\n", posix = "\nstatus 768, message []\n";
    for (const auto& row : rows) {
        const std::string out = OutputOf(folder.Path(), row.files);
        EXPECT_TRUE(out == row.arguments + windows || out == row.arguments + posix) << out;
    }
    const auto entries = std::filesystem::directory_iterator(folder.Path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);  // no scratch file is left
}
