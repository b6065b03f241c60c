// A name is a pointer to one counted heap block, or null. Every change of the text makes a new block, built in one
// piece and normalised in place, so nothing is ever written to a text that another name shares; the old block is let go
// last, since the new text may have been taken from it.
//
// Invariants: a block has at least one byte of text, but for that of incomplete names, and a terminator behind it; its
// room ends at a multiple of the normaliser's step. The dangerous case is the count, which is not atomic: see the
// header.

#include "TAFileName.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "TADiagnostics.h"
#include "TAEnvironment.h"
#include "base/ascii.h"
#include "base/bytes16.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "paths/path_value.h"
#include "platform/file_actions.h"
#include "platform/native_path.h"
#include "platform/system.h"

using namespace zel;

namespace {

constexpr char Separator = '\\';

bool IsAbsolute(std::string_view path) noexcept {
    return IsDrive(path.substr(0, 2)) || path.starts_with(Separator);
}

}  // namespace

// A view that knows whether something is missing; a type of this class's own, because the exported functions name no
// type of the standard library.
struct TAFileName::Text : std::string_view {
    Text(std::string_view text) noexcept : std::string_view(text) {}
    Text(const char* text) noexcept : std::string_view(text != nullptr ? text : "") {}
    Text(const ZELString& text) noexcept : std::string_view(text.View()), isIncomplete(text.IsIncomplete()) {}
    Text(const TAFileName& name) noexcept : std::string_view(name.View()), isIncomplete(name.IsIncomplete()) {}
    bool isIncomplete = false;
};

int TAFileName::_backSlashReplacementOnUnix = 1;

// The block of all incomplete names, which has no text, never ends and is never written to.
TAFileName::Block* TAFileName::IncompleteBlock() noexcept {
    static constinit struct {
        Block block;
        char characters[PathPadding];
    } incomplete = {{1, 0, true}, ""};
    return &incomplete.block;
}

// A new block for so many bytes, with their terminator and not normalised; null when memory runs out.
TAFileName::Block* TAFileName::NewBlock(std::size_t length) noexcept {
    constexpr std::size_t MaxLength = 0x7FFFFF00;
    const std::size_t size = sizeof(Block) + (length / PathPadding + 1) * PathPadding;
    auto* const block = length <= MaxLength ? static_cast<Block*>(Allocate(size)) : nullptr;
    if (block == nullptr) {
        ReportAllocFailure("TAFileName", size);
        return nullptr;
    }
    block->count = 1;
    block->length = static_cast<std::int32_t>(length);
    block->normalised = false;
    block->Characters()[length] = '\0';
    return block;
}

// Null for no text.
TAFileName::Block* TAFileName::MakeBlock(const Text& text) noexcept {
    if (text.isIncomplete) return IncompleteBlock();
    if (text.empty()) return nullptr;
    Block* const block = NewBlock(text.size());
    if (block == nullptr) return IncompleteBlock();
    std::memcpy(block->Characters(), text.data(), text.size());
    return block;
}

// The pieces one behind the other.
TAFileName::Block* TAFileName::MakeBlock(const Text& first, const Text& separator, const Text& second) noexcept {
    if (first.isIncomplete || second.isIncomplete) return IncompleteBlock();
    const std::size_t length = first.size() + separator.size() + second.size();
    if (length == 0) return nullptr;
    Block* const block = NewBlock(length);
    if (block == nullptr) return IncompleteBlock();
    char* const middle = std::copy(first.begin(), first.end(), block->Characters());
    std::copy(second.begin(), second.end(), std::copy(separator.begin(), separator.end(), middle));
    return block;
}

// The last `character` in the first `end` bytes of the text, sixteen bytes at a time: the room of a block allows it.
std::size_t TAFileName::FindLast(char character, std::size_t end) const noexcept {
    const Bytes16 wanted = RepeatByte(character);
    while (end > 0 && _block != nullptr) {
        const std::size_t last = end - 1;
        const std::size_t begin = last / PathPadding * PathPadding;
        const unsigned inside = (2U << (last - begin)) - 1;
        const unsigned found = ByteMask(EqualBytes(LoadBytes(_block->Characters() + begin), wanted)) & inside;
        if (found != 0) return begin + static_cast<std::size_t>(std::bit_width(found)) - 1;
        end = begin;
    }
    return std::string_view::npos;
}

// The last owner is gone, or one owner too many.
void TAFileName::FreeBlock() noexcept {
    if (_block->count < 0) std::abort();
    Free(_block);
}

