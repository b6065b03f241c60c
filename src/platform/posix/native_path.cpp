// The disk boundary on Linux. Paths that hold no backslash and no drive, the common case here, are passed on uncopied;
// others of up to 255 bytes are turned inside the object.

#include "platform/native_path.h"

#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"
#include "base/slash_path.h"

using namespace zel;

NativePath::NativePath(const char* path) noexcept : _text(path) {
    if (path == nullptr || !NeedsSlashPath(path)) return;
    const std::size_t size = std::strlen(path) + 1;
    char* room = _room;
    if (size > sizeof _room) {
        room = _block = AllocateArray<char>(size);
        if (room == nullptr) ReportAllocFailure("NativePath", size);
    }
    if (room != nullptr) WriteSlashPath(path, room);
    _text = room;
}

NativePath::~NativePath() {
    Free(_block);
}

void zel::ToPathValue(char* nativePath) noexcept {
    for (char* c = nativePath; *c != '\0'; ++c)
        if (*c == '/') *c = '\\';
}
