// A copy has five steps: look at the source, find the file that the target's name leads to, compare the two, let the
// system copy into a temporary file beside the target, give that the target's name.
//
// The dangerous cases are a target that is the source under another name (nothing may be truncated before the two are
// compared), and a target that is a device: both are settled by the file's identity before anything is written.
// The system's copy keeps attributes, so the temporary file may be read-only when it has to go.

#include "platform/file_copy.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

#include "platform/windows/file_look.h"

using namespace zel;

namespace {

// Whether it is a file with contents; `about` is filled then.
bool IsRegular(const Handle& file, BY_HANDLE_FILE_INFORMATION& about) {
    return GetFileType(file.Get()) == FILE_TYPE_DISK && GetFileInformationByHandle(file.Get(), &about) &&
           (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsSameFile(const BY_HANDLE_FILE_INFORMATION& left, const BY_HANDLE_FILE_INFORMATION& right) {
    return left.dwVolumeSerialNumber == right.dwVolumeSerialNumber && left.nFileIndexHigh == right.nFileIndexHigh &&
           left.nFileIndexLow == right.nFileIndexLow;
}

// Replaces the name of a link by the name of the file it leads to.
bool FollowLink(const Handle& file, char (&path)[MAX_PATH]) {
    if (!HasAttributes(path, FILE_ATTRIBUTE_REPARSE_POINT)) return true;
    char target[MAX_PATH + 4];
    const DWORD length = GetFinalPathNameByHandleA(file.Get(), target, sizeof target, FILE_NAME_NORMALIZED);
    if (length == 0 || length >= sizeof target) return false;
    const bool prefixed = std::strncmp(target, "\\\\?\\", 4) == 0 && std::strncmp(target + 4, "UNC\\", 4) != 0;
    std::strcpy(path, target + (prefixed ? 4 : 0));
    return true;
}

// Looks at the target and replaces its name if it is a link. CopyStatus::Done: the way is free, or `sameFile` is set.
CopyStatus CheckTarget(char (&path)[MAX_PATH], const BY_HANDLE_FILE_INFORMATION& source, bool replaceExisting,
                       bool& sameFile) {
    const Handle target = OpenToLook(path, 0);
    if (!target.IsOpen()) {
        // A link that leads nowhere exists, while its file does not.
        const bool missing = GetLastError() == ERROR_FILE_NOT_FOUND;
        return missing && GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES ? CopyStatus::Done
                                                                              : CopyStatus::TargetUnwritable;
    }
    BY_HANDLE_FILE_INFORMATION about;
    const bool regular = IsRegular(target, about);
    sameFile = regular && IsSameFile(source, about);
    if (sameFile) return CopyStatus::Done;
    if (!replaceExisting) return CopyStatus::TargetExists;
    if (!regular || (about.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) return CopyStatus::TargetUnwritable;
    return FollowLink(target, path) ? CopyStatus::Done : CopyStatus::TargetUnwritable;
}

// Writes the path of a temporary file beside `target`.
bool MakeTemporaryPath(const char* target, char (&path)[MAX_PATH]) {
    std::size_t folder = std::strlen(target);
    while (folder > 0 && std::strchr("\\/:", target[folder - 1]) == nullptr) --folder;
    char name[TemporaryNameSize];
    MakeTemporaryName(name);
    const int length = std::snprintf(path, sizeof path, "%.*s%s", static_cast<int>(folder), target, name);
    return length > 0 && length < MAX_PATH;
}

void RemoveTemporary(const char* path) {
    SetFileAttributesA(path, FILE_ATTRIBUTE_NORMAL);
    DeleteFileA(path);
}

// Fills a new file beside `target`; its path is written.
CopyStatus CopyBeside(const char* source, const char* target, char (&temporary)[MAX_PATH]) {
    constexpr int MostAttempts = 1000;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        if (!MakeTemporaryPath(target, temporary)) return CopyStatus::TargetUnwritable;
        if (CopyFileA(source, temporary, TRUE)) return CopyStatus::Done;
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) continue;
        // The system does not say which side failed. Nothing of that name was there before, so what is there is ours.
        RemoveTemporary(temporary);
        return OpenToLook(source, GENERIC_READ).IsOpen() ? CopyStatus::TargetUnwritable : CopyStatus::SourceUnreadable;
    }
    return CopyStatus::TargetUnwritable;
}

}  // namespace

CopyStatus zel::CopyNativeFile(const char* from, const char* to, bool replaceExisting) noexcept {
    BY_HANDLE_FILE_INFORMATION source;
    {
        const Handle file = OpenToLook(from, 0);
        if (!file.IsOpen()) return CopyStatus::SourceUnreadable;
        if (!IsRegular(file, source)) return CopyStatus::SourceNotRegular;
    }
    char target[MAX_PATH];
    if (std::strlen(to) >= sizeof target) return CopyStatus::TargetUnwritable;
    std::strcpy(target, to);
    bool sameFile = false;
    const CopyStatus checked = CheckTarget(target, source, replaceExisting, sameFile);
    if (checked != CopyStatus::Done || sameFile) return checked;

    char temporary[MAX_PATH];
    const CopyStatus copied = CopyBeside(from, target, temporary);
    if (copied != CopyStatus::Done) return copied;
    if (MoveFileExA(temporary, target, replaceExisting ? MOVEFILE_REPLACE_EXISTING : 0)) return CopyStatus::Done;
    const DWORD error = GetLastError();
    RemoveTemporary(temporary);
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS ? CopyStatus::TargetExists
                                                                       : CopyStatus::TargetUnwritable;
}
