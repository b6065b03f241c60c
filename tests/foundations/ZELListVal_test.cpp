#include "ZELListVal.h"

#include <ranges>

#include "ZELListValZELString.h"
#include "support/failing_memory.h"
#include "support/testing.h"

namespace {

// A value that counts its objects and remembers which were deleted.
struct Counted {
    static inline int alive = 0;
    static inline std::vector<int> deleted;

    Counted(int initial = 0) : number(initial) { ++alive; }
    Counted(const Counted& other) : number(other.number) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() {
        --alive;
        deleted.push_back(number);
    }
    auto operator<=>(const Counted&) const = default;

    int number;
};

using List = ZELListVal<Counted>;

List MakeList(int count) {
    List list(count, 10);
    for (int i = 1; i <= count; ++i) list.Append(Counted(i));
    return list;
}

std::string Text(const List& list) {
    std::string text;
    for (const Counted& value : list) text += std::to_string(value.number) + " ";
    return text;
}

// Lists within lists, declared while the element type is incomplete.
struct Tree {
    ZELListVal<Tree> below;
    int number = 0;
};

// Every test ends with as many values as it began with.
struct ZELListValTest : testing::Test {
    ~ZELListValTest() override { EXPECT_EQ(Counted::alive, _fresh); }

private:
    const int _fresh = ZELFreshValue<Counted>().alive;  // the one that stands for positions outside
};

}  // namespace

static_assert(std::ranges::random_access_range<const ZELListValZELString>);
static_assert(std::is_nothrow_move_constructible_v<ZELListValZELString>);

TEST_F(ZELListValTest, InsertsAndRemovesByPosition) {
    const int positions[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, INT_MAX};
    for (const int position : positions)
        for (const int remove : positions)
            for (const unsigned int count : {0u, 1u, 2u, UINT_MAX}) {
                List list = MakeList(3);
                std::vector<int> model = {1, 2, 3};
                const bool before = position >= 1 && position <= 4, after = position >= 0 && position <= 3 + before;
                EXPECT_EQ(list.InsertBefore(position, Counted(8)), before ? 0 : 1);
                if (before) model.insert(model.begin() + position - 1, 8);
                EXPECT_EQ(list.InsertAfter(position, Counted(9)), after ? 0 : 1);
                if (after) model.insert(model.begin() + position, 9);
                const auto first = model.begin() + std::clamp(remove - 1LL, 0LL, list.Size() + 0LL);
                const auto last = remove < 1 ? first : first + std::min<long long>(count, model.end() - first);
                EXPECT_EQ(list.RemovePosition(remove, count), last - first);
                model.erase(first, last);
                EXPECT_TRUE(std::equal(list.begin(), list.end(), model.begin(), model.end())) << Text(list);
            }
}

TEST_F(ZELListValTest, DeletesFromTheLastToTheFirst) {
    {
        List list = MakeList(6);
        Counted::deleted.clear();
        EXPECT_EQ(list.RemovePosition(2, 2u) + list.RemovePosition(9) + list.RemovePosition(1), 2 + 1 + 0);
    }
    EXPECT_EQ(Counted::deleted, (std::vector<int>{3, 2, 1, 6, 5, 4}));
}

TEST_F(ZELListValTest, TakesItsOwnValues) {
    List list = MakeList(2);
    for (int i = 0; i < 20; ++i) list.Append(list[1]);
    list.InsertBefore(1, list[2]);
    EXPECT_EQ(list.Append(list), 0);
    list = *&list;
    EXPECT_EQ(list.Size(), 46);
    const int found[][2] = {{4, 24}, {24, 24}, {25, 26}, {27, 0}, {0, 0}, {47, 0}};
    for (const auto& [from, position] : found) EXPECT_EQ(list.Locate(Counted(2), from), position) << from;
    for (const int outside : {INT_MIN, 0, 47, INT_MAX}) {
        list[outside].number = 7;
        EXPECT_EQ(std::as_const(list)[outside].number, 0);
    }

    Tree tree;
    tree.below.Append(Tree());
    tree.below[1].number = 5;
    tree.below[1].below.Append(tree.below[1]);
    tree.below = std::move(tree.below[1].below);
    EXPECT_TRUE(tree.below.Size() == 1 && tree.below[1].number == 5);
    tree.below.Append(tree);
    tree.below = tree.below[2].below;
    EXPECT_EQ(tree.below.Size(), 1);
}

TEST_F(ZELListValTest, StaysAsItWasWithoutMemory) {
    const List other = MakeList(5);
    const auto operations = {
        +[](List& list, const List&) { return list.Append(list); },
        +[](List& list, const List&) { return list.InsertAfter(1, list[3]); },
        +[](List& list, const List& source) { return (list = source) == source ? 0 : 1; },
    };
    for (const auto operation : operations) {
        const AllocationFailures failures = FailEachAllocation(
            [&](FailingMemory& memory) {
                List list = MakeList(3);
                memory.Begin();
                const int result = operation(list, other);
                memory.End();
                EXPECT_EQ(Holds(memory.Said(), "# Alloc failed in "), result != 0);
                EXPECT_TRUE(result == 0 || Text(list) == "1 2 3 ");
            },
            Fallback::Possible);
        EXPECT_TRUE(Holds(failures.said, "# Alloc failed in ZELListVal"));
    }
}

TEST_F(ZELListValTest, SortsWithoutMovingValues) {
    List list = MakeList(100);
    const Counted* const first = &list[1];
    Counted::deleted.clear();
    list.QuickSort([](Counted* left, Counted* right) { return right->number - left->number; });
    EXPECT_TRUE(&list[100] == first && first->number == 1 && Counted::deleted.empty());

    std::sort(list.begin(), list.end());
    EXPECT_TRUE(list == MakeList(100));
    EXPECT_EQ(std::ranges::find(list, 40, &Counted::number) - list.begin(), 39);
    list[7].number = 0;
    EXPECT_TRUE(list != MakeList(100) && list != MakeList(99));
    const List moved(std::move(list));
    EXPECT_EQ(moved.Size(), 100);
    list = MakeList(2);
    EXPECT_EQ(Text(list), "1 2 ");
}
