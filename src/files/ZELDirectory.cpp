// Directory services in their public form: a listing of the seam, owned by the caller's handle.

#include "ZELDirectory.h"

#include <cstring>
#include <utility>

#include "ZELUnicodeString.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/directories.h"
#include "platform/file_copy.h"

using namespace zel;

namespace {

DirectoryListing* Listing(const ZELDirectoryHandle& directory) {
    return static_cast<DirectoryListing*>(directory.listing);
}

int KindNumber(EntryKind kind) {
    switch (kind) {
        case EntryKind::File:
            return ZELEntryFile;
        case EntryKind::Directory:
            return ZELEntryDirectory;
        case EntryKind::Link:
            return ZELEntryLink;
        case EntryKind::Other:
            break;
    }
    return ZELEntryOther;
}

ZELCopyStatus StatusNumber(CopyStatus status) {
    switch (status) {
        case CopyStatus::Done:
            return ZELCopyDone;
        case CopyStatus::NullArgument:
            return ZELCopyNullArgument;
        case CopyStatus::SourceUnreadable:
            return ZELCopySourceUnreadable;
        case CopyStatus::SourceNotRegular:
            return ZELCopySourceNotRegular;
        case CopyStatus::TargetExists:
            return ZELCopyTargetExists;
        case CopyStatus::TargetUnwritable:
            return ZELCopyTargetUnwritable;
        case CopyStatus::NoMemory:
            break;
    }
    return ZELCopyNoMemory;
}

}  // namespace

ZELDirectoryHandle::~ZELDirectoryHandle() {
    ZELCloseDirectory(this);
}

int ZELOpenDirectory(const char* path, ZELDirectoryHandle* directory) noexcept {
    if (directory == nullptr || directory->listing != nullptr) return 1;
    DirectoryListing opened;
    if (!opened.Open(path)) return 1;
    directory->listing = ZELNew<DirectoryListing>(std::move(opened));
    if (directory->listing == nullptr) ReportAllocFailure("ZELDirectoryHandle", sizeof opened);
    return directory->listing != nullptr ? 0 : 1;
}

int ZELReadDirectory(ZELDirectoryHandle* directory, ZELDirectoryEntry* entry, int* end) noexcept {
    if (entry != nullptr) {
        entry->name[0] = '\0';
        entry->kind = ZELEntryOther;
    }
    if (end != nullptr) *end = 1;
    if (directory == nullptr || directory->listing == nullptr || entry == nullptr || end == nullptr) return 1;

    const char* name = nullptr;
    EntryKind kind;
    const ListingStep step = Listing(*directory)->Next(&name, &kind);
    if (step != ListingStep::Entry) return step == ListingStep::End ? 0 : 1;
    *end = 0;
    const std::size_t size = std::strlen(name) + 1;
    if (size > sizeof entry->name) return 1;
    std::memcpy(entry->name, name, size);
    entry->kind = KindNumber(kind);
    return 0;
}

int ZELCloseDirectory(ZELDirectoryHandle* directory) noexcept {
    if (directory == nullptr || directory->listing == nullptr) return 1;
    ZELDelete(Listing(*directory));
    directory->listing = nullptr;
    return 0;
}

std::int32_t ZELFCopy(ZELUnicodeString* from, ZELUnicodeString* to, int replaceExisting) noexcept {
    if (from == nullptr || to == nullptr) return ZELCopyNullArgument;
    if (from->IsIncomplete() || to->IsIncomplete()) return ZELCopyNoMemory;
    return StatusNumber(CopyWholeFile(*from, *to, replaceExisting != 0));
}
