// The usual search, memchr for the first character and memcmp for the rest, is the fastest on real text and quadratic
// on texts like "aaaa...". So a long `what` is sought by its first 16 characters, and what is compared beyond them is
// charged to a budget in proportion to the text that was passed; a text that uses the budget up is finished with the
// Knuth-Morris-Pratt search, whose cost does not depend on the texts. That one needs four bytes per character of
// `what`; without the memory for them the usual search goes on alone.

#include "foundations/text_search.h"

#include <cstdint>
#include <memory>

#include "base/memory.h"

using namespace zel;

namespace {

constexpr std::size_t npos = std::string_view::npos;

// Characters that may be compared in vain: from the beginning, and for each one that was passed.
constexpr std::size_t FirstBudget = 65536;
constexpr std::size_t BudgetForCharacter = 32;

using BorderTable = std::unique_ptr<std::uint32_t[], FreeBlock>;

// borders[i]: the length of the longest proper prefix of `what` that ends what[0..i] as well.
BorderTable MakeBorders(std::string_view what) noexcept {
    if (what.size() > UINT32_MAX) return nullptr;
    BorderTable borders(AllocateArray<std::uint32_t>(what.size()));
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

std::size_t zel::FindLongText(std::string_view text, std::string_view what, std::size_t from) noexcept {
    const std::string_view head = what.substr(0, SearchHeadSize);
    const std::string_view rest = what.substr(SearchHeadSize);
    const std::string_view heads = text.substr(0, text.size() - rest.size());
    std::size_t compared = 0;
    for (std::size_t at = from; (at = FindShortText(heads, head, at)) != npos; ++at) {
        if (std::memcmp(text.data() + at + SearchHeadSize, rest.data(), rest.size()) == 0) return at;
        compared += rest.size();
        if (compared > FirstBudget + (at - from) * BudgetForCharacter) {
            const BorderTable borders = MakeBorders(what);
            if (borders) return FindByBorders(text, what, at + 1, borders.get());
            compared = 0;
        }
    }
    return npos;
}
