#include "TAIndex.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Model = std::map<std::string, void*>;

// The fields as they stand at the beginning of the object.
struct Fields {
    char* inlineKeys[10];
    void* inlineValues[10];
    char** keys;
    void** values;
    int count, allocated, increment;
};

Fields FieldsOf(const TAIndex& index) {
    Fields fields;
    std::memcpy(static_cast<void*>(&fields), static_cast<const void*>(&index), sizeof fields);
    return fields;
}

void* Value(std::size_t number) {
    return reinterpret_cast<void*>(number + 1);
}

// Everything that can be seen through positions and keys.
void ExpectSame(const TAIndex& index, const Model& model) {
    ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
    for (const auto& [key, value] : model) ASSERT_EQ(index[key.c_str()], value) << key;
    int position = 0;
    for (const auto& [key, value] : model) {
        ASSERT_STREQ(index[position], key.c_str());
        ASSERT_EQ(index.Get(position), value);
        ASSERT_EQ(index.GetContent()[position], value);
        ASSERT_EQ(index.IsIn(key.c_str()), position);
        // A copy of exactly the key's bytes, so that a sanitizer sees a read behind them.
        const std::vector<char> bytes(key.begin(), key.end());
        const char* const data = bytes.empty() ? "" : bytes.data();
        ASSERT_EQ(index.IsIn(data, static_cast<int>(bytes.size())), position);
        ++position;
    }
    for (const int outside : {-1, position, INT_MIN, INT_MAX}) {
        ASSERT_EQ(index[outside], nullptr);
        ASSERT_EQ(index.Get(outside), nullptr);
    }
}

// Families of keys, each of which stresses another part of the search: what the keys share and where they differ.
using MakeKey = std::string (*)(std::mt19937&);
const MakeKey keyFamilies[] = {
    [](std::mt19937& random) { return std::to_string(random()); },
    [](std::mt19937& random) { return "c:\\sources\\library\\part" + std::to_string(random() % 3000) + ".cpp"; },
    // Short keys of few bytes, 0x7F, 0x80 and 0xFF among them: many ends within a word.
    [](std::mt19937& random) {
        std::string key(random() % 12, ' ');
        for (char& character : key)
            character =
                "\x01"
                "a\x7F\x80\xFF"[random() % 5];
        return key;
    },
    // Long runs: the words are equal and the keys differ behind them, or one is the beginning of the other.
    [](std::mt19937& random) { return std::string(random() % 300, 'x') + (random() % 2 ? "y" : ""); },
    [](std::mt19937& random) { return std::string(random() % 300, '\xFF'); },
};

TEST(TAIndex, BehavesLikeASortedMapForEveryKindOfKey) {
    for (std::size_t family = 0; family < std::size(keyFamilies); ++family) {
        SCOPED_TRACE(family);
        std::mt19937 random(static_cast<unsigned>(family));
        TAIndex index;
        Model model;
        for (std::size_t step = 0; step < 6000; ++step) {
            const std::string key = keyFamilies[family](random);
            const int action = static_cast<int>(random() % 16);
            if (action < 12) {
                const char* const stored = index.Append(key.c_str(), Value(step));
                model.emplace(key, Value(step));
                ASSERT_STREQ(stored, key.c_str());
                ASSERT_NE(stored, key.c_str());
                ASSERT_EQ(index.Append(key.c_str(), nullptr), stored);
            } else if (action < 15) {
                const auto entry = model.find(key);
                ASSERT_EQ(index[key.c_str()], entry == model.end() ? nullptr : entry->second);
            } else if (step % 3 == 0 && !model.empty()) {
                const int position = static_cast<int>(random() % model.size());
                ASSERT_EQ(index.RemovePosition(position), 0);
                model.erase(std::next(model.begin(), position));
            }
            ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
            if (step % 1000 == 999) ExpectSame(index, model);
        }
        ExpectSame(TAIndex(index), model);
        while (!model.empty()) {
            const int position = static_cast<int>(random() % model.size());
            ASSERT_EQ(index.RemovePosition(position), 0);
            model.erase(std::next(model.begin(), position));
            if (model.size() % 400 == 0 || model.size() < 20) ExpectSame(index, model);
        }
    }
}

TEST(TAIndex, TakesKeysInAnyOrderOfArrival) {
    constexpr std::size_t Count = 20000;
    for (const std::size_t stride : {std::size_t{1}, Count - 1, std::size_t{7919}}) {
        SCOPED_TRACE(stride);
        TAIndex index(25);
        Model model;
        std::vector<const char*> stored;
        for (std::size_t i = 0; i < Count; ++i) {
            const std::string key = "key" + std::to_string(100000 + i * stride % Count);
            stored.push_back(index.Append(key.c_str(), Value(i)));
            model[key] = Value(i);
        }
        ExpectSame(index, model);
        // Growing, staging and settling leave the keys where they are.
        for (std::size_t i = 0; i < Count; i += 97) ASSERT_EQ(stored[i], index[index.IsIn(stored[i])]);
        ASSERT_EQ(index["key"], nullptr);
        ASSERT_EQ(index.IsIn("key1000000"), -1);
        ASSERT_EQ(index.Reset(), 0);
        ExpectSame(index, {});
        index.Append("again", Value(1));
        ExpectSame(index, {{"again", Value(1)}});
    }
}

TEST(TAIndex, ValuesReplacedInPlaceAreFoundByKey) {
    TAIndex index;
    for (int i = 0; i < 1000; ++i) index.Append(std::to_string(i * 7919 % 1000).c_str(), nullptr);
    index.GetContent()[500] = &index;
    const std::string key = index[500];
    index.Append("a key behind", nullptr);
    index.Append("+ a key in front", nullptr);
    EXPECT_EQ(index[key.c_str()], &index);
    EXPECT_EQ(index.Get(501), &index);
}

