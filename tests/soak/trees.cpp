// Random trees of processes: jobs, sessions, members that ignore the end of their session, stop, continue each other
// and fork. Each is killed while it grows. Beside it run bystanders that no kill may hit: in its group, in a session of
// their own, and with a number that a killed process had.
#include <memory>
#include <vector>

#include "TAProcessKill.h"
#include "soak/soak.h"
#include "support/soak_system.h"
#include "support/test_system.h"

namespace {

template <class... Numbers>
std::string Joined(Numbers... numbers) {
    return ((' ' + std::to_string(numbers)) + ...);
}

void KillOneTree(Soak& soak, unsigned seed) {
    std::mt19937 random(seed);
    // Not a part of the run's mark followed by other digits.
    const std::string mark = soak.mark + "t" + std::to_string(seed) + "e", text = "tree " + std::to_string(seed);
    TAProcess bystanders[3], root;
    for (unsigned number = 0; number < 3; ++number)
        bystanders[number].Start(soak.Command("soak", "bystander" + Joined(number == 0 ? 1 : random() % 4)), 0);
    const int group = random() % 2 == 0 ? bystanders[0].GetprocessID() : 0;
    const std::string verb = "member" + Joined(random(), 3, group) + ' ' + mark;
    if (root.Start(soak.Command("soak", verb), 0) != 0) return soak.Fail(Results, text + ": no start");
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 60'000) * (100 / StormPercent));
    const auto members = static_cast<std::int64_t>(MarkedProcesses(mark).size());
    const auto pid = static_cast<unsigned long>(root.GetprocessID());
    const int result = random() % 2 == 0 ? root.KillTree() : KillBaseProcessTree(pid, 1);
    soak.Check(result == 0, text + ": the kill failed");
    if (!Eventually([&] { return MarkedProcesses(mark).empty(); }, 2)) {
        const auto left = static_cast<std::int64_t>(MarkedProcesses(mark).size());
        soak.Fail(Survivors, text + ": survivors, members before:" + Joined(left, members));
        EndMarkedProcesses(mark);
    }
    soak.Check(CodeOf(root) == 999, text + ": exit code");
    for (TAProcess& bystander : bystanders)
        if (bystander.Kill() != 0 || CodeOf(bystander) != 99) soak.Fail(Strangers, text);
    soak.Add(Trees);
    soak.Add(Killed, members);
}

}  // namespace

void RunTrees(Soak& soak, unsigned seed) {
    for (unsigned number = 0; number < 4; ++number) KillOneTree(soak, seed + number);
}

// SEED DEPTH GROUP TREE: a member with fewer levels below it than the one before.
int BeMember(int, char** arguments) {
    std::mt19937 random(static_cast<unsigned>(std::stoul(arguments[0])));
    const int depth = std::stoi(arguments[1]);
    const unsigned traits = random() % 64 & random() % 64;
    BecomeMember(traits, std::stoi(arguments[2]));
    Soak soak;
    soak.mark = arguments[3];
    std::vector<std::unique_ptr<TAProcess>> children;
    std::vector<int> pids;
    for (unsigned count = depth > 0 ? 1 + random() % 3 : 0; count > 0; --count) {
        children.push_back(std::make_unique<TAProcess>());
        const std::string verb = "member" + Joined(random(), depth - 1, 0);
        if (children.back()->Start(soak.Command("soak", verb), 0) == 0) pids.push_back(children.back()->GetprocessID());
    }
    for (int step = 0; step < 20'000; ++step) {
        ActAsMember(traits, pids);
        std::this_thread::sleep_for(std::chrono::milliseconds(1 + random() % 5));
    }
    return 0;
}

// TRAITS: sleeps until it is killed.
int BeBystander(int, char** arguments) {
    BecomeMember(static_cast<unsigned>(std::stoul(arguments[0])), 0);
    std::this_thread::sleep_for(std::chrono::seconds(100));
    return 0;
}

void RunReusedNumbers(Soak& soak, unsigned seed) {
    const std::string command =
        InOwnNameSpace(soak.Command("soak", "namespace " + std::to_string(seed)).CastToCharPtr());
    TAProcess process;
    const int code = command.empty() || process.Start(command.c_str(), 0) != 0 ? 77 : CodeOf(process);
    if (code == 0) soak.Add(Reused, 20);
    if (code == 2) soak.Fail(Strangers, "reused numbers, seed " + std::to_string(seed));
    soak.Check(code == 0 || code == 2 || code == 77, "reused numbers, code " + std::to_string(code));
    if (code == 77) soak.hasNameSpaces = false;
}

// SEED: the first process of a name space. Kills processes whose numbers others have got. 0 when all of these live on,
// 2 when one does not, 77 where numbers cannot be chosen.
int BeNameSpace(int, char** arguments) {
    std::mt19937 random(static_cast<unsigned>(std::stoul(arguments[0])));
    Soak soak;
    soak.mark = arguments[1];
    for (int round = 0; round < 20; ++round) {
        TAProcess first, second;
        if (first.Start(soak.Command("soak", "bystander 0"), 0) != 0) return 3;
        int pid = first.GetprocessID();
        TAProcess found(pid), copy(first);
        if (first.Kill() != 0 || CodeOf(first) != 99) return 4;
        std::this_thread::sleep_for(
            std::chrono::milliseconds(20));  // the system tells births by hundredths of a second
        if (!SetNextProcessId(pid)) return 77;
        if (second.Start(soak.Command("soak", "bystander 0"), 0) != 0 || second.GetprocessID() != pid) return 5;
        TAProcess* const olds[] = {&found, &copy, &first};
        TAProcess& old = *olds[random() % 3];
        random() % 2 == 0 ? old.Kill() : old.KillTree();
        int status = 0;
        const bool isAlive = second.Check(status) == 0 && status == 259;
        if (second.Kill() != 0 || CodeOf(second) != 99 || !isAlive) return 2;
    }
    return 0;
}
