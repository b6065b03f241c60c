// `soak_loader ROUNDS`: loads the library through a plugin, uses it and unloads it. 0 when nothing of that stays but
// what the first rounds left, 1 otherwise.
#include <cstdio>
#include <cstdlib>

#include "support/soak_system.h"
#include "support/test_system.h"

int main(int, char** arguments) {
    const int rounds = std::atoi(arguments[1]);
    UseOneHeap();
    Resources before, after;
    for (int round = 0; round < rounds; ++round) {
        StaysLoaded("files_plugin", "UseLibrary",
                    [&](void* function) { return reinterpret_cast<void* (*)(const char*)>(function)(arguments[0]); });
        if (round == rounds / 2) before = ReadResources("none");
    }
    after = ReadResources("none");
    const bool isFlat = after.descriptors <= before.descriptors && after.threads <= before.threads &&
                        after.heap - before.heap <= 16 && after.resident - before.resident <= 1024;
    std::printf("descriptors %ld to %ld, threads %ld to %ld, heap %ld to %ld, resident %ld to %ld\n",
                before.descriptors, after.descriptors, before.threads, after.threads, before.heap, after.heap,
                before.resident, after.resident);
    return isFlat ? 0 : 1;
}
