#include "ZELListVal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>
#include <ranges>
#include <string>
#include <utility>
#include <vector>

#include "ZELListValZELString.h"

namespace {

// A value that counts its objects, remembers who was deleted, and whose nth allocation from now fails on request.
struct Value {
    static inline int alive = 0;
    static inline int allocationsLeft = INT_MAX;
    static inline std::vector<int> deleted;

    Value(int initial = 0) : number(initial) { ++alive; }
    Value(const Value& other) : number(other.number) { ++alive; }
    Value& operator=(const Value&) = default;
    ~Value() {
        --alive;
        deleted.push_back(number);
    }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
        return allocationsLeft > 0 && allocationsLeft-- ? std::malloc(size) : nullptr;
    }
    static void operator delete(void* block) noexcept { std::free(block); }
    bool operator==(const Value& other) const { return number == other.number; }

    int number;
};

ZELListVal<Value> MakeList(int count) {
    ZELListVal<Value> list(count, 10);
    for (int i = 1; i <= count; ++i) list.Append(Value(i));
    return list;
}

std::string Text(const ZELListVal<Value>& list) {
    std::string text;
    for (const Value& value : list) text += std::to_string(value.number) + " ";
    return text;
}

int Descending(Value* left, Value* right) {
    return right->number - left->number;
}

// Lists within lists, declared while the element type is incomplete.
struct Tree {
    ZELListVal<Tree> below;
    int number = 0;
};

// Every test ends with as many values as it began with.
class ZELListValTest : public testing::Test {
protected:
    ~ZELListValTest() override { EXPECT_EQ(Value::alive, _fresh); }

private:
    const int _fresh = ZELFreshValue<Value>().alive;  // the one that stands for positions outside
};

}  // namespace

static_assert(std::random_access_iterator<ZELListVal<int>::iterator>);
static_assert(std::random_access_iterator<ZELListVal<int>::const_iterator>);
static_assert(std::ranges::random_access_range<const ZELListValZELString>);
static_assert(std::is_nothrow_move_constructible_v<ZELListValZELString>);

TEST_F(ZELListValTest, InsertsAndRemovesByPosition) {
    struct Row {
        int before, after, remove;
        unsigned int count;
        int results[3];
        const char* text;
    };
    // On the list 1 2 3: inserts 8 before, 9 after, then removes.
    const Row rows[] = {
        {1, 0, 1, 1, {0, 0, 1}, "8 1 2 3 "},
        {4, 4, 5, 9, {0, 0, 1}, "1 2 3 8 "},
        {2, 2, 2, 2, {0, 0, 2}, "1 2 3 "},
        {0, -1, 0, 1, {1, 1, 0}, "1 2 3 "},
        {5, 4, 4, 1, {1, 1, 0}, "1 2 3 "},
        {INT_MIN, INT_MAX, 2, UINT_MAX, {1, 1, 2}, "1 "},
        {INT_MAX, INT_MIN, 3, 0, {1, 1, 0}, "1 2 3 "},
    };
    for (const Row& row : rows) {
        ZELListVal<Value> list = MakeList(3);
        EXPECT_EQ(list.InsertBefore(row.before, Value(8)), row.results[0]);
        EXPECT_EQ(list.InsertAfter(row.after, Value(9)), row.results[1]);
        EXPECT_EQ(list.RemovePosition(row.remove, row.count), row.results[2]);
        EXPECT_EQ(Text(list), row.text);
    }
}

TEST_F(ZELListValTest, DeletesFromTheLastToTheFirst) {
    {
        ZELListVal<Value> list = MakeList(6);
        Value::deleted.clear();
        EXPECT_EQ(list.RemovePosition(2, 2u) + list.RemovePosition(9) + list.RemovePosition(1), 2 + 1 + 0);
    }
    EXPECT_EQ(Value::deleted, (std::vector<int>{3, 2, 1, 6, 5, 4}));
}

TEST_F(ZELListValTest, TakesItsOwnValues) {
    ZELListVal<Value> list = MakeList(2);
    for (int i = 0; i < 20; ++i) list.Append(list[1]);
    list.InsertBefore(1, list[2]);
    EXPECT_EQ(list.Append(list), 0);
    EXPECT_EQ(list.Size(), 46);
    EXPECT_EQ(list[24].number, 2);
    EXPECT_EQ(list.Locate(Value(2), 4), 24);
    EXPECT_EQ(list.Locate(Value(2), 0), 0);
    EXPECT_EQ(list.Locate(Value(2), 47), 0);
    EXPECT_EQ(list.Locate(Value(5)), 0);
    list = *&list;
    EXPECT_EQ(list.Size(), 46);
    for (const int outside : {INT_MIN, 0, 47, INT_MAX}) {
        list[outside].number = 7;
        EXPECT_EQ(std::as_const(list)[outside].number, 0);
    }

    Tree tree;
    tree.below.Append(Tree());
    tree.below[1].number = 5;
    tree.below[1].below.Append(tree.below[1]);
    tree.below = std::move(tree.below[1].below);
    ASSERT_EQ(tree.below.Size(), 1);
    EXPECT_EQ(tree.below[1].number, 5);
    tree.below.Append(tree);
    tree.below = tree.below[2].below;
    EXPECT_EQ(tree.below.Size(), 1);
}

TEST_F(ZELListValTest, StaysAsItWasWithoutMemory) {
    using List = ZELListVal<Value>;
    const List other = MakeList(5);
    const auto operations = {
        +[](List& list, const List&) { return list.Append(list); },
        +[](List& list, const List&) { return list.InsertAfter(1, list[3]); },
        +[](List& list, const List& source) { return (list = source) == source ? 0 : 1; },
    };
    for (const auto operation : operations) {
        int failed = 0;
        for (int allocations = 0;; ++allocations) {
            List list = MakeList(3);
            Value::allocationsLeft = allocations;
            testing::internal::CaptureStdout();
            const int result = operation(list, other);
            const std::string printed = testing::internal::GetCapturedStdout();
            Value::allocationsLeft = INT_MAX;
            if (result == 0) break;
            ++failed;
            EXPECT_EQ(Text(list), "1 2 3 ");
            EXPECT_EQ(printed.rfind("# Alloc failed in ZELListVal", 0), 0u);
        }
        EXPECT_GE(failed, 1);
    }
}

TEST_F(ZELListValTest, SortsWithoutMovingValues) {
    ZELListVal<Value> list = MakeList(100);
    const Value* const first = &list[1];
    const int made = Value::alive;
    Value::deleted.clear();
    list.QuickSort(Descending);
    EXPECT_EQ(&list[100], first);
    EXPECT_EQ(Value::alive, made);
    EXPECT_TRUE(Value::deleted.empty());

    std::sort(list.begin(), list.end(), [](const Value& a, const Value& b) { return a.number < b.number; });
    EXPECT_TRUE(list == MakeList(100));
    EXPECT_EQ(std::ranges::find(list, 40, &Value::number) - list.begin(), 39);
    list[7].number = 0;
    EXPECT_TRUE(list != MakeList(100));
    EXPECT_TRUE(list != MakeList(99));
    ZELListVal<Value> moved(std::move(list));
    EXPECT_EQ(moved.Size(), 100);
    list = MakeList(2);
    EXPECT_EQ(Text(list), "1 2 ");
}
