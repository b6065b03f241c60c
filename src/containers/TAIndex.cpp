// TAIndex keeps its first entries inside the object and later ones in two heap arrays; from SearchFrom entries on, a
// TAIndexSearch beside the arrays makes it fast. Without one (small, or no memory for it) the index is the plain thing:
// binary search with string comparisons, and insertion that moves the tails of both arrays.
//
// Invariants: _count counts all entries, the arrays hold _count - staged of them, in order; _settled is 0 while some
// are staged, else _count; _count < _allocated always, so that there is room to settle. A view is always settled. Cost:
// 16 bytes moved for each entry behind an inserted or removed one while the index is small. Danger: a view shares
// everything with its source. Whatever writes or frees must ask _isView first.

#include "TAIndex.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/failure_report.h"
#include "containers/index_search.h"
#include "containers/sorted_arrays.h"

using namespace zel;

namespace {

// Below this size a few string comparisons beat the search for words.
constexpr int SearchFrom = 8;

char* CopyKey(std::string_view key) noexcept {
    char* const copy = static_cast<char*>(std::malloc(key.size() + 1));
    if (copy == nullptr) {
        ReportAllocFailure("TAIndex", key.size() + 1);
        return nullptr;
    }
    std::memcpy(copy, key.data(), key.size());
    copy[key.size()] = '\0';
    return copy;
}

}  // namespace

struct TAIndex::Spot : TAIndexSearch::Spot {};

TAIndex::TAIndex(int increment) noexcept : _increment(increment < InlineCapacity ? InlineCapacity : increment) {}

TAIndex::TAIndex(const TAIndex& other) noexcept : TAIndex() {
    for (int i = 0; i < other._count; ++i) {
        if (Append(other[i], other.Get(i)) == nullptr) {
            Reset();
            return;
        }
    }
}

TAIndex& TAIndex::operator=(const TAIndex& other) noexcept {
    // A view of this index brings nothing new, and would be left without its source.
    const bool viewsThis = other._isView && !_isView && other._keys == _keys;
    if (this == &other || viewsThis) return *this;
    if (other._settled != other._count) other.Settle();
    FreeAll();
    CopyFields(other);
    _isView = true;
    return *this;
}

TAIndex::~TAIndex() {
    FreeAll();
}

void TAIndex::FreeAll() noexcept {
    if (_isView) return;
    Reset();
    if (IsInline()) return;
    std::free(_keys);
    std::free(_values);
}

// Takes every field as it is, so that arrays inside `other` stay there; nothing may be owned before.
void TAIndex::CopyFields(const TAIndex& other) noexcept {
    std::memcpy(_inlineKeys, other._inlineKeys, sizeof _inlineKeys);
    std::memcpy(_inlineValues, other._inlineValues, sizeof _inlineValues);
    _keys = other._keys;
    _values = other._values;
    _count = other._count;
    _allocated = other._allocated;
    _increment = other._increment;
    _isView = other._isView;
    _settled = other._settled;
    _search = other._search;
}

// Turns a view into an index with entries of its own; false, and still a view, when memory ran out.
bool TAIndex::BecomeOwner() noexcept {
    TAIndex own(*this);
    if (own._count != _count) return false;
    const bool isInline = own.IsInline();
    CopyFields(own);
    if (isInline) {
        _keys = _inlineKeys;
        _values = _inlineValues;
    }
    own._isView = true;  // what it made is ours now
    return true;
}

int TAIndex::PositionOf(const SoughtKey& key) const noexcept {
    if (_settled != _count) Settle();
    if (_search != nullptr) {
        const TAIndexSearch::Hit hit = _search->LookUp(key, {_keys, _values, _count});
        return hit.found ? hit.place : -1;
    }
    const IndexPlace place = FindPlace(_count, [&](int i) { return CompareKey(key, _keys[i]); });
    return place.found ? place.position : -1;
}

