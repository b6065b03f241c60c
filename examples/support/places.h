// What stands at a path, links not followed, and putting a file there.
#ifndef EXAMPLES_SUPPORT_PLACES_H
#define EXAMPLES_SUPPORT_PLACES_H

#include "ZELString.h"

struct Place {
    // Link: a symbolic link, or whatever else leads to another place. Other: a device, a pipe, or what cannot be asked.
    enum class Kind { Nothing, File, Directory, Link, Other };
    Kind kind;
    long long size;  // of a file, else 0
};

Place LookAt(const ZELString& path);
// The same, but tells what a link leads to; it leads to Nothing when that is missing.
Place LookBehind(const ZELString& path);

// The path of what stands in a directory.
inline ZELString Below(const ZELString& directory, const ZELString& name) {
    const bool isRoot = directory.View().ends_with('/') || directory.View().ends_with('\\');
    return isRoot ? directory + name : directory + "/" + name;
}

// Renames the file `from` to `to` in the same directory, and replaces a file, or a link, that has the name. False when
// the system refuses; both are as they were then.
bool MoveInto(const ZELString& from, const ZELString& to);

#endif
