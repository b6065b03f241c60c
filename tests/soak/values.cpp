// Operations on containers, texts and objects, from several threads, each on values of its own.
#include <map>
#include <vector>

#include "TAIndex.h"
#include "TAPObject.h"
#include "ZELHashRWMap.h"
#include "ZELStringPool.h"
#include "ZELUnicodeString.h"
#include "soak/soak.h"

namespace {

constexpr int Steps = 4000;

std::string Key(unsigned number) {
    return "key " + std::string(number % 40, 'k') + std::to_string(number);
}

// Maps and an index take and lose the same keys as a std::map.
bool FillMaps(std::mt19937& random) {
    ZELStringPool pool;
    ZELHashRWMap map;
    ZELHashSCMap pooled(&pool);
    TAIndex index;
    std::map<std::string, void*> model;
    for (int step = 0; step < Steps; ++step) {
        const std::string key = Key(random() % 1000);
        if (random() % 3 != 0 && model.emplace(key, &model).second) {
            map.insert(key.c_str(), &model);
            pooled.insert(key.c_str(), &model);
            index.Append(key.c_str(), &model);
        } else if (random() % 2 == 0 && model.erase(key) == 1) {
            map.remove(key.c_str());
            pooled.remove(key.c_str());
            index.RemovePosition(index.IsIn(key.c_str()));
        }
    }
    const auto size = static_cast<int>(model.size());
    bool isRight = map.size() == size && pooled.size() == size && index.Size() == size;
    for (const auto& [key, value] : model)
        isRight = isRight && map.contains(key.c_str()) && pooled.contains(key.c_str()) && index[key.c_str()] == value;
    return isRight;
}

// A list and a tree of objects grow, are copied, and lose parts.
bool GrowObjects(std::mt19937& random) {
    ZELListValZELString words;
    TAPObject* const root = new TAPObject;
    bool isRight = true;
    for (int step = 0; step < Steps; ++step) {
        const ZELString name(Key(random() % 60).c_str());
        words.Append(name);
        if (words.Size() > 20) words.RemovePosition(1);
        isRight = isRight && ZELString(ZELUnicodeString(name)) == words[words.Size()];
        const unsigned choice = random() % 5;
        if (choice == 0) root->SetAttribute(name, step);
        if (choice == 1) root->SetAttribute(name, name);
        if (choice == 2) root->RemoveAttribute(name);
        if (choice == 3) root->SetAttribute("list", TAPAttr()), root->AppendToAttribute("list", step);
        if (choice < 4) continue;
        TAPObject* const child = new TAPObject(*root);
        for (const char* const kept : {"child", "list"}) child->RemoveAttribute(kept);
        root->SetAttribute("child", child);
        child->Release();
    }
    root->Release();
    return isRight;
}

}  // namespace

void RunValues(Soak& soak, unsigned seed) {
    std::vector<std::jthread> threads;
    for (unsigned number = 0; number < 2; ++number)
        threads.emplace_back([&, number] {
            std::mt19937 random(seed + number);
            for (int round = 0; round < 6; ++round) {
                // All maps of a process share their free entries: they belong to one thread.
                const bool isRight = number == 0 ? FillMaps(random) : GrowObjects(random);
                soak.Check(isRight, "values, seed " + std::to_string(seed));
                soak.Add(Operations, 3 * Steps);
            }
        });
}
