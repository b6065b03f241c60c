// A component is a name beside a map on the heap, which its copies share.
//
// Invariants: _map is null without memory; only a component that is no view destroys it. Hazard: a view whose original
// is destroyed. The code cannot detect it, so the header forbids it.

#include "TAComponent.h"

#include <utility>

#include "TADiagnostics.h"
#include "TATextUtilities.h"
#include "ZELHashRWMap.h"
#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

constexpr int FirstBuckets = 30;
constexpr float LoadFactor = 0.75F;

// A key that memory cut off would be another one: it is none.
const char* KeyOf(const ZELString& key) noexcept {
    return key.IsIncomplete() ? nullptr : key.CastToCharPtr();
}

}  // namespace

TAComponent::TAComponent() noexcept : _map(ZELNew<ZELHashRWMap>(FirstBuckets, LoadFactor)) {
    if (_map == nullptr) ReportAllocFailure("TAComponent", sizeof(ZELHashRWMap));
}

TAComponent::TAComponent(const TAComponent& other) noexcept : _name(other._name), _map(other._map), _isView(true) {}

TAComponent& TAComponent::operator=(const TAComponent& other) noexcept {
    _name = other._name;
    if (_map == other._map) return *this;
    if (!_isView) ZELDelete(_map);
    _map = other._map;
    _isView = true;
    return *this;
}

TAComponent::~TAComponent() {
    if (!_isView) ZELDelete(_map);
}

void TAComponent::SetName(ZELString name) noexcept {
    _name = std::move(name);
}

int TAComponent::Insert(const char* key, void* value) noexcept {
    if (_map == nullptr) return 0;
    if (_map->contains(key)) return 1;
    _map->insert(key, value);
    return 0;
}

int TAComponent::Insert(ZELString key, void* value) noexcept {
    return Insert(KeyOf(key), value);
}

void* TAComponent::GetValue(const char* key) const noexcept {
    void* value = nullptr;
    if (_map != nullptr) _map->search(key, &value);
    return value;
}

void* TAComponent::GetValue(ZELString key) const noexcept {
    return GetValue(KeyOf(key));
}

int TAComponent::IsIn(const char* key) const noexcept {
    return _map != nullptr && _map->contains(key) ? 1 : 0;
}

int TAComponent::IsIn(ZELString key) const noexcept {
    return IsIn(KeyOf(key));
}

void TAComponent::Remove(const char* key) noexcept {
    if (_map != nullptr) _map->remove(key);
}

void TAComponent::Remove(ZELString key) noexcept {
    Remove(KeyOf(key));
}

void TAComponent::Clear() noexcept {
    if (_map != nullptr) _map->clear();
}

int TAComponent::GetSize() const noexcept {
    return _map != nullptr ? _map->size() : 0;
}

ZELMapIterator* TAComponent::GetIterator() const noexcept {
    return _map != nullptr ? _map->getIterator() : nullptr;
}

ZELMapIterator* TAComponent::GetIteratorRef() const noexcept {
    return _map != nullptr ? _map->getIteratorRef() : nullptr;
}

int TAComponent::GetList(ZELListValZELString& keys) const noexcept {
    keys.RemoveAll(ZELCollec::KeepMemory);
    if (_map == nullptr) return 0;
    for (const auto& [key, value] : *_map) keys.Append(key);
    keys.QuickSort(CompareTAStrings);
    return keys.Size();
}

void TAComponent::DumpKeys() const noexcept {
    if (_map == nullptr) return;
    for (const auto& [key, value] : *_map) Trace(key, 0);
}
