// Two maps: codes to lines of the organisation file, and frameworks to records that hold a code and a map of modules.
// Everything lies in one counted body, so that copies see what any of them read.
//
// Lines are taken apart in the reader's buffer, as views. Maps copy their keys; values are texts of the C heap.
// The dangerous cases are lines that are too short for what is looked for in them: views end where the line does.

#include "ZELFwModRespHelper.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "ZELHashSCMap.h"
#include "ZELQMAStream.h"
#include "ZELString.h"
#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

struct Framework {
    explicit Framework(char* text) noexcept : code(text) {}

    char* code;
    ZELHashSCMap modules;  // to codes
};

// A copy of the text; null without memory, which is reported.
char* CopyOf(std::string_view text) noexcept {
    char* const copy = CopyText(text);
    if (copy == nullptr) ReportAllocFailure("ZELFwModRespHelper", text.size() + 1);
    return copy;
}

// False when memory ran out. A key that it cut off would be another one.
bool Insert(ZELHashSCMap& map, const ZELString& key, void* value) noexcept {
    return !key.IsIncomplete() && map.insert(key, value) != nullptr;
}

// Gives a copy of `text` to the map under the key; false when memory ran out.
bool InsertCopy(ZELHashSCMap& map, const ZELString& key, const ZELString& text) noexcept {
    char* const copy = text.IsIncomplete() ? nullptr : CopyOf(text.View());
    if (copy != nullptr && Insert(map, key, copy)) return true;
    Free(copy);
    return false;
}

template <class Value>
Value* Find(ZELHashSCMap& map, std::string_view key) noexcept {
    void* value = nullptr;
    return map.search(key, &value) != 0 ? static_cast<Value*>(value) : nullptr;
}

void FreeTexts(ZELHashSCMap& map) noexcept {
    for (const auto& [key, text] : map) Free(text);
}

ZELString UpperCase(std::string_view text) noexcept {
    return ZELString(text).ToUpper();
}

// The code of a line of the organisation file; empty when the line is none.
ZELString CodeOf(std::string_view line) noexcept {
    constexpr std::size_t ShortestLine = 8, LongestCode = 3;
    if (line.size() < ShortestLine || !line.ends_with('.') || line[line.size() - 2] == '.') return {};
    const std::size_t dot = line.rfind('.', line.size() - 2);
    if (dot == std::string_view::npos || dot == 0) return {};
    const std::string_view segment = line.substr(dot + 1);  // with the final dot
    if (segment.size() - 1 > LongestCode) return {};
    // A single letter makes a pair with the final dot.
    return UpperCase(segment.substr(0, std::max<std::size_t>(segment.size() - 1, 2)));
}

// A line of the component file.
struct Declaration {
    std::string_view parent;    // field 4
    std::string_view declared;  // field 5
    std::string_view code;      // of field 6
};

bool Take(std::string_view& text, std::string_view prefix) noexcept {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

// False for a line that has not six fields, none of them empty, with a code in the sixth.
bool Parse(std::string_view line, Declaration& declaration) noexcept {
    std::string_view fields[5];
    for (std::string_view& field : fields) {
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos || blank == 0) return false;
        field = line.substr(0, blank);
        line.remove_prefix(blank + 1);
    }
    if (!Take(line, "Resp:")) return false;
    declaration = {fields[3], fields[4], line.substr(0, line.find(' '))};
    return !declaration.code.empty();
}

void Say(std::initializer_list<std::string_view> pieces) noexcept {
    WriteText(stdout, pieces);
}

}  // namespace

struct ZELFwModRespHelper::Shared {
    Shared() = default;
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    ~Shared();

    void AddFramework(const Declaration& declaration, const char* path) noexcept;
    void AddModule(const Declaration& declaration, std::string_view module, const char* path) noexcept;
    const char* ShortOf(const char* framework) noexcept;
    const char* ShortOf(const char* framework, const char* module) noexcept;
    const char* LongOf(const char* code) noexcept;

    ZELHashSCMap* frameworks = nullptr;  // null until that file was read
    ZELHashSCMap* organisation = nullptr;
};

ZELFwModRespHelper::Shared::~Shared() {
    if (frameworks != nullptr) {
        for (const auto& [name, value] : *frameworks) {
            Framework* const framework = static_cast<Framework*>(value);
            Free(framework->code);
            FreeTexts(framework->modules);
            ZELDelete(framework);
        }
    }
    if (organisation != nullptr) FreeTexts(*organisation);
    ZELDelete(frameworks);
    ZELDelete(organisation);
}

void ZELFwModRespHelper::Shared::AddFramework(const Declaration& declaration, const char* path) noexcept {
    std::string_view name = declaration.declared;
    Take(name, "Fw:");
    if (Find<Framework>(*frameworks, name) != nullptr) {
        Say({"# Error: fw ", declaration.declared, " referenced multiple time in file ", path, "\n"});
        return;
    }
    const ZELString upper = UpperCase(declaration.code);
    char* const code = upper.IsIncomplete() ? nullptr : CopyOf(upper.View());
    Framework* const framework = code != nullptr ? ZELNew<Framework>(code) : nullptr;
    if (framework != nullptr && Insert(*frameworks, ZELString(name), framework)) return;
    if (code != nullptr && framework == nullptr) ReportAllocFailure("ZELFwModRespHelper", sizeof(Framework));
    ZELDelete(framework);
    Free(code);
}

