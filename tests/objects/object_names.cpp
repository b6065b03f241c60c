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
    TAPObject* const found[] = {attribute.GetObject(), attribute.GetObjectA(nullptr), attribute.GetObjectW()};
    for (TAPObject* each : found) each->Release();
    return found[0] == &child && found[1] == &child && found[2] == &child && root.GetObject(nullptr) == nullptr;
}
