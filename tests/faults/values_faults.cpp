// Values, and what is made of them.

#include "TAEnvironment.h"
#include "TAFileName.h"
#include "TAHtmlBanner.h"
#include "TAIndex.h"
#include "TAPAttr.h"
#include "TAPObject.h"
#include "TATextUtilities.h"
#include "TAUnicodeRegularExpression.h"
#include "ZELFwModRespHelper.h"
#include "ZELHashSCMap.h"
#include "ZELListValZELString.h"
#include "ZELStringPool.h"
#include "ZELUnicodeString.h"
#include "ZELXMLNode.h"
#include "faults/sweep.h"

namespace {

// Longer than what fits into an object.
const std::string Word(40, 'x');
const std::string Long = "a text that needs a block of its own, " + Word;

std::string Shown(const ZELListValZELString& list) {
    std::string all;
    for (const std::string& text : Texts(list)) all += text + "\n";
    return all;
}

Outcome Strings(Round& round) {
    const ZELString piece(Long.c_str());
    round.Begin();
    ZELString text = piece + "|" + piece;
    text += piece;
    for (int i = 0; i < 20; ++i) text.Append(Long);
    ZELString changed(text);
    changed.ReplaceSubString("block", piece);
    const ZELString part = changed.SubString(10, 500), copy(part), sum = "begin " + copy;
    round.End();
    return {!sum.IsIncomplete(), sum.CastToCharPtr()};
}

Outcome UnicodeStrings(Round& round) {
    const ZELUnicodeString piece(Long.c_str());
    round.Begin();
    ZELUnicodeString text = piece + piece;
    for (int i = 0; i < 10; ++i) text += piece;
    ZELUnicodeString assigned;
    assigned = text.Strip(ZELStripBoth, 'a').SubString(3, 300);
    const ZELUnicodeString copy(assigned);
    round.End();
    return {!copy.IsIncomplete(), copy.CastToCharPtr()};
}

Outcome Names(Round& round) {
    const TAFileName folder((round / "folder").c_str());
    const ZELString tail(Long.c_str());
    round.Begin();
    TAFileName name = folder + tail + "below";
    name += "file";
    name.AddExtension(".o");
    name.SetExtension("cpp");
    const TAFileName parent = name.dirname(1) + name.basename(1), full = (TAFileName("relative") + tail).GetFullPath();
    const ZELString text = full.GetNativeName() + "|" + parent.Getdirname(1) + "|" + parent.GetExtension();
    round.End();
    EXPECT_TRUE(name.IsNull() || name.View().starts_with(folder.View())) << name;
    EXPECT_TRUE(parent.IsNull() || parent.View().starts_with(folder.View())) << parent;
    return {!text.IsIncomplete(), text.SubString(text.FindPosition("|", 0), 1000).CastToCharPtr()};
}

Outcome Lists(Round& round) {
    round.Begin();
    ZELListValZELString list;
    int failures = 0;
    for (int i = 0; i < 30; ++i) failures += list.Append(Long.c_str());
    ZELListValZELString copy(list);
    failures += copy.Append(list) + copy.InsertBefore(3, ZELString("third ") + Long.c_str());
    failures += copy.Size() == 2 * list.Size() + 1 ? 0 : 1;
    round.End();
    return {failures == 0, Shown(copy)};
}

Outcome Fields(Round& round) {
    ZELString line((Long + ";;" + Long + ";" + Long).c_str());
    round.Begin();
    ZELListValZELString fields;
    TAIndex index;
    const int count = Split(line, fields, ";") + Split(line, index, ZELString(Long.c_str()));
    ZELString joined;
    ToLine(fields, joined, ZELString(" and ") + Long.c_str());
    round.End();
    return {count == 5 && !joined.IsIncomplete(), joined.CastToCharPtr()};
}

Outcome Banner(Round& round) {
    ZELListValZELString menu;
    menu.Append(Long.c_str());
    const ZELString text(Long.c_str());
    round.Begin();
    const ZELListValZELString banner = BuildHtmlBanner(text, menu, text, text);
    round.End();
    return {banner.Size() != 0, Shown(banner)};
}

Outcome Maps(Round& round) {
    int stored = 0;
    round.Begin();
    ZELStringPool pool;
    ZELHashSCMap map(8, 0.75F, &pool);
    for (int i = 0; i < 100; ++i) stored += map.insert((std::to_string(i) + Long).c_str(), Value(i)) != nullptr ? 1 : 0;
    round.End();
    std::string state;
    for (int i = 0; i < 100; ++i) {
        void* value = nullptr;
        const std::string key = std::to_string(i) + Long;
        state += map.search(key.c_str(), &value) != 0 && value == Value(i) ? "m" : "-";
    }
    EXPECT_EQ(std::count(state.begin(), state.end(), '-'), 100 - stored);
    return {stored == 100, state};
}

// Without memory for the name, a dump lands nowhere.
Outcome Dumps(Round& round) {
    const TAFileName folder((round / ("dump" + Long)).c_str());
    std::filesystem::create_directory(std::string(folder.GetNativeName()));
    bool isSaved = false;
    ZELString error;
    round.Begin();
    auto* const object = new TAPObject;
    if (object != nullptr) {
        object->SetAttribute("name", Long.c_str());
        auto* const child = new TAPObject;
        object->SetAttribute("child", child);
        object->SetAttribute("file", TAFileName(Long.c_str()));
        object->SetAttribute("sum", 1);
        int failures =
            object->AppendToAttribute("sum", 2) + object->AppendToAttribute("list", TAFileName(Long.c_str()));
        failures += object->AppendToAttribute("list", "second") + object->AppendToAttribute("name", Long.c_str());
        TAPObject copy;
        copy = TAPObject(*object);
        failures += copy.SaveToFile(folder, error);
        if (child != nullptr) child->Release();
        isSaved = object->SaveToFile(folder, error) == 0 && failures == 0;
        object->Release();
    }
    round.End();
    std::string state;
    for (const auto& file : std::filesystem::directory_iterator(std::string(folder.GetNativeName())))
        state += ReadBytes(file.path().string());
    return {isSaved, std::to_string(state.size())};
}

Outcome Xml(Round& round) {
    round.Begin();
    ZELXMLNode node(Long.c_str());
    node.SetAttr("name", Long.c_str());
    node.AddNode(Long.c_str()).SetText(("<&>" + Long).c_str());
    ZELXMLNode copy(node), assigned;
    assigned = copy;
    assigned.AddNode(copy);
    const ZELString xml = assigned.ToXML();
    std::ostringstream stream;
    assigned.Write(stream);
    round.End();
    EXPECT_TRUE(stream ? xml.IsIncomplete() || stream.str() == xml.View() : stream.str().empty());
    return {!xml.IsIncomplete(), xml.CastToCharPtr()};
}

Outcome Variables(Round& round) {
    const std::string name = "ZEL_SWEEP_" + Long;
    TAEnvVariable(name.c_str(), 100).PutEnvironmentValue("before");
    TAEnvVariable other("ZEL_SWEEP_OTHER", 100);
    round.Begin();
    const TAEnvVariable variable(name.c_str(), 100), copy(variable);
    other = copy;
    const bool isPut = variable.PutEnvironmentValue("value") == 0 && other.PutEnvironmentValue("v") == 0;
    round.End();
    EXPECT_EQ(std::getenv("ZEL_SWEEP_OTHER"), nullptr);
    return {isPut, TAEnvVariable(name.c_str(), 1).GetEnvironmentValue()};
}

Outcome TemporaryFiles(Round& round) {
    TAEnvVariable variable(onWindows ? "TMP" : "TMPDIR", 1000);
    const std::string before = variable.GetEnvironmentValue() != nullptr ? variable.GetEnvironmentValue() : "";
    variable.PutEnvironmentValue((round / "").c_str());
    round.Begin();
    const TAFileName name = TAFileName::GetTemporaryFileName();
    round.End();
    variable.PutEnvironmentValue(before.c_str());
    const bool isMade = name.IsNull() == 0 && name.IsFile() != 0;
    if (isMade) name.Delete();
    return {isMade, ""};
}

// An entry is there as it was declared, or not at all.
Outcome Responsibles(Round& round) {
    WriteBytes(round / "organisation", Long + " .ab.\n" + Long + " .cd.\n");
    WriteBytes(round / "components", "1 2 3 - Fw:" + Word + " Resp:" + Word + "\n1 2 3 Parent:" + Word +
                                         " Mod:" + (Word + 'm') + " Resp:ab\n");
    round.Begin();
    std::string state;
    {
        ZELFwModRespHelper all;
        all.parseFiles((round / "organisation").c_str(), (round / "components").c_str());
        EXPECT_EQ(all.getFrameworkShortResponsible(""), nullptr);
        const char* const answers[] = {all.getFrameworkShortResponsible(Word.c_str()),
                                       all.getModuleLongResponsible(Word.c_str(), (Word + 'm').c_str())};
        for (const char* const answer : answers) {
            EXPECT_TRUE(answer == nullptr || std::strlen(answer) >= Word.size()) << answer;
            state += answer != nullptr ? answer : "-";
        }
    }
    round.End();
    return {round.Said().empty() && round.call == nullptr, state};  // a file that cannot be opened counts as empty
}

Outcome Filters(Round& round) {
    round.Begin();
    EXPECT_EQ(TAUnicodeRegularExpression(ZELString(Long.c_str())).CheckFromFilter("another"), 0);
    TAUnicodeRegularExpression filter;
    const int refused = filter.SetFilter("*[a-z].cpp", URE_Memoised);
    const int matches = filter.CheckFromFilter(ZELUnicodeString(("src/" + Long + "/name.cpp").c_str()));
    round.End();
    return {refused == 0 && round.Said().empty(), std::to_string(matches)};
}

const Scenario scenarios[] = {
    {"Strings", Strings},
    {"UnicodeStrings", UnicodeStrings},
    {"Names", Names},
    {"Lists", Lists},
    {"Fields", Fields},
    {"Banner", Banner},
    {"Maps", Maps},
    {"Dumps", Dumps},
    {"Xml", Xml},
    {"Filters", Filters},
    {"Variables", Variables},
    {"TemporaryFiles", TemporaryFiles},
    {"Responsibles", Responsibles},
};

}  // namespace