void ZELFwModRespHelper::Shared::AddModule(const Declaration& declaration, std::string_view module,
                                           const char* path) noexcept {
    constexpr std::size_t PrefixOfParent = 7;
    std::string_view parent;
    Framework* framework = nullptr;
    if (declaration.parent.size() >= PrefixOfParent) {
        parent = declaration.parent.substr(PrefixOfParent);
        framework = Find<Framework>(*frameworks, parent);
    }
    if (framework == nullptr) {
        Say({"# Error: fw ", parent, " not yet referenced for mod ", module, " in file ", path, "\n"});
    } else if (framework->modules.contains(module)) {
        Say({"# Error: mod ", module, " defined multiple time\n", "# Error: unable to add mod ", module, " in fw ",
             parent, " for file ", path, "\n"});
    } else {
        InsertCopy(framework->modules, ZELString(module), UpperCase(declaration.code));
    }
}

const char* ZELFwModRespHelper::Shared::ShortOf(const char* framework) noexcept {
    if (frameworks == nullptr || framework == nullptr) return nullptr;
    Framework* const found = Find<Framework>(*frameworks, framework);
    return found != nullptr ? found->code : nullptr;
}

const char* ZELFwModRespHelper::Shared::ShortOf(const char* framework, const char* module) noexcept {
    if (frameworks == nullptr || framework == nullptr || module == nullptr) return nullptr;
    Framework* const found = Find<Framework>(*frameworks, framework);
    return found != nullptr ? Find<char>(found->modules, module) : nullptr;
}

const char* ZELFwModRespHelper::Shared::LongOf(const char* code) noexcept {
    return organisation != nullptr && code != nullptr ? Find<char>(*organisation, code) : nullptr;
}

namespace {

// Makes the map and hands each line of the file to `take`. 1 when the map is there already.
template <class TakeLine>
int ReadOnce(ZELHashSCMap*& map, const char* path, TakeLine take) noexcept {
    if (map != nullptr) return 1;
    map = ZELNew<ZELHashSCMap>();
    if (map == nullptr) {
        ReportAllocFailure("ZELFwModRespHelper", sizeof(ZELHashSCMap));
        return 0;
    }
    ZELQMAStream stream;
    if (stream.fopen(path, "rt") == nullptr) return 0;
    for (char* line = nullptr; stream.getline(line) != 0;) take(std::string_view(line));
    if (stream.ReadError() != 0) Say({"# Error: file ", path, " cannot be read to its end\n"});
    stream.fclose();
    return 0;
}

}  // namespace

ZELFwModRespHelper::ZELFwModRespHelper() noexcept : _shared(ZELShared<Shared>::Make()) {
    if (!_shared) ReportAllocFailure("ZELFwModRespHelper", sizeof(Shared));
}

ZELFwModRespHelper::~ZELFwModRespHelper() = default;

int ZELFwModRespHelper::parseFiles(const char* orgFile, const char* componentFile) noexcept {
    if (!_shared) return 0;
    parseQNOrgFile(orgFile);
    parseADLFile(componentFile);
    return 0;
}

int ZELFwModRespHelper::parseQNOrgFile(const char* path) noexcept {
    return ReadOnce(_shared->organisation, path, [&](std::string_view line) {
        const ZELString code = CodeOf(line);
        if (code.Length() == 0)
            Say({"# ERROR: Bad line in file ", path, ": ", line, "\n"});
        else if (!_shared->organisation->contains(code.View()))
            InsertCopy(*_shared->organisation, code, ZELString(line));
    });
}

int ZELFwModRespHelper::parseADLFile(const char* path) noexcept {
    return ReadOnce(_shared->frameworks, path, [&](std::string_view line) {
        Declaration declaration;
        if (!Parse(line, declaration)) {
            Say({"# Error: Bad line in file (", path, "): ", line.substr(0, line.find(' ')), "\n"});
            return;
        }
        std::string_view module = declaration.declared;
        if (Take(module, "Mod:"))
            _shared->AddModule(declaration, module, path);
        else if (declaration.declared.starts_with("Fw:"))
            _shared->AddFramework(declaration, path);
    });
}

const char* ZELFwModRespHelper::getFrameworkShortResponsible(const char* fw) const noexcept {
    return _shared ? _shared->ShortOf(fw) : nullptr;
}

const char* ZELFwModRespHelper::getFrameworkLongResponsible(const char* fw) const noexcept {
    return _shared ? _shared->LongOf(_shared->ShortOf(fw)) : nullptr;
}

const char* ZELFwModRespHelper::getModuleShortResponsible(const char* fw, const char* mod) const noexcept {
    return _shared ? _shared->ShortOf(fw, mod) : nullptr;
}

const char* ZELFwModRespHelper::getModuleLongResponsible(const char* fw, const char* mod) const noexcept {
    return _shared ? _shared->LongOf(_shared->ShortOf(fw, mod)) : nullptr;
}
