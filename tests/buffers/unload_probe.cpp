// `unload_probe PATH COUNT`: lets the library load PATH so often on its threads, after loading it through a plugin;
// unloads it, and ends.
#include <cstdio>
#include <cstdlib>

#include "support/test_system.h"

int main(int, char** arguments) {
    static void* made[10'000];
    const auto use = [&](void* function) {
        const auto start = reinterpret_cast<void* (*)(const char*, int, void**)>(function);
        return start(arguments[1], std::atoi(arguments[2]), made);
    };
    std::puts(StaysLoaded("files_plugin", "StartLoaders", use) ? "loaded" : "gone");
}