void* TAIndex::operator[](const char* key) const noexcept {
    if (key == nullptr) return nullptr;
    if (_search != nullptr) return _search->LookUp({key, true}, {_keys, _values, _count - _search->Staged()}).value;
    const IndexPlace place = FindPlace(_count, [&](int i) { return std::strcmp(key, _keys[i]); });
    return place.found ? _values[place.position] : nullptr;
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
    if (_search != nullptr) return {_search->Find(key, {_keys, _values, _count - _search->Staged()})};
    const IndexPlace place = FindInsertPlace(_count, [&](int i) { return CompareKey(key, _keys[i]); });
    return {{place.position, 0, place.found ? _keys[place.position] : nullptr, 0, 0}};
}

const char* TAIndex::Append(const char* key, void* value) noexcept {
    if (key == nullptr) return nullptr;
    const std::string_view text(key);
    if (!_isView) PrepareSearch();
    const Spot spot = Find({text, true});
    if (spot.key != nullptr) return spot.key;
    if (_isView) return BecomeOwner() ? Append(key, value) : nullptr;
    if (increaseAllocSize() != 0) return nullptr;
    char* const copy = CopyKey(text);
    if (copy != nullptr) Insert(spot, copy, value);
    return copy;
}

// Gives a large index its TAIndexSearch, with room for one more entry. An index that cannot have it does without.
void TAIndex::PrepareSearch() noexcept {
    if (_search == nullptr) {
        if (_count >= SearchFrom) _search = TAIndexSearch::Create({_keys, _values, _count});
    } else if (!_search->Reserve(_count + 1)) {
        DropSearch();
    }
}

void TAIndex::DropSearch() noexcept {
    if (_settled != _count) Settle();
    delete _search;
    _search = nullptr;
}

void TAIndex::Insert(const Spot& spot, char* key, void* value) noexcept {
    if (_search != nullptr) {
        _search->Insert(spot, {_keys, _values, _count - _search->Staged()}, key, value);
    } else {
        InsertItem(_keys, _count, spot.place, key);
        InsertItem(_values, _count, spot.place, value);
    }
    ++_count;
    _settled = _search != nullptr && _search->Staged() > 0 ? 0 : _count;
}

bool TAIndex::HoldsAfterSettling(int position) const noexcept {
    if (_settled != _count) Settle();
    return static_cast<unsigned>(position) < static_cast<unsigned>(_count);
}

void TAIndex::Settle() const noexcept {
    if (_search != nullptr) _search->Settle({_keys, _values, _count - _search->Staged()});
    _settled = _count;
}

int TAIndex::RemovePosition(int position) noexcept {
    if (!Holds(position) || (_isView && !BecomeOwner())) return 1;
    std::free(_keys[position]);
    RemoveItem(_keys, _count, position);
    RemoveItem(_values, _count, position);
    if (_search != nullptr) _search->Remove(position, _count);
    _settled = --_count;
    // The search lives on entries; half its threshold, so that an index of about that size does not go to and fro.
    if (_search != nullptr && _count < SearchFrom / 2) DropSearch();
    return 0;
}

int TAIndex::Reset() noexcept {
    if (_isView) {
        // Nothing of it is ours: start anew.
        _keys = _inlineKeys;
        _values = _inlineValues;
        _search = nullptr;
        _isView = false;
        _count = _settled = 0;
    }
    DropSearch();
    while (_count > 0) std::free(_keys[--_count]);
    _settled = 0;
    // The arrays are kept. The increment may be more than the inline ones hold, and is never more than heap ones do.
    _allocated = IsInline() ? InlineCapacity : _increment;
    return 0;
}

int TAIndex::increaseAllocSize() noexcept {
    if (_isView && !BecomeOwner()) return 1;
    GrowWhenNearlyFull(_keys, _values, _count, _allocated, _increment, _inlineKeys, _inlineValues);
    return 0;
}
