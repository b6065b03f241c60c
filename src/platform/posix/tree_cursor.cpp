// A cursor is a stack of levels, one for each directory on the way from the top. The deepest levels are open; those
// further up are closed while the walk is deep, and opened again through ".." of the level below.
//
// The dangerous case is a directory that others move while the cursor is in it: its ".." then leads out of the tree.
// Device and inode of every level are kept for that, and ".." must have them. A name that turns into a link meanwhile
// is refused by the system (O_NOFOLLOW). Listing reads the system's records into one block for all levels: opening a
// directory costs no allocation.

#include "platform/tree_cursor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/failure_report.h"
#include "base/growing_array.h"
#include "platform/native_path.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/entry_kind.h"

using namespace zel;

namespace {

constexpr std::size_t MostOpen = 14;
constexpr int OpenFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t OwnerRights = 0700;
constexpr mode_t FileRights = 0600;

struct Level {
    int descriptor;  // -1 while closed
    dev_t device;
    ino_t inode;
};

bool IsDots(const char* name) noexcept {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

}  // namespace

struct TreeCursor::State {
    State(const char* path, bool removes) noexcept : top(path), removing(removes) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        for (std::size_t i = firstOpen; i < levels.Size(); ++i) close(levels[i].descriptor);
    }

    int Current() const noexcept { return levels[levels.Size() - 1].descriptor; }
    bool MakeRoom() noexcept;
    bool CloseOldest() noexcept;
    Descriptor OpenBelow(int folder, const char* name, int flags) noexcept;
    bool Push(Descriptor directory) noexcept;
    bool ReopenParent() noexcept;

    const NativePath top;
    const bool removing;
    GrowingArray<Level> levels;  // from the top to the current directory
    std::size_t firstOpen = 0;   // the levels before it are closed, all others open

    std::size_t filled = 0;  // bytes of `records`
    std::size_t at = 0;
    alignas(dirent64) char records[1 << 15];
};

bool TreeCursor::State::MakeRoom() noexcept {
    if (levels.Size() < levels.Capacity()) return true;
    const std::size_t wanted = std::max(std::size_t{64}, levels.Capacity() * 2);
    if (levels.Reserve(wanted)) return true;
    ReportAllocFailure("TreeCursor", wanted * sizeof(Level));
    return false;
}

// Never the current level.
bool TreeCursor::State::CloseOldest() noexcept {
    if (firstOpen + 1 >= levels.Size()) return false;
    close(std::exchange(levels[firstOpen].descriptor, -1));
    ++firstOpen;
    return true;
}

Descriptor TreeCursor::State::OpenBelow(int folder, const char* name, int flags) noexcept {
    bool permitted = !removing;
    for (;;) {
        Descriptor directory(RetryInterrupted([&] { return openat(folder, name, flags); }));
        if (directory.IsOpen()) return directory;
        if ((errno == EMFILE || errno == ENFILE) && CloseOldest()) continue;
        if (errno != EACCES || permitted) return directory;
        permitted = true;
        if (fchmodat(folder, name, OwnerRights, AT_SYMLINK_NOFOLLOW) != 0) return directory;
    }
}

// Makes an open directory the current level.
bool TreeCursor::State::Push(Descriptor directory) noexcept {
    struct stat status;
    if (!directory.IsOpen() || fstat(directory.Number(), &status) != 0 || !MakeRoom()) return false;
    // Another's directory refuses; removing what is in it then tells.
    if (removing && (status.st_mode & OwnerRights) != OwnerRights) (void)fchmod(directory.Number(), OwnerRights);
    levels.Append({directory.Release(), status.st_dev, status.st_ino});
    if (levels.Size() - firstOpen > MostOpen) CloseOldest();
    filled = at = 0;
    return true;
}

bool TreeCursor::State::ReopenParent() noexcept {
    Level& parent = levels[levels.Size() - 2];
    const int flags = O_PATH | O_DIRECTORY | O_CLOEXEC;  // needs no right to list, which was done before
    Descriptor directory(RetryInterrupted([&] { return openat(Current(), "..", flags); }));
    struct stat status;
    if (!directory.IsOpen() || fstat(directory.Number(), &status) != 0) return false;
    if (status.st_dev != parent.device || status.st_ino != parent.inode) return false;
    parent.descriptor = directory.Release();
    firstOpen = levels.Size() - 2;
    return true;
}

bool TreeCursor::Open(const char* top) noexcept {
    if (top == nullptr || *top == '\0' || _state != nullptr) return false;
    const bool removing = _purpose == Purpose::Remove;
    _state = ZELNew<State>(top, removing);
    if (_state == nullptr) ReportAllocFailure("TreeCursor", sizeof(State));
    if (_state == nullptr || _state->top.Text() == nullptr) return false;
    const int flags = OpenFlags | (removing ? O_NOFOLLOW : 0);
    return _state->Push(_state->OpenBelow(AT_FDCWD, _state->top.Text(), flags));
}

void TreeCursor::Close() noexcept {
    ZELDelete(std::exchange(_state, nullptr));
}

ListingStep TreeCursor::Next(const char** name, EntryKind* kind) noexcept {
    if (_state == nullptr || _state->levels.IsEmpty()) return ListingStep::Error;
    State& state = *_state;
    for (;;) {
        if (state.at == state.filled) {
            state.at = state.filled = 0;
            const auto list = [&] { return getdents64(state.Current(), state.records, sizeof state.records); };
            const ssize_t count = RetryInterrupted(list);
            if (count <= 0) return count == 0 ? ListingStep::End : ListingStep::Error;
            state.filled = static_cast<std::size_t>(count);
        }
        const auto* const entry = reinterpret_cast<const dirent64*>(state.records + state.at);
        state.at += entry->d_reclen;
        if (IsDots(entry->d_name)) continue;
        *name = entry->d_name;
        *kind = KindOfEntry(state.Current(), entry->d_name, entry->d_type);
        return ListingStep::Entry;
    }
}

bool TreeCursor::Enter(const char* name) noexcept {
    if (_state == nullptr || _state->levels.IsEmpty()) return false;
    return _state->Push(_state->OpenBelow(_state->Current(), name, OpenFlags | O_NOFOLLOW));
}

bool TreeCursor::Leave() noexcept {
    if (_state == nullptr || _state->levels.Size() < 2) return false;
    if (_state->firstOpen == _state->levels.Size() - 1 && !_state->ReopenParent()) return false;
    close(_state->Current());
    _state->levels.RemoveLast();
    return true;
}

bool TreeCursor::RemoveFile(const char* name) noexcept {
    const int folder = _state->Current();
    if (unlinkat(folder, name, 0) == 0 || errno == ENOENT) return true;
    struct stat status;
    if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode)) return false;
    return fchmodat(folder, name, FileRights, AT_SYMLINK_NOFOLLOW) == 0 && unlinkat(folder, name, 0) == 0;
}

bool TreeCursor::RemoveFolder(const char* name) noexcept {
    return unlinkat(_state->Current(), name, AT_REMOVEDIR) == 0 || errno == ENOENT;
}

bool TreeCursor::CloseAndRemoveTop() noexcept {
    const bool removed = _state != nullptr && _state->top.Text() != nullptr && rmdir(_state->top.Text()) == 0;
    Close();
    return removed;
}
