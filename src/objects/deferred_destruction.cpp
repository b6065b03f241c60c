// The stack of one thread's remains; the outermost End() works it off.

#include "objects/deferred_destruction.h"

using namespace zel;

void Remains::End(Remains* remains) noexcept {
    static thread_local Remains* top = nullptr;
    static thread_local bool isWorking = false;
    if (remains == nullptr) return;
    remains->_below = top;
    top = remains;
    if (isWorking) return;
    isWorking = true;
    while (top != nullptr) {
        Remains* const current = top;
        if (current->EndNext()) continue;
        top = current->_below;
        delete current;
    }
    isWorking = false;
}
