// Listing and removing whole trees: two kinds of walk. See tree_walk.h, and platform/tree_cursor.h for why neither
// leaves its tree.

#include <string_view>

#include "TADiagnostics.h"
#include "TAFileUtilities.h"
#include "files/tree_walk.h"
#include "paths/path_value.h"
#include "text/string_list.h"

using namespace zel;

namespace {

class FileCollector final : public TreeWalk {
public:
    explicit FileCollector(ZELListValZELString& names) noexcept : TreeWalk(TreeCursor::Purpose::Read), _names(names) {}

private:
    bool Visit(const char* name, EntryKind kind) noexcept override {
        if (kind != EntryKind::File || !IsPathComponent(name)) return true;
        const std::string_view path = PathOf(name);
        return !path.empty() && AppendText(_names, path);
    }
    bool Finish(const char*) noexcept override { return true; }

    ZELListValZELString& _names;
};

class TreeRemover final : public TreeWalk {
public:
    TreeRemover() noexcept : TreeWalk(TreeCursor::Purpose::Remove) {}
    bool RemoveTop() noexcept { return Cursor().CloseAndRemoveTop(); }

private:
    bool Visit(const char* name, EntryKind) noexcept override {
        if (!Cursor().RemoveFile(name)) Tell("Unable to delete file ", name);
        return true;
    }
    bool Finish(const char* name) noexcept override {
        // What was a directory when it was listed may be a link or a file by now.
        if (Cursor().RemoveFolder(name) || Cursor().RemoveFile(name)) return true;
        Tell("Unable to delete directory ", name);
        return false;
    }
    void Tell(const char* what, const char* name) noexcept { Trace(what + ZELString(PathOf(name)), 0); }
};

std::string_view WithoutSeparatorsBehind(const char* path) noexcept {
    std::string_view text(path);
    while (text.ends_with('\\') || text.ends_with('/')) text.remove_suffix(1);
    return text;
}

}  // namespace

void ReadRecursiveDirectory(ZELString directory, ZELListValZELString& names) noexcept {
    directory.ReplaceSubString("/", "\\");
    if (directory.IsIncomplete()) return;
    FileCollector collector(names);
    collector.Run(directory);
}

int TACleanDirectory(const char* directory) noexcept {
    if (directory == nullptr) return 1;
    // A separator behind a link would lead through it. The root of a drive cannot be removed, so nothing in it is.
    const ZELString top(WithoutSeparatorsBehind(directory));
    if (top.Length() == 0 || IsDrive(top.View())) return 1;
    TreeRemover remover;
    const bool walked = remover.Run(top);
    return walked && remover.RemoveTop() ? 0 : 1;
}
