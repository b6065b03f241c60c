// The line is composed here and reaches the stream's buffer as one run of bytes.

#include "foundations/stream_text.h"

#include "ZELString.h"

using namespace zel;

void zel::WriteLine(std::ostream& stream, std::string_view text) noexcept {
    std::streambuf* const buffer = stream.rdbuf();
    if (buffer == nullptr || !stream.good()) return;
    const ZELString line = ZELString(text) + '\n';
    try {
        buffer->sputn(line.CastToCharPtr(), line.Length());
        buffer->pubsync();
    } catch (...) {
        // No exception of a caller's buffer passes through the library.
    }
}
