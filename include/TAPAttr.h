// A value of one of seven kinds: an attribute of a TAPObject.
//
//     TAPAttr count(5), name("scan"), none;
//     count.GetInteger();        // 5
//     name.GetInteger(-1);       // -1, since the kind is another
//     name.GetInteger();         // ends the process: asked for what must be an integer
//     ZELListValTAPAttr both;
//     both.Append(count);
//     both.Append(name);
//     TAPAttr list(both);        // a deep copy
//
// For trees that are dumped (TAPObject.h). In a program's own data, std::variant is the better choice.
//
// Assignment has an edge case, see operator=. So algorithms that assign elements (std::sort on a list that contains
// lists) do not work; QuickSort moves pointers.
//
// Ownership: a copy is a value of its own, except that objects and paths are shared by their reference counts (file
//   names: see TAFileName.h). The caller of a getter releases the returned object or path.
// Errors: no exceptions. When memory runs out, a line that starts with "# Alloc failed in TAPAttr" goes to standard
//   output. Then a constructed attribute is an empty text, or null in place of a file name or a list; an assignment
//   leaves the attribute as it was. Such an attribute, and one made from an incomplete text or name, is incomplete,
//   and so are its copies: GetString() passes that on, and a dump reports it.
// Complexity: copying a text takes constant time. Lists may be nested as deep as memory allows: copying and destroying
//   them use no stack for each level.
// Threads: distinct attributes may be used from distinct threads if they share neither object nor path.
#ifndef TAPATTR_H
#define TAPATTR_H

#include <cstddef>
#include <utility>

#include "TAFileName.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListVal.h"
#include "ZELString.h"

class TAPAttr;
class TAPObject;
class TAPObjectSaveContext;
class TAPPath;
class ZELListValTAPAttr;
namespace zel {
struct SharedText;
}  // namespace zel

class ZEL_API TAPAttr : public ZELHeapObject {
public:
    // The codes of the kinds, as IsType takes them, in the order of operator<.
    enum Type { TypeNull, TypeString, TypeFileName, TypeObject, TypeList, TypeInteger, TypePath };

    // An attribute of code 0; never destroyed.
    static const TAPAttr& Null;

    constexpr TAPAttr() noexcept : _value{}, _type(TypeNull), _otherOwners(0), _isIncomplete(0) {}
    // The text up to its first NUL; null counts as empty.
    TAPAttr(const char* text) noexcept;
    TAPAttr(const ZELString& text) noexcept;
    TAPAttr(const TAFileName& name) noexcept;
    // Take a reference. Null gives an attribute of that kind that leads nowhere.
    TAPAttr(TAPObject* object) noexcept;
    TAPAttr(TAPPath* path) noexcept;
    // A deep copy.
    TAPAttr(const ZELListValTAPAttr& list) noexcept;
    TAPAttr(int integer) noexcept;
    TAPAttr(const TAPAttr& other) noexcept;
    // Leaves `other` null.
    TAPAttr(TAPAttr&& other) noexcept : TAPAttr() { Take(std::move(other)); }
    constexpr ~TAPAttr() {
        if (_type != TypeNull && _type != TypeInteger) Free();
    }

    // Takes over kind and value, with one exception that is kept: assigning a list makes this a list, but of the
    // elements that it held before, or none when it was no list. Copy a list by construction, or assign to GetList().
    // `other` may be part of this attribute.
    TAPAttr& operator=(const TAPAttr& other) noexcept;

    // 1 when the code is `code`, else 0.
    int IsType(int code) const noexcept { return _type == code ? 1 : 0; }

    // The value when the kind is the right one, else `other`. Without an argument any other kind ends the process,
    // with "TAPAttr::GetInteger : bad type for get" and the like.
    int GetInteger(int other) const noexcept;
    int GetInteger() const;
    ZELString GetString(const char* other) const noexcept;
    ZELString GetString() const;
    TAFileName GetFileName(TAFileName other) const noexcept;
    TAFileName GetFileName() const;
    // With a reference for the caller, also when it is `other`; null comes without one.
    TAPObject* GetObjectW(TAPObject* other) const noexcept;
    TAPObject* GetObjectW() const;
    TAPPath* GetPath(TAPPath* other) const noexcept;
    TAPPath* GetPath() const;
    // The list itself: it may be changed, and is valid as long as this attribute holds it. Mind that
    // `object.GetAttribute("list").GetList()` is a list of a copy that ends at once.
    ZELListValTAPAttr& GetList(ZELListValTAPAttr& other) noexcept;
    ZELListValTAPAttr& GetList();
    const ZELListValTAPAttr& GetList() const;

