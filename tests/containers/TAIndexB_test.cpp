#include "containers/index_model.h"

namespace {

Block RandomKey(std::mt19937& random) {
    const int elements[] = {INT_MIN, -256, -1, 0, 1, 255, 256, 65536, INT_MAX};
    return {elements[random() % 9], elements[random() % 9], static_cast<int>(random() % 40) - 20, -1, -2, -3};
}

}  // namespace

TEST(TAIndexB, BehavesLikeASortedMapOfSignedIntegers) {
    TAIndexB index(3);
    BehaveLikeASortedMap(index, RandomKey);
    EXPECT_EQ(index.Append(nullptr, &index), nullptr);
    EXPECT_EQ(index[static_cast<const void*>(nullptr)], nullptr);
    EXPECT_EQ(index.IsIn(nullptr), -1);
    // The half behind is carried along and not compared.
    const Block first = {1, 2, 3, -1, -2, -3}, second = {1, 2, 3, 9, 9, 9};
    const void* const stored = index.Append(first.data(), nullptr);
    EXPECT_EQ(index.Append(second.data(), &index), stored);
    EXPECT_TRUE(Keys::IsCopy(stored, first));
}

TEST(TAIndexB, AnAssignedIndexIsAViewUntilItIsChanged) {
    std::mt19937 random(2);
    TAIndexB source(3);
    std::map<Block, void*> model;
    for (int i = 0; i < 50; ++i) {
        const Block key = RandomKey(random);
        source.Append(key.data(), Value(i));
        model.emplace(key, Value(i));
    }
    BeAViewUntilItIsChanged(source, model, {9, 9, 9, -1, -2, -3});
}

TEST(TAIndexB, RecordsItsCapacity) {
    struct Fields {
        void *keys, *values;
        int count, allocated, increment;
    };
    TAIndexB index(1);
    for (int count = 1; count <= 11000; ++count) {
        const int key[2] = {count, 0};
        index.Append(key, nullptr);
        const Fields fields = FieldsOf<Fields>(index);
        ASSERT_TRUE(fields.count == count) << count;
        ASSERT_EQ(fields.allocated, count == 11000 ? 16500 : count / 1000 * 1000 + 1000);
        ASSERT_EQ(fields.increment, count >= 10000 ? 5500 : 1000);
    }
    index.Reset();
    EXPECT_EQ(FieldsOf<Fields>(index).allocated, 5500);
}

TEST(TAIndexBDeathTest, NeedsAKeyLengthOfAtLeastOne) {
    for (const int length : {0, -1, INT_MIN})
        EXPECT_DEATH(TAIndexB index(length), "Unable to create TAIndexB with sizeofkey < 0 ");
}
