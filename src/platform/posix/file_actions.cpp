// Single files and directories by the system's own calls.

#include "platform/file_actions.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "platform/native_path.h"
#include "platform/posix/descriptor.h"

using namespace zel;

PathKind zel::KindOf(const char* path) noexcept {
    const NativePath native(path);
    struct stat status;
    if (native.Text() == nullptr || stat(native.Text(), &status) != 0) return PathKind::Missing;
    return S_ISDIR(status.st_mode) ? PathKind::Directory : PathKind::File;
}

bool zel::RemoveFile(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && unlink(native.Text()) == 0;
}

bool zel::RemoveFileUnicode(const char* path) noexcept {
    return RemoveFile(path);
}

bool zel::MakeDirectory(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && mkdir(native.Text(), 0777) == 0;
}

bool zel::MakeTemporaryFile(const char* prefix, char (&path)[TemporaryPathSize]) noexcept {
    const char* const configured = std::getenv("TMPDIR");
    const char* const directory = configured != nullptr && *configured != '\0' ? configured : "/tmp";
    const int length = std::snprintf(path, sizeof path, "%s/%sXXXXXX", directory, prefix);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path) return false;
    // Chooses a random name and creates exclusively with mode 0600, again and again until nobody had it.
    return Descriptor(mkostemp(path, O_CLOEXEC)).IsOpen();
}
