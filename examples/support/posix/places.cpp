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

}  // namespace

Place LookAt(const ZELString& path) {
    struct stat status = {};
    const bool wasFound = lstat(TAFileName(path).GetNativeName(), &status) == 0;
    return Describe(wasFound, status);
}

Place LookBehind(const ZELString& path) {
    struct stat status = {};
    const bool wasFound = stat(TAFileName(path).GetNativeName(), &status) == 0;
    return Describe(wasFound, status);
}

bool MoveInto(const ZELString& from, const ZELString& to) {
    return std::rename(TAFileName(from).GetNativeName(), TAFileName(to).GetNativeName()) == 0;
}
