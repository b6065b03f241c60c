// The usual search, memchr for the first character and memcmp for the rest, is the fastest on real text and quadratic
// on texts like "aaaa...". It is given a budget of comparisons in proportion to what it has passed; a text that uses it
// up is finished with the Knuth-Morris-Pratt search, whose cost does not depend on the texts. That one needs four bytes
// per character of `what`; without the memory for them the usual search goes on alone.

#include "foundations/text_search.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t npos = std::string_view::npos;

struct FreeBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};
using BorderTable = std::unique_ptr<std::uint32_t[], FreeBlock>;

// borders[i]: the length of the longest proper prefix of `what` that ends what[0..i] as well.
BorderTable MakeBorders(std::string_view what) noexcept {
    if (what.size() > UINT32_MAX) return nullptr;
    BorderTable borders(static_cast<std::uint32_t*>(std::malloc(what.size() * sizeof(std::uint32_t))));
    if (!borders) return nullptr;
    borders[0] = 0;
    std::uint32_t border = 0;
    for (std::size_t i = 1; i < what.size(); ++i) {
        while (border > 0 && what[i] != what[border]) border = borders[border - 1];
        if (what[i] == what[border]) ++border;
        borders[i] = border;
    }
    return borders;
}

std::size_t FindByBorders(std::string_view text, std::string_view what, std::size_t from,
                          const std::uint32_t* borders) noexcept {
    std::size_t matched = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
        while (matched > 0 && text[i] != what[matched]) matched = borders[matched - 1];
        if (text[i] == what[matched]) ++matched;
        if (matched == what.size()) return i + 1 - matched;
    }
    return npos;
}

}  // namespace

std::size_t FindText(std::string_view text, std::string_view what, std::size_t from) noexcept {
    if (what.empty() || from > text.size() || what.size() > text.size() - from) return npos;
    const char* const lastStart = text.data() + (text.size() - what.size());
    const char* position = text.data() + from;
    std::size_t compared = 0;
    bool mayRescue = true;
    while (position <= lastStart) {
        const auto room = static_cast<std::size_t>(lastStart - position) + 1;
        position = static_cast<const char*>(std::memchr(position, what.front(), room));
        if (position == nullptr) return npos;
        if (std::memcmp(position + 1, what.data() + 1, what.size() - 1) == 0)
            return static_cast<std::size_t>(position - text.data());
        ++position;

        // A comparison is charged at its full length although most end early: the rescue then comes a little too soon
        // for some harmless texts, at no harm to the result.
        const auto passed = static_cast<std::size_t>(position - text.data()) - from;
        compared += what.size();
        if (mayRescue && compared > 64 * passed + 65536) {
            if (const BorderTable borders = MakeBorders(what))
                return FindByBorders(text, what, from + passed, borders.get());
            mayRescue = false;
        }
    }
    return npos;
}