    // Other names of GetObjectW, which is what system headers turn GetObject into.
    TAPObject* GetObjectA(TAPObject* other) const noexcept { return GetObjectW(other); }
    TAPObject* GetObjectA() const { return GetObjectW(); }
#ifndef GetObject
    TAPObject* GetObject(TAPObject* other) const noexcept {
        return GetObjectW(other);
    }
    TAPObject* GetObject() const {
        return GetObjectW();
    }
#endif

    // Whether memory ran out for the value, or for the text or name that it was made from.
    bool IsIncomplete() const noexcept {
        return _isIncomplete != 0;
    }

    // Writes this value to a dump that is under way (docs/dump-format.md) and returns the name of its kind: "Null",
    // "AttrString", "AttrFileName", "AttrObject", "AttrList", "AttrInteger" or "AttrPath".
    ZELString SaveToFile(int id, TAPObjectSaveContext& context) const noexcept;

    // 0 when both have one kind and value, otherwise not 0: texts and file names give -1 or 1, by their bytes as
    // unsigned values; everything else gives 1. Objects and paths are equal when they are the same ones. Lists are
    // equal when they have equally many elements, whatever these are: a decision, so that comparing costs nothing.
    // (ZELListValTAPAttr compares elements.)
    friend int operator!=(const TAPAttr& left, const TAPAttr& right) noexcept {
        return left.Differs(right);
    }
    friend int operator==(const TAPAttr& left, const TAPAttr& right) noexcept {
        return left.Differs(right) == 0;
    }
    // 1 or 0. Kinds come first, in the order of their codes. Within a kind: texts and file names by bytes, objects and
    // paths by their addresses, integers by value; lists and nulls have no order.
    friend int operator<(const TAPAttr& left, const TAPAttr& right) noexcept {
        return left.Precedes(right);
    }
    friend int operator>(const TAPAttr& left, const TAPAttr& right) noexcept {
        return right.Precedes(left);
    }

private:
    friend class TAPObject;
    friend class TAPObjectSaveContext;
    struct List;

    union Content {
        zel::SharedText* text;  // counted; null when empty
        TAFileName* fileName;   // owned
        TAPObject* object;      // one reference, or null
        List* list;             // owned
        int integer;
        TAPPath* path;  // one reference, or null
    };

    bool Copy(const TAPAttr& other) noexcept;
    bool CopyList(const ZELListValTAPAttr& list) noexcept;
    bool AppendText(const TAPAttr& tail) noexcept;
    ZELString Text() const noexcept;
    // Takes the value out of `other`, which becomes null; this was null or a number.
    void Take(TAPAttr&& other) noexcept {
        _value = other._value;
        _type = other._type;
        _isIncomplete = other._isIncomplete;
        other._type = TypeNull;
        other._isIncomplete = 0;
    }
    void Free() noexcept;
    int Differs(const TAPAttr& other) const noexcept;
    int Precedes(const TAPAttr& other) const noexcept;
    int CompareBytes(const TAPAttr& other) const noexcept;

    Content _value;
    int _type;
    unsigned int _otherOwners : 31;  // objects that share this attribute beside the first; always 0 outside of objects
    unsigned int _isIncomplete : 1;
};

// A list of attributes that owns copies; positions begin at 1.
class ZELListValTAPAttr : public ZELListVal<TAPAttr> {
public:
    using ZELListVal<TAPAttr>::ZELListVal;

    // One element more, also when it is made from a list: that becomes a list in this one. 0 or 1.
    int Append(const TAPAttr& value) { return ZELListVal<TAPAttr>::Append(value); }

    // 0 when both have equally many elements, pairwise of one kind and with equal values; otherwise 1. Elements that
    // are lists count as equal when they are equally long. A list equals itself.
    ZEL_API int operator!=(const ZELListValTAPAttr& other) const noexcept;
    int operator==(const ZELListValTAPAttr& other) const noexcept { return (*this != other) == 0 ? 1 : 0; }
};

#endif
