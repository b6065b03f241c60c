// A tagged union. Texts are shared by count, so copying one costs an increment; lists are copied deeply, objects and
// paths by their reference counts.
//
// Invariants: a file name or list is never null, a text is null when it is empty, an object and a path may be null; the
// code says which member of the union is there. Hazards: the assigned value may be a part of the old one (an element of
// the own list, an object that only this attribute keeps), so the new value is complete before the old one is freed;
// and lists may be nested to any depth, so no function here follows them by recursion.

#include "TAPAttr.h"

#include <functional>
#include <utility>

#include "TADiagnostics.h"
#include "TAPObject.h"
#include "TAPPath.h"
#include "base/failure_report.h"
#include "base/growing_array.h"
#include "base/memory.h"
#include "objects/shared_text.h"
#include "objects/tree_contents.h"

using namespace zel;

namespace {

constexpr char ClassName[] = "TAPAttr";

template <class Pointee>
Pointee* WithReference(Pointee* counted) noexcept {
    if (counted != nullptr) counted->AddRef();
    return counted;
}

// Never destroyed: its destructor would have nothing to do.
constinit union NullAttribute {
    constexpr NullAttribute() noexcept : attribute() {}
    constexpr ~NullAttribute() {}
    TAPAttr attribute;
} nullAttribute;

}  // namespace

constinit const TAPAttr& TAPAttr::Null = nullAttribute.attribute;

TAPAttr::TAPAttr(const char* text) noexcept : TAPAttr() {
    _value.text = SharedText::Make(text != nullptr ? text : "", ClassName);
    _type = TypeString;
    if (_value.text == nullptr && text != nullptr && *text != '\0') _isIncomplete = 1;
}

TAPAttr::TAPAttr(const ZELString& text) noexcept : TAPAttr(text.CastToCharPtr()) {
    if (text.IsIncomplete()) _isIncomplete = 1;
}

TAPAttr::TAPAttr(const TAFileName& name) noexcept : TAPAttr() {
    _value.fileName = ZELNew<TAFileName>(name);
    if (_value.fileName != nullptr)
        _type = TypeFileName;
    else
        ReportAllocFailure(ClassName, sizeof(TAFileName));
    _isIncomplete = _value.fileName == nullptr || name.IsIncomplete();
}

TAPAttr::TAPAttr(TAPObject* object) noexcept : TAPAttr() {
    _value.object = WithReference(object);
    _type = TypeObject;
}

TAPAttr::TAPAttr(TAPPath* path) noexcept : TAPAttr() {
    _value.path = WithReference(path);
    _type = TypePath;
}

TAPAttr::TAPAttr(const ZELListValTAPAttr& list) noexcept : TAPAttr() {
    _isIncomplete = !CopyList(list);
}

TAPAttr::TAPAttr(int integer) noexcept : TAPAttr() {
    _value.integer = integer;
    _type = TypeInteger;
}

TAPAttr::TAPAttr(const TAPAttr& other) noexcept : TAPAttr() {
    if (!Copy(other)) _isIncomplete = 1;
}

TAPAttr& TAPAttr::operator=(const TAPAttr& other) noexcept {
    const bool keepsList = other._type == TypeList && _type == TypeList;
    if (this == &other || keepsList) return *this;
    TAPAttr fresh;
    const bool done = other._type == TypeList ? fresh.CopyList(ZELListValTAPAttr()) : fresh.Copy(other);
    if (!done) {
        _isIncomplete = 1;
        return *this;
    }
    TAPAttr old;
    old.Take(std::move(*this));
    Take(std::move(fresh));
    return *this;
}

// Makes this, which is null, a copy. False, and still null, when memory ran out.
bool TAPAttr::Copy(const TAPAttr& other) noexcept {
    switch (other._type) {
        case TypeString:
            _value.text = SharedText::Keep(other._value.text);
            break;
        case TypeFileName:
            Take(TAPAttr(*other._value.fileName));
            return _type == TypeFileName;
        case TypeObject:
            _value.object = WithReference(other._value.object);
            break;
        case TypeList:
            return CopyList(other._value.list->values);
        case TypePath:
            _value.path = WithReference(other._value.path);
            break;
        default:
            _value = other._value;
    }
    _type = other._type;
    _isIncomplete = other._isIncomplete;
    return true;
}

// The same for a list, level by level with a stack of its own.
bool TAPAttr::CopyList(const ZELListValTAPAttr& list) noexcept {
    struct Level {
        const ZELListValTAPAttr* from;
        ZELListValTAPAttr* to;
    };
    GrowingArray<Level> levels;
    TAPAttr copy;
    const auto begin = [&](TAPAttr& target, const ZELListValTAPAttr& from) {
        List* const made = ZELNew<List>();
        if (made == nullptr) return false;
        target._value.list = made;
        target._type = TypeList;
        made->values.Reserve(from.Size());
        return levels.Append({&from, &made->values});
    };
    // One element more; a list comes empty and as the next level.
    const auto copyNext = [&](const Level& level) {
        const TAPAttr& element = (*level.from)[level.to->Size() + 1];
        const bool isList = element._type == TypeList;
        if (level.to->Append(isList ? Null : element) != 0) return false;
        TAPAttr& added = (*level.to)[level.to->Size()];
        return isList ? begin(added, element._value.list->values) : added._type == element._type;
    };

    bool done = begin(copy, list);
    while (done && !levels.IsEmpty()) {
        const Level level = levels.Last();
        if (level.to->Size() == level.from->Size())
            levels.RemoveLast();
        else
            done = copyNext(level);
    }
    if (done)
        Take(std::move(copy));
    else
        ReportAllocFailure(ClassName, sizeof(List));
    return done;
}

