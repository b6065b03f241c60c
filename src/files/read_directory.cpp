// Paths that a pattern selects. The pattern is taken component by component; in front of each stands the list of the
// paths that the components so far led to. A component without "*" lengthens them, one with "*" replaces each by what
// it selects in there. The order of listing is kept by that, and nothing recurses.

#include <cstring>
#include <string_view>
#include <utility>

#include "TAFileUtilities.h"
#include "TATextUtilities.h"
#include "files/byte_buffer.h"
#include "paths/path_value.h"
#include "platform/directories.h"
#include "platform/file_actions.h"
#include "text/string_list.h"
#include "text/wildcard.h"

using namespace zel;

namespace {

bool IsSeparator(char character) noexcept {
    return character == '\\' || character == '/';
}

// Takes the drive and the separators off the front of a pattern. Returns them as a path begins with them.
std::string_view TakePrefix(std::string_view& pattern, char (&room)[3]) noexcept {
    const std::size_t second = 2;
    if (IsDrive(pattern.substr(0, second)) && (pattern.size() == second || IsSeparator(pattern[second]))) {
        room[0] = pattern[0];
        room[1] = ':';
        room[2] = '\\';
        pattern.remove_prefix(second);
        return {room, 3};
    }
    std::size_t separators = 0;
    while (separators < second && separators < pattern.size() && IsSeparator(pattern[separators])) ++separators;
    pattern.remove_prefix(separators);
    return std::string_view("\\\\", separators);
}

// Takes the next component off the front of a pattern; empty when there is none.
std::string_view TakeComponent(std::string_view& pattern) noexcept {
    while (!pattern.empty() && IsSeparator(pattern.front())) pattern.remove_prefix(1);
    std::size_t length = 0;
    while (length < pattern.size() && !IsSeparator(pattern[length])) ++length;
    const std::string_view component = pattern.substr(0, length);
    pattern.remove_prefix(length);
    while (!pattern.empty() && IsSeparator(pattern.front())) pattern.remove_prefix(1);
    return component;
}

bool AppendPath(ZELListValZELString& paths, std::string_view folder, std::string_view name) noexcept {
    ByteBuffer path;
    const bool separated = folder.empty() || folder.ends_with('\\');
    return path.Append(folder) && (separated || path.Append("\\")) && path.Append(name) &&
           AppendText(paths, path.View());
}

bool IsSelected(std::string_view folder, const char* name, std::string_view component) noexcept {
    if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) return false;
    if (!IsPathComponent(name) || (folder.empty() && IsDrive(name))) return false;
    return MatchesWildcardNoCase(name, component);
}

// Appends what a component with "*" selects in `folder`.
void SelectIn(const ZELString& folder, std::string_view component, bool directoriesOnly, ZELListValZELString& found) {
    DirectoryListing listing;
    if (!listing.Open(folder.Length() != 0 ? folder.CastToCharPtr() : ".")) return;
    const char* name;
    EntryKind kind;
    while (listing.Next(&name, &kind) == ListingStep::Entry) {
        const bool passed = directoriesOnly && kind == EntryKind::File;
        if (passed || !IsSelected(folder.View(), name, component)) continue;
        if (!AppendPath(found, folder.View(), name)) return;
        // A link may lead to a directory.
        if (directoriesOnly && kind != EntryKind::Directory && KindOf(found[found.Size()]) != PathKind::Directory)
            found.RemovePosition(found.Size());
    }
}

// Lengthens the paths by one component, or selects with it.
void Extend(ZELListValZELString& paths, std::string_view component, bool isLast) {
    const bool isPattern = component.find('*') != std::string_view::npos;
    ZELListValZELString extended;
    for (const ZELString& path : paths) {
        if (isPattern)
            SelectIn(path, component, !isLast, extended);
        else
            AppendPath(extended, path.View(), component);
    }
    paths = std::move(extended);
}

void Select(std::string_view pattern, ZELListValZELString& paths) {
    if (pattern.empty()) return;
    char room[3];
    bool lastIsPattern = false;
    AppendText(paths, TakePrefix(pattern, room));
    for (std::string_view component; !(component = TakeComponent(pattern)).empty();) {
        Extend(paths, component, pattern.empty());
        lastIsPattern = component.find('*') != std::string_view::npos;
    }
    if (lastIsPattern) return;
    for (int i = paths.Size(); i >= 1; --i)
        if (KindOf(paths[i]) == PathKind::Missing) paths.RemovePosition(i);
}

}  // namespace

void ReadDirectory(const char* pattern, ZELListValZELString& names, unsigned char sorted) noexcept {
    ZELListValZELString paths;
    Select(pattern != nullptr ? pattern : "", paths);
    if (sorted != 0) paths.QuickSort(CompareTAStrings);
    if (names.Size() == 0)
        names = std::move(paths);
    else
        names.Append(paths);
}

void ReadDirectory(ZELString pattern, ZELListValZELString& names, unsigned char sorted) noexcept {
    if (!pattern.IsIncomplete()) ReadDirectory(pattern.CastToCharPtr(), names, sorted);
}

void ReadDirectory(const char* pattern, ZELListValTAFileName& names) noexcept {
    ZELListValZELString paths;
    ReadDirectory(pattern, paths, 0);
    for (const ZELString& path : paths) names.Append(TAFileName(path));
}

void ReadDirectory(ZELString pattern, ZELListValTAFileName& names) noexcept {
    if (!pattern.IsIncomplete()) ReadDirectory(pattern.CastToCharPtr(), names);
}
