// The system finds the first entry while it opens a search; it waits in the state until the first step.

#include "platform/directories.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/native_path.h"
#include "platform/windows/file_look.h"

using namespace zel;

namespace {

struct Search {
    HANDLE handle;  // INVALID_HANDLE_VALUE: a directory without any entry, as the root of an empty drive
    WIN32_FIND_DATAA found;
    bool waiting;  // `found` has not been delivered
};

EntryKind KindOfEntry(const WIN32_FIND_DATAA& found) {
    const DWORD attributes = found.dwFileAttributes;
    const bool isLink =
        (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
        (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
    if (isLink) return EntryKind::Link;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return EntryKind::Directory;
    return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? EntryKind::Other : EntryKind::File;
}

// The pattern for everything in `path`; false for what is no directory, so that patterns in `path` itself find nothing.
bool MakePattern(const char* path, char (&pattern)[MAX_PATH + 2]) {
    if (!HasAttributes(path, FILE_ATTRIBUTE_DIRECTORY)) return false;
    const std::size_t length = std::strlen(path);
    if (length == 0 || length >= MAX_PATH) return false;
    const bool separated = path[length - 1] == '\\' || path[length - 1] == '/';
    std::snprintf(pattern, sizeof pattern, separated ? "%s*" : "%s\\*", path);
    return true;
}

}  // namespace

bool DirectoryListing::Open(const char* path) noexcept {
    Close();
    const NativePath native(path);
    char pattern[MAX_PATH + 2];
    if (native.Text() == nullptr || !MakePattern(native.Text(), pattern)) return false;
    Search* const search = ZELNew<Search>();
    if (search == nullptr) {
        ReportAllocFailure("DirectoryListing", sizeof(Search));
        return false;
    }
    search->handle = FindFirstFileA(pattern, &search->found);
    search->waiting = search->handle != INVALID_HANDLE_VALUE;
    if (!search->waiting && GetLastError() != ERROR_FILE_NOT_FOUND) {
        ZELDelete(search);
        return false;
    }
    _state = search;
    return true;
}

void DirectoryListing::Close() noexcept {
    Search* const search = static_cast<Search*>(_state);
    if (search != nullptr && search->handle != INVALID_HANDLE_VALUE) FindClose(search->handle);
    ZELDelete(search);
    _state = nullptr;
}

ListingStep DirectoryListing::Next(const char** name, EntryKind* kind) noexcept {
    if (_state == nullptr) return ListingStep::Error;
    Search* const search = static_cast<Search*>(_state);
    if (search->handle == INVALID_HANDLE_VALUE) return ListingStep::End;
    if (!search->waiting && !FindNextFileA(search->handle, &search->found))
        return GetLastError() == ERROR_NO_MORE_FILES ? ListingStep::End : ListingStep::Error;
    search->waiting = false;
    *name = search->found.cFileName;
    *kind = KindOfEntry(search->found);
    return ListingStep::Entry;
}
