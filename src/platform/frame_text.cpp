// Names of modules and functions, cut to the room of a FrameName. The demangler takes memory from the C heap; when it
// fails, the symbol itself serves.

#include "platform/frame_text.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "base/memory.h"

using namespace zel;

void zel::SetModule(FrameName& name, const char* path, std::uintptr_t offset) noexcept {
    const std::size_t separator = std::string_view(path).find_last_of("/\\");
    const char* const file = separator == std::string_view::npos ? path : path + separator + 1;
    std::snprintf(name.module, sizeof name.module, "%s", file);
    name.moduleOffset = offset;
}

void zel::SetFunction(FrameName& name, const char* symbol, std::uintptr_t offset) noexcept {
    char* const readable = Demangle(symbol);
    // Without "_Z" a symbol that happens to spell a type, as "f" does, would come back as that type.
    const bool mangled = readable != nullptr && symbol[0] == '_' && symbol[1] == 'Z';
    std::snprintf(name.function, sizeof name.function, "%s", mangled ? readable : symbol);
    Free(readable);
    name.functionOffset = offset;
}
