// Reading byte by byte, for both targets; see ReadPiece in c_streams.h.
#ifndef PLATFORM_READ_BYTES_H
#define PLATFORM_READ_BYTES_H

#include <cstddef>
#include <cstdio>

#include "base/growing_array.h"
#include "platform/c_streams.h"

namespace zel {

// `next` gives the next byte, or EOF.
template <class Next>
std::size_t ReadBytes(Next next, int delimiter, std::size_t most, LineRoom& room, bool& met) noexcept {
    constexpr std::size_t Room = 4096;
    met = false;
    if (!GrowArray(room.text, room.size, Room, Room)) return 0;
    if (most > Room) most = Room;
    std::size_t count = 0;
    for (int c = 0; count < most && !met && (c = next()) != EOF; ++count) {
        room.text[count] = static_cast<char>(c);
        met = c == delimiter;
    }
    return count;
}

}  // namespace zel

#endif
