// Walking a tree of any depth without recursion. The kinds of walk differ in what they do with what they meet.
//
// Every directory is listed to its end before one below it is entered: what is no directory is handed to the walk at
// once, the names of directories wait. So no listing is ever taken up again, nothing is met twice, and memory holds the
// waiting names of the directories on the way down and no more.
#ifndef FILES_TREE_WALK_H
#define FILES_TREE_WALK_H

#include <cstddef>
#include <string_view>

#include "base/growing_array.h"
#include "files/byte_buffer.h"
#include "platform/tree_cursor.h"

namespace zel {

class TreeWalk {
public:
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    // Walks the tree at `top`, which must outlive the walk; once for each object. False when `top` cannot be entered,
    // and when the walk ended early: a directory was moved meanwhile, or memory ran out.
    bool Run(const char* top) noexcept;

protected:
    explicit TreeWalk(TreeCursor::Purpose purpose) noexcept : _cursor(purpose) {}
    ~TreeWalk() = default;

    // An entry of the directory that the cursor stands in, and no directory. False ends the walk.
    virtual bool Visit(const char* name, EntryKind kind) noexcept = 0;
    // The directory `name`, of the one that the cursor stands in, is done with, or could not be entered. False passes
    // over the directories that wait beside it.
    virtual bool Finish(const char* name) noexcept = 0;

    TreeCursor& Cursor() noexcept { return _cursor; }
    // The path of an entry of the directory that the cursor stands in, valid until the next call; empty when memory
    // ran out.
    std::string_view PathOf(const char* name) noexcept;

private:
    // One for each directory on the way down. Positions in _names.
    struct Level {
        std::size_t names;       // where its waiting names begin
        std::size_t next;        // the first of them that has not been entered
        std::size_t pathLength;  // of its own path
    };

    bool List() noexcept;
    bool Descend() noexcept;
    bool Ascend() noexcept;
    bool PushLevel() noexcept;
    Level& Top() noexcept { return _levels.Last(); }

    TreeCursor _cursor;
    ByteBuffer _path;
    ByteBuffer _names;  // each ends with a NUL
    GrowingArray<Level> _levels;
};

}  // namespace zel

#endif
