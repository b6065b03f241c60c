#include "TAProcess.h"

#include <csignal>

#include "platform/system.h"
#include "process/processes.h"
#include "support/failing_memory.h"
#include "support/programs.h"

using namespace std::string_literals;

namespace {

std::string Hex(const std::string& text) {
    std::string hex;
    for (const char c : text) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
        hex += digits;
    }
    return hex + '\n';
}

// What a command writes.
std::string OutputOf(const ZELString& command) {
    const TemporaryFolder folder;
    TAProcess process;
    process.SetOutput((folder / "out").c_str());
    EXPECT_EQ(RunToEnd(process, command), 0) << command.CastToCharPtr() << process.GetErrMsg().CastToCharPtr();
    return WithoutReturns(ReadBytes(folder / "out"));
}

}  // namespace

TEST(TAProcess, TextsBecomeArgumentsByTheTable) {
    // The rows of docs/commands.md: what stands behind the program, and the arguments that arrive.
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"a b", {"a", "b"}},
        {"a \t  b ", {"a", "b"}},
        {R"("a b" c)", {"a b", "c"}},
        {R"(a"b c"d)", {"ab cd"}},
        {R"("" a)", {"", "a"}},
        {R"(C:\x\y\)", {R"(C:\x\y\)"}},
        {R"(\"a\")", {R"("a")"}},
        {R"(a\\b)", {R"(a\\b)"}},
        {R"("a\\" b)", {R"(a\)", "b"}},
        {R"("a\\\" b")", {R"(a\" b)"}},
        {R"("a""b c")", {R"(a"b c)"}},
        {R"("a b)", {"a b"}},
        {R"('a b')", {"'a", "b'"}},
        {R"($HOME %PATH% ~ ; & | >)", {"$HOME", "%PATH%", "~", ";", "&", "|", ">"}},
    };
    for (const auto& [text, words] : rows) {
        std::string expected;
        for (const char* const word : words) expected += Hex(word);
        EXPECT_EQ(OutputOf(ChildCommand(std::string("args ") + text)), expected) << text;
    }
    std::string slashes = ProgramPath("child");
    std::replace(slashes.begin(), slashes.end(), '/', '\\');
    EXPECT_EQ(OutputOf((slashes + " args a\\b").c_str()), Hex("a\\b"));
}

TEST(TAProcess, LongTextsAreLaunchedWholeOrRefused) {
    for (const std::size_t length : {1023u, 1025u, 30000u}) {
        const std::string word(length, 'x');
        EXPECT_EQ(OutputOf(ChildCommand("args " + word)), Hex(word));
    }
    TAProcess process;
    EXPECT_EQ(process.Start(ChildCommand("args " + std::string(3000000, 'x')), 0), 1);
    EXPECT_GT(process.GetErrMsg().FindPosition("the limit is "), 0) << process.GetErrMsg().CastToCharPtr();
}

TEST(TAProcess, TheEndIsSeenByWaitAndByOneCheck) {
    TAProcess process;
    int status = 0, pid = TAProcess::Getpid();
    EXPECT_TRUE(process.Check(status) == 0 && status == 203);
    EXPECT_TRUE(process.Wait(status) == 1 && process.GetErrMsg() == "Unable to wait for child process");
    for (const int code : {0, 1, 99, 128, 255}) {
        ASSERT_EQ(RunToEnd(process, ChildCommand("exit " + std::to_string(code))), code);
        TAProcess copy(process), later(process);
        EXPECT_EQ(CodeOf(process), code);
        EXPECT_TRUE(copy.Check(status) == 1 && status == code);
        EXPECT_TRUE(copy.Check(status) == 1 && status == 201);
        EXPECT_TRUE(process.Check(status) == 1 && status == 202);
        EXPECT_TRUE(process.GetErrMsg() == "Unable to get child process indormation");
        EXPECT_TRUE(later.Wait(status) == 1 && status == 202);
        EXPECT_TRUE(later.GetErrMsg() == "Unable to wait for child process");
    }
    EXPECT_EQ(RunToEnd(process, ChildCommand("signal 11")), 128 + 11);
    TAProcess other(pid);
    EXPECT_TRUE(other.Check(status) == 1 && status == 201 && other.Wait(status) == 1);
}

TEST(TAProcess, ManyWaitWhileAnotherChecks) {
    TAProcess process;
    ASSERT_EQ(process.Start(ChildCommand("sleep 200"), 0), 0);
    std::vector<std::jthread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([copy = process]() mutable {
            int status = -1;
            EXPECT_TRUE(copy.Wait(status) != 0 || status == 0);  // not open when the check came first
        });
    int status = 0;
    EXPECT_TRUE(Eventually([&] { return process.Check(status) == 1; }) && status == 0);
}

