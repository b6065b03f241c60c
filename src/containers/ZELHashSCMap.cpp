// A table of chains whose nodes come from one stock for all maps. What makes it fast is hidden: a key without a pool
// lies directly behind its node (only a very long one lies elsewhere), so that a look-up waits for memory once, and in
// front of it a header with its hash and length; and behind the table, in the same block, stands a filter of 16 bits
// for each bucket: one bit is set for every key that was put there, so that most absent keys are known to be
// absent without a look at a node.
//
// Invariants: a bucket holds the keys whose hash modulo _maxSize is its number, the newest first; each key of a bucket
// has its bit in the filter (bits of removed keys may stay until the bucket is empty). Growth doubles the table, so
// that each new bucket is fed from one old one: chains may be moved in any order, and what moves from one into one is
// reversed. Cost: one pass over the key, a filter, and 1.2 nodes for a key that is present. Dangerous cases: a view
// shares the table of another map, so whatever changes one calls BecomeOwner() first; and the stock of nodes has no
// lock.

#include "ZELHashSCMap.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <new>

#include "ZELStringPool.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "containers/block_store.h"
#include "containers/chain_walk.h"
#include "containers/stored_key.h"
#include "containers/text_hash.h"
#include "platform/large_block.h"

using namespace zel;

namespace {

constexpr int LeastBuckets = 8;
constexpr float UsualLoadFactor = 0.75F;
constexpr std::size_t LinkSize = sizeof(void*);
constexpr std::size_t BucketSize = LinkSize + sizeof(std::uint16_t);  // a link and a filter
constexpr std::size_t NodeSize = 3 * sizeof(void*);
// Shorter keys are stored in the block of their node.
constexpr std::size_t MaxJoinedLength = BlockStore::LargestBlock - NodeSize - StoredKeySize(0);

void Report(const char* function, const char* what) noexcept {
    std::printf("# Alloc failed in ZELHashSCMap::%s: unable to %s\n", function, what);
    std::fflush(stdout);
}

// The bit of a key in the filter of its bucket; mixed anew, since the lower end of the hash chose the bucket.
std::uint16_t FilterBit(std::uint32_t hash) noexcept {
    return static_cast<std::uint16_t>(1U << ((hash * 0x9E3779B1U) >> 28));
}

// A copy of a key that is too long for the block of its node; null without memory.
char* CopyLongKey(std::string_view text, std::uint32_t hash) noexcept {
    void* const block = text.size() <= MaxKeyLength ? Allocate(StoredKeySize(text.size())) : nullptr;
    return block != nullptr ? StoreKey(block, text, hash) : nullptr;
}

// Whether the key of a node is the sought one, in a map whose keys are in a pool.
inline bool IsPooledKey(const char* key, std::string_view sought) noexcept {
    return std::strncmp(key, sought.data(), sought.size()) == 0 && std::strlen(key) == sought.size();
}
// The same for a key in the store.
inline bool IsStoredKey(const char* key, std::string_view sought, std::uint32_t hash) noexcept {
    return HeaderOf(key) == KeyHeader{hash, static_cast<std::uint32_t>(sought.size())} &&
           sought.size() <= MaxKeyLength && SameKey(key, sought.data(), sought.size());
}

}  // namespace

// A key on its way to its bucket. What a look-up is made of is inlined by force: left alone, compilers make calls of it
// that take a fifth of the time.
struct ZELHashSCMap::Sought {
    ZEL_ALWAYS_INLINE explicit Sought(std::string_view sought) noexcept
        : text(sought.data() != nullptr ? sought : std::string_view("")), hash(HashText(text)) {}

    std::string_view text;
    std::uint32_t hash;
};

// The entries.

// A node with a copy of `key`; null when there is no memory.
ZELHashSCMap::node* ZELHashSCMap::createNode(ZELHashSCMap* map, const Sought& key, void* value, node* next) noexcept {
    static_assert(sizeof(node) == NodeSize);
    const std::size_t joinedSize = sizeof(node) + StoredKeySize(key.text.size());
    const bool isJoined = map->_pool == nullptr && key.text.size() < MaxJoinedLength;
    void* const block = blockStore.Take(isJoined ? joinedSize : sizeof(node));
    if (block == nullptr) {
        Report("createBlocOfFreeNode", "create new node[20000]");
        return nullptr;
    }
    node* const created = new (block) node{nullptr, value, next};
    if (isJoined)
        created->key = StoreKey(created + 1, key.text, key.hash);
    else
        created->key = map->_pool != nullptr ? map->_pool->create(key.text.data()) : CopyLongKey(key.text, key.hash);
    if (created->key != nullptr) return created;
    Report("createNode", "strdup()");
    blockStore.Drop(created, sizeof(node));
    return nullptr;
}

void ZELHashSCMap::addFreeNode(ZELHashSCMap* map, node* freed) noexcept {
    const bool isJoined =
        map->_pool == nullptr && freed->key == reinterpret_cast<const char*>(freed + 1) + sizeof(KeyHeader);
    const std::size_t size = isJoined ? sizeof(node) + StoredKeySize(HeaderOf(freed->key).length) : sizeof(node);
    if (map->_pool == nullptr && !isJoined) Free(freed->key - sizeof(KeyHeader));
    blockStore.Drop(freed, size);
}

