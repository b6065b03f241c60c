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
#include "base/memory.h"

namespace zel {

// Words that were sent: from the text to the number.
class SentWords {
public:
    // The number of the word, or -1.
    int Find(std::string_view word) const noexcept;
    // The number that the next new word gets: 0, 1, 2, ...
    int Next() const noexcept { return static_cast<int>(_numbers.size()); }
    // Adds a word that is not in the table. False when memory runs out, which is reported.
    bool Add(std::string_view word) noexcept;

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using Text = std::basic_string<char, std::char_traits<char>, HeapAllocator<char>>;

    std::unordered_map<Text, int, Hash, std::equal_to<>, HeapAllocator<std::pair<const Text, int>>> _numbers;
};

// Words that were received: from the number to the text. The peer chooses the numbers. Numbers that count up from 0, as
// every good peer sends them, are in an array. A tree holds the others, since no choice of numbers makes it slow.
class ReceivedWords {
public:
    // The text of the number, or null.
    const ZELString* Find(int number) const noexcept;
    // Adds a word; a number that is known keeps its first one. False when memory runs out, which is reported.
    bool Add(int number, ZELString&& word) noexcept;

private:
    std::vector<ZELString, HeapAllocator<ZELString>> _inOrder;
    std::map<int, ZELString, std::less<>, HeapAllocator<std::pair<const int, ZELString>>> _others;
};

}  // namespace zel

#endif
