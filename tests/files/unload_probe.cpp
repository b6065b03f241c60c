// `unload_probe PATH keep|unload idle|busy`: loads the library through a plugin, lets its threads load PATH, unloads
// both or not, and ends.
#include <cstdio>
#include <string_view>

#include "support/shared_library.h"

void* volatile loaders;

int main(int count, char** arguments) {
    void* const plugin = OpenLibraryBeside("files_plugin");
    if (plugin == nullptr || count < 4) return 2;
    const auto start = reinterpret_cast<void* (*)(const char*, bool)>(FindFunction(plugin, "StartLoaders"));
    if (start == nullptr) return 3;
    const auto libraryCode = reinterpret_cast<void* (*)()>(FindFunction(plugin, "LibraryCode"));
    void* const code = libraryCode();
    loaders = start(arguments[1], arguments[3] == std::string_view("idle"));
    if (arguments[2] == std::string_view("unload")) CloseLibrary(plugin);
    std::puts(IsLoaded(code) ? "end" : "the library is gone");
    return 0;
}
