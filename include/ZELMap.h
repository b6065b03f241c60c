// What every string-keyed map of this library offers: texts in, untyped pointers out.
//
// Write against ZELMap where it does not matter which map serves; make a ZELHashSCMap (many changes) or a ZELHashRWMap
// (many traversals of one state).
//
//     ZELMapIterator* const entries = map.getIterator();
//     while (entries != nullptr && entries->next()) printf("%s %p\n", entries->getKey(), entries->getValue());
//     delete entries;
//
// The virtual functions stand in the order of their slots, which programs that were linked before rely on.
// Neither interface says anything about threads; their classes do.
#ifndef ZELMAP_H
#define ZELMAP_H

#include "ZELExport.h"
#include "ZELHeapObject.h"

// A walk over entries. It starts in front of the first one.
class ZEL_API ZELMapIterator : public ZELHeapObject {
public:
    // Goes on to the next entry: 1, or 0 when there is none.
    virtual int next() = 0;
    // The entry where the walk stands; null in front of the first and behind the last. The key belongs to the map.
    virtual const char* getKey() = 0;
    virtual void* getValue() = 0;
    virtual ~ZELMapIterator();
};

class ZEL_API ZELMap : public ZELHeapObject {
public:
    // The number of entries.
    virtual int size() = 0;
    // 1 and the value in `*value` when `key` is present, else 0 and `*value` as it was. Also 0, without a look, when
    // either argument is null.
    virtual int search(const char* key, void** value) = 0;
    // Copies `key` and returns the copy. Null, and nothing changed, when the key is present (the first value stays),
    // when it is null, or when memory runs out.
    virtual const char* insert(const char* key, void* value) = 0;
    // Removes the entry of `key`, if there is one.
    virtual void remove(const char* key) = 0;
    virtual void clear() = 0;
    // A new iterator over the entries as they are now; the caller deletes it, before the map changes or is destroyed.
    // Null when memory runs out.
    virtual ZELMapIterator* getIterator() = 0;
    virtual ~ZELMap();
};

#endif
