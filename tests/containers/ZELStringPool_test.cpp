#include "ZELStringPool.h"

#include "base/memory.h"
#include "containers/fields.h"
#include "support/testing.h"

namespace {

struct Fields {
    char* block;
    int remaining;
};

static_assert(sizeof(Fields) == sizeof(ZELStringPool));

}  // namespace

TEST(ZELStringPool, PacksTextsAndGivesUpRoomThatIsTooSmall) {
    constexpr int Room = 65532;
    ZELStringPool pool;
    EXPECT_EQ(pool.create(nullptr), nullptr);
    const std::pair<int, int> rows[] = {
        // the length of the text, and what the block has left behind it
        {0, Room - 1},         {5, Room - 7}, {65000, Room - 65008}, {523, 0},      {1, Room - 2},
        {Room - 2, 1},         {0, 0},        {0, Room - 1},         {Room - 1, 0}, {40000, Room - 40001},
        {40000, Room - 40001},
    };
    std::vector<std::pair<char*, std::string>> made;
    Fields before = FieldsOf<Fields>(pool);
    for (const auto& [length, remaining] : rows) {
        const std::string text(static_cast<std::size_t>(length), static_cast<char>('a' + made.size()));
        char* const copy = pool.create(text.c_str());
        const Fields fields = FieldsOf<Fields>(pool);
        ASSERT_EQ(fields.remaining, remaining) << made.size();
        // Behind the pointer that each block begins with, directly behind the text before it.
        ASSERT_EQ(copy, fields.block + 8 + (Room - remaining) - (length + 1)) << made.size();
        EXPECT_TRUE(fields.block == before.block || std::memcmp(fields.block, &before.block, 8) == 0) << made.size();
        made.emplace_back(copy, text);
        before = fields;
    }
    for (const auto& [copy, text] : made) EXPECT_EQ(copy, text);
    pool.clear();
    EXPECT_TRUE(FieldsOf<Fields>(pool).block == nullptr && FieldsOf<Fields>(pool).remaining == 0);
}

TEST(ZELStringPool, RefusesWhatIsTooLongAndWhatHasNoMemory) {
    const std::string longest(65531, 'x');
    ZELStringPool pool;
    EXPECT_EQ(Printed([&] { EXPECT_EQ(pool.create((longest + "y").c_str()), nullptr); }),
              "# Error : unable to allocate in ZELStringPoolAlloc (string too long: 65533)# Error : unable to create "
              "string in ZELStringPoolCreate: " +
                  longest + "y");
    FailAllocation(1);
    EXPECT_EQ(Printed([&] { EXPECT_EQ(pool.create("none"), nullptr); }),
              "# Error : unable to allocate in ZELStringPoolAlloc (not enough memory): 65544# Error : unable to create "
              "string in ZELStringPoolCreate: none");
    EXPECT_STREQ(pool.create("some"), "some");
}

TEST(ZELStringPool, CopiesAreViewsThatStartBlocksOfTheirOwn) {
    ZELStringPool original;
    const char* const kept = original.create("kept");
    {
        ZELStringPool view(original);
        ZELStringPool assigned;
        assigned.create("ends with the assignment");
        assigned = view;
        original = view;  // nothing: it would lose its own blocks
        EXPECT_EQ(FieldsOf<Fields>(assigned).block, FieldsOf<Fields>(original).block);
        EXPECT_STREQ(view.create("own"), "own");
        EXPECT_NE(FieldsOf<Fields>(view).block, FieldsOf<Fields>(original).block);
        EXPECT_STREQ(original.create("more"), "more");
        assigned.clear();
    }
    EXPECT_STREQ(kept, "kept");
}
