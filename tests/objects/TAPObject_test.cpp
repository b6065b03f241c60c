#include "TAPObject.h"

#include "counted.h"
#include "support/failing_memory.h"
#include "support/files.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// The names of an object's path from the third on; indexes reach no others.
std::string PathOf(TAPObject& object) {
    TAPPath* const path = object.GetPath();
    if (path == nullptr) return "none";
    std::string text = std::to_string(path->Size());
    for (int i = 1; i <= path->Size() - 2; ++i) {
        TAPName* const name = (*path)[i];
        text += std::string(".") + name->GetName();
        name->Release();
    }
    path->Release();
    return text;
}

// What an object holds as texts: "i5", "stext" and "l1,2,", seen through all ways of reading.
using Model = std::map<std::string, std::string>;

Model Read(TAPObject& object) {
    Model model;
    const char* name = nullptr;
    for (int position = object.GetFirstAttributePosition(); position != 0;) {
        const TAPAttr value = object.GetNextAttribute(position, name);
        EXPECT_TRUE(model.empty() || model.rbegin()->first < name);
        EXPECT_TRUE(object.GetAttribute(name) == value && object.HasAttribute(name) == 1);
        EXPECT_EQ(object.HasAttribute((std::string(name) + "x").c_str(), static_cast<int>(std::strlen(name))), 1);
        std::string& text = model[name];
        if (value.IsType(TAPAttr::TypeInteger)) text = "i" + std::to_string(value.GetInteger());
        if (value.IsType(TAPAttr::TypeString)) text = "s" + std::string(value.GetString());
        if (!value.IsType(TAPAttr::TypeList)) continue;
        text = "l";
        for (const TAPAttr& element : value.GetList()) text += std::to_string(element.GetInteger()) + ",";
    }
    EXPECT_EQ(object.GetAttributeList()->Size(), static_cast<int>(model.size()));
    return model;
}

// One random operation on both, with the same result.
void Change(TAPObject& object, Model& model, std::mt19937& random) {
    const std::string key = "name " + std::to_string(random() % 40);
    const char* const name = key.c_str();
    const int number = static_cast<int>(random());
    const std::string digits = std::to_string(number);
    const unsigned action = random() % 5;
    if (action == 0) {
        object.SetAttribute(name, number);
        model[key] = "i" + digits;
    } else if (action == 1) {
        object.SetAttribute(name, digits.c_str());
        model[key] = "s" + digits;
    } else if (action == 2) {
        EXPECT_EQ(object.RemoveAttribute(name), model.erase(key) == 1 ? 0 : 1);
    } else {
        std::string& text = model[key];
        const bool isText = text[0] == 's';
        EXPECT_EQ(object.AppendToAttribute(name, isText ? TAPAttr(digits.c_str()) : TAPAttr(number)), 0);
        if (text[0] == 'i') {
            const auto sum = std::strtoll(text.c_str() + 1, nullptr, 10) + number;
            text = "i" + std::to_string(static_cast<int>(static_cast<unsigned>(sum)));
        } else {
            text += isText ? digits : (text.empty() ? "l" : "") + digits + ",";
        }
    }
}

}  // namespace

TEST(TAPObject, ActsLikeASortedMap) {
    std::mt19937 random(1);
    TAPObject object;
    Model model;
    for (int round = 0; round < 10000; ++round) {
        Change(object, model, random);
        if (round % 50 == 0) {
            ASSERT_EQ(Read(object), model) << round;
        }
        if (round % 500 != 499) continue;
        // A copy and its original go their own ways. Lists stay out: their elements both would see.
        std::erase_if(model, [&](const auto& entry) {
            return entry.second[0] == 'l' && object.RemoveAttribute(entry.first.c_str()) == 0;
        });
        TAPObject copy(object), assigned;
        Model copied = model;
        assigned.SetAttribute("old", "gone");
        assigned = copy;
        for (int change = 0; change < 20; ++change) Change(copy, copied, random);
        ASSERT_EQ(Read(copy), copied);
        ASSERT_EQ(Read(assigned), model);
        ASSERT_EQ(Read(object), model);
    }
}

