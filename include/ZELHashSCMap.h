// A hash map from texts to untyped pointers, with separate chaining.
//
//     ZELHashSCMap sizes;
//     sizes.insert("main.cpp", &size);
//     void* found = nullptr;
//     if (sizes.search("main.cpp", &found)) Use(found);
//     for (const auto& [key, value] : sizes) Use(value);  // allocates nothing
//
// For look-ups by name in sets of any size. For a map that is walked far more often than changed use ZELHashRWMap; for
// an order or positions use TAIndex.
//
// Keys are copied and compared byte by byte; they may be empty and of any length. Values belong to the caller; the map
// never looks at them. A null key is never found and never stored.
// The order of a walk is a promise: buckets ascending, in each the entry that came last first. It follows from the
// keys, the sizes and the history alone, and is the same on every platform and in every version. A look-up costs one
// pass over the key; keys by the ten thousand that share one hash value make it a walk over them all, so do not fill a
// map with keys that somebody hostile chose.
//
// Without a pool the map keeps its keys itself, and a stored key stays where it is until its entry is removed. With a
// ZELStringPool, which the caller owns and which must outlive the map, keys go there, and each growth leaves a second
// copy of every key in it: the result of an insertion that made the map grow is then a copy that the map no longer
// uses. Memory of removed entries and keys serves later ones of every map of the process; it is not given back, but for
// that of very long keys.
//
// A copied map, constructed or assigned, is a view: it shares the table and the entries of the original, owns nothing,
// and must not be used after the original has changed or ended. Changing a view first gives it entries of its own; the
// original is never written to through it. Assigning to a map releases what it held.
//
// When memory runs out, a line that starts with "# Alloc failed in ZELHashSCMap" goes to standard output and the map
// stays as it was; one that never got a table stays empty. Nothing throws, nothing blocks.
// Threads may read one map together. All maps of the process share their free entries, so no two maps, also distinct
// ones, may be changed, made or ended at the same time from two threads: use one lock for all of them.
#ifndef ZELHASHSCMAP_H
#define ZELHASHSCMAP_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "ZELExport.h"
#include "ZELMap.h"

class ZELStringPool;

// The entries of a map at the moment it was made: it holds the map's own keys and values, so it is valid only until
// the map changes or ends. A copy is a view of the same arrays with a place of its own; it must not outlive the
// original. When memory runs out in a constructor, "# Alloc failed in ZELHashSCMapIterator" is printed and the capacity
// is 0.
class ZEL_API ZELHashSCMapIterator : public ZELMapIterator {
public:
    // With room for `size` entries; a negative size counts as 0.
    explicit ZELHashSCMapIterator(int size) noexcept;
    ZELHashSCMapIterator(const ZELHashSCMapIterator& other) noexcept;
    ZELHashSCMapIterator& operator=(const ZELHashSCMapIterator& other) noexcept;
    ~ZELHashSCMapIterator() override;

    // Counts up to the capacity, whether or not it was filled.
    int next() override;
    const char* getKey() override;
    void* getValue() override;
    // Adds an entry at the end. When there is no room, a line goes to standard output and the entry is dropped.
    virtual void insert(const char* key, void* value);

protected:
    int _size;  // capacity
    bool _isView = false;
    const char** _keys = nullptr;
    void** _values = nullptr;
    int _filled = 0;
    int _current = -1;

private:
    friend class ZELHashSCMap;

    void FreeArrays() noexcept;
    bool IsOnEntry() const noexcept { return static_cast<unsigned>(_current) < static_cast<unsigned>(_filled); }
};

class ZEL_API ZELHashSCMap : public ZELMap {
public:
    // An entry, as a walk shows it.
    struct Entry {
        const char* key;
        void* value;
    };
    class const_iterator;

    // `size`: the first number of buckets, at least 8. `loadFactor`: entries per bucket at which the number doubles;
    // what is not between 0 and 1 counts as 0.75.
    ZELHashSCMap(int size, float loadFactor, ZELStringPool* pool) noexcept;
    explicit ZELHashSCMap(ZELStringPool* pool) noexcept;
    ZELHashSCMap() noexcept : ZELHashSCMap(nullptr) {}
    ZELHashSCMap(const ZELHashSCMap& other) noexcept;
    ZELHashSCMap& operator=(const ZELHashSCMap& other) noexcept;

