// The checksum of a text and a number, in forms that anything can run, and the choice among them and the wide ones.
//
// A text is taken in pieces: its end is sought in one piece, and the piece is summed up while it is near. Short pieces
// go 8 bytes at a time, without a full reduction in between. Long ones are divided by whole units (checksum_units.h).

#include "network/checksum.h"

#include <cstring>

#include "TARunLength.h"
#include "network/checksum_units.h"

using namespace zel;

namespace {

constexpr std::size_t Piece = std::size_t{1} << 16;
// Where each form overtakes the one before, measured.
constexpr std::size_t ProductsFrom = 32;
constexpr std::size_t UnitsFrom = 1024;
constexpr std::size_t WideUnitsFrom = 16384;

constexpr std::size_t UnitWords = 2;
constexpr std::size_t UnitBlock = UnitCount * UnitWords * sizeof(std::uint64_t);

// units[at, at + count) gets on by a whole round: its new value is the old one, 32 units before, plus the message's
// and that of three others.
inline void Divide(std::uint64_t* units, const unsigned char* message, std::size_t at, std::size_t count,
                   std::size_t by30, std::size_t by26, std::size_t by25) noexcept {
    for (std::size_t i = 0; i < count * UnitWords; ++i) {
        std::uint64_t next;
        std::memcpy(&next, message + (at * UnitWords + i) * sizeof next, sizeof next);
        units[at * UnitWords + i] ^=
            next ^ units[by30 * UnitWords + i] ^ units[by26 * UnitWords + i] ^ units[by25 * UnitWords + i];
    }
}

inline std::uint64_t Shift(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    for (; size >= 8; size -= 8, bytes += 8) bits = TimesX64(Shorten(bits)) ^ LoadHighFirst(bytes);
    while (size > 0) {
        // Three bytes are what 39 bits leave room for.
        bits = Shorten(bits);
        for (std::size_t some = size < 3 ? size : 3; some > 0; --some, --size) bits = bits << 8 | *bytes++;
    }
    return bits;
}

std::uint64_t Append(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    static const AppendBytes products = AppendByProducts();
    static const AppendBytes wideUnits = AppendByWideUnits();
    if (size >= WideUnitsFrom && wideUnits != nullptr) return wideUnits(bits, bytes, size);
    if (size >= ProductsFrom && products != nullptr) return products(bits, bytes, size);
    return size >= UnitsFrom ? AppendByUnits(bits, bytes, size) : AppendByShifts(bits, bytes, size);
}

// How many bytes of the text's next piece there are. memchr reads no further than the terminator, wherever the piece
// would end.
inline std::size_t PieceLength(const unsigned char* text) noexcept {
    const void* const terminator = std::memchr(text, '\0', Piece);
    if (terminator == nullptr) return Piece;
    return static_cast<std::size_t>(static_cast<const unsigned char*>(terminator) - text);
}

// The bits of a text alone.
inline std::uint64_t ShiftShort(const unsigned char* text, std::size_t size) noexcept {
    return size >= 8 ? Shift(LoadHighFirst(text), text + 8, size - 8) : Shift(0, text, size);
}

// The bits of a text whose first piece has `size` bytes.
std::uint64_t AppendPieces(const unsigned char* text, std::size_t size) noexcept {
    std::uint64_t bits = Append(0, text, size);
    while (size == Piece) {
        text += Piece;
        size = PieceLength(text);
        bits = Append(bits, text, size);
    }
    return bits;
}

}  // namespace

std::uint64_t zel::AppendByShifts(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    return Shift(bits, bytes, size);
}

std::uint64_t zel::AppendByUnits(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    if (size < UnitBlock) return AppendByShifts(bits, bytes, size);
    std::uint64_t units[UnitCount * UnitWords];
    BeginUnits(units, UnitWords, bits);
    for (; size >= UnitBlock; size -= UnitBlock, bytes += UnitBlock) {
        // Unit i looks at i + 2, i + 6 and i + 7, of the round before or of this one where those wrap around.
        Divide(units, bytes, 0, 25, 2, 6, 7);
        Divide(units, bytes, 25, 1, 27, 31, 0);
        Divide(units, bytes, 26, 4, 28, 0, 1);
        Divide(units, bytes, 30, 2, 0, 4, 5);
    }
    EndUnits(units, UnitWords);
    return AppendByShifts(AppendByShifts(0, reinterpret_cast<const unsigned char*>(units), UnitBlock), bytes, size);
}

unsigned int crc(const char* text, unsigned int number) noexcept {
    if (text == nullptr) text = "";
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    const std::size_t size = PieceLength(bytes);
    // Most texts are short: they cost no call.
    const std::uint64_t bits = size < ProductsFrom ? ShiftShort(bytes, size) : AppendPieces(bytes, size);
    // The number is 32 bits more: what moves beyond bit 31 is short enough to come down at once.
    const std::uint64_t moved = TimesX64(bits >> 32) ^ TimesX32(bits & 0xFFFFFFFF);
    return static_cast<unsigned int>(Shorten(moved ^ number));
}
