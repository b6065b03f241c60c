#include "TAInsTaskList.h"

#include "process/processes.h"
#include "support/failing_memory.h"

namespace fs = std::filesystem;

namespace {

// Ends with its object, also where a test is broken off.
struct Tool : TAProcess {
    ~Tool() { Kill(); }
};

}  // namespace

TEST(TAInsTaskList, FindsAndEndsWhatRunsFromADirectory) {
    const TemporaryFolder folder;
    const std::string bin = folder / "code/bin";
    fs::create_directories(bin);
    const std::string extension = fs::path(ProgramPath("child")).extension().string();
    Tool tool, other, stranger;
    for (auto& [process, name] :
         {std::pair{&tool, "tool.exe"}, std::pair{&other, "other.EXE"}, std::pair{&stranger, "plain"}}) {
        const std::string program = bin + "/" + name;
        if (name == std::string("plain") && !extension.empty()) continue;  // this system runs nothing without it
        fs::copy_file(ProgramPath("child"), program);
        StartAndRead(*process, ('"' + program + "\" sleep 60000").c_str(), program + ".out", 1);
    }
    const std::string path = fs::canonical(folder.Path()).string();
    TAInsTaskList tasks;
    char** names = nullptr;
    int count = -1;
    tasks.TAInsGetListTask(&names, &count);
    EXPECT_TRUE(count == 0 && names == nullptr);
    EXPECT_EQ(tasks.TAInsCheckTask((path + "/").c_str(), nullptr), 2);
    tasks.TAInsGetListTask(&names, &count);
    ASSERT_EQ(count, 2);
    for (int i = 0; i < count; ++i) EXPECT_TRUE(std::string(names[i]).find("\\code\\bin\\") != std::string::npos);

    // Left out where its path has the form in which it is put together.
    char name[] = "Tool";
    std::string directory = path;
    std::replace(directory.begin(), directory.end(), '/', '\\');
    EXPECT_EQ(tasks.TAInsCheckTask(directory.c_str(), name), extension.empty() ? 1 : 2);
    for (const char* none : {"", "/", "C:\\", "C:", "no/such/directory"})
        EXPECT_EQ(tasks.TAInsCheckTask(none, nullptr), 0) << none;
    EXPECT_EQ(tasks.TAInsCheckTask(nullptr, nullptr), 0);
    EXPECT_EQ(tasks.TAInsCheckTask((directory + "x").c_str(), nullptr), 0);

    FailEachAllocation([&](FailingMemory& memory) {
        memory.Begin();
        const int listed = TAInsTaskList().TAInsCheckTask(directory.c_str(), nullptr);
        EXPECT_TRUE(memory.End() || listed == 2) << listed;
    });
    // A name that found no memory protects its process all the same.
    FailEachAllocation([&](FailingMemory& memory) {
        memory.Begin();
        const int listed = TAInsTaskList().TAInsCheckTask(directory.c_str(), name);
        EXPECT_TRUE(memory.End() ? listed <= 1 || !extension.empty() : listed >= 1) << listed;
    });

    ASSERT_EQ(tasks.TAInsCheckTask(directory.c_str(), nullptr), 2);  // it frees the names that were listed before
    tasks.TAInsGetListTask(&names, &count);
    const std::string found = std::string("   ") + names[0] + "\n   " + names[1] + "\n";
    const auto killed = [&](unsigned char listOnly) {
        return Printed([&] { KillProcessInConcat((directory + ";nothing").c_str(), listOnly); });
    };
    EXPECT_EQ(killed(1), "   Looking for processes running in directory " + directory +
                             "\n   Processes listed below will be killed:\n" + found +
                             "   Looking for processes running in directory nothing\n"
                             "   KillProcessInConcat - End\n \n");
    EXPECT_TRUE(IsRunning(tool.GetprocessID()));
    EXPECT_NE(killed(0).find(found), std::string::npos);
    tasks.TAInsKillTask();  // nobody is left
    ASSERT_TRUE(Eventually([&] { return !IsRunning(tool.GetprocessID()) && !IsRunning(other.GetprocessID()); }));
    EXPECT_EQ(CodeOf(tool), 0);
    EXPECT_EQ(CodeOf(other), 0);
    if (extension.empty()) {
        EXPECT_TRUE(IsRunning(stranger.GetprocessID()));
        stranger.Kill();
        EXPECT_EQ(CodeOf(stranger), 99);
    }
}
