// A named registry of pointers under texts; it never owns their targets.
//
//     TAComponent tools;
//     tools.SetName("tools");
//     if (tools.Insert("scan", &scanner) != 0) Trace("scan is known already", 0);
//     ZELListValZELString names;
//     tools.GetList(names);  // sorted
//
// For a plain map without a name and a sorted list use ZELHashSCMap or ZELHashRWMap.
//
// Ownership: a copied component, constructed or assigned, has a name of its own and shares the map of the original:
// each
//   finds what the other inserts. The original owns the map, so it must live longer. Assigning to a component destroys
//   its own map.
// Errors: no exceptions. A component without memory for its map returns 0 and null throughout.
// Threads: as for ZELHashSCMap. No two maps of the process, components included, may be changed at the same time.
#ifndef TACOMPONENT_H
#define TACOMPONENT_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListValZELString.h"
#include "ZELMap.h"
#include "ZELString.h"

class ZELHashRWMap;

class ZEL_API TAComponent : public ZELHeapObject {
public:
    TAComponent() noexcept;
    TAComponent(const TAComponent& other) noexcept;
    TAComponent& operator=(const TAComponent& other) noexcept;
    virtual ~TAComponent();

    ZELString GetName() const noexcept { return _name; }
    // Valid until the name changes or the component ends.
    const char* GetNameChar() const noexcept { return _name; }
    void SetName(ZELString name) noexcept;

    // An incomplete ZELString is a null key: it is not stored, found or removed.
    //
    // Not 0, and the old value stays, when the key is present; otherwise 0, also when nothing could be stored (a null
    // key, no memory).
    int Insert(const char* key, void* value) noexcept;
    int Insert(ZELString key, void* value) noexcept;
    // The value of `key`, or null.
    void* GetValue(const char* key) const noexcept;
    void* GetValue(ZELString key) const noexcept;
    // Not 0 when the key is present.
    int IsIn(const char* key) const noexcept;
    int IsIn(ZELString key) const noexcept;
    void Remove(const char* key) noexcept;
    void Remove(ZELString key) noexcept;
    void Clear() noexcept;
    int GetSize() const noexcept;

    // A new iterator, valid until the component changes; the caller deletes it. Null when memory runs out.
    ZELMapIterator* GetIterator() const noexcept;
    // An iterator that belongs to the component; it is valid until a call after a change and must not be deleted.
    ZELMapIterator* GetIteratorRef() const noexcept;
    // Replaces the list by all keys in the order of CompareTAStrings; returns their number.
    int GetList(ZELListValZELString& keys) const noexcept;
    // Writes each key as a line of its own to standard output, as Trace(key, 0) does, in the order of the map.
    void DumpKeys() const noexcept;

private:
    ZELString _name;
    ZELHashRWMap* _map;
    bool _isView = false;  // the map belongs to another component
};

#endif
