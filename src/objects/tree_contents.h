// The contents of lists and of objects, apart from their owners: they outlive them while they are destroyed, so that
// trees of any depth need no stack.
#ifndef OBJECTS_TREE_CONTENTS_H
#define OBJECTS_TREE_CONTENTS_H

#include "TAPAttr.h"
#include "TAPObject.h"
#include "objects/deferred_destruction.h"

struct TAPAttr::List final : zel::DeferredContents {
    bool DestroyNext() noexcept override {
        if (values.Size() == 0) return false;
        values.RemovePosition(values.Size());
        return true;
    }

    ZELListValTAPAttr values;
};

struct TAPObject::Contents final : zel::DeferredContents {
    Contents() noexcept = default;
    // An index of its own on the same attributes; without memory it is empty.
    Contents(const Contents& other) noexcept;
    bool DestroyNext() noexcept override;
    TAPAttr* At(int place) const noexcept { return static_cast<TAPAttr*>(attributes.Get(place)); }

    // Takes one owner from an attribute of an object; the last one destroys it. Null is ignored.
    static void Drop(TAPAttr* attribute) noexcept;

    TAIndex attributes;       // of TAPAttr*, which may be null
    TAPPath* path = nullptr;  // the path of the object after its destruction
    int destroyed = 0;        // the number of attributes that are destroyed since then
    bool isBeingSaved = false;
};

#endif