bool TAPAttr::AppendText(const TAPAttr& tail) noexcept {
    return SharedText::Append(_value.text, SharedText::View(tail._value.text), ClassName);
}

void TAPAttr::Free() noexcept {
    switch (_type) {
        case TypeString:
            SharedText::Drop(_value.text);
            break;
        case TypeFileName:
            // Not by ZELDelete(): compilers warn, since the class has virtual functions and no virtual destructor.
            _value.fileName->TAFileName::~TAFileName();
            zel::Free(_value.fileName);
            break;
        case TypeObject:
            if (_value.object != nullptr) _value.object->Release();
            break;
        case TypeList:
            DeferredContents::Destroy(_value.list);
            break;
        case TypePath:
            if (_value.path != nullptr) _value.path->Release();
            break;
        default:
            break;
    }
}

int TAPAttr::GetInteger(int other) const noexcept {
    return _type == TypeInteger ? _value.integer : other;
}

int TAPAttr::GetInteger() const {
    FATAL(_type != TypeInteger, "TAPAttr::GetInteger : bad type for get");
    return _value.integer;
}

ZELString TAPAttr::Text() const noexcept {
    ZELString text(SharedText::View(_value.text));
    if (_isIncomplete) text += ZELString::Incomplete();
    return text;
}

ZELString TAPAttr::GetString(const char* other) const noexcept {
    return _type == TypeString ? Text() : ZELString(other);
}

ZELString TAPAttr::GetString() const {
    FATAL(_type != TypeString, "TAPAttr::GetString : bad type for get");
    return Text();
}

TAFileName TAPAttr::GetFileName(TAFileName other) const noexcept {
    return _type == TypeFileName ? *_value.fileName : other;
}

TAFileName TAPAttr::GetFileName() const {
    FATAL(_type != TypeFileName, "TAPAttr::GetFileName : bad type for get");
    return *_value.fileName;
}

TAPObject* TAPAttr::GetObjectW(TAPObject* other) const noexcept {
    return WithReference(_type == TypeObject ? _value.object : other);
}

TAPObject* TAPAttr::GetObjectW() const {
    FATAL(_type != TypeObject, "TAPAttr::GetObject : bad type for get");
    return WithReference(_value.object);
}

TAPPath* TAPAttr::GetPath(TAPPath* other) const noexcept {
    return WithReference(_type == TypePath ? _value.path : other);
}

TAPPath* TAPAttr::GetPath() const {
    FATAL(_type != TypePath, "TAPAttr::GetPath : bad type for get");
    return WithReference(_value.path);
}

ZELListValTAPAttr& TAPAttr::GetList(ZELListValTAPAttr& other) noexcept {
    return _type == TypeList ? _value.list->values : other;
}

ZELListValTAPAttr& TAPAttr::GetList() {
    FATAL(_type != TypeList, "TAPAttr::GetList : bad type for get");
    return _value.list->values;
}

const ZELListValTAPAttr& TAPAttr::GetList() const {
    FATAL(_type != TypeList, "TAPAttr::GetList : bad type for get");
    return _value.list->values;
}

// For two texts or two file names.
int TAPAttr::CompareBytes(const TAPAttr& other) const noexcept {
    const auto bytes = [](const TAPAttr& attribute) {
        return attribute._type == TypeString ? SharedText::View(attribute._value.text)
                                             : attribute._value.fileName->View();
    };
    const int order = bytes(*this).compare(bytes(other));
    return (order > 0) - (order < 0);
}

int TAPAttr::Differs(const TAPAttr& other) const noexcept {
    if (_type != other._type) return 1;
    switch (_type) {
        case TypeString:
        case TypeFileName:
            return CompareBytes(other);
        case TypeObject:
            return _value.object != other._value.object;
        case TypeList:
            return _value.list->values.Size() != other._value.list->values.Size();
        case TypeInteger:
            return _value.integer != other._value.integer;
        case TypePath:
            return _value.path != other._value.path;
        default:
            return 0;
    }
}

int TAPAttr::Precedes(const TAPAttr& other) const noexcept {
    if (_type != other._type) return _type < other._type;
    switch (_type) {
        case TypeString:
        case TypeFileName:
            return CompareBytes(other) < 0;
        case TypeObject:
            return std::less<>()(_value.object, other._value.object);
        case TypeInteger:
            return _value.integer < other._value.integer;
        case TypePath:
            return std::less<>()(_value.path, other._value.path);
        default:
            return 0;
    }
}

int ZELListValTAPAttr::operator!=(const ZELListValTAPAttr& other) const noexcept {
    if (this == &other) return 0;
    if (Size() != other.Size()) return 1;
    for (int i = 1; i <= Size(); ++i)
        if ((*this)[i] != other[i]) return 1;
    return 0;
}
