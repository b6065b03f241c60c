// The small ones: a bounded search, comment lines, quoted arguments, search paths, wide text.

#include "TATextUtilities.h"

#include <string_view>

#include "platform/text.h"

using namespace zel;

namespace {

int IsCommentText(std::string_view line) noexcept {
    const std::size_t first = line.find_first_not_of(' ');
    return first == std::string_view::npos || line[first] == '#' ? 1 : 0;
}

}  // namespace

char* Q_strstr(const char* text, const char* pattern, int limit) noexcept {
    if (text == nullptr || pattern == nullptr) return nullptr;
    if (*pattern == '\0') return *text == '\0' ? const_cast<char*>(text) : nullptr;
    const char* wanted = pattern;
    for (const char* at = text; at - text < limit && *at != '\0' && *at != '\n'; ++at) {
        if (*at != *wanted) wanted = pattern;
        if (*at == *wanted) ++wanted;
        if (*wanted == '\0') return const_cast<char*>(at + 1 - (wanted - pattern));
    }
    return nullptr;
}

int IsComment(const char* line) noexcept {
    return IsCommentText(line != nullptr ? line : "");
}

int IsComment(ZELString line) noexcept {
    return line.IsIncomplete() ? 0 : IsCommentText(line.View());
}

ZELString TANormalizeArg(const ZELString& argument) noexcept {
    const std::string_view text = argument.View();
    if (argument.IsIncomplete() || text.starts_with('"') || text.find(' ') == std::string_view::npos) return argument;
    ZELString quoted;
    quoted.Reserve(text.size() + 2);
    return quoted.Append("\"").Append(text).Append("\"");
}

TAFileName SearchConcatenation(ZELString name, ZELString directories) noexcept {
    if (directories.IsIncomplete()) return TAFileName(directories);
    std::string_view rest = directories.View();
    while (!rest.empty()) {
        const std::string_view entry = rest.substr(0, rest.find(';'));
        rest.remove_prefix(entry.size() < rest.size() ? entry.size() + 1 : entry.size());
        if (entry.empty()) continue;
        const TAFileName candidate = TAFileName(entry.data(), static_cast<int>(entry.size())) + name;
        if (candidate.IsFile() || candidate.IsIncomplete()) return candidate;
    }
    return TAFileName();
}

int ZELToolsToUnicode(ZELString text, unsigned short* out, int capacity) noexcept {
    if (out == nullptr || capacity < 0 || text.IsIncomplete()) return 1;
    const std::size_t units = ToUtf16(text.View(), out, static_cast<std::size_t>(capacity));
    out[units] = 0;
    return units > 0 ? 0 : 1;
}
