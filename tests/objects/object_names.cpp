// Compiled several times: with the system's headers before or behind the library's, with and without UNICODE. Whatever
// they make of GetObject, every one of its names must lead to the one function.
#if defined(NAMES_BEFORE)
#include "system_names.h"
#endif
#include "TAPObject.h"
#if !defined(NAMES_BEFORE)
#include "system_names.h"
#endif

bool NAMES_FUNCTION();

bool NAMES_FUNCTION() {
    TAPObject child, root;
    root.SetAttribute("child", &child);
    const TAPAttr attribute = root.GetAttribute("child");
    TAPObject* const found[] = {attribute.GetObject(),         attribute.GetObjectA(),
                                attribute.GetObjectW(),        attribute.GetObject(nullptr),
                                attribute.GetObjectA(nullptr), attribute.GetObjectW(nullptr)};
    bool all = root.GetObject(nullptr) == nullptr && root.GetObjectA(nullptr) == nullptr;
    for (TAPObject* each : found) {
        all = all && each == &child;
        each->Release();
    }
    return all;
}
