#include "TAPPath.h"

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
    TAPPath assigned(path, nullptr);
    EXPECT_EQ(assigned.Size(), 6);
    EXPECT_EQ(NameAt(assigned, 4), "null");
    TAPName name("name");
    assigned = TAPPath(nullptr, &name);
    EXPECT_EQ(assigned.Size(), 0);
    assigned = *path;
    path->Release();
    EXPECT_EQ(NameAt(assigned, 3), "e");
}
