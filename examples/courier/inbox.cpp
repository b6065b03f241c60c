// The peer chooses names, and nothing else: it can make no links. So it is enough to look at each directory on the way
// before it is entered, from the inbox on. Who can change the inbox meanwhile needs no courier to write elsewhere.

#include "inbox.h"

#include <algorithm>
#include <cstring>

#include "TAFileName.h"
#include "TAUUIDGenerator.h"
#include "names.h"
#include "support/places.h"

ZELString Inbox::Open() const {
    if (TAFileName(_directory).CreateRecursiveDirectory() != 0) return "cannot make the directory " + _directory;
    return LookBehind(_directory).kind == Place::Kind::Directory ? "" : _directory + " is no directory";
}

// Makes sure that there is a directory of that name, and no link to one.
ZELString Inbox::Enter(std::string_view name) const {
    const ZELString path = Below(_directory, ZELString(name));
    switch (LookAt(path).kind) {
        case Place::Kind::Directory:
            return "";
        case Place::Kind::Nothing:
            return TAFileName(path).CreateDirectoryW() == 0 ? "" : ZELString(name) + " cannot be made";
        case Place::Kind::Link:
            return ZELString(name) + " is a link there";
        default:
            return ZELString(name) + " is no directory there";
    }
}

// The directory and all that it stands in.
ZELString Inbox::EnterAll(std::string_view name) const {
    for (std::size_t end = 0; end < name.size(); ++end) {
        end = std::min(name.find('/', end), name.size());
        if (ZELString problem = Enter(name.substr(0, end)); IsProblem(problem)) return problem;
    }
    return "";
}

ZELString Inbox::FindPlace(std::string_view name, ZELString& path) const {
    if (const ZELString problem = NameProblem(name); IsProblem(problem)) return "the name " + problem;
    const std::size_t slash = name.rfind('/');
    if (slash != name.npos)
        if (ZELString problem = EnterAll(name.substr(0, slash)); IsProblem(problem)) return problem;
    path = Below(_directory, ZELString(name));
    const Place::Kind kind = LookAt(path).kind;
    if (kind == Place::Kind::Nothing || kind == Place::Kind::File) return "";
    return ZELString(name) + (kind == Place::Kind::Link ? " is a link there" : " is something else than a file there");
}

ZELString Inbox::MakeDirectory(std::string_view name) const {
    const ZELString problem = NameProblem(name);
    return IsProblem(problem) ? "the name " + problem : EnterAll(name);
}

Arrival::~Arrival() {
    if (_temporary.IsNull() != 0) return;
    _stream.close();
    _temporary.Delete();
}

ZELString Arrival::Begin(const ZELString& path) {
    TAUUIDGenerator names;
    const std::string_view text = path.View();
    _path = path;
    const ZELString temporary = ZELString(text.substr(0, text.rfind('/') + 1)) + ".courier-" + names.Get();
    // An identifier is new, but somebody who foresaw it could have put a link there.
    if (LookAt(temporary).kind != Place::Kind::Nothing) return "it cannot be written: its temporary name is taken";
    _temporary = temporary;  // from now on it may be there, also when opening fails
    if (!_temporary.IsIncomplete() && _stream.open(temporary, "wb") == 0) return "";
    return ZELString("it cannot be written: ") + std::strerror(_stream.GetErrno());
}

ZELString Arrival::Add(const char* bytes, int size) {
    if (_stream.write(bytes, static_cast<std::size_t>(size)) == 0) return "";
    return ZELString("it cannot be written: ") + std::strerror(_stream.GetErrno());
}

ZELString Arrival::Settle() {
    if (_stream.close() != 0) return "it cannot be written to its end";
    if (!MoveInto(ZELString(_temporary), _path)) return "it cannot be put in its place";
    _temporary = TAFileName();
    return "";
}
