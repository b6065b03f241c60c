// The system converts. To it, no room is a question for the room that is needed, so that case ends here.

#include "platform/text.h"

#include <windows.h>

#include <algorithm>
#include <climits>

using namespace zel;

std::size_t zel::ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept {
    static_assert(sizeof(wchar_t) == sizeof(unsigned short));
    if (text.empty() || capacity == 0) return 0;
    const auto room = static_cast<int>(std::min(capacity, std::size_t{INT_MAX}));
    const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                          reinterpret_cast<wchar_t*>(out), room);
    return static_cast<std::size_t>(units);
}
