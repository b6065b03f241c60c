#include "ZELHashRWMap.h"

#include "base/memory.h"
#include "containers/map_model.h"
#include "support/slots.h"

TEST(ZELHashRWMap, GivesOutOneIteratorUntilAChange) {
    ZELHashRWMap map;
    static_assert(sizeof map == 56);
    EXPECT_EQ(Rest(map.getIteratorRef()), Entries());
    using Change = void (*)(ZELHashRWMap&);
    const std::pair<Change, Entries> rows[] = {
        {[](ZELHashRWMap& m) { m.insert("a", Value(1)); }, {{"a", Value(1)}}},
        {[](ZELHashRWMap& m) { m.insert("b", Value(2)); }, {{"a", Value(1)}, {"b", Value(2)}}},
        {[](ZELHashRWMap& m) { m.insert("b", Value(3)); }, {{"a", Value(1)}, {"b", Value(2)}}},
        {[](ZELHashRWMap& m) { m.remove("a"); }, {{"b", Value(2)}}},
        {[](ZELHashRWMap& m) { m.Update(); }, {{"b", Value(2)}}},
        {[](ZELHashRWMap& m) { m.clear(); }, {}},
    };
    for (const auto& [change, expected] : rows) {
        change(map);
        FailAllocation(1);
        const std::string told = Printed([&] { EXPECT_EQ(map.getIteratorRef(), nullptr); });  // it has to be made anew
        EXPECT_TRUE(told.starts_with("# Alloc failed in ZELHashSCMapIterator")) << told;
        ZELHashRWMapIteratorRef* const kept = map.getIteratorRef();
        EXPECT_EQ(Rest(kept), expected);
        EXPECT_EQ(map.getIteratorRef(), kept);
        EXPECT_EQ(Rest(kept), expected);
        kept->RewindIterator();
        EXPECT_EQ(Rest(kept), expected);
    }
    ExpectSlots(6, &ZELHashRWMapIteratorRef::RewindIterator);
    ExpectSlots(8, &ZELHashRWMap::getIteratorRef);
}

TEST(ZELHashRWMap, IteratorsOutliveMapsAndCopiesShareThem) {
    ZELHashRWMapIteratorRef* outliving;
    {
        ZELHashRWMap map(30, 0.75F);
        for (int i = 0; i < 40; ++i) map.insert(std::to_string(i).c_str(), Value(i));
        outliving = map.getIteratorRef();
        const Entries held = Rest(outliving);
        {
            ZELHashRWMap view(map), ended;
            ended.insert("x", nullptr);
            ended.getIteratorRef();
            EXPECT_EQ(view.getIteratorRef(), outliving);
            ended = view;
            EXPECT_EQ(ended.getIteratorRef(), outliving);
            map = view;
            view.insert("one more", nullptr);
            EXPECT_NE(view.getIteratorRef(), outliving);
            EXPECT_EQ(Rest(view.getIteratorRef()).size(), 41U);
            view = ended;
        }
        EXPECT_EQ(Rest(map.getIteratorRef()), held);
    }
    outliving->RewindIterator();
    EXPECT_EQ(outliving->next(), 1);
}
