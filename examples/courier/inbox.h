// The directory that a serving courier puts files into, and nothing outside of it.
#ifndef EXAMPLES_COURIER_INBOX_H
#define EXAMPLES_COURIER_INBOX_H

#include <string_view>

#include "TAFileName.h"
#include "YAVFStream.h"
#include "ZELString.h"

// A failure is told by the text that is returned; it is empty after success.
class Inbox {
public:
    explicit Inbox(const ZELString& directory) : _directory(directory) {}

    // Makes the directory if it is not there.
    ZELString Open() const;
    // Finds the place of a file, and makes the directories that it stands in.
    ZELString FindPlace(std::string_view name, ZELString& path) const;
    ZELString MakeDirectory(std::string_view name) const;

private:
    ZELString Enter(std::string_view name) const;
    ZELString EnterAll(std::string_view name) const;

    ZELString _directory;
};

// A file on its way in: written beside its place, and moved there when it is whole. Without that it leaves nothing.
class Arrival {
public:
    Arrival() = default;
    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;
    ~Arrival();

    ZELString Begin(const ZELString& path);
    ZELString Add(const char* bytes, int size);
    ZELString Settle();

private:
    ZELString _path;
    TAFileName _temporary;  // null while there is no such file; a name, so that deleting it needs no memory
    YAVOFStream _stream;
};

#endif
