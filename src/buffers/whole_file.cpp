// The size is asked up front and serves as a hint: one block with room for the text, its NUL and one byte more, so that
// the call that fills it shows by its short count that the file ends there, and a file costs one read. A file that
// holds more than it said, or that cannot say (a pipe, a file of the kernel's), goes on in a block that doubles. What a
// file says costs nothing: the first block is bounded where it would, and a smaller one serves when it cannot be had.
//
// The dangerous case is a short count that is not the end (Windows translates line ends, an interruption cuts): only a
// count that is short and meets the announced size, or a count of 0, ends the reading.

#include "buffers/whole_file.h"

#include <algorithm>
#include <utility>

#include "base/memory.h"
#include "platform/text_reader.h"

using namespace zel;

namespace {

constexpr std::size_t UnknownSizeBlock = 4096;
constexpr std::size_t Extra = 2;  // the NUL, and the byte that shows the end

std::size_t NextCapacity(std::size_t capacity, std::size_t announced, const WholeFileRules& rules) {
    if (capacity == 0) return announced > 0 ? std::min(announced, rules.firstBlock) + Extra : UnknownSizeBlock;
    const std::size_t doubled = std::min(2 * capacity, rules.most + Extra);
    return announced + Extra > capacity ? std::min(doubled, announced + Extra) : doubled;
}

// Room for `wanted` bytes; a new block may get fewer, and `wanted` tells.
void* Grow(void* block, std::size_t& wanted, const WholeFileRules& rules) {
    void* grown = rules.resize(block, wanted);
    while (grown == nullptr && block == nullptr && wanted > UnknownSizeBlock) grown = rules.resize(block, wanted /= 2);
    return grown;
}

// Reads what `reader` gives into `file`, and returns the size of its block.
std::size_t ReadAll(TextReader& reader, const WholeFileRules& rules, WholeFile& file, std::size_t& size) {
    const std::size_t announced =
        static_cast<std::size_t>(std::clamp<std::int64_t>(reader.Size(), 0, static_cast<std::int64_t>(rules.most)));
    std::size_t capacity = 0;
    while (size < rules.most) {
        if (size + 1 >= capacity) {
            std::size_t wanted = NextCapacity(capacity, announced, rules);
            void* const grown = Grow(file.text, wanted, rules);
            if (grown == nullptr) {
                file.refused = wanted;
                break;
            }
            file.text = static_cast<char*>(grown);
            capacity = wanted;
        }
        const std::size_t asked = std::min({capacity - 1 - size, rules.most - size, TextReader::MostAtOnce});
        const std::ptrdiff_t count = reader.Read(file.text + size, asked);
        file.hasFailed = count < 0;
        if (count <= 0) break;
        size += static_cast<std::size_t>(count);
        if (size == announced && static_cast<std::size_t>(count) < asked) break;
    }
    return capacity;
}

}  // namespace

WholeFile zel::ReadWholeFile(const char* path, const WholeFileRules& rules) noexcept {
    WholeFile file;
    TextReader reader;
    file.isOpened = reader.Open(path);
    if (!file.isOpened) return file;
    std::size_t size = 0;
    const std::size_t capacity = ReadAll(reader, rules, file, size);
    if (file.hasFailed) Free(std::exchange(file.text, nullptr));
    if (file.text == nullptr) return file;
    file.text[size] = '\0';
    file.size = static_cast<std::int32_t>(size);
    if (capacity > size + Extra)
        if (void* const trimmed = rules.resize(file.text, size + 1)) file.text = static_cast<char*>(trimmed);
    return file;
}
