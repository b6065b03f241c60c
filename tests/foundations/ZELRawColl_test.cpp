#include "ZELRawColl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <utility>
#include <vector>

#include "ZELListPtr.h"

namespace {

int numbers[64];

// One step of a random walk, on the typed list (which stands on the raw one) and on a vector.
void Step(std::mt19937& random, ZELListPtr<int>& list, std::vector<int*>& model) {
    const int size = static_cast<int>(model.size());
    const int position = static_cast<int>(random() % 40) - 2;
    const bool inside = position >= 1 && position <= size;
    int* const item = &numbers[random() % 64];
    const unsigned int step = random() % 64;
    if (step < 16) {
        EXPECT_EQ(list.Append(item), 0);
        model.push_back(item);
    } else if (step < 32) {
        const bool fits = inside || position == size + 1;
        EXPECT_EQ(list.InsertAt(position, item), fits ? 0 : 1);
        if (fits) model.insert(model.begin() + position - 1, item);
    } else if (step < 40) {
        EXPECT_EQ(list.RemovePosition(position), inside ? 0 : 1);
        if (inside) model.erase(model.begin() + position - 1);
    } else if (step < 44) {
        const unsigned int counts[] = {0, 1, 2, 7, UINT_MAX};
        const unsigned int count = counts[random() % 5];
        const int removed = inside ? static_cast<int>(std::min<unsigned int>(count, size - position + 1)) : 0;
        EXPECT_EQ(list.RemovePosition(position, count), removed);
        if (inside) model.erase(model.begin() + position - 1, model.begin() + position - 1 + removed);
    } else if (step < 52) {
        const auto at = std::find(model.begin(), model.end(), item);
        EXPECT_EQ(list.RemoveValue(item), at == model.end() ? 0 : at - model.begin() + 1);
        if (at != model.end()) model.erase(at);
    } else if (step == 63) {
        list.RemoveAll(random() % 2 ? ZELCollec::KeepMemory : ZELCollec::ReleaseMemory);
        model.clear();
    }
}

}  // namespace

TEST(ZELRawColl, DoesWhatAVectorDoes) {
    std::mt19937 random(1);
    ZELListPtr<int> list(3);
    std::vector<int*> model;
    for (int step = 0; step < 20000 && !HasFailure(); ++step) {
        Step(random, list, model);
        ASSERT_EQ(list.Size(), static_cast<int>(model.size()));
        ASSERT_TRUE(std::equal(list.begin(), list.end(), model.begin())) << "step " << step;
        const ZELListPtr<int> copy(list);
        ASSERT_TRUE(copy == list);
        const int position = static_cast<int>(random() % 40) - 2;
        const bool inside = position >= 1 && position <= copy.Size();
        ASSERT_EQ(copy[position], inside ? model[position - 1] : nullptr);
        if (!inside) list[position] = numbers;
        ASSERT_EQ(list[position], copy[position]);
    }
}

TEST(ZELRawColl, CapacitiesAreHints) {
    for (const int capacity : {INT_MIN, -1, 0, 1, INT_MAX}) {
        ZELRawCollint integers(capacity);
        for (int i = 1; i <= 100; ++i) ASSERT_EQ(integers.Append(i), 0);
        ASSERT_TRUE(std::is_sorted(integers.begin(), integers.end()));
        ASSERT_EQ(integers[100], 100);
        EXPECT_EQ(integers.Reserve(capacity < 1000 ? capacity : 1000), 0);
        ZELRawCollint copy(1);
        copy = integers;
        copy = *&copy;
        ASSERT_TRUE(copy == integers);
        const ZELRawCollint moved(std::move(copy));
        ASSERT_TRUE(moved == integers);
        integers[3] = 0;
        integers[0] = integers[101] = integers[INT_MIN] = 7;
        ASSERT_EQ(integers[INT_MAX], 0);
        ASSERT_TRUE(moved != integers);
    }
}

// Sorting: inputs that are hard for one algorithm or another, each with and without memory for the buffer.
class ZELRawCollSort : public testing::Test {
protected:
    struct Element {
        int key;
        int place;
    };

    template <class Key>
    void SortAndCheck(int count, Key key) {
        std::vector<Element> elements;
        for (int i = 0; i < count; ++i) elements.push_back({key(i), i});
        for (const bool buffered : {true, false}) {
            std::vector<Element*> sorted;
            for (Element& element : elements) sorted.push_back(&element);
            std::vector<Element*> buffer(count / 2 + 1);
            long compared = 0;
            const auto compare = [&compared](const Element* left, const Element* right) {
                ++compared;
                return left->key < right->key ? -1 : left->key > right->key;
            };
            ZELMergeSort<Element*, decltype(compare)>(compare, buffered ? buffer.data() : nullptr)
                .Sort(sorted.data(), count);
            ASSERT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), [](const Element* left, const Element* right) {
                return std::pair(left->key, left->place) < std::pair(right->key, right->place);
            })) << count;
            int levels = 1;
            while ((1 << levels) < count) ++levels;
            // Runs of twelve are sorted with up to 66 comparisons; without a buffer each level costs a logarithm.
            EXPECT_LE(compared, (buffered ? 1L : levels) * count * (levels + 6)) << count;
        }
    }
};

TEST_F(ZELRawCollSort, IsStableAndNeverQuadratic) {
    std::mt19937 random(2);
    for (int count = 0; count < 70; ++count) SortAndCheck(count, [&random](int) { return int(random() % 10); });
    const int many = 50000;
    SortAndCheck(many, [](int i) { return i; });
    SortAndCheck(many, [](int i) { return -i; });
    SortAndCheck(many, [](int) { return 1; });
    SortAndCheck(many, [](int i) { return i % 2 ? i : -i; });
    SortAndCheck(many, [](int i) { return i < many / 2 ? i : many - i; });
    SortAndCheck(many, [&random](int) { return int(random() % 1000); });
}

TEST_F(ZELRawCollSort, BearsComparisonsThatContradictThemselves) {
    std::mt19937 random(3);
    const auto answers = {+[](std::mt19937& source) { return int(source() % 3) - 1; }, +[](std::mt19937&) { return 1; },
                          +[](std::mt19937&) { return INT_MIN; }};
    for (const auto answer : answers) {
        for (const int count : {2, 13, 1000, 30000}) {
            const auto compare = [&](int*, int*) { return answer(random); };
            std::vector<int> values(count);
            std::vector<int*> sorted;
            for (int& value : values) sorted.push_back(&value);
            std::vector<int*> buffer(count / 2);
            for (int** room : {buffer.data(), static_cast<int**>(nullptr)}) {
                ZELMergeSort<int*, decltype(compare)>(compare, room).Sort(sorted.data(), count);
                std::vector<int*> found(sorted);
                std::sort(found.begin(), found.end());
                for (int i = 0; i < count; ++i) ASSERT_EQ(found[i], &values[i]);
            }
        }
    }
}

TEST_F(ZELRawCollSort, HandsElementsToTheCaller) {
    ZELRawCollPV raw;
    for (int& number : numbers) {
        number = static_cast<int>(&number - numbers) * 37 % 64;
        raw.Append(&number);
    }
    raw.QuickSort([](const void* left, const void* right) {
        return *static_cast<const int*>(left) - *static_cast<const int*>(right);
    });
    for (int i = 1; i <= 64; ++i) ASSERT_EQ(*static_cast<int*>(raw[i]), i - 1);
}
