// A tree of named, typed values that can be dumped to a directory of text files.
//
//     TAPObject* const project = new TAPObject;
//     project->SetAttribute("name", "scan");
//     project->SetAttribute("runs", 3);
//     TAPObject* const tool = new TAPObject;
//     project->SetAttribute("tool", tool);       // the attribute holds a reference of its own
//     tool->Release();
//     project->AppendToAttribute("runs", 1);     // 4
//     project->SaveToFile("dump");               // dump\Objects.txt and a file for each kind of value
//     project->Release();
//
// For trees that tools build once and leave for people and scripts to read. The library does not load a dump. For plain
// sorted dictionaries use TAIndex.
//
// The attributes are in the order of their names, by bytes, in any order of setting. A name argument may point into the
// object. A null name is not set and not found.
//
// Ownership: objects are created by new and released by Release (TARefCounter.h). Objects that hold each other in a
//   circle are never destroyed. A copy, constructed or assigned, takes the reference count of its source (so copy an
//   object that has one reference, or release the copy as often). It has an index of its own and shares the path and
//   the attributes by their counts: it does not see what the source sets or removes later, but both see elements that
//   one of them appends to a list.
// Errors: no exceptions. When memory runs out, a line that starts with "# Alloc failed in " goes to standard output,
// and
//   the object stays as it was. From then on it counts as incomplete, and SaveToFile with an error reports that.
// Threads: a tree belongs to one thread at a time.
// Blocking: only saving, as long as the disk.
// Complexity: trees may be as deep as memory allows: saving and destroying them use no stack for each level.
#ifndef TAPOBJECT_H
#define TAPOBJECT_H

#include <cstddef>

#include "TAFileName.h"
#include "TAIndex.h"
#include "TAPAttr.h"
#include "TAPPath.h"
#include "TARefCounter.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"

class ZEL_API TAPObject : public TARefCounter {
public:
    TAPObject() noexcept = default;
    TAPObject(const TAPObject& other) noexcept;
    TAPObject& operator=(const TAPObject& other) noexcept;
    // The attributes are destroyed in the order of their names, then the path.
    ~TAPObject() override;

    // Sets or replaces. An object as value gets a new path: that of this object, as it is now, and `name`; `name`
    // alone when this object has none. Later changes of this object's path do not reach it.
    void SetAttribute(const char* name, TAPAttr value) noexcept;
    // A copy, or TAPAttr::Null when there is none of that name.
    TAPAttr GetAttribute(const char* name) const noexcept;
    // 1 or 0. The second form takes the first `length` bytes of `name`.
    int HasAttribute(const char* name) const noexcept;
    int HasAttribute(const char* name, int length) const noexcept;
    // 0, or 1 when there is none of that name.
    int RemoveAttribute(const char* name) noexcept;
    // Adds `value` to what is there: a list gets one element more, a text grows at its end, an integer is added to
    // (and wraps round). Where nothing is, a list of the one value arises. 0; 1 and no change for other kinds, for
    // null as a name and without memory. Anything but a text for a text, or an integer for an integer, ends the
    // process as the getter does. Takes time for what is appended, not for what is there.
    int AppendToAttribute(const char* name, TAPAttr value);

    // The object's own index from names to TAPAttr*; null when memory for it ran out. The object owns what is in it;
    // a null value counts as no attribute, but is saved, without a kind.
    TAIndex* GetAttributeList() noexcept;

    // Positions begin at 1:
    //     for (int position = object.GetFirstAttributePosition(); position != 0;)
    //         Use(object.GetNextAttribute(position, name));
    // GetNextAttribute gives a copy and moves on, to 0 behind the last. A position that does not exist gives
    // TAPAttr::Null, the name null, and 0. The name belongs to the object and is valid until that attribute is removed.
    int GetFirstAttributePosition() const noexcept;
    TAPAttr GetNextAttribute(int& position) const noexcept;
    TAPAttr GetNextAttribute(int& position, const char*& name) const noexcept;

    // Takes a reference to `path`, which may be null, and gives the old one back.
    void SetPath(TAPPath* path) noexcept;
    // With a reference for the caller, or null.
    TAPPath* GetPath() const noexcept;

    // Always null: a walk along the names of `path` as TAPPath::operator[] gives them, which end in two that are
    // missing. It only touches what it meets and leaves every count as it was. Use GetAttribute name by name to find an
    // object. GetObjectW is the exported name, which is what system headers turn GetObject into.
    TAPObject* GetObjectW(TAPPath* path) noexcept;
    TAPObject* GetObjectA(TAPPath* path) noexcept { return GetObjectW(path); }
#ifndef GetObject
    TAPObject* GetObject(TAPPath* path) noexcept {
        return GetObjectW(path);
    }
#endif

    // Writes the tree into text files of `directory`, which exists; docs/dump-format.md tells their lines. Always 0: a
    // file that cannot be opened or written is silently incomplete. Files of an older dump are replaced kind by kind;
    // those of kinds that the tree does not have stay. Names and texts are written raw, so line feeds and colons in
    // them make a dump that cannot be read back.
    // An object that is met again inside itself is not followed: "   WARNING : object met again inside itself, not
    // saved as " + its identifier there goes to standard output. One that hangs in several places is saved at each.
    int SaveToFile(TAFileName directory) noexcept;
    // The same, but 0 if all was written, else 1, and in `error` the file and the reason of a failure; 1 also when an
    // object or attribute of the tree is incomplete.
    int SaveToFile(TAFileName directory, ZELString& error) noexcept;
    // The same into a dump that is under way, under an identifier that was taken for it.
    int SaveToFile(int id, TAPObjectSaveContext& context) noexcept;

private:
    friend class TAPObjectSaveContext;
    struct Contents;

    TAPAttr* Find(const char* name) const noexcept;
    bool Put(const char* name, TAPAttr* made, TAPAttr*& old) noexcept;
    bool Store(const char* name, TAPAttr&& value) noexcept;
    bool AppendTo(const char* name, TAPAttr&& value);
    static Contents* CopyContents(const Contents* other) noexcept;
    void PassPath(const char* name, TAPObject* child) noexcept;

    bool _isIncomplete = false;     // an attribute was not stored
    Contents* _contents = nullptr;  // owned; null while there has been no attribute
    TAPPath* _path = nullptr;       // one reference, or null
};

#endif