TEST(TAPObject, TakesNullsNamesOfItsOwnAndForeignEntries) {
    TAPObject object;
    EXPECT_EQ(object.GetFirstAttributePosition(), 0);
    object.SetAttribute(nullptr, 1);
    EXPECT_EQ(object.RemoveAttribute("absent") + object.RemoveAttribute(nullptr) + object.AppendToAttribute(nullptr, 1),
              3);
    EXPECT_EQ(object.HasAttribute(nullptr) + object.HasAttribute("x", -1) + object.GetAttributeList()->Size(), 0);

    for (const char* each : {"b", "a", "c"}) object.SetAttribute(each, each);
    for (int position : {-1, 0, 4, INT_MAX, INT_MIN})
        EXPECT_TRUE(object.GetNextAttribute(position) == TAPAttr::Null && position == 0);
    int position = 2;
    const char* name = nullptr;
    object.GetNextAttribute(position, name);
    object.SetAttribute(name, object.GetAttribute("c"));
    object.AppendToAttribute(name, "d");
    EXPECT_TRUE(object.GetAttribute("b") == "cd");
    EXPECT_EQ(object.RemoveAttribute(name) + object.HasAttribute("b"), 0);

    object.GetAttributeList()->Append("null", nullptr);
    EXPECT_TRUE(object.HasAttribute("null") + object.HasAttribute("null", 4) == 0 &&
                object.GetAttribute("null") == TAPAttr());
    EXPECT_EQ(object.AppendToAttribute("null", 1), 0);
    EXPECT_EQ(object.GetAttribute("null").GetList().Size(), 1);
    object.GetAttributeList()->Append("own", new TAPAttr("the object's from now on"));
    object.SetAttribute("file", TAFileName("x"));
    EXPECT_TRUE(object.AppendToAttribute("file", "y") == 1 && object.GetAttribute("file") == TAFileName("x"));
}

TEST(TAPObject, ListsAreSharedByCopiesUntilTheyAreReplaced) {
    TAPObject object;
    object.AppendToAttribute("list", 1);
    TAPObject copy(object);
    copy.AppendToAttribute("list", 2);
    EXPECT_EQ(object.GetAttribute("list").GetList().Size(), 2);
    copy.SetAttribute("list", 3);
    object.RemoveAttribute("list");
    EXPECT_EQ(copy.GetAttribute("list").GetInteger(), 3);
    copy = *&copy;
    EXPECT_EQ(copy.GetAttribute("list").GetInteger(), 3);
}

TEST(TAPObject, ChildrenGetThePathThatTheirParentHasThen) {
    TAPObject root, child, grandchild;
    root.SetAttribute("early", &grandchild);
    EXPECT_EQ(PathOf(grandchild), "1");
    TAPName above("above");
    TAPPath outer(&above), top(&outer, &above);
    root.SetPath(&top);
    root.SetAttribute("a", &child);
    child.SetAttribute("b", &grandchild);
    EXPECT_EQ(PathOf(grandchild), "4.a.b");
    root.SetAttribute("new", &child);
    EXPECT_EQ(PathOf(child) + PathOf(grandchild) + PathOf(root), "3.new4.a.b2");
    child.SetAttribute("self", &child);
    EXPECT_EQ(PathOf(child), "4.new.self");
    child.RemoveAttribute("self");
    TAPPath* const path = child.GetPath();
    child.SetPath(nullptr);
    EXPECT_EQ(path->Size(), 4);
    // Look-ups give nothing, whatever they pass, and keep every count: the objects end at the end of this block.
    TAPName name("new");
    TAPPath one(&name), two(&one, &name), three(&two, &name), four(&three, &name);
    for (TAPPath* each : {path, static_cast<TAPPath*>(nullptr), &one, &four}) EXPECT_EQ(root.GetObject(each), nullptr);
    path->Release();
    TAPObject* const none = nullptr;
    root.SetAttribute("none", none);
    EXPECT_TRUE(root.GetAttribute("none") == none && root.AppendToAttribute("none", none) == 1);
    for (const char* each : {"early", "a", "new"}) root.RemoveAttribute(each);
    child.RemoveAttribute("b");
    for (TAPObject* each : {&root, &child, &grandchild}) each->SetPath(nullptr);
}

