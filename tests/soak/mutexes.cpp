// Owners of named mutexes that are killed: the next to lock is told, and nobody waits for ever.
#include <vector>

#include "TAMutex.h"
#include "soak/soak.h"
#include "support/files.h"

namespace {

// The owner says that it has the mutex, and is killed.
void KillOwner(Soak& soak, TAMutex& mutex, const std::string& name, const std::string& out, const std::string& text) {
    TAProcess owner;
    owner.SetOutput(out.c_str());
    owner.Start(soak.Command("soak", "owner 1 " + name), 0);
    soak.Check(Eventually([&] { return ReadWhole(out).starts_with("locked"); }), text + ": the owner has no mutex");
    soak.Check(owner.Kill() == 0 && CodeOf(owner) == 99, text + ": kill");
    soak.Check(mutex.Lock() == 128 && mutex.Unlock() != 0, text + ": the death was not told");
    soak.Add(MutexKills);
}

// Somebody else locks and unlocks all the time, and is killed in the middle.
void KillRival(Soak& soak, TAMutex& mutex, const std::string& name, unsigned pause, const std::string& text) {
    TAProcess rival;
    rival.Start(soak.Command("soak", "owner 0 " + name), 0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(pause);
    bool isRight = true;
    const auto lock = [&] {
        const int locked = mutex.Lock();
        isRight = isRight && (locked == 0 || locked == 128) && mutex.Unlock() != 0;
        soak.Add(Operations);
    };
    while (std::chrono::steady_clock::now() < end) lock();
    rival.Kill();
    for (int i = 0; i < 10; ++i) lock();
    CodeOf(rival);  // until its end it has the mutex open
    soak.Check(isRight, text + ": a mutex that is shared with a killed process");
    soak.Add(MutexKills);
}

}  // namespace

void RunMutexes(Soak& soak, unsigned seed) {
    const TemporaryFolder folder;
    std::vector<std::jthread> threads;
    for (unsigned number = 0; number < 2; ++number)
        threads.emplace_back([&, number] {
            std::mt19937 random(seed + number);
            const std::string name = soak.mark + "m" + std::to_string(seed + number);
            const std::string text = "mutexes, seed " + std::to_string(seed);
            for (int round = 0; round < (onWindows ? 1 : 4); ++round) {
                TAMutex mutex(name.c_str());
                const std::string out = folder / (std::to_string(number) + '.' + std::to_string(round));
                KillOwner(soak, mutex, name, out, text);
                KillRival(soak, mutex, name, random() % 30'000, text);
                std::jthread([&] { mutex.Lock(); }).join();  // ends as the owner
                soak.Check(mutex.Lock() == 128 && mutex.Unlock() != 0, text + ": the thread's end was not told");
            }
        });
}

// KEEPS NAME: locks and says so, or locks and unlocks until it is killed.
int BeMutexOwner(int, char** arguments) {
    TAMutex mutex(arguments[1]);
    const bool keeps = arguments[0][0] == '1';
    if (keeps) std::printf("locked %d\n", mutex.Lock());
    std::fflush(stdout);
    if (keeps) std::this_thread::sleep_for(std::chrono::seconds(60));
    for (int i = 0; i < 10'000'000; ++i) mutex.Lock(), mutex.Unlock();
    return 0;
}
