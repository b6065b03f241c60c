// A sorted index beside a std::map that does the same. The overloads say how each index takes and shows its keys.
#ifndef TESTS_CONTAINERS_INDEX_MODEL_H
#define TESTS_CONTAINERS_INDEX_MODEL_H

#include <array>

#include "TAIndex.h"
#include "TAIndexB.h"
#include "TAIndexI.h"
#include "containers/fields.h"
#include "support/testing.h"

// Three integers that are compared and, as Append reads 8 bytes for each, three that are carried along.
using Block = std::array<int, 6>;

struct Keys {
    static const char* Pass(const std::string& key) { return key.c_str(); }
    static const int* Pass(const Block& key) { return key.data(); }
    static int Pass(int key) { return key; }
    static const char* At(const TAIndex& index, int position) { return index[position]; }
    static const void* At(const TAIndexB& index, int position) { return index[position]; }
    static int At(const TAIndexI& index, int position) { return index.GetKey(position); }
    static bool IsCopy(const char* stored, const std::string& key) { return stored != key.c_str() && stored == key; }
    static bool IsCopy(const void* stored, const Block& key) {
        return stored != key.data() && std::memcmp(stored, key.data(), sizeof key) == 0;
    }
    static bool IsCopy(int stored, int key) { return stored == key; }
};

// Further ways to find a key, from exactly the bytes that may be read, so that a sanitizer sees a read behind them.
inline void ExpectFound(const TAIndex& index, const std::string& key, int position) {
    const std::vector<char> bytes(key.begin(), key.end());
    ASSERT_EQ(index.IsIn(bytes.empty() ? "" : bytes.data(), static_cast<int>(bytes.size())), position);
}
inline void ExpectFound(const TAIndexB& index, const Block& key, int position) {
    const std::vector<int> compared(key.begin(), key.begin() + 3);
    ASSERT_EQ(index.IsIn(compared.data()), position);
    ASSERT_EQ(index.IsIn(compared.data(), 3), position);
    ASSERT_EQ(index.IsIn(compared.data(), 2), -1);
}
inline void ExpectFound(const TAIndexI&, int, int) {}

// Everything that can be seen through keys and positions.
template <class Index, class Key>
void ExpectSame(const Index& index, const std::map<Key, void*>& model) {
    ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
    for (const auto& [key, value] : model) ASSERT_EQ(index[Keys::Pass(key)], value);
    int position = 0;
    for (const auto& [key, value] : model) {
        ASSERT_TRUE(Keys::IsCopy(Keys::At(index, position), key)) << position;
        ASSERT_EQ(index.Get(position), value);
        ASSERT_EQ(index.GetContent()[position], value);
        ASSERT_EQ(index.IsIn(Keys::Pass(key)), position);
        ExpectFound(index, key, position);
        ++position;
    }
    for (const int outside : {-1, position, INT_MIN, INT_MAX}) {
        ASSERT_FALSE(Keys::At(index, outside));
        ASSERT_EQ(index.Get(outside), nullptr);
    }
}

// Random look-ups, insertions and removals, then removals down to nothing.
template <class Index, class MakeKey>
void BehaveLikeASortedMap(Index& index, MakeKey makeKey) {
    std::mt19937 random(1);
    std::map<decltype(makeKey(random)), void*> model;
    const auto removeOne = [&] {
        const int position = static_cast<int>(random() % model.size());
        ASSERT_EQ(index.RemovePosition(position), 0);
        model.erase(std::next(model.begin(), position));
    };
    for (int step = 0; step < 6000; ++step) {
        const auto key = makeKey(random);
        const auto entry = model.find(key);
        ASSERT_EQ(index[Keys::Pass(key)], entry == model.end() ? nullptr : entry->second);
        ASSERT_TRUE(step % 200 != 0 || (index.IsIn(Keys::Pass(key)) < 0) == (entry == model.end()));
        if (random() % 48 == 0 && !model.empty()) {
            removeOne();
        } else {
            const auto stored = index.Append(Keys::Pass(key), Value(step));
            model.emplace(key, Value(step));
            ASSERT_TRUE(Keys::IsCopy(stored, key));
            ASSERT_EQ(index.Append(Keys::Pass(key), nullptr), stored);
        }
        ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
        if (step % 1000 == 999) ExpectSame(index, model);
    }
    for (const int outside : {-1, index.Size(), INT_MIN, INT_MAX}) EXPECT_EQ(index.RemovePosition(outside), 1);
    const Index copy(index);
    const auto copied = model;
    while (!model.empty() && !testing::Test::HasFatalFailure()) {
        removeOne();
        if (model.size() % 400 == 0 || model.size() < 20) ExpectSame(index, model);
    }
    ExpectSame(copy, copied);
}

// What an assigned TAIndex or TAIndexB is; `added` is a key that the source does not hold.
template <class Index, class Key>
void BeAViewUntilItIsChanged(Index& source, const std::map<Key, void*>& model, const Key& added) {
    Index appended(1), removed(1), reset(1), unchanged(1);
    appended.Append(Keys::Pass(added), nullptr);  // freed by the assignment
    appended = source;
    removed = appended;
    reset = source;
    unchanged = source;
    source = *&source;
    unchanged = *&unchanged;
    source = unchanged;
    ExpectSame(unchanged, model);
    EXPECT_EQ(unchanged.GetContent(), source.GetContent());

    std::map<Key, void*> changed = model;
    changed[added] = &source;
    EXPECT_TRUE(Keys::IsCopy(appended.Append(Keys::Pass(added), &source), added));
    ExpectSame(appended, changed);
    if (!model.empty()) {
        EXPECT_EQ(unchanged.Append(Keys::Pass(model.begin()->first), nullptr), Keys::At(source, 0));
        EXPECT_EQ(removed.RemovePosition(0), 0);
        changed = model;
        changed.erase(changed.begin());
        ExpectSame(removed, changed);
    }
    EXPECT_EQ(reset.Reset(), 0);
    ExpectSame(reset, std::map<Key, void*>());
    reset.Append(Keys::Pass(added), &source);
    ExpectSame(reset, std::map<Key, void*>{{added, &source}});
    ExpectSame(source, model);
    const Index copy(unchanged);
    source.Reset();
    ExpectSame(copy, model);
}

#endif
