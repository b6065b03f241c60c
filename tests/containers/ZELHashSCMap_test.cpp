#include "ZELHashSCMap.h"

#include <deque>
#include <limits>

#include "ZELStringPool.h"
#include "base/memory.h"
#include "containers/fields.h"
#include "containers/map_model.h"
#include "containers/text_hash.h"
#include "support/failing_memory.h"
#include "support/slots.h"

namespace {

// The fields as they stand in every map.
struct Fields {
    void* slots;
    void* table;
    int count, maxSize;
    float loadFactor;
    void* pool;
};
static_assert(sizeof(Fields) == sizeof(ZELHashSCMap));

std::string RandomKey(std::mt19937& random) {
    // Few lengths around the steps of the hash and of the store's sizes; few bytes, some of them with a sign.
    std::string key(std::vector<std::size_t>{0, 1, 2, 3, 6, 8, 15, 16, 20, 33, 60, 1015, 1016}[random() % 13], ' ');
    for (char& byte : key) byte = "az\x01\x7F\x80\xFF"[random() % 6];
    return key;
}

}  // namespace

TEST(HashText, EqualsThePlainLoopForEveryLengthAndByte) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 100; ++length)
        for (int byte = 0; byte < 256; ++byte) {
            std::string text(length, static_cast<char>(byte));
            for (char& changed : text) changed = random() % 2 ? changed : static_cast<char>(random());
            const std::vector<char> exact(text.begin(), text.end());
            ASSERT_EQ(HashText({exact.data(), length}), PlainHash(text)) << length;
        }
}

TEST(ZELHashSCMap, BehavesLikePlainChains) {
    for (const int size : {-1, 8, 13, 30, 64})
        for (const float loadFactor : {0.75F, 0.1F, 0.99F})
            for (const bool isPooled : {false, true}) {
                SCOPED_TRACE(testing::Message() << size << ' ' << loadFactor << ' ' << isPooled);
                std::mt19937 random(static_cast<unsigned>(size));
                ZELStringPool pool;
                ZELHashSCMap map(size, loadFactor, isPooled ? &pool : nullptr);
                MapModel model(static_cast<std::size_t>(std::max(size, 8)), loadFactor);
                for (int step = 0; step < 600; ++step) {
                    const std::string key = RandomKey(random);
                    if (random() % 4 != 0) {
                        const char* const stored = map.insert(key.c_str(), Value(step));
                        ASSERT_EQ(stored != nullptr, model.Insert(key, Value(step)));
                        ASSERT_TRUE(stored == nullptr || stored == key);
                    } else {
                        map.remove(key.c_str());
                        model.Remove(key);
                    }
                    if (step % 150 == 149) ExpectHolds(map, model.InOrder());
                    if (step == 400) map.clear(), model.Clear();
                }
            }
}

TEST(ZELHashSCMap, WalksInAnOrderThatNeverChanges) {
    const std::tuple<int, const char*, const char*> rows[] = {
        // 'a' is 97, bucket 1 of 8; \xFF is -1, bucket 7; \x80 is -128, bucket 0.
        {8, "\xFF \x80 a i", "\x80 i a \xFF "},
        // The sixth entry doubles the table: i and a change their places.
        {8, "a i q b c", "q i a b c "},
        {8, "a i q b c d", "a q b c d i "},
        {13, "main.cpp TAIndex.cpp ZELString.h README.md", "ZELString.h TAIndex.cpp main.cpp README.md "},
    };
    for (const auto& [size, keys, expected] : rows) {
        ZELHashSCMap map(size, 0.75F, nullptr);
        std::istringstream words(keys);
        for (std::string key; words >> key;) map.insert(key.c_str(), nullptr);
        std::string order;
        for (const auto& entry : map) order.append(entry.key).append(" ");
        EXPECT_EQ(order, expected) << keys;
    }
}

