#include "TAPPath.h"

#include "counted.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

std::string NameAt(const TAPPath& path, int index) {
    TAPName* const name = path[index];
    const std::string text = name != nullptr ? name->GetName() : "null";
    if (name != nullptr) name->Release();
    return text;
}

}  // namespace

TEST(TAPName, CopiesShareTheTextAndTakeTheCountAlong) {
    auto* const name = new TAPName("name");
    name->AddRef();
    auto* const copy = new TAPName(*name);
    for (TAPName* each : {name, name, copy}) each->Release();
    TAPName assigned(nullptr);
    EXPECT_STREQ(assigned.GetName(), "");
    assigned = *copy;
    copy->Release();
    EXPECT_STREQ(assigned.GetName(), "name");
}

TEST(TAPPath, IndexesAreShiftedByTwo) {
    const char* const names[] = {"a", "b", "c", "d", "e"};
    TAPPath* path = nullptr;
    for (int length = 1; length <= 5; ++length) {
        TAPName* const name = new TAPName(names[length - 1]);
        TAPPath* const longer = path != nullptr ? new TAPPath(path, name) : new TAPPath(name);
        name->Release();
        if (path != nullptr) path->Release();
        path = longer;
        const TAPPath copy(*path);
        ASSERT_EQ(copy.Size(), length);
        for (int index = 1; index <= length; ++index)
            EXPECT_EQ(NameAt(copy, index), index + 2 <= length ? names[index + 1] : "null") << length << index;
    }
    path->Release();
    TAPName name("name");
    EXPECT_EQ(TAPPath(nullptr, &name).Size(), 0);
    EXPECT_EQ(TAPPath(nullptr).Size(), 1);
}

TEST(TAPPath, NamesEndWithTheLastPathThatHasThem) {
    std::string log;
    TAPPath* paths[4] = {};
    for (int i = 0; i < 4; ++i) {
        TAPName* const name = new LoggedName(log, static_cast<char>('a' + i), "name");
        paths[i] = i == 0 ? new TAPPath(name) : new TAPPath(paths[i - 1], name);
        name->Release();
    }
    auto* const branch = new TAPPath(paths[1], nullptr);
    paths[0]->AddRef();
    *paths[3] = *paths[0];  // with its two references
    EXPECT_EQ(log, "d");
    paths[3]->Release();
    paths[3]->Release();
    paths[2]->Release();
    EXPECT_EQ(log, "dc");
    paths[1]->Release();
    for (int reference = 0; reference < 2; ++reference) paths[0]->Release();
    EXPECT_EQ(log, "dc");
    EXPECT_EQ(branch->Size(), 3);
    EXPECT_EQ((*branch)[1], nullptr);
    branch->Release();
    EXPECT_EQ(log, "dcba");
}
