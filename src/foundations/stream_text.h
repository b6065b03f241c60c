// Writing to a stream of a caller's that may stand on a C++ runtime of its own.
#ifndef FOUNDATIONS_STREAM_TEXT_H
#define FOUNDATIONS_STREAM_TEXT_H

#include <ostream>
#include <string_view>

namespace zel {

// Hands `text` and an end of line to the stream's buffer in one piece and flushes it; nothing when the stream has
// failed or has no buffer. Through the buffer alone, since its virtual functions are the caller's own code: the
// stream's operators would be this library's, with this library's locales and error states. What the buffer refuses is
// lost.
void WriteLine(std::ostream& stream, std::string_view text) noexcept;

}  // namespace zel

#endif
