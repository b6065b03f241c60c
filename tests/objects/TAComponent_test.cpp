#include "TAComponent.h"

#include <memory>

#include "base/memory.h"
#include "support/files.h"
#include "support/testing.h"

namespace {

std::string ListOf(const TAComponent& component) {
    ZELListValZELString keys;
    keys.Append("old");
    const int count = component.GetList(keys);
    EXPECT_EQ(count, keys.Size());
    EXPECT_EQ(component.GetSize(), keys.Size());
    std::string list;
    for (int i = 1; i <= keys.Size(); ++i) list.append(keys[i].CastToCharPtr()).append(" ");
    return list;
}

}  // namespace

TEST(TAComponent, KeepsThingsUnderTheirFirstKey) {
    TAComponent component;
    EXPECT_EQ(ListOf(component), "");
    for (const char* const key : {"c", "\xFF", "B", "a", ""}) EXPECT_EQ(component.Insert(key, Value(*key)), 0);
    EXPECT_NE(component.Insert(ZELString("a"), nullptr), 0);
    EXPECT_EQ(component.Insert(static_cast<const char*>(nullptr), nullptr), 0);
    EXPECT_EQ(ListOf(component), " B a c \xFF ");
    EXPECT_EQ(component.GetValue("a"), Value('a'));
    EXPECT_EQ(component.GetValue(ZELString("b")), nullptr);
    EXPECT_EQ(component.GetValue(static_cast<const char*>(nullptr)), nullptr);

    const std::unique_ptr<ZELMapIterator> iterator(component.GetIterator());
    EXPECT_TRUE(iterator->next() == 1 && component.IsIn(iterator->getKey()) != 0);
    EXPECT_EQ(component.GetIteratorRef(), component.GetIteratorRef());
    component.Remove(ZELString("a"));
    EXPECT_EQ(component.IsIn(ZELString("a")), 0);
    for (const char* const key : {"B", "", "\xFF"}) component.Remove(key);
    testing::internal::CaptureStdout();
    component.DumpKeys();
    EXPECT_EQ(WithoutReturns(testing::internal::GetCapturedStdout()), "   c\n");
    component.Clear();
    EXPECT_EQ(ListOf(component), "");
}

TEST(TAComponent, CopiesShareTheMapOfTheOriginal) {
    TAComponent original;
    original.SetName("original");
    original.Insert("a", Value(1));
    {
        TAComponent view(original), ended;
        ended.Insert("ends with the assignment", nullptr);
        ended = view;
        original = view;
        ended.SetName("other");
        ended.Insert("b", Value(2));
        EXPECT_EQ(view.GetValue("b"), Value(2));
    }
    EXPECT_EQ(ListOf(original), "a b ");
    EXPECT_STREQ(original.GetNameChar(), "original");
}

TEST(TAComponent, AnswersNothingWithoutAMap) {
    testing::internal::CaptureStdout();
    FailAllocation(1);
    TAComponent component;
    EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("# Alloc failed in TAComponent", 0), 0U);
    EXPECT_EQ(component.Insert("a", &component), 0);
    EXPECT_TRUE(component.GetIterator() == nullptr && component.GetIteratorRef() == nullptr);
    component.Remove("a");
    component.Clear();
    component.DumpKeys();
    EXPECT_EQ(ListOf(component), "");
}
