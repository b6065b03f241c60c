// One dump that is under way: it hands out identifiers, keeps the files open, and walks the tree.
#ifndef OBJECTS_SAVE_CONTEXT_H
#define OBJECTS_SAVE_CONTEXT_H

#include <cstddef>

#include "TAFileName.h"
#include "TAPAttr.h"
#include "TAPObject.h"
#include "base/growing_array.h"
#include "objects/dump_file.h"
#include "objects/tree_contents.h"

class TAPObjectSaveContext {
public:
    explicit TAPObjectSaveContext(const TAFileName& directory) noexcept : _directory(directory) {}
    TAPObjectSaveContext(const TAPObjectSaveContext&) = delete;
    TAPObjectSaveContext& operator=(const TAPObjectSaveContext&) = delete;
    ~TAPObjectSaveContext() { Close(nullptr); }
    // Closes the files, the last opened first. Returns whether all was written; otherwise `error`, unless null, gets
    // the file and the reason of a failure.
    bool Close(ZELString* error) noexcept;

    // 0, 1, 2 ...; wraps round.
    int NextId() noexcept { return static_cast<int>(_nextId++); }
    void SaveObject(const TAPObject& object, int id) noexcept;
    void SaveAttribute(const TAPAttr& attribute, int id) noexcept;
    // The name of the kind of an attribute in a dump.
    static const char* TypeName(const TAPAttr& attribute) noexcept;

private:
    // An object or a list in the middle of being saved; one of the first two is null.
    struct Level {
        TAPObject::Contents* object;
        const ZELListValTAPAttr* list;
        int id;
        int next;         // the place of the attribute or element that comes next
        int attributeId;  // of the attribute before it, whose line in the file of objects is still to be written
    };

    // The files: one for each code of an attribute, and in place of the null one that of the objects.
    static constexpr int Kinds = 7;
    static constexpr int Objects = TAPAttr::TypeNull;

    TAFileName PathOf(int kind) const noexcept;
    zel::DumpFile& File(int kind) noexcept;
    void Begin(const TAPAttr& attribute, int id) noexcept;
    void BeginObject(const TAPObject* object, int id) noexcept;
    void WritePath(const TAPPath* path, int id) noexcept;
    void FailForMemory(std::size_t size) noexcept;
    void Push(const Level& level) noexcept;
    void WorkOff(std::size_t height) noexcept;
    void ContinueObject() noexcept;
    void ContinueList() noexcept;
    void WriteAttributeLine(const Level& level) noexcept;
    static void LookAhead(const TAPObject::Contents& object, int place) noexcept;

    TAFileName _directory;
    unsigned int _nextId = 0;
    zel::DumpFile _files[Kinds];
    int _opened[Kinds] = {};  // kinds, in the order in which their files were opened
    int _openCount = 0;
    bool _isShortOfMemory = false;  // for the dump, or before it for the tree
    zel::GrowingArray<Level> _levels;
};

#endif
