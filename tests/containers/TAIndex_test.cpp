#include "containers/index_model.h"

namespace {

using Model = std::map<std::string, void*>;

struct Fields {
    char* inlineKeys[10];
    void* inlineValues[10];
    char** keys;
    void** values;
    int count, allocated, increment;
};

void AppendNumbers(TAIndex& index, int count) {
    for (int i = 0; i < count; ++i) index.Append(std::to_string(i).c_str(), nullptr);
}

// Families of keys, each of which stresses another part of the search: what the keys share and where they differ.
using MakeKey = std::string (*)(std::mt19937&);
const MakeKey keyFamilies[] = {
    [](std::mt19937& random) { return std::to_string(random()); },
    [](std::mt19937& random) { return "c:\\sources\\library\\part" + std::to_string(random() % 3000) + ".cpp"; },
    // Short keys of few bytes, 0x7F, 0x80 and 0xFF among them: many ends within a word.
    [](std::mt19937& random) { return RandomText(random, "\x01z\x7F\x80\xFF", 11); },
    // Long runs: the words are equal and the keys differ behind them, or one is the beginning of the other.
    [](std::mt19937& random) { return std::string(random() % 300, 'x') + (random() % 2 ? "y" : ""); },
    [](std::mt19937& random) { return std::string(random() % 300, '\xFF'); },
};

}  // namespace

TEST(TAIndex, BehavesLikeASortedMapForEveryKindOfKey) {
    for (const MakeKey& makeKey : keyFamilies) {
        SCOPED_TRACE(&makeKey - keyFamilies);
        TAIndex index;
        BehaveLikeASortedMap(index, makeKey);
    }
}

TEST(TAIndex, TakesKeysInAnyOrderOfArrival) {
    constexpr int Count = 20000;
    for (const int stride : {1, Count - 1, 7919}) {
        SCOPED_TRACE(stride);
        TAIndex index(25);
        Model model;
        std::vector<const char*> stored;
        for (int i = 0; i < Count; ++i) {
            const std::string key = "key" + std::to_string(100000 + std::int64_t{i} * stride % Count);
            stored.push_back(index.Append(key.c_str(), Value(i)));
            model[key] = Value(i);
        }
        ExpectSame(index, model);
        // Growing, staging and settling leave the keys where they are.
        for (int i = 0; i < Count; i += 97) ASSERT_EQ(stored[i], index[index.IsIn(stored[i])]);
        // Values may be replaced in place, and keep to their keys behind others.
        model[index[500]] = index.GetContent()[500] = &index;
        index.Append("a key in front", model["a key in front"] = &model);
        ExpectSame(index, model);
        ASSERT_EQ(index["key"], nullptr);
        ASSERT_EQ(index.IsIn("key1000000"), -1);
        ASSERT_EQ(index.Reset(), 0);
        ExpectSame(index, Model());
        index.Append("again", Value(1));
        ExpectSame(index, Model{{"again", Value(1)}});
    }
}

TEST(TAIndex, FindsPartsOfTextsByLength) {
    TAIndex index;
    EXPECT_EQ(index.Append(nullptr, &index), nullptr);
    EXPECT_NE(index.GetContent(), nullptr);
    for (const char* key : {"ab", "abcd", "b", ""}) index.Append(key, nullptr);
    const std::tuple<const char*, int, int> rows[] = {
        // the last: where it is found
        {"abc", 2, 1},  {"abc", 3, -1}, {"abcde", 4, 2}, {"abcde", 5, -1}, {"ab", 1, -1}, {"ab", 5, -1},
        {"ab", -1, -1}, {"xyz", 0, 0},  {"bcd", 1, 3},   {"c", 1, -1},     {"", 1, -1},   {nullptr, 0, -1},
    };
    for (const auto& [key, length, position] : rows) EXPECT_EQ(index.IsIn(key, length), position) << length;
    EXPECT_EQ(index.RemovePosition(0), 0);
    EXPECT_EQ(index.IsIn("xyz", 0), -1);
    EXPECT_EQ(index.IsIn(nullptr), -1);
    EXPECT_EQ(index[static_cast<const char*>(nullptr)], nullptr);
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
        const Fields fields = FieldsOf<Fields>(index);
        ASSERT_EQ(fields.count, count);
        ASSERT_EQ(fields.allocated, *expected);
        ASSERT_EQ(fields.increment, *expected > 550 ? 302 : *expected > 100 ? 55 : 10);
        ASSERT_EQ(fields.keys == reinterpret_cast<char**>(&index), count < 10);
    }
    index.Reset();
    EXPECT_EQ(FieldsOf<Fields>(index).allocated, 302);

    // While the arrays are the inline ones, ten is the truth whatever the increment says.
    TAIndex wide(500);
    AppendNumbers(wide, 5);
    wide.Reset();
    EXPECT_EQ(FieldsOf<Fields>(wide).allocated, 10);
    AppendNumbers(wide, 10);
    EXPECT_EQ(FieldsOf<Fields>(wide).allocated, 510);
    wide.Reset();
    EXPECT_EQ(FieldsOf<Fields>(wide).allocated, 500);
}

TEST(TAIndex, AnAssignedIndexIsAViewUntilItIsChanged) {
    for (const int count : {0, 1, 9, 10, 40, 700}) {
        SCOPED_TRACE(count);
        TAIndex source;
        Model model;
        for (int i = count; i > 0; --i) {  // descending, so that entries are still staged
            const std::string key = "entry " + std::to_string(10000 + i);
            source.Append(key.c_str(), Value(i));
            model[key] = Value(i);
        }
        BeAViewUntilItIsChanged(source, model, std::string("entry 5"));
    }
}

TEST(TAIndexDeathTest, GrowthBeyondIntIsFatal) {
    struct GrowingTAIndex : TAIndex {
        using TAIndex::increaseAllocSize;
        using TAIndex::TAIndex;
    } index(INT_MAX - 5);
    EXPECT_EQ(index.increaseAllocSize(), 0);
    AppendNumbers(index, 9);
    EXPECT_DEATH(index.Append("tenth", nullptr), "TAIndex::increaseAllocSize failed, memory allocation failed");
}
