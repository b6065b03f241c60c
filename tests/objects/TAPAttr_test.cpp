#include "TAPAttr.h"

#include "TAPObject.h"
#include "TAPPath.h"
#include "counted.h"
#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// One owner's reference, given back.
template <class Counted>
bool IsSame(Counted* given, Counted* expected) {
    if (given != nullptr) given->Release();
    return given == expected;
}

ZELListValTAPAttr ListOf(std::initializer_list<TAPAttr> elements) {
    ZELListValTAPAttr list;
    for (const TAPAttr& element : elements) list.Append(element);
    return list;
}

TAPAttr NestedLists(int levels) {
    TAPAttr outermost{ZELListValTAPAttr()};
    ZELListValTAPAttr* innermost = &outermost.GetList();
    for (int level = 1; level < levels; ++level) {
        innermost->Append(ZELListValTAPAttr());
        innermost = &(*innermost)[1].GetList();
    }
    innermost->Append("end");
    return outermost;
}

int DepthOf(const TAPAttr& attribute) {
    int depth = 0;
    const TAPAttr* inner = &attribute;
    for (; inner->IsType(TAPAttr::TypeList) && inner->GetList().Size() > 0; ++depth) inner = &inner->GetList()[1];
    return inner->GetString("") == "end" ? depth : -1;
}

}  // namespace

TEST(TAPAttr, EachKindComparesAsItsCodeAndValueTell) {
    TAPObject objects[2];
    TAPPath path(nullptr);
    const TAPAttr one(ListOf({1})), two(ListOf({1, 2})), other(ListOf({"x"}));
    const char* const noText = nullptr;
    TAPObject* const noObject = nullptr;
    TAPPath* const noPath = nullptr;
    const struct {
        TAPAttr value;
        int code, rank;
    } rows[] = {{TAPAttr(), 0, 0},    {TAPAttr::Null, 0, 0},
                {"", 1, 1},           {noText, 1, 1},
                {"B", 1, 2},          {ZELString("a"), 1, 3},
                {"ab", 1, 4},         {"a\xE4", 1, 5},
                {TAFileName(), 2, 6}, {TAFileName("a/b"), 2, 7},
                {noObject, 3, 8},     {objects, 3, 9},
                {objects + 1, 3, 10}, {-7, 5, 12},
                {5, 5, 13},           {noPath, 6, 14},
                {&path, 6, 15}};
    for (const auto& left : rows)
        for (const auto& right : rows) {
            SCOPED_TRACE(std::to_string(left.rank) + " and " + std::to_string(right.rank));
            const int order = (left.rank > right.rank) - (left.rank < right.rank);
            const bool isText = left.code == right.code && (left.code == 1 || left.code == 2);
            EXPECT_EQ(left.value != right.value, isText ? order : order != 0);
            EXPECT_EQ(left.value == right.value, order == 0);
            EXPECT_EQ(left.value < right.value, order < 0);
            EXPECT_EQ(left.value > right.value, order > 0);
            EXPECT_EQ(left.value.IsType(right.code), left.code == right.code);
        }
    for (const TAPAttr* const list : {&one, &two, &other}) {
        EXPECT_TRUE(*list < TAPAttr(-7) && *list > TAPAttr(objects) && !(*list < one) && !(*list > one));
        EXPECT_EQ(*list == one, list != &two);  // by their sizes alone
    }
    EXPECT_TRUE("B" == rows[4].value && 5 == rows[14].value && 6 != rows[14].value);
}

TEST(TAPAttr, GettersGiveTheValueOrWhatTheyWereTold) {
    TAPObject object, standIn;
    TAPPath path(nullptr), otherPath(nullptr);
    ZELListValTAPAttr otherList;
    TAPAttr rows[] = {TAPAttr(), "text", TAFileName("a/b"), &object, ListOf({1}), 5, &path};
    for (int code = 0; code < 7; ++code) {
        SCOPED_TRACE(code);
        TAPAttr copy(rows[code]);
        EXPECT_TRUE(copy.GetString("other") == (code == 1 ? "text" : "other"));
        EXPECT_TRUE(copy.GetFileName("other") == (code == 2 ? "a\\b" : "other"));
        EXPECT_TRUE(IsSame(copy.GetObjectW(&standIn), code == 3 ? &object : &standIn));
        EXPECT_TRUE(IsSame(copy.GetObject(nullptr), code == 3 ? &object : nullptr));
        EXPECT_EQ(&copy.GetList(otherList) == &otherList, code != 4);
        EXPECT_EQ(copy.GetInteger(-1), code == 5 ? 5 : -1);
        EXPECT_TRUE(IsSame(copy.GetPath(&otherPath), code == 6 ? &path : &otherPath));
    }
    EXPECT_TRUE(rows[1].GetString() == "text" && rows[2].GetFileName() == "a\\b" && rows[5].GetInteger() == 5);
    EXPECT_TRUE(IsSame(rows[3].GetObjectA(), &object) && IsSame(rows[6].GetPath(), &path));
    EXPECT_EQ(rows[4].GetList().Size(), 1);
}

