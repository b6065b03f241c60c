#include "TAPObject.h"
#include "support/files.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

using Dump = std::map<std::string, std::string>;

Dump ReadDump(const TemporaryFolder& folder) {
    Dump dump;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        dump[entry.path().stem().string()] = WithoutReturns(ReadBytes(entry.path().string()));
    return dump;
}

Dump Save(TAPObject& object) {
    const TemporaryFolder folder;
    EXPECT_EQ(object.SaveToFile(folder.Path().c_str()), 0);
    return ReadDump(folder);
}

}  // namespace

TEST(Save, WritesTheDocumentedLines) {
    TAPObject empty, root;
    EXPECT_EQ(Save(empty), (Dump{{"Objects", ""}}));

    TAPName a("a"), b("b"), c("c");
    TAPPath one(&a), two(&one, &b), three(&two, &c), none(nullptr, &a), nameless(&three, nullptr);
    TAPObject* const nobody = nullptr;
    TAPPath* const nowhere = nullptr;
    const std::pair<TAPPath*, const char*> paths[] = {{&one, "1:;\n"},          {&two, "1:;;\n"}, {&three, "1:c;;;\n"},
                                                      {&nameless, "1:c;;;;\n"}, {&none, "1:\n"},  {nowhere, "1:\n"}};
    for (const auto& [path, line] : paths) {
        root.SetAttribute("p", path);
        EXPECT_EQ(Save(root), (Dump{{"Objects", "0:p:AttrPath:1\n"}, {"AttrPath", line}}));
    }
    root.RemoveAttribute("p");
    root.SetAttribute("c", ZELListValTAPAttr());
    root.SetAttribute("b", nobody);
    root.GetAttributeList()->Append("d", nullptr);
    root.SetAttribute("a", TAPAttr());
    EXPECT_EQ(Save(root), (Dump{{"Objects", "0:a:Null:1\n0:b:AttrObject:2\n0:c:AttrList:4\n0:d::5\n"},
                                {"AttrObject", "2:3\n"},
                                {"AttrList", ""}}));

    TAPObject raw, child;
    raw.SetAttribute("../a:b\nc", "x:y\n\nz");
    raw.SetAttribute("C:\\f", TAFileName("C:/d/../f"));
    raw.SetAttribute("child", &child);
    raw.SetAttribute("child again", &child);
    raw.SetAttribute("least", INT_MIN);
    EXPECT_EQ(Save(raw), (Dump{{"Objects",
                                "0:../a:b\nc:AttrString:1\n0:C:\\f:AttrFileName:2\n0:child:AttrObject:3\n"
                                "0:child again:AttrObject:5\n0:least:AttrInteger:7\n"},
                               {"AttrString", "1:x:y\n\nz\n"},
                               {"AttrFileName", "2:C:\\f\n"},
                               {"AttrObject", "3:4\n5:6\n"},
                               {"AttrInteger", "7:-2147483648\n"}}));
    for (const char* name : {"child", "child again"}) raw.RemoveAttribute(name);
}

TEST(Save, LinesEndAsTheSystemsTextDoes) {
    const TemporaryFolder folder;
    TAPObject object;
    object.SetAttribute("a", "x\ny");
    object.SaveToFile(folder.Path().c_str());
    std::ofstream(folder / "expected") << "1:x\ny\n";
    EXPECT_EQ(ReadBytes(folder / "AttrString.txt"), ReadBytes(folder / "expected"));
}

TEST(Save, GoesDepthFirst) {
    TAPObject tool, root;
    ZELListValTAPAttr inner, outer;
    inner.Append("done");
    inner.Append(&tool);
    for (int i = 0; i < 2; ++i) outer.Append(inner);
    outer.Append(ZELListValTAPAttr());
    root.SetAttribute("runs", 3);
    root.SetAttribute("tool", &tool);
    tool.SetAttribute("name", "scan");
    root.SetAttribute("log", outer);
    EXPECT_EQ(Save(root), (Dump{{"Objects",
                                 "5:name:AttrString:6\n10:name:AttrString:11\n0:log:AttrList:1\n"
                                 "0:runs:AttrInteger:13\n15:name:AttrString:16\n0:tool:AttrObject:14\n"},
                                {"AttrList", "1:1:2\n2:1:3\n2:2:4\n1:2:7\n7:1:8\n7:2:9\n1:3:12\n"},
                                {"AttrObject", "4:5\n9:10\n14:15\n"},
                                {"AttrInteger", "13:3\n"},
                                {"AttrString", "3:done\n6:scan\n8:done\n11:scan\n16:scan\n"}}));
}

