#include "support/shared_library.h"

#include <dlfcn.h>

#include <filesystem>

void* OpenLibraryBeside(const std::string& name) {
    const auto path = std::filesystem::read_symlink("/proc/self/exe").parent_path() / (name + ".so");
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* FindFunction(void* library, const char* name) {
    return dlsym(library, name);
}

void CloseLibrary(void* library) {
    dlclose(library);
}

bool IsLoaded(void* code) {
    Dl_info found;
    return dladdr(code, &found) != 0;
}