TEST(TAPObject, TreesEndInOrderAndDoNotNeedStack) {
    std::string log;
    TAPObject* const root = new LoggedObject(log, 'r');
    TAPObject* const left = new LoggedObject(log, 'l');
    TAPObject* const leaf = new LoggedObject(log, 'i');
    TAPObject* const right = new LoggedObject(log, 'z');
    TAPPath* const path = new LoggedPath(log, 'p', nullptr);
    TAPPath* const valuePath = new LoggedPath(log, 'v', nullptr);
    left->SetAttribute("leaf", leaf);
    left->SetAttribute("list", TAPAttr());
    for (TAPAttr value : {TAPAttr(right), TAPAttr(valuePath)}) left->AppendToAttribute("pair", value);
    root->SetAttribute("b", left);
    root->SetAttribute("c", right);
    left->SetPath(path);
    for (TAPObject* each : {left, leaf, right}) each->Release();
    for (TAPPath* each : {path, valuePath}) each->Release();
    root->Release();
    EXPECT_EQ(log, "rlivpz");

    for (const bool isTopDown : {true, false})
        RunConfined([isTopDown] {
            auto* top = new TAPObject;
            TAPObject* bottom = top;
            for (int level = 1; level < 100000; ++level) {
                auto* const next = new TAPObject;
                (isTopDown ? bottom : next)->SetAttribute("below", isTopDown ? next : top);
                (isTopDown ? next : top)->Release();
                (isTopDown ? bottom : top) = next;
            }
            TAPObject copy(*top);
            copy = *top;
            top->Release();
            EXPECT_TRUE(copy.GetAttribute("below") == copy.GetAttribute("below"));
        });
}

TEST(TAPObject, MissingMemoryChangesNothingAndLeaksNothing) {
    const TemporaryFolder folder;
    const TAFileName directory(folder.Path().c_str());
    TAPAttr lists{ZELListValTAPAttr()};
    for (int i = 0; i < 3; ++i) lists.GetList().Append(lists.GetList());
    lists.GetList()[3].GetList().Append(TAFileName("file"));
    const TAPAttr fresh("new"), tail(" tail");
    const AllocationFailures failures = FailEachAllocation(
        [&](FailingMemory& memory) {
            TAPObject child, object;
            object.SetAttribute("text", "old");
            memory.Begin();
            object.SetAttribute("file", TAFileName("some\\file"));
            object.SetAttribute("child", &child);
            object.SetAttribute("text", fresh);
            const int appended = object.AppendToAttribute("text", tail) + object.AppendToAttribute("list", &child);
            TAPObject copy(object);
            copy = object;
            const TAPAttr copiedLists(lists);
            TAPAttr assigned;
            assigned = copiedLists;
            object.SaveToFile(directory);
            memory.End();
            const bool hasAll =
                object.GetAttribute("text").GetString().Length() == 8 && object.HasAttribute("list") == 1;
            const bool isCopy =
                copy.HasAttribute("text") == 0 || copy.GetAttribute("text") == object.GetAttribute("text");
            const bool isList = copiedLists == lists || (copiedLists == TAPAttr() && assigned == TAPAttr());
            EXPECT_TRUE((appended == 0) == hasAll && isCopy && isList);
        },
        Fallback::Possible);
    EXPECT_GE(failures.count, 15) << failures.said;
    for (const char* who : {"TAPAttr", "TAPObject", "TAPPath", "TAPObjectSaveContext"})
        EXPECT_TRUE(Holds(failures.said, std::string("# Alloc failed in ") + who)) << failures.said;
}
