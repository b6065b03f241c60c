#include "TAIndexB.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace {

using Key = std::array<int, 3>;
using Model = std::map<Key, void*>;

void* Value(int number) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number) + 1);
}

// What Append reads: 8 bytes for each integer, and not one more.
std::vector<int> Owed(const Key& key) {
    std::vector<int> block(key.begin(), key.end());
    block.insert(block.end(), {-1, -2, -3});
    return block;
}

void ExpectSame(const TAIndexB& index, const Model& model) {
    ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
    int position = 0;
    for (const auto& [key, value] : model) {
        // Look-ups read the compared half only.
        const std::vector<int> half(key.begin(), key.end());
        ASSERT_EQ(index.IsIn(half.data()), position);
        ASSERT_EQ(index.IsIn(half.data(), 3), position);
        ASSERT_EQ(index.IsIn(half.data(), 2), -1);
        ASSERT_EQ(index[half.data()], value);
        ASSERT_EQ(std::memcmp(index[position], Owed(key).data(), 24), 0);
        ASSERT_EQ(index.Get(position), value);
        ASSERT_EQ(index.GetContent()[position], value);
        ++position;
    }
    for (const int outside : {-1, position, INT_MIN, INT_MAX}) {
        ASSERT_EQ(index[outside], nullptr);
        ASSERT_EQ(index.Get(outside), nullptr);
    }
}

Key RandomKey(std::mt19937& random) {
    const int elements[] = {INT_MIN, -256, -1, 0, 1, 255, 256, 65536, INT_MAX};
    return {elements[random() % 9], elements[random() % 9], static_cast<int>(random() % 40) - 20};
}

TEST(TAIndexB, BehavesLikeASortedMapOfSignedIntegers) {
    std::mt19937 random(1);
    TAIndexB index(3);
    Model model;
    for (int step = 0; step < 5000; ++step) {
        const Key key = RandomKey(random);
        if (random() % 5 == 0 && !model.empty()) {
            const int position = static_cast<int>(random() % model.size());
            ASSERT_EQ(index.RemovePosition(position), 0);
            model.erase(std::next(model.begin(), position));
        } else {
            std::vector<int> owed = Owed(key);
            const void* const stored = index.Append(owed.data(), Value(step));
            model.emplace(key, Value(step));
            owed[4] = 99;  // not compared
            ASSERT_EQ(index.Append(owed.data(), nullptr), stored);
        }
        if (step % 500 == 0) ExpectSame(index, model);
    }
    EXPECT_GT(index.Size(), 1000);
    for (const int outside : {-1, index.Size(), INT_MIN}) EXPECT_EQ(index.RemovePosition(outside), 1);
    EXPECT_EQ(index.Append(nullptr, &model), nullptr);
    EXPECT_EQ(index[static_cast<const void*>(nullptr)], nullptr);
    EXPECT_EQ(index.IsIn(nullptr), -1);
    ExpectSame(index, model);

    const TAIndexB copy(index);
    index.Reset();
    ExpectSame(index, {});
    ExpectSame(copy, model);
}

TEST(TAIndexB, AnAssignedIndexIsAViewUntilItIsChanged) {
    std::mt19937 random(2);
    TAIndexB source(3);
    Model model;
    for (int i = 0; i < 50; ++i) {
        const Key key = RandomKey(random);
        source.Append(Owed(key).data(), Value(i));
        model.emplace(key, Value(i));
    }
    TAIndexB appended(1), removed(3), reset(3), unchanged(3);
    appended.Append(Owed({1, 2, 3}).data(), nullptr);  // freed by the assignment
    appended = source;
    removed = appended;
    reset = source;
    unchanged = source;
    TAIndexB& itself = source;
    source = itself;
    source = unchanged;
    ExpectSame(unchanged, model);
    EXPECT_EQ(unchanged.GetContent(), source.GetContent());

    Model changed = model;
    changed[{9, 9, 9}] = &source;
    appended.Append(Owed({9, 9, 9}).data(), &source);
    ExpectSame(appended, changed);
    changed = model;
    changed.erase(changed.begin());
    EXPECT_EQ(removed.RemovePosition(0), 0);
    ExpectSame(removed, changed);
    EXPECT_EQ(reset.Reset(), 0);
    ExpectSame(reset, {});
    reset.Append(Owed({9, 9, 9}).data(), &source);
    ExpectSame(reset, {{{9, 9, 9}, &source}});
    ExpectSame(source, model);
}

TEST(TAIndexB, RecordsItsCapacity) {
    struct Fields {
        void *keys, *values;
        int sizeofkey, count, allocated, increment;
    } fields;
    TAIndexB index(1);
    for (int i = 0; i < 11000; ++i) {
        const int key[2] = {i, 0};
        index.Append(key, nullptr);
        std::memcpy(static_cast<void*>(&fields), static_cast<const void*>(&index), sizeof fields);
        ASSERT_EQ(fields.sizeofkey, 1);
        ASSERT_EQ(fields.count, i + 1);
        ASSERT_EQ(fields.allocated, i + 1 == 11000 ? 16500 : (i + 1) / 1000 * 1000 + 1000);
        ASSERT_EQ(fields.increment, fields.allocated > 10000 ? 5500 : 1000);
    }
    index.Reset();
    std::memcpy(static_cast<void*>(&fields), static_cast<const void*>(&index), sizeof fields);
    EXPECT_EQ(fields.allocated, 5500);
}

TEST(TAIndexBDeathTest, NeedsAKeyLengthOfAtLeastOne) {
    for (const int length : {0, -1, INT_MIN})
        EXPECT_DEATH(TAIndexB index(length), "Unable to create TAIndexB with sizeofkey < 0 ");
}

}  // namespace
