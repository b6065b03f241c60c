// Directories come before what is in them, and are walked one after the other, so a tree may be as deep as it likes.
// Entries are taken for what the listing says that they are, and looked at again when they are sent.

#include "parcel.h"

#include <cstring>
#include <string_view>

#include "TADiagnostics.h"
#include "TAFileName.h"
#include "ZELDirectory.h"
#include "names.h"
#include "support/places.h"

void Parcel::Miss(const ZELString& path, const ZELString& reason) {
    ++_missed;
    TraceErr("left out " + Printable(path.View()) + ": " + reason);
}

void Parcel::Add(const ZELString& path) {
    const std::string_view text = path.View(), last = text.substr(text.find_last_of("/\\") + 1);
    const TAFileName file = TAFileName(path).basename(1);  // "dir" also of "dir/"
    const bool hasName = last != "." && last != ".." && !file.IsNull() && !file.View().ends_with(':');
    const ZELString name(hasName ? file.View() : "");
    if (const ZELString problem = NameProblem(name.View()); hasName && IsProblem(problem))
        return Miss(path, "its name " + problem);
    switch (LookBehind(path).kind) {
        case Place::Kind::File:
            _items.push_back({path, name, false, true});
            break;
        case Place::Kind::Directory: {
            std::size_t next = _items.size();
            if (hasName)
                _items.push_back({path, name, true, true});
            else
                AddDirectory(path, "");
            for (; next < _items.size(); ++next)
                if (_items[next].isDirectory)
                    AddDirectory(ZELString(_items[next].path), ZELString(_items[next].name) + "/");
            break;
        }
        case Place::Kind::Nothing:
            return Miss(path, "there is no such file or directory");
        default:
            return Miss(path, "it is neither a file nor a directory");
    }
}

// Appends what is in it; `name` is empty or ends with a slash.
void Parcel::AddDirectory(const ZELString& path, const ZELString& name) {
    ZELDirectoryHandle directory;
    if (ZELOpenDirectory(path, &directory) != 0) return Miss(path, "it cannot be listed");
    ZELDirectoryEntry entry;
    for (int end = 0; end == 0;) {
        const bool isGood = ZELReadDirectory(&directory, &entry, &end) == 0;
        if (!isGood) Miss(path, end != 0 ? "it cannot be listed to its end" : "an entry has too long a name");
        if (!isGood || end != 0 || std::strcmp(entry.name, ".") == 0 || std::strcmp(entry.name, "..") == 0) continue;
        const ZELString entryPath = Below(path, entry.name);
        const ZELString problem = NameProblem((name + entry.name).View());
        if (IsProblem(problem))
            Miss(entryPath, "its name " + problem);
        else if (entry.kind == ZELEntryFile || entry.kind == ZELEntryDirectory)
            _items.push_back({entryPath, name + entry.name, entry.kind == ZELEntryDirectory, false});
        else
            Miss(entryPath, entry.kind == ZELEntryLink ? "it is a link" : "it is neither a file nor a directory");
    }
}
