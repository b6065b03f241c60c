#include "containers/index_model.h"

TEST(TAIndexI, BehavesLikeASortedMap) {
    TAIndexI index;
    BehaveLikeASortedMap(index, [](std::mt19937& random) {
        const int extremes[] = {INT_MIN, INT_MAX, 0, -1};
        return random() % 100 == 0 ? extremes[random() % 4] : static_cast<int>(random() % 3000) - 1500;
    });
}

TEST(TAIndexI, CopiesAndAssignedOnesAreTheirOwn) {
    TAIndexI index, assigned;
    const std::map<int, void*> model = {{-5, &index}, {3, &assigned}};
    index.Append(3, &assigned);
    index.Append(-5, &index);
    const TAIndexI copy(index);
    assigned.Append(7, nullptr);
    assigned = index;
    assigned = *&assigned;
    EXPECT_EQ(index.Reset(), 0);
    ExpectSame(index, std::map<int, void*>());
    index.Append(4, nullptr);
    ExpectSame(copy, model);
    ExpectSame(assigned, model);
}
