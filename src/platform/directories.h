// Listing one directory.
#ifndef PLATFORM_DIRECTORIES_H
#define PLATFORM_DIRECTORIES_H

#include <utility>

namespace zel {

enum class EntryKind { File, Directory, Link, Other };

enum class ListingStep {
    Entry,  // name and kind are those of the next entry
    End,    // nothing is left; every further step is an End
    Error,  // the system failed, or nothing is open
};

// Owns an open listing; not inherited by children.
class DirectoryListing {
public:
    DirectoryListing() noexcept = default;
    DirectoryListing(DirectoryListing&& other) noexcept { std::swap(_state, other._state); }
    DirectoryListing& operator=(DirectoryListing&& other) noexcept {
        std::swap(_state, other._state);
        return *this;
    }
    ~DirectoryListing() { Close(); }

    // Opens the directory `path` (any path value), closing what was open. False for null, for the empty path, for what
    // is no directory, and for one that must not be read. A pattern is a name like any other: it lists nothing.
    bool Open(const char* path) noexcept;
    bool IsOpen() const noexcept { return _state != nullptr; }
    void Close() noexcept;

    // Goes to the next entry in the system's order; "." and ".." are delivered, links are not followed. `*name` is the
    // entry's bytes as the system stores them, owned by the listing until the next call. Interruptions are retried.
    ListingStep Next(const char** name, EntryKind* kind) noexcept;

private:
    void* _state = nullptr;
};

}  // namespace zel

#endif