TEST(Save, KeepsTextsOfEveryLengthAboutTheSizeOfARun) {
    TAPObject root;
    std::string expected;
    for (int length : {0, 65500, 65530, 65535, 131072, 200000})
        for (int more = 0; more < 8; ++more) {
            const std::string text(static_cast<std::size_t>(length + more), 'x');
            root.AppendToAttribute("texts", text.c_str());
            expected += std::to_string(root.GetAttribute("texts").GetList().Size() + 1) + ":" + text + "\n";
        }
    EXPECT_TRUE(Save(root).at("AttrString") == expected);
}

TEST(Save, EndsWhereAnObjectHoldsItself) {
    TAPObject* const root = new TAPObject;
    TAPObject* const child = new TAPObject;
    root->SetAttribute("child", child);
    child->AppendToAttribute("list", root);
    child->SetAttribute("self", child);
    child->SetAttribute("z", 1);
    for (int round = 0; round < 2; ++round) {
        testing::internal::CaptureStdout();
        const Dump dump = Save(*root);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "   WARNING : object met again inside itself, not saved as 5\n"
                  "   WARNING : object met again inside itself, not saved as 7\n");
        EXPECT_EQ(dump.at("Objects"),
                  "2:list:AttrList:3\n2:self:AttrObject:6\n2:z:AttrInteger:8\n0:child:AttrObject:1\n");
        EXPECT_EQ(dump.at("AttrObject"), "1:2\n4:5\n6:7\n");
    }
    for (const char* name : {"list", "self"}) child->RemoveAttribute(name);
    child->Release();
    root->Release();
}

TEST(Save, DepthNeedsNoStack) {
    constexpr int Levels = 100000;
    const TemporaryFolder folder;
    RunConfined([&] {
        TAPAttr tower("top");
        for (int level = 0; level < Levels; ++level) {
            auto* const object = new TAPObject;
            object->AppendToAttribute("a", tower);
            tower = object;
            object->Release();
        }
        TAPObject* const root = tower.GetObject();
        tower = TAPAttr();
        root->SaveToFile(folder.Path().c_str());
        root->Release();
    });
    const Dump dump = ReadDump(folder);
    for (const char* kind : {"Objects", "AttrList"})
        EXPECT_EQ(std::count(dump.at(kind).begin(), dump.at(kind).end(), '\n'), Levels);
    EXPECT_EQ(dump.at("AttrString"), std::to_string(3 * Levels - 1) + ":top\n");
}

TEST(Save, ReportsWhatCannotBeWrittenOnRequest) {
    TAPObject object;
    object.SetAttribute("a", 1);
    object.SetAttribute("b", "x");
    const TemporaryFolder folder;
    testing::internal::CaptureStdout();
    const auto expectFailure = [&](const std::string& directory, const std::string& file) {
        ZELString error;
        EXPECT_EQ(object.SaveToFile(directory.c_str()), 0);
        EXPECT_EQ(object.SaveToFile(directory.c_str(), error), 1) << directory;
        EXPECT_TRUE(Holds(std::string(error.View()), file + ": ")) << error.View();
    };
    ZELString error;
    EXPECT_EQ(object.SaveToFile(folder.Path().c_str(), error), 0) << error.View();
    expectFailure(folder / "missing", "Objects.txt");
    std::filesystem::remove(folder / "Objects.txt");
    std::filesystem::create_directory(folder / "Objects.txt");
    expectFailure(folder.Path(), "Objects.txt");
    EXPECT_EQ(ReadBytes(folder / "AttrInteger.txt").substr(0, 3), "1:1");
    if (!FullDevice.empty()) {
        std::filesystem::remove(folder / "AttrInteger.txt");
        std::filesystem::create_symlink(FullDevice, folder / "AttrInteger.txt");
        std::filesystem::remove(folder / "Objects.txt");
        expectFailure(folder.Path(), "AttrInteger.txt");
    }
    EXPECT_EQ(ReadBytes(folder / "AttrString.txt").substr(0, 3), "2:x");
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_all);
    EXPECT_EQ((OrdinaryUser(), object.SaveToFile(folder.Path().c_str())), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}
