// The hidden half of a large TAIndex: finds keys without touching most of them, and lets insertions move little.
#ifndef CONTAINERS_INDEX_SEARCH_H
#define CONTAINERS_INDEX_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "containers/sorted_arrays.h"

namespace zel {

// A text that is looked for; it holds no NUL.
struct SoughtKey {
    std::string_view text;
    bool isTerminated;  // a NUL follows: strcmp may be used, which is faster than its bounded kin
};

// How `key` compares with a stored text. Reads neither beyond its end.
inline int CompareKey(const SoughtKey& key, const char* stored) noexcept {
    if (key.isTerminated) return std::strcmp(key.text.data(), stored);
    const int order = std::strncmp(key.text.data(), stored, key.text.size());
    return order != 0 ? order : -static_cast<int>(stored[key.text.size()] != '\0');
}

class TAIndexSearch {
public:
    // The plain arrays of the index. Staged entries are not in them; `count` does not count them.
    struct Entries {
        char** keys;
        void** values;
        int count;
    };
    // What a look-up found; `place` counts only when nothing is staged.
    struct Hit {
        void* value;
        int place;
        bool found;
    };
    // Where a key stands, or where it would have to be inserted.
    struct Spot {
        int place;           // in the plain arrays
        int staged;          // entries of the staging area that stand before it
        char* key;           // the stored key, or null when absent
        std::size_t prefix;  // how much of the common prefix the key shares
        std::uint64_t word;  // the key's word, when that is all of it
    };

    TAIndexSearch() noexcept {}  // empty, without a word
    // Null when there is no memory. The entries are never empty from here on.
    static TAIndexSearch* Create(const Entries& entries) noexcept;
    ~TAIndexSearch();
    TAIndexSearch(const TAIndexSearch&) = delete;
    TAIndexSearch& operator=(const TAIndexSearch&) = delete;

    int Staged() const noexcept { return _staged; }
    // Makes room for `count` settled entries; false, and nothing changed, when there is no memory.
    bool Reserve(int count) noexcept;

    // Both look through the plain arrays and the staging area.
    Hit LookUp(const SoughtKey& key, const Entries& entries) const noexcept;
    // For a key with a terminator.
    Spot Find(const SoughtKey& key, const Entries& entries) const noexcept;
    // Adds an absent key at its spot, to the arrays or to the staging area. The arrays have room for everything.
    void Insert(Spot spot, const Entries& entries, char* key, void* value) noexcept;
    // Moves the staged entries into the arrays.
    void Settle(const Entries& entries) noexcept;
    // To be called after an entry has left the arrays; nothing is staged.
    void Remove(int place, int oldCount) noexcept { RemoveItem(_words, oldCount, place); }

private:
    struct Record {
        char* key;
        void* value;
        int place;  // in the plain arrays, as they stand without the staged entries
    };

    template <class KeyAt>
    IndexPlace FindByWord(const std::uint64_t* words, int count, std::uint64_t word, const SoughtKey& key,
                          KeyAt keyAt) const noexcept;
    void MakeWords(const Entries& entries) noexcept;
    bool PrepareStage(int count) noexcept;

    static constexpr int FirstRoom = 32;
    std::uint64_t _firstWords[FirstRoom];
    std::uint64_t* _words = _firstWords;  // of the plain arrays' keys
    int _room = FirstRoom;                // of _words
    std::size_t _prefix = 0;              // bytes that all keys have in common; the words start behind them

    int _staged = 0;
    int _stageRoom = 0;
    std::uint64_t* _stageWords = nullptr;  // of the staged keys, ascending
    int* _slots = nullptr;                 // the record of each of them
    Record* _records = nullptr;            // in the order of arrival: sorting moves 12 bytes for each entry, not 32
};

}  // namespace zel

#endif
