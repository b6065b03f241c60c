// Single files and directories by the system's calls for the ANSI code page.

#include "platform/file_actions.h"

#include <direct.h>
#include <windows.h>

#include "platform/native_path.h"

using namespace zel;

PathKind zel::KindOf(const char* path) noexcept {
    const NativePath native(path);
    const DWORD attributes = native.Text() != nullptr ? GetFileAttributesA(native.Text()) : INVALID_FILE_ATTRIBUTES;
    if (attributes == INVALID_FILE_ATTRIBUTES) return PathKind::Missing;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::Directory : PathKind::File;
}

bool zel::RemoveFile(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && DeleteFileA(native.Text());
}

bool zel::RemoveFileUnicode(const char* path) noexcept {
    wchar_t wide[MAX_PATH];
    return path != nullptr && MultiByteToWideChar(CP_UTF8, 0, path, -1, wide, MAX_PATH) > 0 && DeleteFileW(wide);
}

bool zel::MakeDirectory(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && _mkdir(native.Text()) == 0;
}

bool zel::MakeTemporaryFile(const char* prefix, char (&path)[TemporaryPathSize]) noexcept {
    static_assert(TemporaryPathSize >= MAX_PATH);
    char directory[MAX_PATH];
    const DWORD length = GetTempPathA(sizeof directory, directory);
    return length > 0 && length < sizeof directory && GetTempFileNameA(directory, prefix, 0, path) != 0;
}
