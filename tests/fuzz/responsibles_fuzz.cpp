// Responsibles: two files of any lines, asked for all that their rules give.
#include "ZELFwModRespHelper.h"
#include "fuzz/input.h"

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text.substr(0, text.rfind('\n') + 1));
    for (std::string line; std::getline(stream, line);) lines.push_back(line.c_str());
    return lines;
}

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

struct Model {
    std::map<std::string, std::string> people, frameworks;
    std::map<std::pair<std::string, std::string>, std::string> modules;

    void AddPerson(const std::string& line) {
        if (line.size() < 8 || line.back() != '.') return;
        const std::size_t dot = line.rfind('.', line.size() - 2);
        if (dot == std::string::npos || dot == 0 || dot == line.size() - 2 || line.size() - dot > 5) return;
        const std::string code = line.substr(dot + 1, line.size() - dot - 2);
        people.emplace(Upper(code.size() == 1 ? code + '.' : code), line);  // one letter takes the dot along
    }
    void AddComponent(const std::string& line) {
        std::vector<std::string> fields;
        std::istringstream stream(line);
        for (std::string field; std::getline(stream, field, ' ');) fields.push_back(field);
        if (fields.size() < 6 || !fields[5].starts_with("Resp:") || fields[5].size() == 5) return;
        for (int i = 0; i < 5; ++i)
            if (fields[static_cast<std::size_t>(i)].empty()) return;
        const std::string code = Upper(fields[5].substr(5)), parent = fields[3].size() < 7 ? "" : fields[3].substr(7);
        if (fields[4].starts_with("Fw:"))
            frameworks.emplace(fields[4].substr(3), code);
        else if (fields[4].starts_with("Mod:") && fields[3].size() >= 7 && frameworks.count(parent))
            modules.emplace(std::pair(parent, fields[4].substr(4)), code);
    }
    const char* Person(const std::string& code) const { return people.count(code) ? people.at(code).c_str() : nullptr; }
};

}  // namespace

FUZZ_TARGET(input) {
    static const TemporaryFolder folder;
    const std::string organisation = folder / "organisation", components = folder / "components";
    const std::vector<std::string> pieces{"Smith .jsm.\n",
                                          ".ab.\n",
                                          "12345678",
                                          ".",
                                          "x",
                                          "\n",
                                          "1 2 3 - Fw:a Resp:jsm\n",
                                          "1 2 3 Parent:a Mod:m Resp:ab\n",
                                          "1 2 3 ",
                                          "1234567a ",
                                          "Fw:",
                                          "Mod:",
                                          " Resp:",
                                          "AB",
                                          " "};
    const bool isSpelled = input.Flip();
    const std::string first = isSpelled ? input.Spell(pieces, 40) : input.Text(1000);
    const std::string second = isSpelled ? input.Spell(pieces, 80) : input.Rest();
    WriteBytes(organisation, first);
    WriteBytes(components, second);
    Model model;
    for (const std::string& line : Lines(first)) model.AddPerson(line);
    for (const std::string& line : Lines(second)) model.AddComponent(line);
    ZELFwModRespHelper helper;
    ASSERT_EQ(helper.parseFiles(organisation.c_str(), components.c_str()), 0);
    for (const auto& [name, code] : model.frameworks) {
        ASSERT_STREQ(helper.getFrameworkShortResponsible(name.c_str()), code.c_str());
        ASSERT_STREQ(helper.getFrameworkLongResponsible(name.c_str()), model.Person(code));
    }
    for (const auto& [name, code] : model.modules) {
        ASSERT_STREQ(helper.getModuleShortResponsible(name.first.c_str(), name.second.c_str()), code.c_str());
        ASSERT_STREQ(helper.getModuleLongResponsible(name.first.c_str(), name.second.c_str()), model.Person(code));
    }
    for (const char* const name : {"a", "m", "AB", ""})
        ASSERT_EQ(helper.getFrameworkShortResponsible(name) != nullptr, model.frameworks.count(name) == 1);
}
