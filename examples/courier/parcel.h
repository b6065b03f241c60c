// What shall be sent: files and directories, each with the name that it travels under.
#ifndef EXAMPLES_COURIER_PARCEL_H
#define EXAMPLES_COURIER_PARCEL_H

#include <vector>

#include "ZELString.h"

struct Item {
    ZELString path;
    ZELString name;  // with slashes
    bool isDirectory;
    bool mayBeLink;  // somebody named it
};

class Parcel {
public:
    // A file, or a directory with all that is in it, under the last part of its name. Of a directory whose path ends
    // with ".", what is in it goes by itself. A link is followed here, and nowhere in a directory.
    void Add(const ZELString& path);

    const std::vector<Item>& Items() const { return _items; }
    // How much was left out; each was told.
    int Missed() const { return _missed; }

private:
    void AddDirectory(const ZELString& path, const ZELString& name);
    void Miss(const ZELString& path, const ZELString& reason);

    std::vector<Item> _items;
    int _missed = 0;
};

#endif
