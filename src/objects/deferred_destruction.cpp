// The contents that are under way in one thread are a stack. The outermost Destroy() empties it.

#include "objects/deferred_destruction.h"

#include "ZELMemory.h"

using namespace zel;

void DeferredContents::Destroy(DeferredContents* contents) noexcept {
    static thread_local DeferredContents* top = nullptr;
    static thread_local bool isWorking = false;
    if (contents == nullptr) return;
    contents->_below = top;
    top = contents;
    if (isWorking) return;
    isWorking = true;
    while (top != nullptr) {
        DeferredContents* const current = top;
        if (current->DestroyNext()) continue;
        top = current->_below;
        ZELDelete(current);
    }
    isWorking = false;
}
