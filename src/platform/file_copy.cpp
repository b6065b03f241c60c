// What the two halves of the copy share: the look at the arguments, the disk boundary, and names for temporary files.
// Process id and a counter make names that differ within the machine; a clash beyond it is the caller's to notice, by
// creating exclusively.

#include "platform/file_copy.h"

#include <atomic>
#include <cstdio>

#include "platform/native_path.h"
#include "platform/system.h"

using namespace zel;

CopyStatus zel::CopyWholeFile(const char* from, const char* to, bool replaceExisting) noexcept {
    if (from == nullptr || *from == '\0' || to == nullptr || *to == '\0') return CopyStatus::NullArgument;
    const NativePath nativeFrom(from);
    const NativePath nativeTo(to);
    if (nativeFrom.Text() == nullptr || nativeTo.Text() == nullptr) return CopyStatus::NoMemory;
    return CopyNativeFile(nativeFrom.Text(), nativeTo.Text(), replaceExisting);
}

void zel::MakeTemporaryName(char (&name)[TemporaryNameSize]) noexcept {
    static std::atomic<unsigned> next = 0;
    const unsigned number = next.fetch_add(1, std::memory_order_relaxed);
    const unsigned process = static_cast<unsigned>(GetOwnProcessId());
    std::snprintf(name, sizeof name, "zel%04x%04x.tmp", process & 0xFFFF, number & 0xFFFF);
}
