#include "support/places.h"

#include <windows.h>

#include "TAFileName.h"

namespace {

Place Describe(const WIN32_FILE_ATTRIBUTE_DATA& status) {
    if ((status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {Place::Kind::Directory, 0};
    if ((status.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) != 0) return {Place::Kind::Other, 0};
    return {Place::Kind::File, static_cast<long long>(status.nFileSizeHigh) << 32 | status.nFileSizeLow};
}

Place Missing() {
    const DWORD error = GetLastError();
    const bool isMissing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return {isMissing ? Place::Kind::Nothing : Place::Kind::Other, 0};
}

}  // namespace

Place LookAt(const ZELString& path) {
    WIN32_FILE_ATTRIBUTE_DATA status = {};
    const TAFileName name(path);
    if (name.IsIncomplete()) return {Place::Kind::Other, 0};
    if (!GetFileAttributesExA(name, GetFileExInfoStandard, &status)) return Missing();
    if ((status.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return {Place::Kind::Link, 0};
    return Describe(status);
}

Place LookBehind(const ZELString& path) {
    const Place place = LookAt(path);
    if (place.kind != Place::Kind::Link) return place;
    const TAFileName name(path);
    if (name.IsIncomplete()) return {Place::Kind::Other, 0};
    const HANDLE file = CreateFileA(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Missing();
    BY_HANDLE_FILE_INFORMATION found = {};
    WIN32_FILE_ATTRIBUTE_DATA status = {};
    const bool isDisk = GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &found);
    CloseHandle(file);
    if (!isDisk) return {Place::Kind::Other, 0};
    status.dwFileAttributes = found.dwFileAttributes;
    status.nFileSizeHigh = found.nFileSizeHigh;
    status.nFileSizeLow = found.nFileSizeLow;
    return Describe(status);
}

bool MoveInto(const ZELString& from, const ZELString& to) {
    return MoveFileExA(TAFileName(from), TAFileName(to), MOVEFILE_REPLACE_EXISTING) != 0;
}
