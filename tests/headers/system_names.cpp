// Compiled several times: with the system's headers before or behind all of the library's, with the names of either set
// of characters, and with the system's headers whole or lean. Whatever they make of a name, it leads to one function.
#if defined(NAMES_BEFORE)
#include "system_names.h"
#endif
#include "ZELToolsInfrastructure.h"
#if !defined(NAMES_BEFORE)
#include "system_names.h"
#endif

const char* NAMES_FUNCTION();

// The first name that leads elsewhere, or null.
const char* NAMES_FUNCTION() {
    TAPObject child, root;
    root.SetAttribute("child", &child);
    const TAPAttr attribute = root.GetAttribute("child");
    TAPObject* const found[] = {attribute.GetObject(), attribute.GetObjectA(nullptr), attribute.GetObjectW()};
    for (TAPObject* each : found) each->Release();
    if (found[0] != &child || found[1] != &child || found[2] != &child) return "TAPAttr::GetObject";
    if (root.GetObject(nullptr) != nullptr || root.GetObjectA(nullptr) != nullptr) return "TAPObject::GetObject";

    const TAFileName here(".");
    if (here.CreateDirectory() != 0 || here.CreateDirectoryA() != 0) return "TAFileName::CreateDirectory";
    const TAFileName missing("no such file"), nowhere("no such directory\\file");
    if (CopyFile(missing, nowhere) != 1 || CopyFileA(missing, nowhere) != 1) return "CopyFile";

    // What the headers declare of the system is the system's.
    FILETIME time = {};
    OSVERSIONINFOEXW version = {};
    HWND window = nullptr;
    __int64 wide = sizeof time + sizeof version;
    return time.dwLowDateTime != 0 || window != nullptr || sizeof wide != 8 ? "system types" : nullptr;
}
