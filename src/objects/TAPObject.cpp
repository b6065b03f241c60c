// An object is an index from names to attributes, which are counted: copies of the object have indexes of their own
// with the same attributes.
//
// The index is created with the first attribute. Functions read by name if possible, because reading a large index by
// position first merges the latest additions; setting a new attribute is one search.
//
// Invariants: every attribute in the index is owned by it, together with as many others as the attribute counts; an
// attribute with other owners is replaced, never changed, except for a list, whose elements all owners see. Hazard: a
// replaced value may hold the last reference to anything, the name argument included, so it is destroyed last.

#include "TAPObject.h"

#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "objects/tree_contents.h"

using namespace zel;

namespace {

constexpr char ClassName[] = "TAPObject";

template <class Made, class... Arguments>
Made* NewOrReport(Arguments&&... arguments) noexcept {
    Made* const made = ZELNew<Made>(std::forward<Arguments>(arguments)...);
    if (made == nullptr) ReportAllocFailure(ClassName, sizeof(Made));
    return made;
}

int WrappingSum(int left, int right) noexcept {
    return static_cast<int>(static_cast<unsigned int>(left) + static_cast<unsigned int>(right));
}

}  // namespace

TAPObject::Contents::Contents(const Contents& other) noexcept : DeferredContents(), attributes(other.attributes) {
    for (int place = 0; place < attributes.Size(); ++place)
        if (TAPAttr* const shared = At(place)) ++shared->_otherOwners;
}

bool TAPObject::Contents::DestroyNext() noexcept {
    if (destroyed < attributes.Size()) {
        Drop(At(destroyed++));
        return true;
    }
    if (path == nullptr) return false;
    std::exchange(path, nullptr)->Release();
    return true;
}

void TAPObject::Contents::Drop(TAPAttr* attribute) noexcept {
    if (attribute == nullptr) return;
    if (attribute->_otherOwners > 0)
        --attribute->_otherOwners;
    else
        ZELDelete(attribute);
}

TAPObject::TAPObject(const TAPObject& other) noexcept : TARefCounter(other), _path(other.GetPath()) {
    _contents = CopyContents(other._contents);
    _isIncomplete = other._isIncomplete || (_contents == nullptr && other._contents != nullptr);
}

// Null without contents, and without memory.
TAPObject::Contents* TAPObject::CopyContents(const Contents* other) noexcept {
    Contents* const copy = other != nullptr ? NewOrReport<Contents>(*other) : nullptr;
    if (copy == nullptr || copy->attributes.Size() == other->attributes.Size()) return copy;
    DeferredContents::Destroy(copy);
    return nullptr;
}

TAPObject& TAPObject::operator=(const TAPObject& other) noexcept {
    if (this == &other) return *this;
    Contents* const contents = CopyContents(other._contents);
    if (contents == nullptr && other._contents != nullptr) {
        _isIncomplete = true;
        return *this;
    }
    _isIncomplete = other._isIncomplete;
    TARefCounter::operator=(other);
    SetPath(other._path);
    DeferredContents::Destroy(std::exchange(_contents, contents));
    return *this;
}

TAPObject::~TAPObject() {
    if (_contents != nullptr) {
        _contents->path = _path;
        DeferredContents::Destroy(_contents);
    } else if (_path != nullptr) {
        _path->Release();
    }
}

TAIndex* TAPObject::GetAttributeList() noexcept {
    if (_contents == nullptr) _contents = NewOrReport<Contents>();
    return _contents != nullptr ? &_contents->attributes : nullptr;
}

TAPAttr* TAPObject::Find(const char* name) const noexcept {
    return _contents != nullptr ? static_cast<TAPAttr*>(_contents->attributes[name]) : nullptr;
}

// Makes `made` the attribute of that name. `old` gets the attribute to destroy in exchange: null, the old attribute (or
// `made`, then with the old value), or `made` when it could not be stored, which returns false.
bool TAPObject::Put(const char* name, TAPAttr* made, TAPAttr*& old) noexcept {
    old = made;
    TAIndex* const attributes = GetAttributeList();
    if (attributes == nullptr) return false;
    const int oldSize = attributes->Size();
    if (attributes->Append(name, made) == nullptr) return false;
    old = attributes->Size() == oldSize ? Find(name) : nullptr;
    if (old != nullptr && old->_otherOwners == 0) {
        TAPAttr value(std::move(*old));
        old->Take(std::move(*made));
        made->Take(std::move(value));
        old = made;
    } else if (attributes->Size() == oldSize) {
        attributes->GetContent()[attributes->IsIn(name)] = made;
    }
    return true;
}

void TAPObject::SetAttribute(const char* name, TAPAttr value) noexcept {
    if (name != nullptr && !Store(name, std::move(value))) _isIncomplete = true;
}

