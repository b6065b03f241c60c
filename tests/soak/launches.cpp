// Launches from several threads, while others open files and sockets that no child may get.
#include <vector>

#include "TAProcessList.h"
#include "TASocket.h"
#include "soak/soak.h"
#include "support/files.h"
#include "support/test_system.h"

namespace {

void OpenAndClose(const std::string& folder, const std::atomic<bool>& isOver) {
    const std::string file = folder + "/opened", copy = folder + "/copied";
    WriteWhole(file, std::string(100'000, 'x'));
    while (!isOver) {
        TASocket server, client;
        server.OpenServer(0);
        client.OpenClient("127.0.0.1", server.GetPort());
        CopyFile(file.c_str(), copy.c_str());
        ReadWhole(file);
    }
}

// A batch with more commands than may run at once.
void RunBatch(Soak& soak, const std::string& text) {
    TAProcessList batch(2);
    for (int code = 0; code < 5; ++code) batch.Start(soak.Command("child", "exit " + std::to_string(code)), 20, -1);
    Eventually([&] { return batch.Check(), batch.NDone() == 5; });
    for (int code = 0; code < 5; ++code) soak.Check(batch.GetReturnCode(code + 1) == code, text + ", batch");
}

void Launch(Soak& soak, unsigned choice, const std::string& out, const std::string& text) {
    TAProcess process;
    const auto start = [&](const std::string& verb) {
        process.SetOutput(choice < 5 ? out.c_str() : EndlessDevice.c_str());
        soak.Check(process.Start(soak.Command("child", verb), 0) == 0, text + ", start: " + verb);
    };
    switch (choice) {
        case 0:
            start("descriptors");
            soak.Check(CodeOf(process) == 0, text + ", exit code");
            soak.Check(soak.descriptors.empty() || ReadWhole(out) == soak.descriptors,
                       text + ", got " + ReadWhole(out));
            break;
        case 1:
            start("both 70000");
            soak.Check(CodeOf(process) == 0 && ReadWhole(out).size() == 140'000, text + ", output");
            break;
        case 2:
            start("signal 11");
            soak.Check(CodeOf(process) == 139, text + ", signal");
            break;
        case 3:
            start("sleep 60000");
            soak.Check(process.Kill() == 0 && CodeOf(process) == 99, text + ", kill");
            break;
        case 4:
            soak.Check(process.Start("no_such_program_of_ours", 0) == 1, text + ", missing program");
            break;
        case 5:
            RunBatch(soak, text);
            break;
        default:
            start(choice == 6 ? "exit 0" : "sleep 20");  // dropped, running or not
    }
    soak.Add(Launches, choice == 5 ? 5 : 1);
}

}  // namespace

void RunLaunches(Soak& soak, unsigned seed) {
    const TemporaryFolder folder;
    std::atomic<bool> isOver{false};
    std::jthread opener([&] { OpenAndClose(folder.Path(), isOver); });
    std::vector<std::jthread> launchers;
    for (unsigned number = 0; number < 3; ++number)
        launchers.emplace_back([&, number] {
            std::mt19937 random(seed + number);
            for (int i = 0; i < (onWindows ? 3 : 20); ++i) {
                // Dropped ones still have their file: each gets one of its own.
                const std::string out = folder / (std::to_string(number) + '.' + std::to_string(i));
                Launch(soak, random() % 8, out, "launches, seed " + std::to_string(seed));
            }
        });
    launchers.clear();
    isOver = true;
}
