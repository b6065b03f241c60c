// Two tricks make a large index fast; both are invisible from outside.
//
// Words: for each key, the 8 bytes behind the prefix that all keys share, as one big-endian number (filled up with
// zeros). Numbers compare as the bytes do, so that a look-up is a search in one array of numbers, and reads a key only
// where words are equal. The prefix only ever shrinks, and each byte that it loses was in every key: all rebuilding
// together costs no more than the reading of the keys did.
//
// Staging area: an insertion into a large array would move its whole tail. Instead fresh entries are kept apart,
// sorted, each with the place in the arrays where it belongs, until the area is full or a position is asked for; then
// one pass from the end moves every entry at most once. A key behind all others goes to the arrays directly, so places
// stay right, and no staged entry ever belongs behind the last settled one.
//
// Invariants: _words[i] belongs to keys[i]; a key is either settled or staged; all of them start with the same _prefix
// bytes. Danger: a key that is sought need not start with them, and may end before.

#include "containers/index_search.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

using namespace zel;

namespace {

// Below this size moving the tail costs less than keeping entries apart.
constexpr int StageFrom = 256;
constexpr int MinStageRoom = 64;
constexpr int MaxStageRoom = 4096;

std::size_t CommonPrefix(std::string_view left, const char* right) noexcept {
    std::size_t length = 0;
    while (length < left.size() && left[length] == right[length]) ++length;
    return length;
}

// The first 8 bytes of `rest`. Filled up with zeros.
std::uint64_t WordOf(std::string_view rest) noexcept {
    const auto byte = [&](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(rest[i])}; };
    if (rest.size() >= 8) {
        // Written out, since compilers make one load and one byte swap of this, but not of a loop.
        return byte(0) << 56 | byte(1) << 48 | byte(2) << 40 | byte(3) << 32 | byte(4) << 24 | byte(5) << 16 |
               byte(6) << 8 | byte(7);
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < rest.size(); ++i) word |= byte(i) << (56 - 8 * i);
    return word;
}

template <class Item>
bool Resize(Item*& items, int room) noexcept {
    return MoveToSlots(items, room, 0, false);
}

}  // namespace

TAIndexSearch* TAIndexSearch::Create(const Entries& entries) noexcept {
    std::unique_ptr<TAIndexSearch, DeleteObject> search(ZELNew<TAIndexSearch>());
    if (search == nullptr || !search->Reserve(entries.count + 1)) return nullptr;
    // What the first and the last of sorted keys share, all share.
    search->_prefix = CommonPrefix(entries.keys[0], entries.keys[entries.count - 1]);
    search->MakeWords(entries);
    return search.release();
}

TAIndexSearch::~TAIndexSearch() {
    if (_words != _firstWords) Free(_words);
    Free(_stageWords);
    Free(_slots);
    Free(_records);
}

bool TAIndexSearch::Reserve(int count) noexcept {
    if (count <= _room) return true;
    const int generous = count <= INT_MAX / 2 ? count * 2 : INT_MAX;
    if (!MoveToSlots(_words, generous, _room, _words == _firstWords)) return false;
    _room = generous;
    return true;
}

void TAIndexSearch::MakeWords(const Entries& entries) noexcept {
    for (int i = 0; i < entries.count; ++i) _words[i] = WordOf(entries.keys[i] + _prefix);
    for (int i = 0; i < _staged; ++i) _stageWords[i] = WordOf(_records[_slots[i]].key + _prefix);
}

template <class KeyAt>
IndexPlace TAIndexSearch::FindByWord(const std::uint64_t* words, int count, std::uint64_t word, const SoughtKey& key,
                                     KeyAt keyAt) const noexcept {
    const int at = LowerBound(words, count, word);
    if (at == count || words[at] != word) return {at, false};
    const auto compare = [&](int i) { return CompareKey(key, keyAt(i)); };
    if (at + 1 == count || words[at + 1] != word) {
        const int order = compare(at);
        return {at + (order > 0 ? 1 : 0), order == 0};
    }
    const int end = word == UINT64_MAX ? count : LowerBound(words, count, word + 1);
    const IndexPlace place = FindPlace(end - at, [&](int i) { return compare(at + i); });
    return {at + place.position, place.found};
}

