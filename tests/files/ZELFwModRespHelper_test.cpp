#include "ZELFwModRespHelper.h"

#include <regex>

#include "support/failing_memory.h"
#include "support/testing.h"

namespace {

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

// What two files mean, by patterns.
struct Model {
    std::string organisationPath, componentPath;
    std::map<std::string, std::string> people;
    std::map<std::string, std::string> frameworks;
    std::map<std::pair<std::string, std::string>, std::string> modules;
    std::string output;

    void Person(const std::string& line) {
        static const std::regex pattern(R"(.+\.([^.]{1,3})\.)");
        std::smatch match;
        if (line.size() < 8 || !std::regex_match(line, match, pattern))
            output += "# ERROR: Bad line in file " + organisationPath + ": " + line + "\n";
        else
            people.emplace(Upper(match.length(1) == 1 ? match.str(1) + "." : match.str(1)), line);
    }
    void Component(const std::string& line) {
        static const std::regex pattern(R"([^ ]+ [^ ]+ [^ ]+ ([^ ]+) ([^ ]+) Resp:([^ ]+).*)");
        std::smatch match;
        if (!std::regex_match(line, match, pattern)) {
            output += "# Error: Bad line in file (" + componentPath + "): " + line.substr(0, line.find(' ')) + "\n";
            return;
        }
        const std::string declared = match[2], code = Upper(match[3]);
        const std::string parent = match.length(1) < 7 ? "" : match.str(1).substr(7);
        if (declared.starts_with("Fw:")) {
            if (!frameworks.emplace(declared.substr(3), code).second)
                output += "# Error: fw " + declared + " referenced multiple time in file " + componentPath + "\n";
        } else if (declared.starts_with("Mod:")) {
            const std::string module = declared.substr(4);
            if (match.length(1) < 7 || !frameworks.contains(parent))
                output += "# Error: fw " + parent + " not yet referenced for mod " + module + " in file " +
                          componentPath + "\n";
            else if (!modules.emplace(std::pair(parent, module), code).second)
                output += "# Error: mod " + module + " defined multiple time\n# Error: unable to add mod " + module +
                          " in fw " + parent + " for file " + componentPath + "\n";
        }
    }
};

std::string Text(const char* text) {
    return text != nullptr ? text : "(null)";
}

template <class Map, class Key>
std::string Of(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found != map.end() ? found->second : "(null)";
}

std::string AnyOf(std::mt19937& random, std::initializer_list<const char*> texts) {
    return texts.begin()[random() % texts.size()];
}

}  // namespace

TEST(ZELFwModRespHelper, AgreesWithTheModelOnRandomFiles) {
    const TemporaryFolder folder;
    std::mt19937 random(9);
    std::set<std::string> found;
    for (int round = 0; round < 40; ++round) {
        Model model{folder / "organisation", folder / "components", {}, {}, {}, {}};
        std::string organisation, components;
        for (int i = 0; i < 60; ++i) {
            std::string line = RandomText(random, "ab.. ", 13);
            if (random() % 2) line += AnyOf(random, {"..a.", ".ab.", ".aB.", ".jsm.", ".abcd.", ".", "Name A.jsm."});
            model.Person(line);
            organisation += line + '\n';
        }
        for (int i = 0; i < 200; ++i) {
            std::string line = AnyOf(random, {"1 2 3 ", "1 2 3 ", "1 2 3 ", "1 2  3 ", " 2 3 ", "1 2 "}) +
                               AnyOf(random, {"1234567a", "Parent:b", "Parent:", "parent", "-"}) + " " +
                               AnyOf(random, {"Fw:a", "Fw:b", "Fw:B", "Fw:", "Mod:m", "Mod:n", "Mod:", "F", "Fx:a"}) +
                               AnyOf(random, {" ", " ", " ", "  "}) +
                               AnyOf(random, {"Resp:a.", "Resp:jsm", "Resp:AB more", "Resp:", "Resp: x", "resp:jsm"});
            if (random() % 8 == 0) line.resize(random() % line.size());
            model.Component(line);
            components += line + '\n';
        }
        WriteBytes(model.organisationPath, organisation + "Last One.xyz.");  // without its end
        WriteBytes(model.componentPath, components + "1 2 3 4 Fw:last Resp:jsm");
        testing::internal::CaptureStdout();
        ZELFwModRespHelper helper;
        const ZELFwModRespHelper copy(helper);
        EXPECT_EQ(helper.parseFiles(model.organisationPath.c_str(), model.componentPath.c_str()), 0);
        EXPECT_EQ(helper.parseFiles(model.componentPath.c_str(), model.organisationPath.c_str()), 0);
        ASSERT_EQ(WithoutReturns(testing::internal::GetCapturedStdout()), model.output);
        for (const char* const fw : {"a", "b", "B", "", "last"}) {
            const std::string code = Of(model.frameworks, fw);
            ASSERT_EQ(Text(copy.getFrameworkShortResponsible(fw)), code);
            ASSERT_EQ(Text(copy.getFrameworkLongResponsible(fw)), Of(model.people, code));
            for (const char* const mod : {"m", "n", ""}) {
                const std::string moduleCode = Of(model.modules, std::pair<std::string, std::string>(fw, mod));
                ASSERT_EQ(Text(helper.getModuleShortResponsible(fw, mod)), moduleCode);
                ASSERT_EQ(Text(helper.getModuleLongResponsible(fw, mod)), Of(model.people, moduleCode));
                found.insert(moduleCode);
            }
        }
    }
    EXPECT_GT(found.size(), 3u);  // the files did mean something
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