TEST(TAProcess, TheFirstKillNamesTheExitCode) {
    for (const unsigned code : {99u, 0u, 5u, 70000u}) {
        TAProcess process;
        int status = 0;
        ASSERT_EQ(process.Start(ChildCommand("sleep 60000"), 0), 0);
        EXPECT_TRUE(process.Check(status) == 0 && status == 259);
        const auto pid = static_cast<unsigned long>(process.GetprocessID());
        EXPECT_EQ(code == 99 ? 1 - process.Kill() : KillPid(pid, code), 1);
        EXPECT_EQ(CodeOf(process), static_cast<int>(code));
        EXPECT_EQ(process.Kill(), 0);  // over, but not yet seen
        EXPECT_EQ(KillPid(pid, 3), 0);
        EXPECT_TRUE(process.Check(status) == 1 && status == static_cast<int>(code));
        EXPECT_EQ(process.Kill(), 1);
        EXPECT_TRUE(process.GetErrMsg() == "Unable to get child process handle");
        EXPECT_EQ(process.KillTree(), 1);
    }
    int none = 0, negative = -5;
    EXPECT_TRUE(TAProcess(none).Kill() == 1 && TAProcess(negative).Kill() == 1);
    EXPECT_TRUE(TAProcess(none).KillTree() == -1 && TAProcess(negative).KillTree() == 1);
}

TEST(TAProcess, StreamsGoToFilesAndShareOne) {
    const TemporaryFolder folder;
    const std::string out = folder / "out", in = folder / "in";
    WriteBytes(out, std::string(100, 'o'));
    WriteBytes(in, "input");
    TAProcess process;
    process.SetOutput(out.c_str());
    EXPECT_EQ(RunToEnd(process, ChildCommand("nonsense")), 125);  // says much on standard error
    EXPECT_EQ(ReadBytes(out).substr(0, 5), "child");
    EXPECT_EQ(RunToEnd(process, ChildCommand("both 100000")), 0);
    EXPECT_EQ(ReadBytes(out).size(), 200000u);
    process.SetInput(in.c_str());
    EXPECT_EQ(RunToEnd(process, ChildCommand("copy")), 0);
    EXPECT_EQ(ReadBytes(out), "input");

    const std::string missing = folder / "missing/file";
    process.SetInput(missing.c_str());
    EXPECT_TRUE(process.Start(ChildCommand("copy"), 0) == 1 && process.GetprocessID() == 0);
    EXPECT_EQ(std::string(process.GetErrMsg()), "Unable to redirect input in " + missing);
    process.SetOutput(missing.c_str());
    EXPECT_EQ(process.Start(ChildCommand("copy"), 0), 1);
    EXPECT_EQ(std::string(process.GetErrMsg()), "Unable to redirect output in " + missing);
    process.SetOutput("");
    process.SetInput(folder.Path().c_str());
    EXPECT_EQ(process.Start(ChildCommand("copy"), 0), 1);  // a directory
    EXPECT_EQ(RunProgram("process_probe", {"closed", ProgramPath("child"), in, out}).exitCode, 0);
    EXPECT_EQ(ReadBytes(out), "input");
}

TEST(TAProcess, FailedStartsLeaveNothing) {
    const TemporaryFolder folder;
    WriteBytes(folder / "plain", "\x7F garbage");
    WriteBytes(folder / "tool.bat", "exit 7\n");
    TAProcess process;
    const std::vector<long> before = InheritedDescriptors();
    for (const std::string& command :
         {folder / "missing", folder / "plain", folder.Path(), std::string("no_such_tool x")}) {
        EXPECT_EQ(process.Start(command.c_str(), 0), 1) << command;
        EXPECT_TRUE(process.GetprocessID() == 0 && process.GetErrMsg() != "no error");
    }
    EXPECT_EQ(InheritedDescriptors(), before);
    EXPECT_EQ(RunToEnd(process, ChildCommand("exit 0")), 0);
    const int pid = process.GetprocessID();
    for (const char* const empty : {"", "   "}) EXPECT_EQ(process.Start(empty, 0), 1);
    EXPECT_TRUE(process.GetprocessID() == pid && process.GetErrMsg() == "No command given, no process started");
}

TEST(TAProcess, EachFailedAllocationIsAFailureAndNoMore) {
    const ZELString commands[] = {ChildCommand("sleep 60000"), "cmd /c exit 7"};
    const AllocationFailures failures = FailEachAllocation([&](FailingMemory& memory) {
        TAProcess tree, shell;
        memory.Begin();
        const bool isStarted = tree.Start(commands[0], 0) == 0;
        const bool isShellStarted = shell.Start(commands[1], 0) == 0;
        const bool isKilled = isStarted && tree.KillTree() == 0;
        const bool hasFailed = memory.End();
        EXPECT_TRUE(hasFailed || (isKilled && isShellStarted));
        EXPECT_TRUE(isStarted || tree.GetprocessID() == 0);
        EXPECT_TRUE(!isShellStarted || CodeOf(shell) == 7);
        EXPECT_TRUE(!isStarted || isKilled || tree.Kill() == 0);
        // A tree that cannot be listed to its end counts as not killed, whatever was killed of it.
        const int code = isStarted ? CodeOf(tree) : 0;
        EXPECT_TRUE(!isStarted || code == 999 || (!isKilled && code == 99)) << code;
    });
    EXPECT_GT(failures.count, 8);
}

