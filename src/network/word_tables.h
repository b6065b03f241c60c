// The words that one direction of a connection has carried, and their numbers.
#ifndef NETWORK_WORD_TABLES_H
#define NETWORK_WORD_TABLES_H

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ZELString.h"

namespace zel {

// Words that were sent: from the text to the number.
class SentWords {
public:
    // The number of the word, or -1.
    int Find(std::string_view word) const noexcept;
    // The number that the next new word gets: 0, 1, 2, ...
    int Next() const noexcept { return static_cast<int>(_numbers.size()); }
    // Enters a word that is not there. False when memory runs out, which is said on standard output.
    bool Add(std::string_view word) noexcept;

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    std::unordered_map<std::string, int, Hash, std::equal_to<>> _numbers;
};

// Words that were received: from the number to the text. The peer chooses the numbers. Those that count up from 0, as
// every good peer's do, stand in an array; a tree holds the others, since no choice of numbers makes it slow.
class ReceivedWords {
public:
    // The text of the number, or null.
    const ZELString* Find(int number) const noexcept;
    // Enters a word; a number that is taken keeps its first one. False when memory runs out, which is said on standard
    // output.
    bool Add(int number, ZELString&& word) noexcept;

private:
    std::vector<ZELString> _inOrder;
    std::map<int, ZELString> _others;
};

}  // namespace zel

#endif
