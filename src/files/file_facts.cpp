// Copying one file, and what the system tells about files.

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "TAFileUtilities.h"
#include "ZELDirectory.h"
#include "ZELUnicodeString.h"
#include "platform/clock.h"
#include "platform/file_actions.h"
#include "platform/file_status.h"

using namespace zel;

namespace {

ZELString ClockText(std::int64_t seconds) noexcept {
    char text[ClockTextLength + 1];
    ToClockText(seconds, text);
    return text;
}

ZELXMLNode Describe(const TAFileName& file, const char* tag, bool tellsWritable) noexcept {
    ZELXMLNode node(tag);
    FileStatus status;
    if (ReadFileStatus(file, status)) {
        char size[24];
        std::snprintf(size, sizeof size, "%" PRId64, status.size);
        node.SetAttr("Size", size);
        node.SetAttr("Time", ClockText(status.modified));
        if (tellsWritable) node.SetAttr("Writable", status.isWritable ? "1" : "0");
    }
    node.AddNode("Path").SetText(file);
    node.AddNode("Name").SetText(file.basename(1));
    node.AddNode("Directory").SetText(file.dirname(1));
    return node;
}

}  // namespace

int CopyFileW(TAFileName source, TAFileName destination) noexcept {
    if (source.IsFile() == 0) return 1;
    if (destination.IsIncomplete()) return 1;
    ZELUnicodeString from(source), to(destination);
    return ZELFCopy(&from, &to, 1) >= 0 ? 0 : 1;
}

int FileExists(ZELString path) noexcept {
    return !path.IsIncomplete() && KindOf(path) == PathKind::File ? 1 : 0;
}

ZELString GetModifTime(ZELString path) noexcept {
    if (path.IsIncomplete()) return path;
    FileStatus status;
    return ReadFileStatus(path, status) ? ClockText(status.modified) : ZELString();
}

int FileSelectionSize(ZELString selection) noexcept {
    constexpr int Most = std::numeric_limits<int>::max();
    ZELListValZELString paths;
    ReadDirectory(selection, paths, 0);
    int total = 0;
    for (const ZELString& path : paths) {
        FileStatus status;
        if (!ReadFileStatus(path, status)) continue;
        if (status.size > Most - total) return Most;
        total += static_cast<int>(status.size);
    }
    return total;
}

ZELXMLNode GetFileDescription(TAFileName file) noexcept {
    return Describe(file, "File", false);
}

ZELXMLNode GetFileDescriptionRW(TAFileName file) noexcept {
    return Describe(file, "FileRW", true);
}