TEST(ZELHashSCMap, KeepsToItsLimits) {
    for (const float loadFactor : {0.0F, -1.0F, 1.0F, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(FieldsOf<Fields>(ZELHashSCMap(9, loadFactor, nullptr)).loadFactor, 0.75F);
    for (const int size : {INT_MIN, 7, 9})
        EXPECT_EQ(FieldsOf<Fields>(ZELHashSCMap(size, 0.5F, nullptr)).maxSize, size == 9 ? 9 : 8);
    ZELHashSCMap map;
    void* value = &map;
    EXPECT_EQ(map.insert(nullptr, nullptr), nullptr);
    map.remove(nullptr);
    EXPECT_EQ(map.search(nullptr, &value), 0);
    EXPECT_FALSE(map.contains(static_cast<const char*>(nullptr)));
    // A view without text is the empty key; a key that holds a NUL is never there.
    EXPECT_FALSE(map.contains(std::string_view()));
    map.insert("", Value(1));
    EXPECT_TRUE(map.contains(std::string_view()));
    map.insert("ab", Value(2));
    EXPECT_FALSE(map.contains(std::string_view("ab\0", 3)));
    EXPECT_EQ(map.search("ab", nullptr), 0);
    EXPECT_TRUE(map.search("b", &value) == 0 && value == &map);

    const std::string huge(1 << 20, 'h');
    const char* const stored = map.insert(huge.c_str(), Value(3));
    // Growth leaves stored keys where they are.
    for (int i = 0; i < 100; ++i) map.insert(std::to_string(i).c_str(), nullptr);
    EXPECT_EQ(stored, huge);
    map.remove(huge.c_str());
    EXPECT_FALSE(map.contains(huge));
}

TEST(ZELHashSCMap, StaysRightWhenManyKeysShareOneHash) {
    ZELHashSCMap map;
    void* value = nullptr;
    for (int number = 0; number < 4096; ++number) {
        std::string key;  // "Aa" and "BB" have one hash, and so has every row of twelve of them
        for (int bit = 0; bit < 12; ++bit) key += (number >> bit & 1) != 0 ? "Aa" : "BB";
        ASSERT_NE(map.insert(key.c_str(), Value(number)), nullptr);
        ASSERT_TRUE(map.search(key, &value) == 1 && value == Value(number));
    }
    EXPECT_EQ(std::distance(map.begin(), map.end()), 4096);
}

TEST(ZELHashSCMap, GrowthCopiesPooledKeysOnceMore) {
    ZELStringPool pool;
    ZELHashSCMap map(&pool);
    const char* stored = nullptr;
    for (const char* const key : {"1", "2", "3", "4", "5", "6"}) stored = map.insert(key, nullptr);
    EXPECT_EQ(std::count_if(map.begin(), map.end(), [&](auto entry) { return entry.key == stored; }), 0);
    // Six keys twice, of two bytes each: the next stands behind them.
    EXPECT_EQ(pool.create("x"), stored + 2 + 6 * 2);
}

TEST(ZELHashSCMap, CopiesAreViewsUntilTheyAreChanged) {
    for (const bool isPooled : {false, true}) {
        ZELStringPool pool;
        ZELHashSCMap original(13, 0.75F, isPooled ? &pool : nullptr);
        MapModel model(13, 0.75F);
        for (int i = 0; i < 100; ++i)
            original.insert(std::to_string(i).c_str(), Value(i)), model.Insert(std::to_string(i), Value(i));
        const Entries held = model.InOrder();
        {
            ZELHashSCMap view(original), second(view), third(view), ended;
            EXPECT_EQ(FieldsOf<Fields>(view).table, FieldsOf<Fields>(original).table);
            ended.insert("ends with the assignment", nullptr);
            ended = view;
            original = view;  // nothing: it would lose its own entries
            ExpectHolds(ended, held);
            view.insert("0", nullptr);
            view.remove("absent");
            EXPECT_EQ(FieldsOf<Fields>(view).table, FieldsOf<Fields>(original).table);
            view.insert("new", Value(7));
            model.Insert("new", Value(7));
            ExpectHolds(view, model.InOrder());
            second.remove("55");
            EXPECT_FALSE(second.contains("55"));
            third.clear();
            third.insert("alone", Value(9));
            ExpectHolds(third, {{"alone", Value(9)}});
        }
        ExpectHolds(original, held);
    }
}

// Each allocation fails once, for all of them: the map loses nothing but the one entry, and takes it the next time.
TEST(ZELHashSCMap, SurvivesEachFailedAllocation) {
    std::deque<ZELHashSCMap> maps;  // they keep their nodes, so that each round needs new ones
    const AllocationFailures failures = FailEachAllocation(
        [&](FailingMemory& memory) {
            const bool hasTable = !maps.empty();
            memory.Begin();
            ZELHashSCMap& map = maps.emplace_back();
            for (int i = 0; i < 25000; ++i) {
                // The last one is too long for the block of its entry.
                const std::string key = "key" + std::to_string(i) + std::string(i == 24999 ? 2000 : 0, 'x');
                if (map.insert(key.c_str(), Value(i)) != nullptr) continue;
                ASSERT_EQ(map.insert(key.c_str(), Value(i)) != nullptr, hasTable);
            }
            memory.End();
            ASSERT_EQ(map.size(), hasTable ? 25000 : 0);
            ASSERT_EQ(std::distance(map.begin(), map.end()), map.size());
            ASSERT_EQ(map.contains("key24998"), hasTable);
            map.remove("no key");
        },
        Fallback::None, {Afterwards::Succeed});
    for (const char* const line :
         {"ZELHashSCMap: unable to malloc(_maxSize * sizeof(link)) : 64\n",
          "insert: unable to malloc(_maxSize * sizeof(link)) : 256\n", "createNode: unable to strdup()\n",
          "createBlocOfFreeNode: unable to create new node[20000]\n"})
        EXPECT_TRUE(Holds(failures.said, std::string("# Alloc failed in ZELHashSCMap::") + line)) << line;
}

TEST(ZELHashSCMap, ViewsAndIteratorsSurviveEachFailedAllocation) {
    ZELStringPool pool;
    ZELHashSCMap original(8, 0.6F, &pool);  // a fifth entry makes it grow
    const std::string filler(60000, 'f');   // each copy needs a block of the pool
    for (char c = 'a'; c < 'e'; ++c) original.insert((filler + c).c_str(), Value(c));
    const Entries held = Rest(std::unique_ptr<ZELMapIterator>(original.getIterator()).get());
    FailEachAllocation(
        [&](FailingMemory& memory) {
            ZELHashSCMap view(original), cleared(original);
            memory.Begin();
            const int inserted = view.insert("new", nullptr) != nullptr ? 1 : 0;
            cleared.clear();
            const std::unique_ptr<ZELMapIterator> iterator(original.getIterator());
            const bool failed = memory.End();
            EXPECT_GE(inserted + (cleared.size() == 0 ? 1 : 0) + (iterator != nullptr ? 1 : 0), failed ? 2 : 3);
            EXPECT_EQ(view.size(), 4 + inserted);
            for (const auto& [key, value] : held) EXPECT_TRUE(view.contains(key));
            ExpectHolds(original, held);
        },
        Fallback::None, {Afterwards::Succeed});
}

TEST(ZELHashSCMap, ServesNewEntriesFromRemovedOnes) {
    // More than one block of nodes, and of keys: what is empty starts over with the first.
    constexpr int Count = 25000;
    ZELHashSCMap map(40000, 0.75F, nullptr);
    const auto key = [](int i) { return "an entry of the map, number " + std::to_string(i); };
    const auto fill = [&] {
        for (int i = 0; i < Count; ++i) map.insert(key(i).c_str(), Value(i));
    };
    fill();
    map.clear();
    FailAllocation(1);
    for (int round = 0; round < 3; ++round) {
        fill();
        for (int i = round; i < Count; i += 2) map.remove(key(i).c_str());
        fill();
        ASSERT_EQ(std::distance(map.begin(), map.end()), Count);
        void* value = nullptr;
        for (int i = 0; i < Count; ++i) ASSERT_TRUE(map.search(key(i).c_str(), &value) == 1 && value == Value(i)) << i;
        map.clear();
    }
    EXPECT_FALSE(HasAllocationFailed()) << "an allocation where free memory would have served";
    FailAllocation(0);
}

TEST(ZELHashSCMap, SlotsStandInTheirOrder) {
    ExpectSlots(0, &ZELMap::size, &ZELMap::search, &ZELMap::insert, &ZELMap::remove, &ZELMap::clear,
                &ZELMap::getIterator);
    ExpectSlots(0, &ZELMapIterator::next, &ZELMapIterator::getKey, &ZELMapIterator::getValue);
    // Two slots of the destructor stand before what is declared behind it.
    ExpectSlots(5, &ZELHashSCMapIterator::insert);
}

TEST(ZELHashSCMapIterator, ShowsNothingOutsideWhatWasFilled) {
    for (const int size : {INT_MIN, 0}) {
        ZELHashSCMapIterator none(size);
        EXPECT_EQ(Printed([&] { none.insert("dropped", nullptr); }),
                  " ZELHashSCMapIterator::insert, _size too small: 0\n");
        EXPECT_EQ(none.next(), 0);
    }
    // It counts to its capacity, and a copy has a place of its own in arrays that are shared.
    ZELHashSCMapIterator wide(2), ended(5);
    wide.insert("a", Value(1));
    EXPECT_EQ(wide.getKey(), nullptr);
    wide.next();
    {
        ZELHashSCMapIterator view(wide);
        ended = view;
        wide = view;
        EXPECT_EQ(view.next(), 1);
        EXPECT_EQ(view.getKey(), nullptr);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(view.next(), 0);
        EXPECT_EQ(view.getValue(), nullptr);
    }
    EXPECT_STREQ(wide.getKey(), "a");
    EXPECT_EQ(ended.getValue(), Value(1));
}
