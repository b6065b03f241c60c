// Standing in one directory of a tree: the ground of every walk and of removing whole trees.
//
// A cursor goes down by names, which are the system's own bytes and are never read as paths, and up again to the very
// directory that it came from. Links below the top are never followed, whatever others exchange meanwhile: Linux works
// relative to open directories, Windows keeps every directory on the way open, so that none can be renamed.
#ifndef PLATFORM_TREE_CURSOR_H
#define PLATFORM_TREE_CURSOR_H

#include "platform/directories.h"

namespace zel {

class TreeCursor {
public:
    // A cursor that removes does not follow a link at the top either, and gives its user the right to list and change
    // each directory that it enters (Linux: mode 0700), where that is missing.
    enum class Purpose { Read, Remove };

    explicit TreeCursor(Purpose purpose) noexcept : _purpose(purpose) {}
    TreeCursor(const TreeCursor&) = delete;
    TreeCursor& operator=(const TreeCursor&) = delete;
    ~TreeCursor() { Close(); }

    // Stands in the directory `top`, any path value, which must outlive the cursor. Once for each cursor. False when it
    // is no directory that can be listed. The cursor is not inherited by children, and takes about 16 descriptors at
    // most (Windows: one for each level), fewer when the process has no more.
    bool Open(const char* top) noexcept;

    // The next entry of the directory that Open or Enter came to, without "." and ".."; the listing ends when the
    // cursor enters another one. `*name` is owned by the cursor until the next call. Entries may be removed meanwhile.
    ListingStep Next(const char** name, EntryKind* kind) noexcept;

    // Goes down into a directory of the current one; false, and the cursor stays, when it is none that can be listed.
    bool Enter(const char* name) noexcept;
    // Goes up again. False when the directory that the cursor came from cannot be reached, or at the top: nothing but
    // Close works then.
    bool Leave() noexcept;

    // Remove an entry of the current directory, in spite of attributes against it (Linux: the mode of a file becomes
    // 0600 if it could not be removed before). RemoveFile removes links to directories too. True when it is gone.
    bool RemoveFile(const char* name) noexcept;
    bool RemoveFolder(const char* name) noexcept;
    // Closes the cursor and removes the top.
    bool CloseAndRemoveTop() noexcept;
    void Close() noexcept;

private:
    struct State;

    const Purpose _purpose;
    State* _state = nullptr;
};

}  // namespace zel

#endif