// A key that lacks the common prefix needs no test of its own here: it differs from whatever its word leads to.
TAIndexSearch::Hit TAIndexSearch::LookUp(const SoughtKey& key, const Entries& entries) const noexcept {
    if (key.text.size() < _prefix) return {nullptr, 0, false};
    const std::uint64_t word = WordOf(key.text.substr(_prefix));
    const IndexPlace settled = FindByWord(_words, entries.count, word, key, [&](int i) { return entries.keys[i]; });
    if (settled.found) return {entries.values[settled.position], settled.position, true};
    if (_staged == 0) return {nullptr, 0, false};
    const IndexPlace fresh =
        FindByWord(_stageWords, _staged, word, key, [&](int i) { return _records[_slots[i]].key; });
    if (!fresh.found) return {nullptr, 0, false};
    return {_records[_slots[fresh.position]].value, 0, true};
}

TAIndexSearch::Spot TAIndexSearch::Find(const SoughtKey& key, const Entries& entries) const noexcept {
    const std::string_view text = key.text;
    if (_prefix != 0) {
        const char* const first = entries.keys[0];
        const std::size_t common = CommonPrefix(text.substr(0, _prefix), first);
        if (common < _prefix) {
            const bool isBefore = std::strcmp(text.data() + common, first + common) < 0;
            return isBefore ? Spot{0, 0, nullptr, common, 0} : Spot{entries.count, _staged, nullptr, common, 0};
        }
    }
    const std::uint64_t word = WordOf(text.substr(_prefix));
    // Keys that arrive in order are recognised at once.
    if (word > _words[entries.count - 1]) return {entries.count, _staged, nullptr, _prefix, word};
    const IndexPlace settled = FindByWord(_words, entries.count, word, key, [&](int i) { return entries.keys[i]; });
    if (settled.found) return {settled.position, 0, entries.keys[settled.position], _prefix, word};
    if (_staged == 0) return {settled.position, 0, nullptr, _prefix, word};
    const IndexPlace fresh =
        FindByWord(_stageWords, _staged, word, key, [&](int i) { return _records[_slots[i]].key; });
    char* const stored = fresh.found ? _records[_slots[fresh.position]].key : nullptr;
    return {settled.position, fresh.position, stored, _prefix, word};
}

// Room for one more staged entry; false when the area is full, or when it cannot be had.
bool TAIndexSearch::PrepareStage(int count) noexcept {
    if (_staged > 0) return _staged < _stageRoom;
    const int wanted = std::clamp(count / 64, MinStageRoom, MaxStageRoom);
    if (wanted > _stageRoom && Resize(_stageWords, wanted) && Resize(_slots, wanted) && Resize(_records, wanted))
        _stageRoom = wanted;
    return _stageRoom > 0;
}

void TAIndexSearch::Insert(Spot spot, const Entries& entries, char* key, void* value) noexcept {
    if (spot.prefix < _prefix) {
        _prefix = spot.prefix;
        MakeWords(entries);
        spot.word = WordOf(key + _prefix);
    }
    Entries settled = entries;
    const bool isLast = spot.place == entries.count;
    if (!isLast && _staged > 0 && !PrepareStage(entries.count)) {
        settled.count += _staged;
        Settle(entries);
        spot.place += spot.staged;
        spot.staged = 0;
    }
    if (isLast || settled.count < StageFrom || !PrepareStage(settled.count)) {
        InsertItem(settled.keys, settled.count, spot.place, key);
        InsertItem(settled.values, settled.count, spot.place, value);
        InsertItem(_words, settled.count, spot.place, spot.word);
        return;
    }
    _records[_staged] = {key, value, spot.place};
    InsertItem(_stageWords, _staged, spot.staged, spot.word);
    InsertItem(_slots, _staged, spot.staged, _staged);
    ++_staged;
}

void TAIndexSearch::Settle(const Entries& entries) noexcept {
    const auto moveUp = [](auto* items, int from, int to, int by) {
        std::memmove(items + from + by, items + from, static_cast<std::size_t>(to - from) * sizeof *items);
    };
    int end = entries.count;
    for (; _staged > 0; --_staged) {
        const Record& record = _records[_slots[_staged - 1]];
        moveUp(entries.keys, record.place, end, _staged);
        moveUp(entries.values, record.place, end, _staged);
        moveUp(_words, record.place, end, _staged);
        end = record.place;
        const int place = end + _staged - 1;
        entries.keys[place] = record.key;
        entries.values[place] = record.value;
        _words[place] = _stageWords[_staged - 1];
    }
}