// Takes over a block, which is this name's alone, and lets the old one go.
void TAFileName::SetBlock(Block* block) noexcept {
    Release();
    _block = block;
}

TAFileName::TAFileName(const char* path) noexcept : TAFileName(Text(path)) {}

TAFileName::TAFileName(const char* path, int length) noexcept
    : TAFileName(Text(std::string_view(path, path != nullptr && length > 0 ? static_cast<std::size_t>(length) : 0))) {}

TAFileName::TAFileName(const ZELString& path) noexcept : TAFileName(Text(path)) {}

TAFileName::TAFileName(const Text& path) noexcept : _block(MakeBlock(path)) {
    TAFileName::Normalize();
}

TAFileName& TAFileName::operator=(const TAFileName& other) noexcept {
    SetBlock(Share(other._block));
    return *this;
}

TAFileName& TAFileName::operator=(TAFileName&& other) noexcept {
    std::swap(_block, other._block);
    return *this;
}

TAFileName& TAFileName::operator=(const char* path) noexcept {
    SetBlock(MakeBlock(path));
    Normalize();
    return *this;
}

TAFileName& TAFileName::operator=(const ZELString& path) noexcept {
    SetBlock(MakeBlock(path));
    Normalize();
    return *this;
}

void TAFileName::Normalize() noexcept {
    if (IsNull()) return;
    const std::size_t length = NormalisePath(_block->Characters(), static_cast<std::size_t>(_block->length));
    _block->length = static_cast<std::int32_t>(length);
    _block->Characters()[length] = '\0';
    _block->normalised = true;
    if (length == 0) Free(std::exchange(_block, nullptr));  // without a text, it is not counted
}

ZELString TAFileName::GetNativeName() const noexcept {
    const NativePath native(*this);
    return native.Text() != nullptr && !IsIncomplete() ? ZELString(native.Text()) : ZELString::Incomplete();
}

bool TAFileName::HasSameLetters(const char* left, const char* right, std::size_t length) noexcept {
    return EqualsIgnoringCase({left, length}, {right, length});
}

int TAFileName::IsEqual(const TAFileName& other) const noexcept {
    if (_block == nullptr || other._block == nullptr) return -1;
    return View() == other.View() ? 1 : 0;
}

