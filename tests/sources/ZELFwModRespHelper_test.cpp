#include "ZELFwModRespHelper.h"

#include "support/failing_memory.h"
#include "support/testing.h"

namespace {

std::string Text(const char* text) {
    return text != nullptr ? text : "(null)";
}

}  // namespace

TEST(ZELFwModRespHelper, ReadsEachLineByItsRules) {
    const TemporaryFolder folder;
    const std::string organisation = folder / "organisation", components = folder / "components";
    const std::pair<std::string, bool> people[] = {
        {"Name A.ab.", true}, {"Name B.AB.", true}, {"Na.me C.jsm.", true},  {"Name D.x.", true}, {"A.b.cd.", false},
        {"", false},          {"Name E.ab", false}, {"Name F.abcd.", false}, {"Name F..", false}, {"12345678.", false},
    };
    std::string peopleText, said;
    for (const auto& [line, isGood] : people) {
        peopleText += line + '\n';
        if (!isGood) said += "# ERROR: Bad line in file " + organisation + ": " + line + '\n';
    }
    const std::string bad = "# Error: Bad line in file (" + components + "): ", in = " in file " + components;
    std::vector<std::pair<std::string, std::string>> declarations = {
        {"1 2 3 - Fw:a Resp:ab", ""},
        {"1 2 3 - Fw:a Resp:jsm", "# Error: fw Fw:a referenced multiple time" + in},
        {"1 2 3 - Fw: Resp:x. and more", ""},
        {"1 2 3 1234567a Mod:m Resp:jsm", ""},
        {"1 2 3 Parent:a Mod:m Resp:ab",
         "# Error: mod m defined multiple time\n"
         "# Error: unable to add mod m in fw a for file " +
             components},
        {"1 2 3 Parent: Mod: Resp:zz", ""},
        {"1 2 3 Parent:b Mod:n Resp:ab", "# Error: fw b not yet referenced for mod n" + in},
        {"1 2 3 parent Mod:n Resp:ab", "# Error: fw  not yet referenced for mod n" + in},
        {"1 2 3 - Fx:c Resp:ab", ""},
        {"1 2 3 - Fw:c resp:ab", bad + '1'},
        {"1 2 3 - Fw:c Resp: x", bad + '1'},
        {"1 2  3 - Fw:c Resp:ab", bad + '1'},
        {" 2 3 - Fw:c Resp:ab", bad},
    };
    const std::string whole = "1 2 3 - Fw:c Resp:";
    for (std::size_t size = 0; size <= whole.size(); ++size)
        declarations.emplace_back(whole.substr(0, size), bad + (size > 0 ? "1" : ""));
    std::string text;
    for (const auto& [line, message] : declarations) {
        text += line + '\n';
        if (!message.empty()) said += message + '\n';
    }
    WriteBytes(organisation, peopleText + "Last One.xyz.");  // without its end
    WriteBytes(components, text + "1 2 3 4 Fw:last Resp:jsm");
    ZELFwModRespHelper helper;
    const ZELFwModRespHelper copy(helper);
    const std::string printed = Printed([&] {
        for (const std::string& other : {components, organisation})  // read once
            EXPECT_EQ(helper.parseFiles(organisation.c_str(), other.c_str()), 0);
    });
    EXPECT_EQ(printed, said);
    const std::tuple<const char*, const char*, const char*> frameworks[] = {
        {"a", "AB", "Name A.ab."}, {"", "X.", "Name D.x."}, {"A", "(null)", "(null)"}, {"last", "(null)", "(null)"}};
    for (const auto& [name, code, person] : frameworks) {
        EXPECT_EQ(Text(copy.getFrameworkShortResponsible(name)), code);
        EXPECT_EQ(Text(helper.getFrameworkLongResponsible(name)), person);
    }
    EXPECT_EQ(Text(copy.getModuleShortResponsible("a", "m")), "JSM");
    EXPECT_EQ(Text(copy.getModuleLongResponsible("a", "m")), "Na.me C.jsm.");
    EXPECT_EQ(Text(helper.getModuleShortResponsible("", "")), "ZZ");
    EXPECT_EQ(helper.getModuleLongResponsible("", ""), nullptr);
}

TEST(ZELFwModRespHelper, SurvivesEachFailedAllocation) {
    const TemporaryFolder folder;
    WriteBytes(folder / "organisation", "Name A.ab.\nName B.cd.\n");
    WriteBytes(folder / "components", "1 2 3 4 Fw:f Resp:ab\n1 2 3 Parent:f Mod:m Resp:cd\n");
    FailEachAllocation([&](FailingMemory& memory) {
        memory.Begin();
        ZELFwModRespHelper helper;
        helper.parseFiles((folder / "organisation").c_str(), (folder / "components").c_str());
        const bool failed = memory.End();
        const std::string answers =
            Text(helper.getFrameworkLongResponsible("f")) + Text(helper.getModuleLongResponsible("f", "m"));
        EXPECT_EQ(answers == "Name A.ab.Name B.cd.", !failed);
    });
}

TEST(ZELFwModRespHelper, AnswersNullWithoutFilesAndArguments) {
    ZELFwModRespHelper helper, assigned;
    EXPECT_EQ(assigned.parseFiles(nullptr, "no such file"), 0);
    for (int parsed = 0; parsed < 2; ++parsed) {
        for (const char* const name : {static_cast<const char*>(nullptr), "a"}) {
            EXPECT_EQ(helper.getFrameworkLongResponsible(name), nullptr);
            EXPECT_EQ(helper.getModuleLongResponsible("a", name), nullptr);
            EXPECT_EQ(helper.getModuleShortResponsible(name, "a"), nullptr);
        }
        helper = assigned;
    }
}
