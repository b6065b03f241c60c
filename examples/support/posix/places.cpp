#include "support/places.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "TAFileName.h"

namespace {

Place Describe(bool wasFound, const struct stat& status) {
    if (!wasFound) return {errno == ENOENT || errno == ENOTDIR ? Place::Kind::Nothing : Place::Kind::Other, 0};
    if (S_ISREG(status.st_mode)) return {Place::Kind::File, status.st_size};
    if (S_ISDIR(status.st_mode)) return {Place::Kind::Directory, 0};
    return {S_ISLNK(status.st_mode) ? Place::Kind::Link : Place::Kind::Other, 0};
}

// Without memory for the path nobody can tell what stands there.
Place Look(int (*ask)(const char*, struct stat*), const ZELString& path) {
    struct stat status = {};
    const ZELString native = TAFileName(path).GetNativeName();
    if (native.IsIncomplete()) return {Place::Kind::Other, 0};
    const bool wasFound = ask(native, &status) == 0;
    return Describe(wasFound, status);
}

}  // namespace

Place LookAt(const ZELString& path) {
    return Look(lstat, path);
}

Place LookBehind(const ZELString& path) {
    return Look(stat, path);
}

bool MoveInto(const ZELString& from, const ZELString& to) {
    return std::rename(TAFileName(from).GetNativeName(), TAFileName(to).GetNativeName()) == 0;
}
