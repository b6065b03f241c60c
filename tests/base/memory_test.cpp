// Memory and owners: what crosses the library boundary, and what grows.

#include "base/memory.h"

#include "ZELShared.h"
#include "base/ascii.h"
#include "base/growing_array.h"
#include "support/testing.h"

namespace {

struct Counted {
    explicit Counted(int value = 0) : number(value) { ++alive; }
    Counted(const Counted& other) : number(other.number) { ++alive; }
    virtual ~Counted() { --alive; }

    int number;
    static inline std::atomic<int> alive = 0;
};

struct Side {
    virtual ~Side() = default;
    int padding = 0;
};

// Its second base does not begin where it begins.
struct alignas(64) Wide : Side, Counted {};

}  // namespace

TEST(Memory, ObjectsAreAlignedAndDestroyedOnceThroughAnyBase) {
    for (int round = 0; round < 100; ++round) {
        Wide* const wide = ZELNew<Wide>();
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(wide) % alignof(Wide), 0u);
        ZELDelete(wide);
        struct Both : Side, Counted {};
        Counted* const second = ZELNew<Both>();
        ASSERT_NE(static_cast<void*>(second), dynamic_cast<void*>(second));
        ZELDelete(second);
    }
    ZELDelete(static_cast<Counted*>(nullptr));
    EXPECT_EQ(Counted::alive, 0);
}

TEST(Memory, TheHookFailsTheAllocationThatWasNamedAndNoOther) {
    std::allocator_traits<HeapAllocator<int>>::value_type kept[3] = {};
    std::vector<int, HeapAllocator<int>> numbers(kept, kept + 3);
    for (int number = 1; number <= 4; ++number) {
        FailAllocation(number);
        const std::unique_ptr<void, FreeBlock> first(Allocate(8)), second(AllocateZeroed(8));
        const std::unique_ptr<char, FreeBlock> text(CopyText("text"));
        EXPECT_EQ(first == nullptr, number == 1);
        EXPECT_EQ(second == nullptr, number == 2);
        EXPECT_EQ(text == nullptr, number == 3);
        if (number == 4) {
            EXPECT_THROW(numbers.reserve(100), std::bad_alloc);
        }
        EXPECT_TRUE(HasAllocationFailed());
    }
    FailAllocation(2, Afterwards::Fail);
    for (int number = 1; number <= 4; ++number)
        EXPECT_EQ((std::unique_ptr<void, FreeBlock>(Allocate(8)) == nullptr), number >= 2);
    FailAllocation(0);
    EXPECT_EQ(AllocateArray<int>(SIZE_MAX / 2), nullptr);
}

TEST(Memory, GrowingArraysKeepTheirElementsWhenGrowthFails) {
    GrowingArray<int> numbers;
    std::vector<int> model;
    for (int i = 0; i < 1000; ++i) {
        FailAllocation(1);
        if (numbers.Append(i)) model.push_back(i);
        FailAllocation(0);
        if (numbers.Size() == numbers.Capacity()) {
            ASSERT_TRUE(numbers.Append(&i, 1));
            model.push_back(i);
        }
        ASSERT_TRUE(std::equal(numbers.begin(), numbers.end(), model.begin(), model.end()));
    }
    EXPECT_FALSE(numbers.Reserve(SIZE_MAX / 2));
    FailAllocation(1);
    const std::unique_ptr<int, FreeBlock> block(numbers.Release());  // untrimmed then
    EXPECT_TRUE(HasAllocationFailed());
    EXPECT_TRUE(numbers.IsEmpty() && std::equal(model.begin(), model.end(), block.get()));
    signed char small = 0;
    char* items = nullptr;
    EXPECT_FALSE(GrowArray(items, small, 128));
    EXPECT_TRUE(GrowArray(items, small, 127));
    EXPECT_EQ(small, 127);
    Free(items);
}

TEST(Memory, SharedBodiesEndWithTheirLastOwner) {
    ZELShared<Counted> first = ZELShared<Counted>::Make(7);
    {
        ZELShared<Counted> second = first, third;
        third = second;
        second = std::move(third);
        first = *&first;
        std::swap(first, second);
        EXPECT_EQ(first.use_count(), 2);
        EXPECT_EQ(second->number, 7);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([owner = first] {
                for (int round = 0; round < 1000; ++round) ZELShared<Counted> copy = owner;
            });
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(Counted::alive, 1);
    first.reset();
    EXPECT_EQ(Counted::alive, 0);
    FailAllocation(1);
    EXPECT_FALSE(ZELShared<Counted>::Make(7));
    EXPECT_EQ(Counted::alive, 0);
}

TEST(Ascii, EveryByteAgreesWithTheCLocale) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        EXPECT_EQ(IsAsciiLetter(c), byte < 128 && std::isalpha(byte)) << byte;
        EXPECT_EQ(IsAsciiAlnum(c), byte < 128 && std::isalnum(byte)) << byte;
        EXPECT_EQ(ToAsciiLower(c), byte < 128 ? static_cast<char>(std::tolower(byte)) : c) << byte;
        EXPECT_EQ(ToAsciiUpper(c), byte < 128 ? static_cast<char>(std::toupper(byte)) : c) << byte;
    }
    EXPECT_TRUE(zel::EqualsIgnoringCase("a\xC4z", "A\xC4Z"));
    EXPECT_FALSE(zel::EqualsIgnoringCase("a\xC4", "a\xE4"));
}