// The table.

// Chains and filters, all empty. Null, and a line printed, when there is no memory.
ZELHashSCMap::link* ZELHashSCMap::CreateTable(int size, const char* function) noexcept {
    const std::size_t buckets = static_cast<std::size_t>(size);
    void* const table = AllocateLargeZeroed(buckets * BucketSize);
    if (table == nullptr) {
        char what[80];
        std::snprintf(what, sizeof what, "malloc(_maxSize * sizeof(link)) : %zu", buckets * LinkSize);
        Report(function, what);
    }
    return static_cast<link*>(table);
}

inline std::uint32_t ZELHashSCMap::BucketOf(std::uint32_t hash) const noexcept {
    const std::uint32_t size = static_cast<std::uint32_t>(_maxSize);
    // Nearly every map has a power of two; a division costs more than the rest of a look-up in a small map.
    return (size & (size - 1)) == 0 ? hash & (size - 1) : hash % size;
}

// The pointer to the first node from `*at` on that holds the key, or to the null at the end of the chain.
ZEL_ALWAYS_INLINE ZELHashSCMap::link* ZELHashSCMap::FindLink(link* at, const Sought& key) const noexcept {
    if (_pool != nullptr) {
        while (*at != nullptr && !IsPooledKey((*at)->key, key.text)) at = &(*at)->next;
    } else {
        while (*at != nullptr && !IsStoredKey((*at)->key, key.text, key.hash)) at = &(*at)->next;
    }
    return at;
}

// The same for the whole map; null also when the filter knows that the key is absent.
ZEL_ALWAYS_INLINE ZELHashSCMap::link* ZELHashSCMap::Find(const Sought& key) const noexcept {
    if (_table == nullptr) return nullptr;
    const std::uint32_t bucket = BucketOf(key.hash);
    if ((Filters()[bucket] & FilterBit(key.hash)) == 0) return nullptr;
    link* const found = FindLink(&_table[bucket], key);
    return *found != nullptr ? found : nullptr;
}

// Links a node in at the head of its bucket.
void ZELHashSCMap::Push(node* entry, std::uint32_t hash) noexcept {
    const std::uint32_t bucket = BucketOf(hash);
    entry->next = _table[bucket];
    _table[bucket] = entry;
    Filters()[bucket] |= FilterBit(hash);
}

// Doubles the table, or leaves it when there is no memory. Nodes move over as they are; with a pool each gets a fresh
// copy of its key as well, in the order of the walk, since what a pool holds shows.
void ZELHashSCMap::Grow() noexcept {
    link* const table = _maxSize <= INT_MAX / 2 ? CreateTable(2 * _maxSize, "insert") : nullptr;
    if (table == nullptr) return;
    link* const old = _table;
    const std::size_t oldSize = static_cast<std::size_t>(_maxSize);
    _table = table;
    _maxSize *= 2;
    if (_pool == nullptr) {
        WalkInWaves(old, oldSize, [this](node* entry) { Push(entry, HeaderOf(entry->key).hash); });
    } else {
        bool hasMemory = true;
        WalkInOrder(old, oldSize, [this, &hasMemory](node* entry) {
            char* const copy = hasMemory ? _pool->create(entry->key) : nullptr;
            if (hasMemory && copy == nullptr) Report("createNode", "strdup()");
            hasMemory = copy != nullptr;
            // The old copy in the pool is as good.
            if (hasMemory) entry->key = copy;
            Push(entry, HashText(entry->key));
        });
    }
    Free(old);
}

// Life.

int ZELHashSCMap::Init(int size, float loadFactor) noexcept {
    _count = 0;
    _maxSize = size >= LeastBuckets ? size : LeastBuckets;
    // Written so that what is no number is not inside.
    _loadFactor = loadFactor > 0.0F && loadFactor < 1.0F ? loadFactor : UsualLoadFactor;
    _table = CreateTable(_maxSize, "ZELHashSCMap");
    return _table != nullptr ? 0 : 1;
}

ZELHashSCMap::ZELHashSCMap(int size, float loadFactor, ZELStringPool* pool) noexcept : _pool(pool) {
    Init(size, loadFactor);
}

ZELHashSCMap::ZELHashSCMap(ZELStringPool* pool) noexcept : ZELHashSCMap(LeastBuckets, UsualLoadFactor, pool) {}

ZELHashSCMap::ZELHashSCMap(const ZELHashSCMap& other) noexcept : ZELMap(other) {
    CopyFields(other);
}

ZELHashSCMap& ZELHashSCMap::operator=(const ZELHashSCMap& other) noexcept {
    // A view of this map brings nothing new, and would be left without its original.
    const bool viewsThis = other._isView && !_isView && other._table == _table;
    if (this == &other || viewsThis) return *this;
    ReleaseAll();
    CopyFields(other);
    return *this;
}

ZELHashSCMap::~ZELHashSCMap() {
    ReleaseAll();
    _table = nullptr;
    _pool = nullptr;
}

