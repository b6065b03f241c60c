// A path value becomes the path of a system with slashes: one pass, in place if wanted. The dangerous case is a name
// such as "a:b", which is no drive: only a separator or the end after the colon makes one.

#include "base/slash_path.h"

#include <cstring>

#include "base/ascii.h"

using namespace zel;

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool BeginsWithDrive(const char* path) {
    return IsAsciiLetter(path[0]) && path[1] == ':' && (path[2] == '\0' || IsSeparator(path[2]));
}

}  // namespace

bool zel::NeedsSlashPath(const char* path) noexcept {
    return BeginsWithDrive(path) || std::strchr(path, '\\') != nullptr;
}

void zel::WriteSlashPath(const char* path, char* result) noexcept {
    if (BeginsWithDrive(path)) {
        path += 2;
        *result++ = '/';
        if (*path != '\0') ++path;
    }
    for (; *path != '\0'; ++path) *result++ = *path == '\\' ? '/' : *path;
    *result = '\0';
}