bool TAPObject::Store(const char* name, TAPAttr&& value) noexcept {
    TAPObject* const child = value._type == TAPAttr::TypeObject ? value._value.object : nullptr;
    TAPAttr* const made = NewOrReport<TAPAttr>(std::move(value));
    if (made == nullptr) return false;
    TAPAttr* old;
    const bool isStored = Put(name, made, old);
    const TAPAttr* const stored = child != nullptr ? Find(name) : nullptr;
    if (stored != nullptr && *stored == child) PassPath(name, child);
    Contents::Drop(old);
    return isStored;
}

// Gives the child its path: this object's and the name.
void TAPObject::PassPath(const char* name, TAPObject* child) noexcept {
    TAPName* const last = NewOrReport<TAPName>(name);
    if (last == nullptr) return;
    TAPPath* const path = _path != nullptr ? NewOrReport<TAPPath>(_path, last) : NewOrReport<TAPPath>(last);
    last->Release();
    if (path == nullptr) return;
    child->SetPath(path);
    path->Release();
}

TAPAttr TAPObject::GetAttribute(const char* name) const noexcept {
    const TAPAttr* const found = Find(name);
    return found != nullptr ? *found : TAPAttr::Null;
}

int TAPObject::HasAttribute(const char* name) const noexcept {
    return Find(name) != nullptr ? 1 : 0;
}

int TAPObject::HasAttribute(const char* name, int length) const noexcept {
    return _contents != nullptr && _contents->At(_contents->attributes.IsIn(name, length)) != nullptr ? 1 : 0;
}

int TAPObject::RemoveAttribute(const char* name) noexcept {
    const int place = _contents != nullptr ? _contents->attributes.IsIn(name) : -1;
    if (place < 0) return 1;
    TAPAttr* const old = _contents->At(place);
    if (_contents->attributes.RemovePosition(place) != 0) return 1;
    Contents::Drop(old);
    return 0;
}

int TAPObject::AppendToAttribute(const char* name, TAPAttr value) {
    const TAPAttr* const found = Find(name);
    const bool isGrowing = found == nullptr || found->_type == TAPAttr::TypeList ||
                           found->_type == TAPAttr::TypeString || found->_type == TAPAttr::TypeInteger;
    if (name == nullptr || !isGrowing) return 1;
    if (!value._isIncomplete && AppendTo(name, std::move(value))) return 0;
    _isIncomplete = true;
    return 1;
}

// False without memory. What is there is nothing, a list, a text or an integer.
bool TAPObject::AppendTo(const char* name, TAPAttr&& value) {
    TAPAttr* found = Find(name);
    if (found == nullptr) {
        TAPAttr list{ZELListValTAPAttr()};
        if (list._isIncomplete || list._value.list->values.Append(value) != 0) return false;
        return Store(name, std::move(list));
    }
    if (found->_type == TAPAttr::TypeList) return found->_value.list->values.Append(value) == 0;
    if (found->_type == TAPAttr::TypeInteger)
        return Store(name, WrappingSum(found->_value.integer, value.GetInteger()));
    static_cast<void>(value.GetString());
    if (found->_otherOwners == 0) return found->AppendText(value);
    TAPAttr longer(*found);
    return longer.AppendText(value) && Store(name, std::move(longer));
}

int TAPObject::GetFirstAttributePosition() const noexcept {
    return _contents != nullptr && _contents->attributes.Size() > 0 ? 1 : 0;
}

TAPAttr TAPObject::GetNextAttribute(int& position) const noexcept {
    const char* name = nullptr;
    return GetNextAttribute(position, name);
}

TAPAttr TAPObject::GetNextAttribute(int& position, const char*& name) const noexcept {
    const int size = _contents != nullptr ? _contents->attributes.Size() : 0;
    const int place = position > 0 ? position - 1 : size;
    position = place + 1 < size ? place + 2 : 0;
    name = place < size ? _contents->attributes[place] : nullptr;
    const TAPAttr* const found = place < size ? _contents->At(place) : nullptr;
    return found != nullptr ? *found : TAPAttr::Null;
}

void TAPObject::SetPath(TAPPath* path) noexcept {
    if (path != nullptr) path->AddRef();
    if (TAPPath* const old = std::exchange(_path, path)) old->Release();
}

TAPPath* TAPObject::GetPath() const noexcept {
    if (_path != nullptr) _path->AddRef();
    return _path;
}

TAPObject* TAPObject::GetObjectW(TAPPath* path) noexcept {
    TAPObject* object = this;
    object->AddRef();
    for (int i = 1; path != nullptr && object != nullptr && i <= path->Size(); ++i) {
        TAPName* const name = (*path)[i];
        const TAPAttr found = name != nullptr ? object->GetAttribute(name->GetName()) : TAPAttr::Null;
        if (name != nullptr) name->Release();
        object->Release();
        object = found.GetObjectW(nullptr);
    }
    // The last two steps of a walk have no name, so only a walk without steps still has an object here.
    if (object != nullptr) object->Release();
    return nullptr;
}
