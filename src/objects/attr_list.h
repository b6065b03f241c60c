// The list that an attribute owns. It ends as remains do, so that lists in lists need no stack.
#ifndef OBJECTS_ATTR_LIST_H
#define OBJECTS_ATTR_LIST_H

#include "TAPAttr.h"
#include "objects/deferred_destruction.h"

struct TAPAttr::List final : zel::Remains {
    bool EndNext() noexcept override {
        if (values.Size() == 0) return false;
        values.RemovePosition(values.Size());
        return true;
    }

    ZELListValTAPAttr values;
};

#endif
