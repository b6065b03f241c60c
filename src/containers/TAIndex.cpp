// TAIndex keeps its first entries inside the object and later ones in two heap arrays. From SearchFrom entries on, a
// TAIndexSearch beside the arrays makes it fast. Without one (a small index, or no memory for the search) a look-up is
// a binary search with string comparisons, and an insertion moves the tails of both arrays.
//
// Invariants: _entries.count counts all entries. The arrays hold all of them but the staged ones, in order. _settled is
// 0 while some entries are staged, else the count. The count is below the capacity, so that there is room to settle. A
// view is always settled.
// Cost: 16 bytes are moved for each entry after an inserted or removed one while the index is small.
// Hazard: a view shares everything with its source. Code that writes or frees must check isView first.

#include "TAIndex.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "containers/index_search.h"
#include "containers/sorted_arrays.h"

using namespace zel;

namespace {

// Below this size a few string comparisons beat the search for words.
constexpr int SearchFrom = 8;

TAIndexSearch::Entries SettledOf(const IndexArrays<char*>& entries, const TAIndexSearch& search) noexcept {
    return {entries.keys, entries.values, entries.count - search.Staged()};
}

}  // namespace

struct TAIndex::Spot : TAIndexSearch::Spot {};

TAIndex::TAIndex(int increment) noexcept
    : _entries{_inlineKeys, _inlineValues, 0, InlineCapacity, std::max(increment, InlineCapacity)} {}

TAIndex::TAIndex(const TAIndex& other) noexcept : TAIndex() {
    for (int i = 0; i < other._entries.count; ++i) {
        if (Append(other[i], other.Get(i)) == nullptr) {
            Reset();
            return;
        }
    }
}

TAIndex& TAIndex::operator=(const TAIndex& other) noexcept {
    // A view of this index brings nothing new, and would be left without its source.
    if (this == &other || other._entries.IsViewOf(_entries)) return *this;
    if (other._settled != other.Size()) other.Settle();
    FreeAll();
    _entries = other._entries.View();
    _settled = other._settled;
    _search = other._search;
    return *this;
}

TAIndex::~TAIndex() {
    FreeAll();
}

void TAIndex::FreeAll() noexcept {
    if (!_entries.isView) DropSearch();
    FreeEntries(_entries, IsInline());
}

// Turns a view into an index with entries of its own; false, and still a view, when memory ran out.
bool TAIndex::BecomeOwner() noexcept {
    TAIndex own(*this);
    if (own.Size() != Size()) return false;
    if (own.IsInline()) {
        std::memcpy(_inlineKeys, own._inlineKeys, sizeof _inlineKeys);
        std::memcpy(_inlineValues, own._inlineValues, sizeof _inlineValues);
        own._entries.keys = _inlineKeys;
        own._entries.values = _inlineValues;
    }
    std::swap(_entries, own._entries);  // so that the copy ends as a view
    std::swap(_search, own._search);
    _settled = own._settled;
    return true;
}

int TAIndex::PositionOf(const SoughtKey& key) const noexcept {
    if (_settled != _entries.count) Settle();
    if (_search != nullptr) {
        const TAIndexSearch::Hit hit = _search->LookUp(key, SettledOf(_entries, *_search));
        return hit.found ? hit.place : -1;
    }
    const IndexPlace place = FindPlace(_entries.count, [&](int i) { return CompareKey(key, _entries.keys[i]); });
    return place.found ? place.position : -1;
}

void* TAIndex::operator[](const char* key) const noexcept {
    if (key == nullptr) return nullptr;
    if (_search != nullptr) return _search->LookUp({key, true}, SettledOf(_entries, *_search)).value;
    const IndexPlace place = FindPlace(_entries.count, [&](int i) { return std::strcmp(key, _entries.keys[i]); });
    return place.found ? _entries.values[place.position] : nullptr;
}

int TAIndex::IsIn(const char* key) const noexcept {
    return key != nullptr ? PositionOf({key, true}) : -1;
}

