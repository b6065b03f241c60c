// A string-keyed map beside plain chains that follow the described steps one by one.
#ifndef TESTS_CONTAINERS_MAP_MODEL_H
#define TESTS_CONTAINERS_MAP_MODEL_H

#include <list>

#include "ZELHashSCMap.h"
#include "support/testing.h"

using Entries = std::vector<std::pair<std::string, void*>>;

inline std::uint32_t PlainHash(const std::string& key) {
    std::uint32_t hash = 0;
    for (const char byte : key) hash = hash * 31 + static_cast<std::uint32_t>(static_cast<signed char>(byte));
    return hash;
}

class MapModel {
public:
    MapModel(std::size_t size, float loadFactor) : _loadFactor(loadFactor), _buckets(std::max<std::size_t>(size, 8)) {}

    bool Insert(const std::string& key, void* value) {
        Chain& chain = ChainOf(_buckets, key);
        for (const auto& entry : chain)
            if (entry.first == key) return false;
        chain.emplace_front(key, value);
        if (static_cast<float>(++_count) >= static_cast<float>(_buckets.size()) * _loadFactor) Grow();
        return true;
    }
    void Remove(const std::string& key) {
        _count -= ChainOf(_buckets, key).remove_if([&](const auto& entry) { return entry.first == key; });
    }
    void Clear() { *this = MapModel(_buckets.size(), _loadFactor); }
    Entries InOrder() const {
        Entries entries;
        for (const Chain& chain : _buckets) entries.insert(entries.end(), chain.begin(), chain.end());
        return entries;
    }

private:
    using Chain = std::list<std::pair<std::string, void*>>;

    static Chain& ChainOf(std::vector<Chain>& buckets, const std::string& key) {
        return buckets[PlainHash(key) % buckets.size()];
    }
    void Grow() {
        std::vector<Chain> larger(2 * _buckets.size());
        for (const Chain& chain : _buckets)
            for (const auto& entry : chain) ChainOf(larger, entry.first).push_front(entry);
        _buckets = std::move(larger);
    }

    std::size_t _count = 0;
    float _loadFactor;
    std::vector<Chain> _buckets;
};

// What an iterator still has to show.
inline Entries Rest(ZELMapIterator* iterator) {
    Entries entries;
    while (iterator->next() == 1) entries.emplace_back(iterator->getKey(), iterator->getValue());
    return entries;
}

// Everything that can be seen of a map, each way to walk included.
inline void ExpectHolds(ZELHashSCMap& map, const Entries& expected) {
    ASSERT_EQ(map.size(), static_cast<int>(expected.size()));
    ASSERT_EQ(Rest(std::unique_ptr<ZELMapIterator>(map.getIterator()).get()), expected);
    Entries walked;
    for (const auto& [key, value] : map) walked.emplace_back(key, value);
    ASSERT_EQ(walked, expected);
    for (const auto& [key, value] : expected) {
        void* found = nullptr;
        ASSERT_EQ(map.search(key.c_str(), &found), 1) << key;
        ASSERT_EQ(found, value);
        // From exactly the bytes that may be read, so that a sanitizer sees a read behind them.
        const std::vector<char> bytes(key.begin(), key.end());
        ASSERT_TRUE(map.contains(std::string_view(bytes.data(), bytes.size()))) << key;
    }
}

#endif
