// A listing is the system's own directory stream. Kinds that the stream does not tell are asked for, relative to the
// open directory and without following links.

#include "platform/directories.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>

#include "platform/native_path.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/entry_kind.h"

using namespace zel;

bool DirectoryListing::Open(const char* path) noexcept {
    Close();
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    Descriptor descriptor(RetryInterrupted([&] { return open(native.Text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!descriptor.IsOpen()) return false;
    _state = fdopendir(descriptor.Number());
    if (_state != nullptr) descriptor.Release();
    return _state != nullptr;
}

void DirectoryListing::Close() noexcept {
    if (_state != nullptr) closedir(static_cast<DIR*>(_state));
    _state = nullptr;
}

ListingStep DirectoryListing::Next(const char** name, EntryKind* kind) noexcept {
    if (_state == nullptr) return ListingStep::Error;
    DIR* const directory = static_cast<DIR*>(_state);
    const dirent* entry;
    do {
        errno = 0;
        entry = readdir(directory);
    } while (entry == nullptr && errno == EINTR);
    if (entry == nullptr) return errno == 0 ? ListingStep::End : ListingStep::Error;
    *name = entry->d_name;
    *kind = KindOfEntry(dirfd(directory), entry->d_name, entry->d_type);
    return ListingStep::Entry;
}