    int size() override;
    int search(const char* key, void** value) override;
    const char* insert(const char* key, void* value) override;
    void remove(const char* key) override;
    // Removes every entry and keeps the number of buckets.
    void clear() override;
    ZELMapIterator* getIterator() override;
    ~ZELHashSCMap() override;

    // The same for a key that needs no terminator.
    int search(std::string_view key, void** value) const noexcept { return SearchBytes(key.data(), key.size(), value); }
    bool contains(std::string_view key) const noexcept { return ContainsBytes(key.data(), key.size()); }
    bool contains(const char* key) const noexcept { return key != nullptr && contains(std::string_view(key)); }

    // A walk in the order of getIterator() that needs no memory, valid until the map changes.
    inline const_iterator begin() const noexcept;
    inline const_iterator end() const noexcept;

protected:
    struct node {
        char* key = nullptr;  // the map's own copy
        void* value = nullptr;
        node* next = nullptr;  // in the same bucket, or among the free ones
    };
    typedef node* link;

    // search() in one chain; 0 also when `chain` is null.
    int searchR(node* chain, const char* key, void** value) const noexcept;
    // Puts the entries into an iterator that was created for them by ZELNew() or `new`, and returns it. Null, and the
    // iterator deleted, when it has no memory for them; null for null.
    ZELHashSCMapIterator* Fill(ZELHashSCMapIterator* iterator) const noexcept;

    // For reading: what is hidden behind the table must follow every change of it.
    link* _table = nullptr;  // _maxSize chains; null when there was no memory for it
    int _count = 0;
    int _maxSize = 0;
    float _loadFactor = 0;
    bool _isView = false;  // table, entries and keys belong to another map
    ZELStringPool* _pool;

private:
    struct Sought;

    int SearchBytes(const char* key, std::size_t length, void** value) const noexcept;
    bool ContainsBytes(const char* key, std::size_t length) const noexcept;
    int Init(int size, float loadFactor) noexcept;
    static node* createNode(ZELHashSCMap* map, const Sought& key, void* value, node* next) noexcept;
    static void addFreeNode(ZELHashSCMap* map, node* freed) noexcept;

    static link* CreateTable(int size, const char* function) noexcept;
    std::uint16_t* Filters() const noexcept { return reinterpret_cast<std::uint16_t*>(_table + _maxSize); }
    std::uint32_t BucketOf(std::uint32_t hash) const noexcept;
    link* FindLink(link* at, const Sought& key) const noexcept;
    link* Find(const Sought& key) const noexcept;
    static int Give(const link* found, void** value) noexcept;
    void Push(node* entry, std::uint32_t hash) noexcept;
    void Grow() noexcept;
    void CopyFields(const ZELHashSCMap& other) noexcept;
    bool BecomeOwner() noexcept;
    void ReleaseNodes() noexcept;
    void ReleaseAll() noexcept;
};

class ZELHashSCMap::const_iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Entry;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Entry;

    const_iterator() noexcept = default;
    Entry operator*() const noexcept { return {_node->key, _node->value}; }
    const_iterator& operator++() noexcept {
        _node = _node->next;
        SkipEmptyBuckets();
        return *this;
    }
    const_iterator operator++(int) noexcept {
        const const_iterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const const_iterator& left, const const_iterator& right) noexcept {
        return left._node == right._node;
    }

private:
    friend class ZELHashSCMap;

    const_iterator(const link* bucket, const link* end) noexcept : _bucket(bucket), _end(end) { SkipEmptyBuckets(); }
    void SkipEmptyBuckets() noexcept {
        while (_node == nullptr && _bucket != _end) _node = *_bucket++;
    }

    const node* _node = nullptr;    // null at the end
    const link* _bucket = nullptr;  // behind the bucket of _node
    const link* _end = nullptr;
};

inline ZELHashSCMap::const_iterator ZELHashSCMap::begin() const noexcept {
    return const_iterator(_table, _table != nullptr ? _table + _maxSize : nullptr);
}

inline ZELHashSCMap::const_iterator ZELHashSCMap::end() const noexcept {
    return const_iterator();
}

#endif
