// A cursor is the path of the directory it stands in, and one handle for each directory on the way. A handle that does
// not share deletion keeps its directory from being renamed, removed or exchanged with a link, so the path leads to the
// same place for as long as the handle is open; it is taken before the directory is looked at.
// Whatever is a reparse point counts as a link: it is removed itself and never entered.

#include "platform/tree_cursor.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/native_path.h"
#include "platform/windows/file_look.h"
#include "platform/windows/handle.h"

using namespace zel;

namespace {

bool IsDots(const char* name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool IsGone(const char* path) noexcept {
    return GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES &&
           (GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND);
}

// Attributes stand against removal, but those of a link are left alone.
template <class Remove>
bool RemoveInSpite(const char* path, Remove remove) noexcept {
    if (remove(path)) return true;
    const bool isLink = HasAttributes(path, FILE_ATTRIBUTE_REPARSE_POINT);
    if (!isLink && SetFileAttributesA(path, FILE_ATTRIBUTE_NORMAL) && remove(path)) return true;
    return IsGone(path);
}

}  // namespace

struct TreeCursor::State {
    struct Level {
        Handle handle;
        std::size_t length = 0;  // of the path of the directory
    };
    // Paths end before MAX_PATH, and every level takes a separator and a character.
    static constexpr std::size_t MostLevels = MAX_PATH / 2;

    explicit State(bool removes) noexcept : removing(removes) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void CloseLevel() noexcept { levels[--depth] = Level(); }
    // Writes the path of an entry behind the current directory; false when it gets too long.
    bool Append(const char* name) noexcept {
        const std::size_t length = levels[depth - 1].length;
        const bool separated = path[length - 1] == '\\' || path[length - 1] == '/';
        const int added = std::snprintf(path + length, sizeof path - length, separated ? "%s" : "\\%s", name);
        if (added > 0 && length + static_cast<std::size_t>(added) < sizeof path) return true;
        path[length] = '\0';
        return false;
    }
    void Cut() noexcept { path[levels[depth - 1].length] = '\0'; }
    bool Push(bool followLink) noexcept;

    const bool removing;
    DirectoryListing listing;
    std::size_t depth = 0;
    Level levels[MostLevels];
    char path[MAX_PATH];
};

// Makes the directory of `path` the current level.
bool TreeCursor::State::Push(bool followLink) noexcept {
    if (depth == MostLevels) return false;
    const DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | (removing ? 0 : FILE_SHARE_DELETE);
    const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (followLink ? 0 : FILE_FLAG_OPEN_REPARSE_POINT);
    Handle handle(CreateFileA(path, FILE_LIST_DIRECTORY, sharing, nullptr, OPEN_EXISTING, flags, nullptr));
    if (!handle.IsOpen() || (!followLink && HasAttributes(path, FILE_ATTRIBUTE_REPARSE_POINT))) return false;
    if (!listing.Open(path)) return false;
    levels[depth++] = {std::move(handle), std::strlen(path)};
    return true;
}

bool TreeCursor::Open(const char* top) noexcept {
    if (top == nullptr || *top == '\0' || _state != nullptr) return false;
    const NativePath native(top);
    const std::size_t length = std::strlen(native.Text());
    if (length >= sizeof _state->path) return false;
    const bool removing = _purpose == Purpose::Remove;
    _state = ZELNew<State>(removing);
    if (_state == nullptr) {
        ReportAllocFailure("TreeCursor", sizeof(State));
        return false;
    }
    std::memcpy(_state->path, native.Text(), length + 1);
    return _state->Push(!removing);
}

void TreeCursor::Close() noexcept {
    ZELDelete(std::exchange(_state, nullptr));
}

ListingStep TreeCursor::Next(const char** name, EntryKind* kind) noexcept {
    if (_state == nullptr) return ListingStep::Error;
    ListingStep step;
    do step = _state->listing.Next(name, kind);
    while (step == ListingStep::Entry && IsDots(*name));
    return step;
}

bool TreeCursor::Enter(const char* name) noexcept {
    if (_state == nullptr || _state->depth == 0 || !_state->Append(name)) return false;
    if (_state->Push(false)) return true;
    _state->Cut();
    return false;
}

bool TreeCursor::Leave() noexcept {
    if (_state == nullptr || _state->depth < 2) return false;
    _state->listing.Close();
    _state->CloseLevel();
    _state->Cut();
    return true;
}

bool TreeCursor::RemoveFile(const char* name) noexcept {
    if (!_state->Append(name)) return false;
    const bool isDirectoryLink = HasAttributes(_state->path, FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY);
    const bool removed = RemoveInSpite(_state->path, isDirectoryLink ? RemoveDirectoryA : DeleteFileA);
    _state->Cut();
    return removed;
}

bool TreeCursor::RemoveFolder(const char* name) noexcept {
    if (!_state->Append(name)) return false;
    const bool removed = RemoveInSpite(_state->path, RemoveDirectoryA);
    _state->Cut();
    return removed;
}

bool TreeCursor::CloseAndRemoveTop() noexcept {
    if (_state == nullptr || _state->depth == 0) return false;
    _state->listing.Close();
    const std::size_t length = _state->levels[0].length;
    while (_state->depth > 0) _state->CloseLevel();
    _state->path[length] = '\0';
    const bool removed = RemoveInSpite(_state->path, RemoveDirectoryA);
    Close();
    return removed;
}