void ZELHashSCMap::CopyFields(const ZELHashSCMap& other) noexcept {
    _table = other._table;
    _count = other._count;
    _maxSize = other._maxSize;
    _loadFactor = other._loadFactor;
    _pool = other._pool;
    _isView = true;
}

// Turns a view into a map with entries of its own, in the same order; false, and still a view, when memory ran out.
bool ZELHashSCMap::BecomeOwner() noexcept {
    ZELHashSCMap own(*this);
    own._table = CreateTable(_maxSize, "insert");
    if (own._table == nullptr) return false;
    own._isView = false;
    for (int bucket = 0; bucket < _maxSize; ++bucket) {
        own.Filters()[bucket] = Filters()[bucket];
        node** end = &own._table[bucket];
        for (const node* entry = _table[bucket]; entry != nullptr; entry = entry->next) {
            *end = createNode(&own, Sought(entry->key), entry->value, nullptr);
            if (*end == nullptr) return false;
            end = &(*end)->next;
        }
    }
    _table = own._table;
    _isView = false;
    own._isView = true;  // what it made is ours now
    return true;
}

void ZELHashSCMap::ReleaseNodes() noexcept {
    if (_count == 0) return;
    WalkInWaves(_table, static_cast<std::size_t>(_maxSize), [this](node* entry) { addFreeNode(this, entry); });
}

void ZELHashSCMap::ReleaseAll() noexcept {
    if (_isView) return;
    ReleaseNodes();
    Free(_table);
}

// The public interface.

ZELMapIterator::~ZELMapIterator() = default;

ZELMap::~ZELMap() = default;

int ZELHashSCMap::size() {
    return _count;
}

inline int ZELHashSCMap::Give(const link* found, void** value) noexcept {
    if (found == nullptr || *found == nullptr) return 0;
    *value = (*found)->value;
    return 1;
}

int ZELHashSCMap::SearchBytes(const char* key, std::size_t length, void** value) const noexcept {
    return value != nullptr ? Give(Find(Sought({key, length})), value) : 0;
}

int ZELHashSCMap::search(const char* key, void** value) {
    return key != nullptr && value != nullptr ? Give(Find(Sought(key)), value) : 0;
}

bool ZELHashSCMap::ContainsBytes(const char* key, std::size_t length) const noexcept {
    return Find(Sought({key, length})) != nullptr;
}

int ZELHashSCMap::searchR(node* chain, const char* key, void** value) const noexcept {
    return key != nullptr && value != nullptr ? Give(FindLink(&chain, Sought(key)), value) : 0;
}

const char* ZELHashSCMap::insert(const char* key, void* value) {
    if (key == nullptr || _table == nullptr) return nullptr;
    const Sought sought(key);
    if (Find(sought) != nullptr || (_isView && !BecomeOwner())) return nullptr;
    node* const created = createNode(this, sought, value, nullptr);
    if (created == nullptr) return nullptr;
    const char* const stored = created->key;
    Push(created, sought.hash);
    ++_count;
    if (static_cast<float>(_count) >= static_cast<float>(_maxSize) * _loadFactor) Grow();
    return stored;
}

void ZELHashSCMap::remove(const char* key) {
    if (key == nullptr) return;
    const Sought sought(key);
    link* found = Find(sought);
    if (found == nullptr) return;
    if (_isView) {
        if (!BecomeOwner()) return;
        found = Find(sought);
    }
    node* const removed = *found;
    *found = removed->next;
    const std::uint32_t bucket = BucketOf(sought.hash);
    // A product and no branch: nobody could foretell it, and it would wait for the node.
    Filters()[bucket] = static_cast<std::uint16_t>(Filters()[bucket] * (_table[bucket] != nullptr ? 1 : 0));
    --_count;
    addFreeNode(this, removed);
}

void ZELHashSCMap::clear() {
    if (_table == nullptr) return;
    if (_isView) {
        link* const table = CreateTable(_maxSize, "clear");
        if (table == nullptr) return;
        _table = table;
        _isView = false;
    } else {
        ReleaseNodes();
        std::memset(_table, 0, static_cast<std::size_t>(_maxSize) * BucketSize);
    }
    _count = 0;
}

ZELHashSCMapIterator* ZELHashSCMap::Fill(ZELHashSCMapIterator* iterator) const noexcept {
    if (iterator == nullptr) {
        ReportAllocFailure("ZELHashSCMapIterator", sizeof(ZELHashSCMapIterator));
        return nullptr;
    }
    if (iterator->_size < _count) {
        ZELDelete(iterator);
        return nullptr;
    }
    if (_count == 0) return iterator;
    const char** key = iterator->_keys;
    void** value = iterator->_values;
    WalkInOrder(_table, static_cast<std::size_t>(_maxSize), [&key, &value](const node* entry) {
        *key++ = entry->key;
        *value++ = entry->value;
    });
    iterator->_filled = _count;
    return iterator;
}

ZELMapIterator* ZELHashSCMap::getIterator() {
    return Fill(ZELNew<ZELHashSCMapIterator>(_count));
}