int TAFileName::Compare(TAFileName* left, TAFileName* right) noexcept {
    const std::string_view leftText = left != nullptr ? left->View() : "";
    const std::string_view rightText = right != nullptr ? right->View() : "";
    const int order = leftText.compare(rightText);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

// A part of the text that ends at separators. What stands between separators of a normal form is one itself.
TAFileName TAFileName::Part(std::size_t start, std::size_t length) const noexcept {
    TAFileName part;
    part._block = MakeBlock(View().substr(start, length));
    if (!part.IsNull() && _block->normalised)
        part._block->normalised = true;
    else
        part.TAFileName::Normalize();
    return part;
}

TAFileName TAFileName::Join(const Text& tail) const noexcept {
    TAFileName joined;
    joined._block = MakeBlock(*this, !IsNull() && !tail.empty() ? "\\" : "", tail);
    joined.TAFileName::Normalize();
    return joined;
}

TAFileName TAFileName::operator+(const char* tail) const noexcept {
    return Join(tail);
}
TAFileName TAFileName::operator+(const ZELString& tail) const noexcept {
    return Join(tail);
}

TAFileName TAFileName::operator+(const TAFileName& tail) const noexcept {
    return Join(tail);
}

TAFileName& TAFileName::Extend(const Text& tail) noexcept {
    SetBlock(MakeBlock(*this, !IsNull() && !tail.empty() ? "/" : "", tail));
    Normalize();
    return *this;
}
TAFileName& TAFileName::operator+=(const char* tail) noexcept {
    return Extend(tail);
}
TAFileName& TAFileName::operator+=(const ZELString& tail) noexcept {
    return Extend(tail);
}
TAFileName& TAFileName::operator+=(const TAFileName& tail) noexcept {
    return Extend(tail);
}

ZELString TAFileName::GetExtension() const noexcept {
    if (IsIncomplete()) return ZELString::Incomplete();
    const std::size_t dot = FindLast('.', View().size());
    return dot == std::string_view::npos ? ZELString() : ZELString(View().substr(dot + 1));
}

int TAFileName::HasExtension(const char* ext) const noexcept {
    if (ext == nullptr) return 0;
    const std::size_t dot = View().rfind('.');
    return (dot == std::string_view::npos ? "" : View().substr(dot + 1)) == ext ? 1 : 0;
}

void TAFileName::SetExtension(const ZELString& ext) noexcept {
    // Without a dot rfind gives npos, and npos + 1 is 0: nothing of the text is kept.
    if (IsIncomplete()) return;
    SetBlock(MakeBlock(View().substr(0, View().rfind('.') + 1), "", ext));
}

void TAFileName::AddExtension(const ZELString& ext) noexcept {
    SetBlock(MakeBlock(*this, "", ext));
}

TAFileName TAFileName::basename(int n) const noexcept {
    std::size_t end = View().size();
    std::size_t separator = std::string_view::npos;
    for (int i = 0; i < std::max(n, 1); ++i) {
        if (i > 0) end = separator;
        separator = FindLast(Separator, end);
        if (separator == std::string_view::npos) return *this;
    }
    return Part(separator + 1, end - separator - 1);
}

TAFileName TAFileName::dirname(int n) const noexcept {
    if (n <= 0 || IsIncomplete()) return *this;
    std::size_t end = View().size();
    for (int i = 0; i < n; ++i) {
        end = FindLast(Separator, end);
        if (end == std::string_view::npos || end == 0) return TAFileName();
    }
    return Part(0, end);
}

int TAFileName::IsFile() const noexcept {
    return KindOf(*this) == PathKind::File ? 1 : 0;
}

int TAFileName::IsDirectory() const noexcept {
    return KindOf(*this) == PathKind::Directory ? 1 : 0;
}

int TAFileName::Delete() const noexcept {
    return !IsIncomplete() && (IsNull() || RemoveFile(*this)) ? 0 : 1;
}
int TAFileName::DeleteUnicode() const noexcept {
    return !IsIncomplete() && (IsNull() || RemoveFileUnicode(*this)) ? 0 : 1;
}

int TAFileName::CreateDirectoryW() const noexcept {
    return !IsNull() && (MakeDirectory(*this) || IsDirectory()) ? 0 : 1;
}

int TAFileName::CreateNotExistingDirectory() const noexcept {
    return CreateDirectoryW();
}

int TAFileName::CreateRecursiveDirectory() const noexcept {
    if (IsDirectory()) return 0;
    // Up to the deepest ancestor that is there, then down again: no recursion, however deep the name is.
    int missing = 0;
    for (TAFileName parent = dirname(1); !parent.IsNull() && !parent.IsDirectory(); parent = parent.dirname(1))
        ++missing;
    for (; missing > 0; --missing) dirname(missing).CreateDirectoryW();
    return CreateDirectoryW();
}

int TAFileName::IsUnderDirectory(const TAFileName& dir) const noexcept {
    int level;
    return IsUnderDirectory(dir, level);
}

int TAFileName::IsUnderDirectory(const TAFileName& dir, int& level) const noexcept {
    level = 0;
    if (dir.IsNull()) return dir.IsIncomplete() ? 0 : 1;
    const std::string_view text = View();
    const std::string_view ancestor = dir.View();
    if (!text.starts_with(ancestor)) return 0;
    const std::string_view below = text.substr(ancestor.size());
    if (!below.empty() && !below.starts_with(Separator)) return 0;
    level = static_cast<int>(std::count(below.begin(), below.end(), Separator));
    return 1;
}

TAFileName TAFileName::GetFullPath() const noexcept {
    if (IsNull() || IsAbsolute(View())) return *this;
    const TAFileName directory = GetWorkDir();
    // Joined as any other, the root would become the beginning of a network path.
    return directory.View() == "\\" ? TAFileName(ZELString("\\") + *this) : directory.Join(*this);
}

TAFileName TAFileName::GetTemporaryFileName() noexcept {
    char path[TemporaryPathSize];
    const ZELString prefix = ZELString("TABase_") + toString(GetOwnProcessId());
    if (!MakeTemporaryFile(prefix, path)) return TAFileName();
    TAFileName name(path);
    if (name.IsIncomplete()) RemoveFile(path);  // nobody could find it
    return name;
}

TAFileName TAFileName::GetWorkDir() noexcept {
    const ZELString directory = ::GetWorkDir();
    return directory == "." ? TAFileName() : TAFileName(directory);
}

int TAFileName::SetWorkDir(TAFileName directory) noexcept {
    return directory.IsIncomplete() ? -1 : ::SetWorkDir(ZELString(directory.View()));
}

void TAFileName::DisableBackSlashReplacementOnUnix() noexcept {
    _backSlashReplacementOnUnix = 0;
}