TEST(TAIndex, FindsPartsOfTextsByLength) {
    TAIndex index;
    for (const char* key : {"ab", "abcd", "b", ""}) index.Append(key, nullptr);
    const struct {
        const char* key;
        int length, position;
    } rows[] = {
        {"abc", 2, 1},  {"abc", 3, -1}, {"abcde", 4, 2}, {"abcde", 5, -1}, {"ab", 1, -1}, {"ab", 5, -1},
        {"ab", -1, -1}, {"xyz", 0, 0},  {"bcd", 1, 3},   {"c", 1, -1},     {"", 1, -1},   {nullptr, 0, -1},
    };
    for (const auto& row : rows) EXPECT_EQ(index.IsIn(row.key, row.length), row.position) << row.length;
    EXPECT_EQ(index.RemovePosition(0), 0);
    EXPECT_EQ(index.IsIn("xyz", 0), -1);
}

TEST(TAIndex, NullKeysAndPositionsOutsideChangeNothing) {
    TAIndex index;
    EXPECT_EQ(index.Append(nullptr, &index), nullptr);
    EXPECT_NE(index.GetContent(), nullptr);
    EXPECT_EQ(index[static_cast<const char*>(nullptr)], nullptr);
    EXPECT_EQ(index.IsIn(nullptr), -1);
    index.Append("a", Value(1));
    for (const int position : {-1, 1, INT_MIN, INT_MAX}) EXPECT_EQ(index.RemovePosition(position), 1);
    ExpectSame(index, {{"a", Value(1)}});
}

TEST(TAIndex, RecordsItsCapacityFromTheFirstToGeometricGrowth) {
    TAIndex index(3);
    const int capacities[] = {10,  20,  30,  40,  50,  60,  70,  80,  90,  100, 110,
                              165, 220, 275, 330, 385, 440, 495, 550, 605, 907};
    const int* expected = capacities;
    for (int count = 1; count <= 900; ++count) {
        // Descending: most of them wait to be settled, and count all the same.
        index.Append(std::to_string(9999 - count).c_str(), nullptr);
        if (count == *expected) ++expected;
        const Fields fields = FieldsOf(index);
        ASSERT_EQ(fields.count, count);
        ASSERT_EQ(fields.allocated, *expected);
        ASSERT_EQ(fields.increment, *expected > 550 ? 302 : *expected > 100 ? 55 : 10);
        ASSERT_EQ(fields.keys == reinterpret_cast<char**>(&index), count < 10);
    }
    index.Reset();
    EXPECT_EQ(FieldsOf(index).allocated, 302);

    // While the arrays are the inline ones, ten is the truth whatever the increment says.
    TAIndex wide(500);
    for (int i = 0; i < 5; ++i) wide.Append(std::to_string(i).c_str(), nullptr);
    wide.Reset();
    EXPECT_EQ(FieldsOf(wide).allocated, 10);
    for (int i = 0; i < 10; ++i) wide.Append(std::to_string(i).c_str(), nullptr);
    EXPECT_EQ(FieldsOf(wide).allocated, 510);
    wide.Reset();
    EXPECT_EQ(FieldsOf(wide).allocated, 500);
}

// An index of `count` entries that arrived in descending order.
std::unique_ptr<TAIndex> Descending(int count, Model& model) {
    auto index = std::make_unique<TAIndex>();
    for (int i = count; i > 0; --i) {
        const std::string key = "entry " + std::to_string(10000 + i);
        index->Append(key.c_str(), Value(static_cast<std::size_t>(i)));
        model[key] = Value(static_cast<std::size_t>(i));
    }
    return index;
}

TEST(TAIndex, AnAssignedIndexIsAViewUntilItIsChanged) {
    for (const int count : {0, 1, 9, 10, 40, 700}) {
        SCOPED_TRACE(count);
        Model model;
        const std::unique_ptr<TAIndex> source = Descending(count, model);
        TAIndex view;
        view.Append("freed by the assignment", nullptr);
        view = *source;
        ExpectSame(view, model);
        EXPECT_EQ(view.GetContent(), source->GetContent());
        TAIndex second;
        second = view;
        TAIndex& itself = second;
        second = itself;
        *source = second;
        EXPECT_EQ(second[0], (*source)[0]);

        Model more = model;
        more["entry 5"] = &model;
        EXPECT_NE(view.Append("entry 5", &model), nullptr);
        ExpectSame(view, more);
        EXPECT_NE(view.GetContent(), source->GetContent());
        if (count > 0) {
            EXPECT_EQ(second.Append((*source)[0], nullptr), (*source)[0]);
            TAIndex third;
            third = second;
            EXPECT_EQ(third.RemovePosition(0), 0);
            EXPECT_EQ(third.Size(), count - 1);
            EXPECT_EQ(third.IsIn((*source)[0]), -1);
        }
        second.Reset();
        second.Append("new", Value(3));
        ExpectSame(second, {{"new", Value(3)}});
        ExpectSame(*source, model);
        const TAIndex copy(*source);
        source->Reset();
        ExpectSame(copy, model);
    }
}

struct GrowingTAIndex : TAIndex {
    using TAIndex::increaseAllocSize;
    using TAIndex::TAIndex;
};

TEST(TAIndexDeathTest, GrowthBeyondIntIsFatal) {
    GrowingTAIndex index(INT_MAX - 5);
    EXPECT_EQ(index.increaseAllocSize(), 0);
    for (int i = 0; i < 9; ++i) index.Append(std::to_string(i).c_str(), nullptr);
    EXPECT_DEATH(index.Append("tenth", nullptr), "TAIndex::increaseAllocSize failed, memory allocation failed");
}

}  // namespace
