// File names: the normal form by its rules, and every getter by the text alone.
#include "TAFileName.h"
#include "fuzz/input.h"
#include "paths/path_model.h"

namespace {

std::string Path(Input& input) {
    return input.Flip() ? input.Text(600)
                        : input.Spell({"/", "\\", "//", ".", "..", "...", "name", "a.b", "0123456789abcde", "C:"}, 24);
}

TAFileName Name(const std::string& text) {
    return TAFileName(ZELString(std::string_view(text)));
}

// The last n separators, from the end; nothing if there are fewer.
std::optional<std::size_t> Separator(const std::string& text, int n) {
    std::size_t at = text.size();
    while (n-- > 0)
        if (at == 0 || (at = text.rfind('\\', at - 1)) == std::string::npos) return std::nullopt;
    return at;
}

void CheckParts(const TAFileName& name, const std::string& text, int n) {
    const auto separator = Separator(text, std::max(n, 1));
    const auto following = Separator(text, std::max(n, 1) - 1);
    ASSERT_EQ(name.basename(n).View(), separator ? text.substr(*separator + 1, *following - *separator - 1) : text);
    const bool hasParent = separator && *separator > 0;
    ASSERT_EQ(name.dirname(n).View(), n <= 0 ? text : hasParent ? text.substr(0, *separator) : "");
    ASSERT_EQ(name.Getdirname(n).View(), name.dirname(n).View());
}

void CheckExtension(const TAFileName& name, const std::string& text, const std::string& other) {
    const std::size_t behind = text.rfind('.') + 1;
    const std::string extension = behind > 0 ? text.substr(behind) : "";
    ASSERT_EQ(name.GetExtension().View(), extension);
    ASSERT_EQ(name.HasExtension(extension.c_str()), extension.find('\0') == std::string::npos ? 1 : 0);
    TAFileName set(name), added(name);
    set.SetExtension(ZELString(std::string_view(other)));
    added.AddExtension(ZELString(std::string_view(other)));
    ASSERT_EQ(set.View(), text.substr(0, behind) + other);
    ASSERT_EQ(added.View(), text + other);
    ASSERT_EQ(added.dirname(1).View(), NormalisedByRules(std::string(added.dirname(1).View())));
}

void CheckPair(const TAFileName& name, const std::string& text, const TAFileName& other, const std::string& tail) {
    const std::string joined = tail.empty() ? text : text.empty() ? tail : text + '\\' + tail;
    const TAFileName below = name + ZELString(std::string_view(tail));
    ASSERT_EQ(below.View(), NormalisedByRules(joined));
    const int order = text.compare(other.View());
    TAFileName left(name), right(other);
    ASSERT_EQ(TAFileName::Compare(&left, &right), (order > 0) - (order < 0));
    ASSERT_EQ(name.IsEqual(other), name.IsNull() || other.IsNull() ? -1 : order == 0 ? 1 : 0);
    int level = -1;
    const std::string_view dir = other.View();
    const bool isUnder = text.starts_with(dir) && (text.size() == dir.size() || text[dir.size()] == '\\');
    ASSERT_EQ(name.IsUnderDirectory(other, level), dir.empty() || isUnder ? 1 : 0);
    ASSERT_EQ(level, isUnder && !dir.empty() ? std::count(text.begin() + std::ssize(dir), text.end(), '\\') : 0);
}

}  // namespace

FUZZ_TARGET(input) {
    const int n = input.Number(-1, 40);
    const std::string path = Path(input), tail = Path(input);
    const std::string text = NormalisedByRules(path);
    const TAFileName name = Name(path);
    ASSERT_EQ(name.View(), text);
    ASSERT_EQ(name.IsNull(), text.empty() ? 1 : 0);
    ASSERT_EQ(TAFileName(path.c_str()).View(), NormalisedByRules(path.c_str()));
    CheckParts(name, text, n);
    CheckExtension(name, text, tail);
    CheckPair(name, text, Name(tail), tail);
    CheckPair(name, text, name.dirname(n), tail);
    const bool isAbsolute =
        text.starts_with('\\') || (text.size() > 1 && text[1] == ':' && std::isalpha(text[0] & 127));
    if (isAbsolute && text[0] >= 0) {
        ASSERT_EQ(name.GetFullPath().View(), text);
    }
    const std::string native(name.GetNativeName().View());
    ASSERT_EQ(native.find('\\'), std::string::npos);
    static_cast<void>(name.IsFile() + name.IsDirectory());
}
