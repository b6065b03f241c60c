// The stack of levels and their waiting names grow and shrink together. A level's names lie at the end of all names
// while nothing below it is entered, and its name in the level above stands just in front of that level's `next`.

#include "files/tree_walk.h"

#include <cstring>

#include "base/failure_report.h"

using namespace zel;

bool TreeWalk::PushLevel() noexcept {
    if (_levels.Append({_names.Size(), _names.Size(), _path.Size()})) return true;
    ReportAllocFailure("TreeWalk", (_levels.Size() + 1) * sizeof(Level));
    return false;
}

std::string_view TreeWalk::PathOf(const char* name) noexcept {
    _path.Truncate(Top().pathLength);
    const bool separated = _path.View().ends_with('\\') || _path.View().ends_with('/');
    return (separated || _path.Append("\\")) && _path.Append(name) ? _path.View() : std::string_view();
}

// Lists the directory that was entered. What cannot be listed to its end counts as far as it came.
bool TreeWalk::List() noexcept {
    const char* name;
    EntryKind kind;
    while (_cursor.Next(&name, &kind) == ListingStep::Entry) {
        const bool kept =
            kind == EntryKind::Directory ? _names.Append({name, std::strlen(name) + 1}) : Visit(name, kind);
        if (!kept) return false;
    }
    return true;
}

// Enters the next waiting directory of the current one.
bool TreeWalk::Descend() noexcept {
    const std::size_t at = Top().next;
    const char* const name = _names.Text() + at;
    Top().next += std::strlen(name) + 1;
    if (!_cursor.Enter(name)) {
        if (!Finish(name)) Top().next = _names.Size();
        return true;
    }
    if (PathOf(name).empty() || !PushLevel()) return false;
    return List();
}

// Leaves the current directory for the one above.
bool TreeWalk::Ascend() noexcept {
    const std::size_t names = Top().names;
    _names.Truncate(names);
    _levels.RemoveLast();
    if (_levels.IsEmpty()) return true;
    if (!_cursor.Leave()) return false;
    std::size_t begin = Top().next - 1;
    while (begin > Top().names && _names.Text()[begin - 1] != '\0') --begin;
    if (!Finish(_names.Text() + begin)) Top().next = _names.Size();
    return true;
}

bool TreeWalk::Run(const char* top) noexcept {
    if (!_cursor.Open(top) || !_path.Append(top) || !PushLevel() || !List()) return false;
    while (!_levels.IsEmpty()) {
        const bool moved = Top().next < _names.Size() ? Descend() : Ascend();
        if (!moved) return false;
    }
    return true;
}
