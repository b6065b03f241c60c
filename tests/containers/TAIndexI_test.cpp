#include "TAIndexI.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <map>
#include <random>

namespace {

using Model = std::map<int, void*>;

void* Value(int number) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number) + 1);
}

void ExpectSame(const TAIndexI& index, const Model& model) {
    ASSERT_EQ(index.Size(), static_cast<int>(model.size()));
    int position = 0;
    for (const auto& [key, value] : model) {
        ASSERT_EQ(index.GetKey(position), key);
        ASSERT_EQ(index.Get(position), value);
        ASSERT_EQ(index.GetContent()[position], value);
        ASSERT_EQ(index.IsIn(key), position);
        ASSERT_EQ(index[key], value);
        ++position;
    }
    for (const int outside : {-1, position, INT_MIN, INT_MAX}) {
        ASSERT_EQ(index.GetKey(outside), 0);
        ASSERT_EQ(index.Get(outside), nullptr);
    }
}

TEST(TAIndexI, BehavesLikeASortedMap) {
    std::mt19937 random(1);
    TAIndexI index;
    Model model;
    ExpectSame(index, model);
    for (int step = 0; step < 5000; ++step) {
        const int extremes[] = {INT_MIN, INT_MAX, 0, -1};
        const int key = step % 100 == 0 ? extremes[random() % 4] : static_cast<int>(random() % 3000) - 1500;
        if (random() % 4 == 0 && !model.empty()) {
            const int position = static_cast<int>(random() % model.size());
            ASSERT_EQ(index.RemovePosition(position), 0);
            model.erase(std::next(model.begin(), position));
        } else {
            ASSERT_EQ(index.Append(key, Value(step)), key);
            model.emplace(key, Value(step));
        }
        const int other = static_cast<int>(random() % 3000) - 1500;
        ASSERT_EQ(index.IsIn(other) >= 0, model.count(other) == 1);
        if (step % 500 == 0) ExpectSame(index, model);
    }
    for (const int outside : {-1, index.Size(), INT_MIN}) EXPECT_EQ(index.RemovePosition(outside), 1);
    ExpectSame(index, model);

    TAIndexI copy(index);
    TAIndexI assigned;
    assigned.Append(7, nullptr);
    assigned = index;
    const TAIndexI& itself = assigned;
    assigned = itself;
    EXPECT_EQ(index.Reset(), 0);
    ExpectSame(index, {});
    ExpectSame(copy, model);
    ExpectSame(assigned, model);
    index.Append(3, &index);
    index.Append(-5, &copy);
    ExpectSame(index, {{-5, &copy}, {3, &index}});
}

}  // namespace