TEST(TAPAttr, BrokenContractsEndTheProcess) {
    std::vector<std::pair<std::string, std::string>> rows = {
        {"index 0", "TAPPath::[] : bad index"},
        {"delete", "Delete on referenced object"},
        {"SQL", "TAOracleDatabase::SQLLoader, no PATH variable set"},
        {"add", "TAPAttr::GetInteger : bad type for get"},
        {"append", "TAPAttr::GetString : bad type for get"},
        {"index 4", "TAPPath::[] : bad index"},
        {"SQLLoader", "TAOracleDatabase::SQLLoader, no PATH variable set"},
    };
    for (const std::string getter : {"GetInteger", "GetString", "GetFileName", "GetObject", "GetPath", "GetList"})
        rows.emplace_back(getter, "TAPAttr::" + getter + " : bad type for get");
    // Where such an end takes seconds, the first ones speak for all.
    const std::size_t count = StormPercent < 100 ? 4 : rows.size();
    for (std::size_t row = 0; row < count; ++row) {
        const ProgramResult result = RunProgram("objects_probe", {rows[row].first});
        EXPECT_NE(result.err.find("\n" + rows[row].second + "\n"), std::string::npos) << row << result.err;
    }
}

TEST(TAPAttr, AssigningCopiesFirstAndKeepsAListsOwnElements) {
    TAPAttr list(ListOf({"a", 2})), longer(ListOf({1, 2, 3})), text("text");
    list = longer;
    EXPECT_TRUE(list.GetList().Size() == 2 && list.GetList()[1] == "a");
    text = longer;
    EXPECT_EQ(text.GetList().Size(), 0);
    TAPAttr& self = list;
    list = self;
    EXPECT_EQ(list.GetList().Size(), 2);
    text = "text";
    text = *&text;
    EXPECT_TRUE(text.GetString() == "text");

    list.GetList()[2] = list;  // a part gets its whole: as a list, of nothing
    EXPECT_EQ(list.GetList()[2].GetList().Size(), 0);
    list.GetList().Append(list);
    EXPECT_EQ(list.GetList()[3].GetList().Size(), 2);
    list.GetList() = list.GetList()[3].GetList();  // a list gets a part of its own
    EXPECT_TRUE(list.GetList().Size() == 2 && list.GetList()[1] == "a");
    list = list.GetList()[1];
    EXPECT_TRUE(list.GetString() == "a");

    std::string log;
    TAPObject* const inner = new LoggedObject(log, 'i');
    TAPObject* const outer = new LoggedObject(log, 'o');
    inner->SetAttribute("text", "kept by the inner object alone");
    outer->SetAttribute("inner", inner);
    TAPAttr holder(outer);
    inner->Release();
    outer->Release();
    holder = outer->GetAttribute("inner");
    EXPECT_EQ(log, "o");
    holder = TAPAttr();
    EXPECT_EQ(log, "oi");
}

TEST(TAPAttr, ListsCompareElementsOneLevelDeep) {
    const ZELListValTAPAttr list = ListOf({"a", 1, ListOf({1})});
    EXPECT_TRUE(list == list && list == ListOf({"a", 1, ListOf({"b"})}));
    for (const ZELListValTAPAttr& other : {ListOf({"a", 1, ListOf({})}), ListOf({"b", 1, ListOf({1})}),
                                           ListOf({"a", "1", ListOf({1})}), ListOf({"a", 1})})
        EXPECT_TRUE((list != other) == 1 && (other == list) == 0);

    ZELListValTAPAttr sorted = ListOf({3, "b", ListOf({9}), 1, "a"});
    sorted.QuickSort([](TAPAttr* left, TAPAttr* right) { return (*left > *right) - (*left < *right); });
    EXPECT_EQ(sorted, ListOf({"a", "b", ListOf({9}), 1, 3}));
}

TEST(TAPAttr, ListsInListsNeedNoStack) {
    RunConfined([] {
        static constexpr int Levels = 100000;
        const TAPAttr lists = NestedLists(Levels);
        const TAPAttr copy(lists);
        EXPECT_EQ(DepthOf(copy), Levels);
        EXPECT_TRUE(copy == lists && copy.GetList() == lists.GetList());
        ZELListValTAPAttr assigned = ListOf({1, 2});
        assigned = copy.GetList();
        EXPECT_EQ(DepthOf(assigned[1]), Levels - 1);
    });
}
