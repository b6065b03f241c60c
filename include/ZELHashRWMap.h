// A ZELHashSCMap that keeps an iterator between changes, for maps that are walked far more often than changed.
//
//     ZELHashRWMapIteratorRef* const entries = map.getIteratorRef();  // no memory while the map stays as it is
//     while (entries != nullptr && entries->next()) Use(entries->getKey(), entries->getValue());
//
// Everything that ZELHashSCMap.h says holds here, copies and threads included; getIteratorRef changes the map. The kept
// iterator of a copy is the original's.
#ifndef ZELHASHRWMAP_H
#define ZELHASHRWMAP_H

#include "ZELExport.h"
#include "ZELHashSCMap.h"

class ZEL_API ZELHashRWMapIteratorRef : public ZELHashSCMapIterator {
public:
    explicit ZELHashRWMapIteratorRef(int size) noexcept;
    // Goes back in front of the first entry.
    virtual void RewindIterator();
};

class ZEL_API ZELHashRWMap : public ZELHashSCMap {
public:
    // As for ZELHashSCMap, without a pool.
    ZELHashRWMap(int size, float loadFactor) noexcept;
    ZELHashRWMap() noexcept : ZELHashRWMap(8, 0.75F) {}
    ZELHashRWMap(const ZELHashRWMap& other) noexcept;
    ZELHashRWMap& operator=(const ZELHashRWMap& other) noexcept;

    // Each of them counts as a change, also when it changes nothing.
    const char* insert(const char* key, void* value) override;
    void remove(const char* key) override;
    void clear() override;
    // The kept iterator is deliberately not deleted: it stays allocated, its keys end with the map.
    ~ZELHashRWMap() override;

    // An iterator in front of the first entry. It belongs to the map, which gives out the same one until a call after
    // a change; that call deletes it. Null when memory runs out.
    virtual ZELHashRWMapIteratorRef* getIteratorRef();

    // Counts as a change, for what the map cannot see.
    void Update() noexcept { _modified = 1; }

private:
    void DropIterator() noexcept;

    int _modified = 1;
    bool _ownsIterator = false;  // false also for the original's, in a copy
    ZELHashRWMapIteratorRef* _iterator = nullptr;
};

#endif