int TAIndex::IsIn(const char* key, int length) const noexcept {
    if (key == nullptr || length < 0) return -1;
    const std::size_t size = static_cast<std::size_t>(length);
    const bool isShorter = std::memchr(key, '\0', size) != nullptr;
    return isShorter ? -1 : PositionOf({{key, size}, false});
}

TAIndex::Spot TAIndex::Find(const SoughtKey& key) const noexcept {
    if (_search != nullptr) return {_search->Find(key, SettledOf(_entries, *_search))};
    const IndexPlace place = FindInsertPlace(_entries.count, [&](int i) { return CompareKey(key, _entries.keys[i]); });
    return {{place.position, 0, place.found ? _entries.keys[place.position] : nullptr, 0, 0}};
}

const char* TAIndex::Append(const char* key, void* value) noexcept {
    if (key == nullptr) return nullptr;
    const std::string_view text(key);
    if (!_entries.isView) PrepareSearch();
    const Spot spot = Find({text, true});
    if (spot.key != nullptr) return spot.key;
    if (_entries.isView) return BecomeOwner() ? Append(key, value) : nullptr;
    if (increaseAllocSize() != 0) return nullptr;
    char* const copy = static_cast<char*>(CopyKey("TAIndex", key, text.size() + 1));
    if (copy != nullptr) Insert(spot, copy, value);
    return copy;
}

// Gives a large index its TAIndexSearch, with room for one more entry. An index that cannot have it does without.
void TAIndex::PrepareSearch() noexcept {
    if (_search == nullptr) {
        if (_entries.count >= SearchFrom)
            _search = TAIndexSearch::Create({_entries.keys, _entries.values, _entries.count});
    } else if (!_search->Reserve(_entries.count + 1)) {
        DropSearch();
    }
}

void TAIndex::DropSearch() noexcept {
    if (_settled != _entries.count) Settle();
    ZELDelete(_search);
    _search = nullptr;
}

void TAIndex::Insert(const Spot& spot, char* key, void* value) noexcept {
    if (_search != nullptr) {
        _search->Insert(spot, SettledOf(_entries, *_search), key, value);
        ++_entries.count;
    } else {
        InsertEntry(_entries, spot.place, key, value);
    }
    _settled = _search != nullptr && _search->Staged() > 0 ? 0 : _entries.count;
}

bool TAIndex::HoldsAfterSettling(int position) const noexcept {
    if (_settled != _entries.count) Settle();
    return static_cast<unsigned>(position) < static_cast<unsigned>(_entries.count);
}

void TAIndex::Settle() const noexcept {
    if (_search != nullptr) _search->Settle(SettledOf(_entries, *_search));
    _settled = _entries.count;
}

int TAIndex::RemovePosition(int position) noexcept {
    if (!Holds(position) || (_entries.isView && !BecomeOwner())) return 1;
    Free(_entries.keys[position]);
    if (_search != nullptr) _search->Remove(position, _entries.count);
    RemoveEntry(_entries, position);
    _settled = _entries.count;
    // The search lives on entries; half its threshold, so that an index of about that size does not go to and fro.
    if (_search != nullptr && _entries.count < SearchFrom / 2) DropSearch();
    return 0;
}

int TAIndex::Reset() noexcept {
    if (_entries.isView) {
        // Nothing of it is ours: start anew.
        _entries = {_inlineKeys, _inlineValues, 0, InlineCapacity, _entries.increment};
        _settled = 0;
        _search = nullptr;
    }
    DropSearch();
    FreeKeys(_entries);
    _settled = 0;
    // The arrays are kept. The increment may be more than the inline ones hold, and is never more than heap ones do.
    _entries.allocated = IsInline() ? InlineCapacity : _entries.increment;
    return 0;
}

int TAIndex::increaseAllocSize() noexcept {
    if (_entries.isView && !BecomeOwner()) return 1;
    GrowWhenNearlyFull(_entries, IsInline());
    return 0;
}
