// The unwinder walks the stack; the dynamic linker names what programs and libraries export.

#include "platform/stack.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>

#include "platform/frame_text.h"

using namespace zel;

int zel::CaptureStack(void** frames, int limit, int skip) noexcept {
    constexpr int Walked = 200;
    void* all[Walked];
    const int found = backtrace(all, Walked);
    const int first = std::min(skip + 1, found);  // this function is the first
    const int count = std::min(found - first, limit);
    std::copy_n(all + first, count, frames);
    return count;
}

char* zel::Demangle(const char* symbol) noexcept {
    int status = -1;
    return abi::__cxa_demangle(symbol, nullptr, nullptr, &status);
}

void zel::DescribeFrame(const void* address, FrameName& name) noexcept {
    name = {};
    Dl_info found;
    if (dladdr(address, &found) == 0) return;
    const auto position = reinterpret_cast<std::uintptr_t>(address);
    SetModule(name, found.dli_fname, position - reinterpret_cast<std::uintptr_t>(found.dli_fbase));
    if (found.dli_sname != nullptr)
        SetFunction(name, found.dli_sname, position - reinterpret_cast<std::uintptr_t>(found.dli_saddr));
}
