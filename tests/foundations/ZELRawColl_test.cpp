#include "ZELRawColl.h"

#include "ZELListPtr.h"
#include "support/testing.h"

namespace {

int numbers[64];

// One step of a random walk, on the typed list (which stands on the raw one) and on a vector.
void Step(std::mt19937& random, ZELListPtr<int>& list, std::vector<int*>& model) {
    const int size = static_cast<int>(model.size());
    const int position = static_cast<int>(random() % 40) - 2;
    const bool inside = position >= 1 && position <= size;
    const auto at = model.begin() + (inside ? position - 1 : 0);
    int* const item = &numbers[random() % 64];
    const unsigned int step = random() % 64;
    if (step < 16) {
        EXPECT_EQ(list.Append(item), 0);
        model.push_back(item);
    } else if (step < 32) {
        const bool fits = inside || position == size + 1;
        EXPECT_EQ(list.InsertAt(position, item), fits ? 0 : 1);
        if (fits) model.insert(inside ? at : model.end(), item);
    } else if (step < 40) {
        EXPECT_EQ(list.RemovePosition(position), inside ? 0 : 1);
        if (inside) model.erase(at);
    } else if (step < 44) {
        const unsigned int counts[] = {0, 1, 2, 7, UINT_MAX};
        const unsigned int count = counts[random() % 5];
        const int removed = inside ? static_cast<int>(std::min<unsigned int>(count, size - position + 1)) : 0;
        EXPECT_EQ(list.RemovePosition(position, count), removed);
        model.erase(at, at + removed);
    } else if (step < 52) {
        const auto found = std::find(model.begin(), model.end(), item);
        EXPECT_EQ(list.RemoveValue(item), found == model.end() ? 0 : found - model.begin() + 1);
        if (found != model.end()) model.erase(found);
    } else if (step == 63) {
        list.RemoveAll(random() % 2 ? ZELCollec::KeepMemory : ZELCollec::ReleaseMemory);
        model.clear();
    }
}

struct Element {
    int key, place;
    auto operator<=>(const Element&) const = default;
};

// Sorts `count` elements with and without memory for the buffer.
template <class Key>
void SortAndCheck(int count, Key key) {
    std::vector<Element> elements;
    for (int i = 0; i < count; ++i) elements.push_back({key(i), i});
    int levels = 1;
    while ((1 << levels) < count) ++levels;
    for (const bool buffered : {true, false}) {
        std::vector<Element*> sorted, buffer(count / 2 + 1);
        for (Element& element : elements) sorted.push_back(&element);
        long compared = 0;
        const auto compare = [&compared](const Element* left, const Element* right) {
            ++compared;
            return left->key < right->key ? -1 : left->key > right->key;
        };
        ZELMergeSort<Element*, decltype(compare)>(compare, buffered ? buffer.data() : nullptr)
            .Sort(sorted.data(), count);
        ASSERT_TRUE(std::ranges::is_sorted(sorted, {}, [](Element* element) { return *element; })) << count;
        // Runs of twelve are sorted with up to 66 comparisons; without a buffer each level costs a logarithm.
        EXPECT_LE(compared, (buffered ? 1L : levels) * count * (levels + 6)) << count;
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
        ASSERT_TRUE(std::is_sorted(integers.begin(), integers.end()) && integers[100] == 100);
        EXPECT_EQ(integers.Reserve(std::min(capacity, 1000)), 0);
        ZELRawCollint copy(1);
        copy = integers;
        copy = *&copy;
        const ZELRawCollint moved(std::move(copy));
        ASSERT_TRUE(moved == integers);
        integers[3] = 0;
        integers[0] = integers[101] = integers[INT_MIN] = 7;
        ASSERT_EQ(integers[INT_MAX], 0);
        ASSERT_TRUE(moved != integers);
    }
}

TEST(ZELRawCollSort, IsStableAndNeverQuadratic) {
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

TEST(ZELRawCollSort, BearsComparisonsThatContradictThemselves) {
    std::mt19937 random(3);
    for (const int always : {INT_MIN, 0, 1}) {
        const auto compare = [&](int*, int*) { return always != 0 ? always : int(random() % 3) - 1; };
        for (const int count : {2, 13, 1000, 30000}) {
            std::vector<int> values(count);
            std::vector<int*> original, buffer(count / 2);
            for (int& value : values) original.push_back(&value);
            for (int** room : {buffer.data(), static_cast<int**>(nullptr)}) {
                std::vector<int*> sorted(original);
                ZELMergeSort<int*, decltype(compare)>(compare, room).Sort(sorted.data(), count);
                std::sort(sorted.begin(), sorted.end());
                ASSERT_EQ(sorted, original);
            }
        }
    }
}

TEST(ZELRawCollSort, HandsElementsToTheCaller) {
    ZELRawCollPV raw;
    for (int& number : numbers) raw.Append(&number);
    raw.QuickSort([](const void* left, const void* right) { return left < right ? 1 : -1; });
    for (int i = 1; i <= 64; ++i) ASSERT_EQ(raw[i], &numbers[64 - i]);
}
