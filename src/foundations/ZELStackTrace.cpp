// Capturing keeps addresses only; names are looked up when a trace is printed, which a trace for a caller's own use may
// never be. Lines are composed whole in a fixed room, since printing happens where memory may be short or broken.

#include "ZELStackTrace.h"

#include <algorithm>
#include <cinttypes>
#include <cstdint>

#include "platform/stack.h"

using namespace zel;

namespace {

void PrintFrame(std::FILE* stream, int number, const void* address) {
    FrameName name;
    // A return address may lie behind the end of the function that made the call; the byte before it never does.
    DescribeFrame(static_cast<const char*>(address) - 1, name);
    char line[sizeof name.module + sizeof name.function + 128];
    int length = std::snprintf(line, sizeof line, "#%-3d 0x%016" PRIxPTR " %s+0x%" PRIxPTR, number,
                               reinterpret_cast<std::uintptr_t>(address), name.module[0] != '\0' ? name.module : "?",
                               name.moduleOffset + 1);
    if (name.function[0] != '\0')
        length += std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), "  %s+0x%" PRIxPTR,
                                name.function, name.functionOffset + 1);
    line[length++] = '\n';
    std::fwrite(line, 1, static_cast<std::size_t>(length), stream);
}

}  // namespace

ZELBasicStackTrace::~ZELBasicStackTrace() = default;

void ZELBasicStackTrace::Print(FILE* stream, int first, int count) const noexcept {
    if (stream == nullptr) return;
    const int begin = std::clamp(first, 0, _count);
    const int end = count > 0 && count < _count - begin ? begin + count : _count;
    for (int frame = begin; frame < end; ++frame) PrintFrame(stream, frame, _frames[frame]);
    std::fflush(stream);
}

ZELStackTrace::ZELStackTrace() noexcept {
    // Not by GetTrace(), which would be one frame more.
    _count = CaptureStack(_frames, MaxFrames, 1);
}

ZELStackTrace::~ZELStackTrace() = default;

int ZELStackTrace::GetTrace() noexcept {
    _count = CaptureStack(_frames, MaxFrames, 1);
    return _count > 0 ? 0 : 1;
}