TEST(TAProcess, BatchFilesRunByNameAndByRetry) {
    const TemporaryFolder folder;
    WriteBytes(folder / "tool.bat", "exit 7\n");
    WriteBytes(folder / "where.bat", "exit 8\n");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    TAProcess process;
    for (const std::string& command : {"tool.bat all"s, "tool  x"s, folder / "tool x", folder / "tool.bat"})
        EXPECT_EQ(RunToEnd(process, command.c_str()), 7) << command << ": " << process.GetErrMsg().CastToCharPtr();
    EXPECT_EQ(RunToEnd(process, "cmd /c exit 5"), 5);
    EXPECT_EQ(TAProcess::Exec("exit 3"), 3);
    std::filesystem::current_path(before);
}

TEST(TAProcess, ChildrenKnowTheirLauncher) {
    const std::string own = '[' + std::to_string(TAProcess::Getpid()) + "]\n";
    for (const char* const value : {"RemoteKill=else", "RemoteKill=NO", "RemoteKill="}) {
        zel::PutEnvironment(value);
        EXPECT_EQ(OutputOf(ChildCommand("env RemoteKill")), own);
        EXPECT_STREQ(std::getenv("RemoteKill"), "NO");
        EXPECT_EQ(RunProgram("child", {"env", "RemoteKill"}).out, "[NO]\n");
    }
    zel::PutEnvironment("RemoteKill=");
    EXPECT_EQ(TAProcess().Start("no_such_tool", 0), 1);
    EXPECT_STREQ(std::getenv("RemoteKill"), "NO");
}

TEST(TAProcess, ThreadsLaunchChildrenThatGetNothingOfEachOther) {
    const TemporaryFolder folder;
    const std::string alone = OutputOf(ChildCommand("descriptors"));
    std::atomic<bool> isOver{false};
    std::jthread reader([&] {
        while (!isOver) std::getenv("ZEL_NO_SUCH_VARIABLE");
    });
    constexpr int Threads = 4;
    const int rounds = std::max(20 * StormPercent / 100, 3);
    const auto path = [&](int t, int round) { return folder / (std::to_string(t) + '.' + std::to_string(round)); };
    TAProcess sleepers[Threads];
    std::vector<std::jthread> launchers;
    for (int t = 0; t < Threads; ++t)
        launchers.emplace_back([&, t] {
            for (int round = 0; round < rounds; ++round) {
                TAProcess process;
                process.SetOutput(path(t, round).c_str());
                process.SetInput(ProgramPath("child").c_str());
                EXPECT_EQ(RunToEnd(process, ChildCommand("descriptors")), 0);
                EXPECT_TRUE(round != 1 || sleepers[t].Start(ChildCommand("sleep 60000"), 0) == 0);
            }
        });
    launchers.clear();
    isOver = true;
    const bool isTold = alone.starts_with("0\n");  // where handles are counted, a child has many of its own
    for (int t = 0; t < Threads; ++t)
        for (int round = 0; round < rounds; ++round) {
            EXPECT_TRUE(!isTold || ReadBytes(path(t, round)) == alone) << ReadBytes(path(t, round));
            EXPECT_TRUE(std::filesystem::remove(path(t, round)));  // refused while a sleeper has it open
        }
    for (TAProcess& sleeper : sleepers) EXPECT_EQ(sleeper.Kill(), 0);
}

TEST(TAProcess, DroppedChildrenGoAtTheNextStart) {
    std::vector<int> pids;
    for (int i = 0; i < 10; ++i) {
        TAProcess process;
        ASSERT_EQ(process.Start(ChildCommand("exit 0"), 0), 0);
        pids.push_back(process.GetprocessID());
    }
    EXPECT_TRUE(Eventually([&] { return std::none_of(pids.begin(), pids.end(), IsRunning); }));
    TAProcess process;
    EXPECT_EQ(RunToEnd(process, ChildCommand("exit 0")), 0);
    unsigned long parent = 0;
    for (const int pid : pids)
        EXPECT_TRUE(Eventually([&] { return TAGetParentProcessId(static_cast<unsigned long>(pid), parent) == 0; }))
            << pid;
}

TEST(TAProcess, AHostThatIgnoresItsChildrenIsTold) {
    const IgnoredChildren ignored;
    if (!ignored.isIgnoring) GTEST_SKIP() << "the system keeps every exit code";
    TAProcess process;
    int status = 0;
    ASSERT_EQ(process.Start(ChildCommand("sleep 50"), 0), 0);
    EXPECT_TRUE(process.Wait(status) == 1 && status == 202);
    EXPECT_TRUE(process.Check(status) == 1 && status == 202);
}

TEST(TAProcess, ChildrenHearSignalsThatTheHostIgnores) {
    std::signal(SIGTERM, SIG_IGN);
    TAProcess process;
    const TemporaryFolder folder;
    StartAndRead(process, ChildCommand("polite 60000"), folder / "out", 1);
    EXPECT_EQ(CloseOrKillPid(static_cast<unsigned long>(process.GetprocessID())), 1);
    EXPECT_EQ(CodeOf(process), CanAskPrograms() ? 7 : 999);  // asked, not forced
    std::signal(SIGTERM, SIG_DFL);
}
