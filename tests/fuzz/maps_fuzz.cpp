// Maps and pools: any operations, also through views, beside plain chains.
#include "TAComponent.h"
#include "ZELHashRWMap.h"
#include "ZELStringPool.h"
#include "containers/map_model.h"
#include "fuzz/input.h"

namespace {

std::string Key(Input& input) {
    switch (input.Number(0, 3)) {
        case 0:
            return input.Text(40);
        case 1:
            return std::to_string(input.Number(0, 300));
        case 2:
            return input.Spell({"Aa", "BB"}, 10);  // of one hash
        default:
            return std::string(static_cast<std::size_t>(input.Number(0, 1100)), 'k');
    }
}

struct Pair {
    ZELMap& map;
    MapModel& model;

    void Step(Input& input) {
        const std::string key = Key(input).c_str();
        switch (input.Number(0, 9)) {
            case 0:
                map.clear();
                model.Clear();
                break;
            case 1:
            case 2:
                map.remove(key.c_str());
                model.Remove(key);
                break;
            case 3:
                for (int i = map.size() < 300 ? input.Number(0, 200) : 0; i > 0; --i)
                    Insert(key + std::to_string(i), i);
                break;
            default:
                Insert(key, input.Number(0, 9));
        }
    }
    void Insert(const std::string& key, int number) {
        const char* const stored = map.insert(key.c_str(), Value(number));
        ASSERT_EQ(stored != nullptr, model.Insert(key, Value(number)));
        ASSERT_TRUE(stored == nullptr || (stored == key && stored != key.c_str()));
    }
};

void CheckWalks(ZELHashRWMap& map, const Entries& expected) {
    ExpectHolds(map, expected);
    ZELHashRWMapIteratorRef* const kept = map.getIteratorRef();
    ASSERT_EQ(Rest(kept), expected);
    ASSERT_EQ(map.getIteratorRef(), kept);
    ASSERT_EQ(Rest(kept), expected);
}

}  // namespace

FUZZ_TARGET(input) {
    const int size = input.Number(-1, 70);
    const float loadFactor = static_cast<float>(input.Number(0, 11)) / 10.0F;
    const float used = loadFactor > 0 && loadFactor < 1 ? loadFactor : 0.75F;
    ZELStringPool pool;
    ZELHashSCMap map(size, loadFactor, input.Flip() ? &pool : nullptr);
    MapModel model(static_cast<std::size_t>(std::max(size, 8)), used);
    auto walked = std::make_unique<ZELHashRWMap>(size, loadFactor);
    MapModel walkedModel(model);
    while (input.remaining_bytes() > 0) {
        if (input.Number(0, 7) == 0) {
            ZELHashSCMap view(map);
            MapModel viewModel(model);
            for (int steps = input.Number(0, 5); steps > 0; --steps) Pair{view, viewModel}.Step(input);
            ExpectHolds(view, viewModel.InOrder());
            ExpectHolds(map, model.InOrder());
        }
        Pair{map, model}.Step(input);
        Pair{*walked, walkedModel}.Step(input);
        if (input.Number(0, 3) == 0) CheckWalks(*walked, walkedModel.InOrder());
    }
    ExpectHolds(map, model.InOrder());
    CheckWalks(*walked, walkedModel.InOrder());
    const std::unique_ptr<ZELMapIterator> kept(walked->getIteratorRef());  // it stays allocated when its map ends
    walked.reset();
}
