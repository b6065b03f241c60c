// Names of attributes, and the path of names that leads to an object from the root of its tree.
//
//     TAPName* const name = new TAPName("compiler");
//     TAPPath* const path = new TAPPath(name);          // the path holds a reference of its own
//     name->Release();
//     TAPPath* const longer = new TAPPath(path, name);  // as long as `name` lives
//     path->Release();
//
// TAPObject creates them when an object is set into another; create one for an attribute that holds a path. A null text
// counts as empty; null names and null parents are allowed. Reading by index is shifted, see operator[]. Use
// GetAttribute of TAPObject to find the object of a path.
//
// Ownership: both are created by new and released by Release (TARefCounter.h).
// Memory: a path of any length is one small block, since it shares the names of its parent.
// Errors: no exceptions. When memory runs out, a line that starts with "# Alloc failed in TAPName" or "TAPPath" goes to
//   standard output: the name is then empty, and the path has no names.
// Threads: paths and names that share parts belong to one thread at a time.
#ifndef TAPPATH_H
#define TAPPATH_H

#include <cstddef>

#include "TARefCounter.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"

class TAPObjectSaveContext;
namespace zel {
struct SharedText;
}  // namespace zel

class ZEL_API TAPName : public TARefCounter {
public:
    explicit TAPName(const char* name) noexcept;
    // Both take the count of references of `other` along, as every TARefCounter does, and share the text.
    TAPName(const TAPName& other) noexcept;
    TAPName& operator=(const TAPName& other) noexcept;
    ~TAPName() override;

    // Valid as long as a name that shares the text. Never null.
    const char* GetName() const noexcept;

private:
    zel::SharedText* _text;  // counted; null when empty for want of memory
};

class ZEL_API TAPPath : public TARefCounter {
public:
    // A path of one name.
    explicit TAPPath(TAPName* name) noexcept;
    // The names of `parent` and then `name`. Without a parent the path has no names at all, not even `name`.
    TAPPath(TAPPath* parent, TAPName* name) noexcept;
    // The same names, counted on their own; the copy begins with one reference.
    TAPPath(const TAPPath& other) noexcept;
    // The same names, and the count of references of `other`.
    TAPPath& operator=(const TAPPath& other) noexcept;
    ~TAPPath() override;

    // The number of names.
    int Size() const noexcept;

    // The name that stands two behind: 1 gives the third name, and Size() - 1 and Size() give null. A name comes with a
    // reference, which the caller releases; null without. Every reader of paths goes through this shift, the dumps
    // included, so it stays. An `i` outside 1 to Size() ends the process with "TAPPath::[] : bad index".
    // Takes time in proportion to Size() - i.
    TAPName* operator[](int i) const;

private:
    friend class TAPObjectSaveContext;
    struct Node;

    static Node* NewNode(Node* parent, TAPName* name) noexcept;

    Node* _last;  // counted; the last name, which leads to those in front of it; null without names
};

#endif
