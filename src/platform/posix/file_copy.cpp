// A copy has five steps: look at the source, find the place that the target's name leads to, compare the two, fill a
// temporary file in that place, give it the target's name. The place is an open folder and a name in it, so that a
// folder that is renamed meanwhile misleads nobody.
//
// The dangerous cases are a target that is the source under another name (nothing may be truncated before the two are
// compared), and a target that is a device or pipe (a rename would replace it): both are settled by the file's identity
// before anything is written.
// Bytes go by copy_file_range as far as it gets, which on many file systems shares blocks instead of copying them; the
// plain loop then reads on to the end, and is all there is where the system cannot copy by itself, or sees no size.

#include "platform/file_copy.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>  // renameat2
#include <cstring>

#include "platform/posix/descriptor.h"

using namespace zel;

namespace {

struct Source {
    Descriptor file;
    struct stat status = {};
};

CopyStatus OpenSource(const char* path, Source& source) {
    // Asked first by name: opening a pipe or a device can have effects of its own.
    if (stat(path, &source.status) != 0) return CopyStatus::SourceUnreadable;
    if (!S_ISREG(source.status.st_mode)) return CopyStatus::SourceNotRegular;
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    source.file = Descriptor(RetryInterrupted([&] { return open(path, flags); }));
    if (!source.file.IsOpen() || fstat(source.file.Number(), &source.status) != 0) return CopyStatus::SourceUnreadable;
    return S_ISREG(source.status.st_mode) ? CopyStatus::Done : CopyStatus::SourceNotRegular;
}

std::size_t FolderLength(const char* path) {
    const char* const separator = std::strrchr(path, '/');
    return separator == nullptr ? 0 : static_cast<std::size_t>(separator - path) + 1;
}

// Replaces a path that names a link by what the link leads to, whether that exists or not.
bool FollowLinks(char (&path)[PATH_MAX]) {
    constexpr int MostLinks = 40;  // as many as the system follows itself
    for (int links = 0; links <= MostLinks; ++links) {
        char destination[PATH_MAX];
        const ssize_t length = readlink(path, destination, sizeof destination);
        if (length < 0) return errno == EINVAL || errno == ENOENT;
        const std::size_t kept = destination[0] == '/' ? 0 : FolderLength(path);
        if (kept + static_cast<std::size_t>(length) >= sizeof path) return false;
        std::memcpy(path + kept, destination, static_cast<std::size_t>(length));
        path[kept + static_cast<std::size_t>(length)] = '\0';
    }
    return false;
}

struct Place {
    Descriptor folder;
    char name[NAME_MAX + 1];
    bool exists = false;
    struct stat status = {};  // of what exists
};

bool FindPlace(const char* path, Place& place) {
    char resolved[PATH_MAX];
    if (std::strlen(path) >= sizeof resolved) return false;
    std::strcpy(resolved, path);
    // Asked first: the system refuses links that others planted in shared folders, and its word counts.
    struct stat followed;
    if (stat(path, &followed) != 0 && errno != ENOENT) return false;
    if (!FollowLinks(resolved)) return false;

    const std::size_t folderLength = FolderLength(resolved);
    const std::size_t nameLength = std::strlen(resolved + folderLength);
    if (nameLength == 0 || nameLength >= sizeof place.name) return false;
    std::memcpy(place.name, resolved + folderLength, nameLength + 1);
    resolved[folderLength] = '\0';
    const char* const folder = folderLength != 0 ? resolved : ".";
    place.folder = Descriptor(RetryInterrupted([&] { return open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    if (!place.folder.IsOpen()) return false;
    place.exists = fstatat(place.folder.Number(), place.name, &place.status, AT_SYMLINK_NOFOLLOW) == 0;
    return place.exists || errno == ENOENT;
}

bool MayBeReplaced(const Place& place) {
    // Read-only counts for root as well, as it does for administrators on Windows.
    return S_ISREG(place.status.st_mode) && (place.status.st_mode & 0222) != 0 &&
           faccessat(place.folder.Number(), place.name, W_OK, AT_EACCESS) == 0;
}

// A file in the target's folder that vanishes unless it is given the target's name.
class Temporary {
public:
    explicit Temporary(const Place& place) noexcept : _place(place) {
        constexpr int MostAttempts = 1000;
        for (int attempt = 0; attempt < MostAttempts && !_file.IsOpen(); ++attempt) {
            MakeTemporaryName(_name);
            const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
            _file = Descriptor(RetryInterrupted([&] { return openat(place.folder.Number(), _name, flags, 0600); }));
            if (!_file.IsOpen() && errno != EEXIST) break;
        }
        _left = _file.IsOpen();
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary() {
        if (_left) unlinkat(_place.folder.Number(), _name, 0);
    }

    bool IsOpen() const noexcept { return _file.IsOpen(); }
    int Number() const noexcept { return _file.Number(); }
    bool Close() noexcept { return _file.Close(); }

    CopyStatus BecomeTarget(bool replaceExisting) noexcept {
        if (!(replaceExisting ? RenameOver() : RenameBeside()))
            return errno == EEXIST ? CopyStatus::TargetExists : CopyStatus::TargetUnwritable;
        return CopyStatus::Done;
    }

private:
    bool RenameOver() noexcept {
        const int folder = _place.folder.Number();
        _left = renameat(folder, _name, folder, _place.name) != 0;
        return !_left;
    }
    bool RenameBeside() noexcept {
        const int folder = _place.folder.Number();
        if (renameat2(folder, _name, folder, _place.name, RENAME_NOREPLACE) == 0) {
            _left = false;
            return true;
        }
        // File systems that cannot rename so may know links, which never replace either; the old name then goes.
        return (errno == EINVAL || errno == ENOSYS) && linkat(folder, _name, folder, _place.name, 0) == 0;
    }

    const Place& _place;
    Descriptor _file;
    char _name[TemporaryNameSize];
    bool _left;  // the temporary name exists
};

bool WriteAll(int file, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = RetryInterrupted([&] { return write(file, data, size); });
        if (written <= 0) return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

CopyStatus CopyBytes(int from, int to) {
    constexpr std::size_t MostAtOnce = std::size_t{1} << 30;
    const auto copySome = [&] { return copy_file_range(from, nullptr, to, nullptr, MostAtOnce, 0); };
    while (RetryInterrupted(copySome) > 0) {
    }
    char data[1 << 16];
    for (;;) {
        const ssize_t count = RetryInterrupted([&] { return read(from, data, sizeof data); });
        if (count == 0) return CopyStatus::Done;
        if (count < 0) return CopyStatus::SourceUnreadable;
        if (!WriteAll(to, data, static_cast<std::size_t>(count))) return CopyStatus::TargetUnwritable;
    }
}

CopyStatus CopyTo(const Place& place, const Source& source, bool replaceExisting) {
    Temporary temporary(place);
    if (!temporary.IsOpen()) return CopyStatus::TargetUnwritable;
    const CopyStatus copied = CopyBytes(source.file.Number(), temporary.Number());
    if (copied != CopyStatus::Done) return copied;
    // The file is ours, so a refusal means a file system without permission bits.
    const bool permitted = fchmod(temporary.Number(), source.status.st_mode & 0777) == 0 || errno == EPERM;
    if (!permitted || !temporary.Close()) return CopyStatus::TargetUnwritable;
    return temporary.BecomeTarget(replaceExisting);
}

}  // namespace

CopyStatus zel::CopyNativeFile(const char* from, const char* to, bool replaceExisting) noexcept {
    Source source;
    const CopyStatus opened = OpenSource(from, source);
    if (opened != CopyStatus::Done) return opened;
    Place place;
    if (!FindPlace(to, place)) return CopyStatus::TargetUnwritable;
    if (place.exists) {
        const struct stat& target = place.status;
        if (target.st_dev == source.status.st_dev && target.st_ino == source.status.st_ino) return CopyStatus::Done;
        if (!replaceExisting) return CopyStatus::TargetExists;
        if (!MayBeReplaced(place)) return CopyStatus::TargetUnwritable;
    }
    return CopyTo(place, source, replaceExisting);
}
