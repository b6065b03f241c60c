// What an object holds, apart from it, so that it can outlive the object for as long as ending it takes.
#ifndef OBJECTS_TREE_CONTENTS_H
#define OBJECTS_TREE_CONTENTS_H

#include "TAPObject.h"
#include "objects/deferred_destruction.h"

struct TAPObject::Contents final : zel::Remains {
    Contents() noexcept = default;
    // An index of its own on the same attributes; without memory it is empty.
    Contents(const Contents& other) noexcept;
    bool EndNext() noexcept override;
    TAPAttr* At(int place) const noexcept { return static_cast<TAPAttr*>(attributes.Get(place)); }

    // Takes one owner from an attribute of an object; the last one deletes it. Null is nothing.
    static void Drop(TAPAttr* attribute) noexcept;

    TAIndex attributes;       // of TAPAttr*, which may be null
    TAPPath* path = nullptr;  // what is left of the object's path once the object has ended
    int ended = 0;            // attributes that have gone since then
    bool isBeingSaved = false;
};

#endif
