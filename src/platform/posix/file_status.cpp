// Facts about files by the system's own calls.

#include "platform/file_status.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/native_path.h"

using namespace zel;

bool zel::ReadFileStatus(const char* path, FileStatus& status) noexcept {
    const NativePath native(path);
    struct stat found;
    if (native.Text() == nullptr || stat(native.Text(), &found) != 0) return false;
    status.size = S_ISDIR(found.st_mode) ? 0 : found.st_size;
    status.modified = found.st_mtime;
    status.isWritable = faccessat(AT_FDCWD, native.Text(), W_OK, AT_EACCESS) == 0;
    return true;
}
