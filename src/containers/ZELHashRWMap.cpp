// A map with one kept iterator, filled again after a change.
//
// Invariants: _modified is 0 only while _iterator shows the entries as they are; _ownsIterator tells whether the
// iterator was made by this map. Danger: a program may still hold the kept iterator of a map that has ended. It is
// therefore never freed then, only kept where a leak search finds it.

#include "ZELHashRWMap.h"

#include "ZELMemory.h"

namespace {

// Iterators that outlive their map.
struct Outliving {
    ZELHashRWMapIteratorRef* iterator;
    Outliving* older;
};

constinit Outliving* newestOutliving = nullptr;

void KeepReachable(ZELHashRWMapIteratorRef* iterator) noexcept {
    Outliving* const kept = ZELNew<Outliving>(iterator, newestOutliving);
    if (kept != nullptr) newestOutliving = kept;  // otherwise it stays allocated all the same
}

}  // namespace

ZELHashRWMapIteratorRef::ZELHashRWMapIteratorRef(int size) noexcept : ZELHashSCMapIterator(size) {}

void ZELHashRWMapIteratorRef::RewindIterator() {
    _current = -1;
}

ZELHashRWMap::ZELHashRWMap(int size, float loadFactor) noexcept : ZELHashSCMap(size, loadFactor, nullptr) {}

ZELHashRWMap::ZELHashRWMap(const ZELHashRWMap& other) noexcept
    : ZELHashSCMap(other), _modified(other._modified), _iterator(other._iterator) {}

ZELHashRWMap& ZELHashRWMap::operator=(const ZELHashRWMap& other) noexcept {
    if (this == &other) return *this;
    ZELHashSCMap::operator=(other);
    if (!_isView) return *this;  // the other one is a view of this map
    _modified = other._modified;
    if (_iterator == other._iterator) return *this;
    DropIterator();
    _iterator = other._iterator;
    return *this;
}

ZELHashRWMap::~ZELHashRWMap() {
    DropIterator();
}

void ZELHashRWMap::DropIterator() noexcept {
    if (_ownsIterator) KeepReachable(_iterator);
    _ownsIterator = false;
    _iterator = nullptr;
}

const char* ZELHashRWMap::insert(const char* key, void* value) {
    _modified = 1;
    return ZELHashSCMap::insert(key, value);
}

void ZELHashRWMap::remove(const char* key) {
    _modified = 1;
    ZELHashSCMap::remove(key);
}

void ZELHashRWMap::clear() {
    _modified = 1;
    ZELHashSCMap::clear();
}

ZELHashRWMapIteratorRef* ZELHashRWMap::getIteratorRef() {
    if (_modified == 0 && _iterator != nullptr) {
        _iterator->RewindIterator();
        return _iterator;
    }
    if (_ownsIterator) ZELDelete(_iterator);
    _ownsIterator = false;
    _iterator = static_cast<ZELHashRWMapIteratorRef*>(Fill(ZELNew<ZELHashRWMapIteratorRef>(_count)));
    if (_iterator == nullptr) return nullptr;
    _ownsIterator = true;
    _modified = 0;
    return _iterator;
}
