// A path on disk as a value: normalised, cheap to copy, with path arithmetic, comparisons and a few actions on files.
//
// The text holds backslashes on both targets; slashes are turned round, repeated separators, "." components and ".."
// components that can be taken back disappear (docs/paths.md has the rules and a table of results):
//
//     TAFileName source("src/../include/ZELString.h");     // include\ZELString.h, as long as "src" stands alone
//     TAFileName object = source.dirname(1) + "ZELString.o";
//     if (!object.IsFile()) printf("%s is missing\n", static_cast<const char*>(object));
//     FILE* file = fopen(source.GetNativeName(), "rb");
//
// A name without text is the null name; it reads as "". A null pointer, an empty text and a length of 0 give it.
// Copies share one counted text, so a copy costs an increment. The count is not atomic: names that share a text may be
// used by several threads only while none of them copies, changes or ends one. Whoever hands a name to another thread
// gives it a text of its own: TAFileName(static_cast<const char*>(name)).
// When memory runs out, a line that starts with "# Alloc failed in TAFileName" goes to standard output and the name
// becomes an incomplete one: a null name that stays null whatever is added to it, so that it never leads to another
// file. Nothing throws. Actions block as long as the disk does.
#ifndef TAFILENAME_H
#define TAFILENAME_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZELExport.h"
#include "ZELListVal.h"
#include "ZELString.h"

class ZEL_API TAFileName {
public:
    TAFileName() noexcept = default;
    TAFileName(const char* path) noexcept;
    // The first `length` bytes of `path`, which need no terminator; a negative length counts as 0.
    TAFileName(const char* path, int length) noexcept;
    TAFileName(const ZELString& path) noexcept;
    TAFileName(const TAFileName& other) noexcept : _block(Share(other._block)) {}
    TAFileName(TAFileName&& other) noexcept : _block(other._block) { other._block = nullptr; }
    ~TAFileName() { Release(); }

    TAFileName& operator=(const TAFileName& other) noexcept;
    TAFileName& operator=(TAFileName&& other) noexcept;
    // `path` may point into this name.
    TAFileName& operator=(const char* path) noexcept;
    TAFileName& operator=(const ZELString& path) noexcept;

    // The normalised text, owned by the name and valid until it changes or ends; "" for the null name.
    operator const char*() const noexcept { return _block != nullptr ? _block->Characters() : ""; }
    std::string_view View() const noexcept {
        return _block != nullptr ? std::string_view(_block->Characters(), static_cast<std::size_t>(_block->length))
                                 : "";
    }
    // What the system's own functions take on this target: on Linux slashes and no drive.
    ZELString GetNativeName() const noexcept;

    int IsNull() const noexcept { return _block == nullptr || _block->length == 0 ? 1 : 0; }
    // Whether memory ran out while this name was made, or one that it was made from. Every assignment ends it.
    bool IsIncomplete() const noexcept { return _block != nullptr && _block->length == 0; }

    // Without regard to the case of A to Z. The null name equals only itself, a null pointer and "".
    friend bool operator==(const TAFileName& left, const TAFileName& right) noexcept {
        return IsSameText(left.View(), right.View());
    }
    friend bool operator==(const TAFileName& left, const char* right) noexcept {
        return IsSameText(left.View(), right != nullptr ? right : "");
    }
    // Byte for byte: 1 or 0, and -1 when either is the null name.
    int IsEqual(const TAFileName& other) const noexcept;
    // Bytes as unsigned values: -1, 0 or 1. For ZELListValTAFileName::QuickSort.
    static int Compare(TAFileName* left, TAFileName* right) noexcept;

    // The text, a backslash and `tail`, normalised; for the null name `tail` alone, unless it is incomplete. A null or
    // empty `tail` adds nothing.
    TAFileName operator+(const char* tail) const noexcept;
    TAFileName operator+(const ZELString& tail) const noexcept;
    TAFileName operator+(const TAFileName& tail) const noexcept;
    TAFileName& operator+=(const char* tail) noexcept;
    TAFileName& operator+=(const ZELString& tail) noexcept;
    TAFileName& operator+=(const TAFileName& tail) noexcept;
    // The texts, one behind the other; incomplete when the name is.
    friend ZELString operator+(const ZELString& text, const TAFileName& name) noexcept {
        return text + name.AsString();
    }

    // What stands behind the last "." of the whole text, or "". The search does not stop at a backslash: the extension
    // of "dir.d\file" is "d\file".
    ZELString GetExtension() const noexcept;
    // 1 when the extension is `ext` byte for byte; 0 for a null `ext`.
    int HasExtension(const char* ext) const noexcept;
    // Replaces what follows the last "."; without one the text becomes `ext`. Neither this nor AddExtension normalises.
    void SetExtension(const ZELString& ext) noexcept;
    // Appends `ext` as it stands, its dot included if there is to be one; for the null name the text becomes `ext`.
    void AddExtension(const ZELString& ext) noexcept;

    // The n-th component from the end, so basename(1) is what follows the last backslash; n below 1 counts as 1. The
    // whole name when it has fewer than n backslashes.
    TAFileName basename(int n) const noexcept;
    // The name without its last n components. The null name when there are not so many backslashes behind the first
    // character; the whole name for n of 0 or less.
    TAFileName dirname(int n) const noexcept;
    ZELString Getdirname(int n) const noexcept { return dirname(n).AsString(); }

    // 1 when the attributes can be read and tell a file that is no directory; links are followed.
    int IsFile() const noexcept;
    int IsDirectory() const noexcept;
    // Deletes the file, not a directory. 0 when it is gone and for the null name, else 1, also for an incomplete one.
    // The Unicode form reaches
    // names on Windows whose text is UTF-8.
    int Delete() const noexcept;
    int DeleteUnicode() const noexcept;
    // Make the directory; its missing parents too in the last form. 0 when the directory is there afterwards, whoever
    // made it, else 1. A parent that cannot be made does not stop the attempt.
    int CreateDirectoryW() const noexcept;
    int CreateDirectoryA() const noexcept { return CreateDirectoryW(); }
#ifndef CreateDirectory
    int CreateDirectory() const noexcept {
        return CreateDirectoryW();
    }
#endif
    int CreateNotExistingDirectory() const noexcept;
    int CreateRecursiveDirectory() const noexcept;

    // 1 when this name or one of its ancestors is `dir` byte for byte, that is, when `dir` is a prefix that ends at a
    // backslash or at the end; else 0. Always 1 when `dir` is the null name, and 0 when it is incomplete. `level`
    // receives how many components this name has below `dir`; 0 when the result is 0 or `dir` is the null name.
    int IsUnderDirectory(const TAFileName& dir) const noexcept;
    int IsUnderDirectory(const TAFileName& dir, int& level) const noexcept;

    // Behind the working directory, when the name begins neither with a backslash nor with a letter and ":". The null
    // name stays null.
    TAFileName GetFullPath() const noexcept;

    // Creates an empty file of a name that nobody had, in the system's directory for temporary files, and returns its
    // name; the caller deletes it. The null name on failure. Names begin with "TABase_" and the process number (Windows
    // keeps three letters of that). On Linux the directory is TMPDIR or /tmp, and only the user may open the file.
    static TAFileName GetTemporaryFileName() noexcept;

    // The process's working directory; the null name when the system does not tell. 0 on success, -1 on failure.
    static TAFileName GetWorkDir() noexcept;
    static int SetWorkDir(TAFileName directory) noexcept;

    // Separators are always turned round in the text; nothing reads the setting.
    static void DisableBackSlashReplacementOnUnix() noexcept;
    // Nothing: the launcher does not ask for it.
    void SetAsExecutable() const noexcept {}

protected:
    // Brings the text, which is this name's alone then, into the normal form. Called after each change of the text but
    // those by extension.
    virtual void Normalize() noexcept;

private:
    struct Block {
        std::int32_t count;
        std::int32_t length;
        bool normalised;  // false behind an added or replaced extension
        // The text follows: length + 1 bytes, and room up to what the normaliser may touch.
        char* Characters() noexcept { return reinterpret_cast<char*>(this + 1); }
    };
    struct Text;

    // Without regard to the case of A to Z.
    static bool IsSameText(std::string_view left, std::string_view right) noexcept {
        return left.size() == right.size() && HasSameLetters(left.data(), right.data(), left.size());
    }
    static bool HasSameLetters(const char* left, const char* right, std::size_t length) noexcept;
    static Block* IncompleteBlock() noexcept;
    // One owner more. All incomplete names, of all threads, have one block without text, whose owners are not counted.
    static Block* Share(Block* block) noexcept {
        if (block != nullptr && block->length != 0) ++block->count;
        return block;
    }
    static Block* NewBlock(std::size_t length) noexcept;
    static Block* MakeBlock(const Text& text) noexcept;
    static Block* MakeBlock(const Text& first, const Text& separator, const Text& second) noexcept;
    explicit TAFileName(const Text& path) noexcept;
    std::size_t FindLast(char character, std::size_t end) const noexcept;
    TAFileName Part(std::size_t start, std::size_t length) const noexcept;
    TAFileName Join(const Text& tail) const noexcept;
    TAFileName& Extend(const Text& tail) noexcept;
    ZELString AsString() const noexcept {
        return IsIncomplete() ? ZELString::Incomplete() : ZELString(View());
    }
    void SetBlock(Block* block) noexcept;
    void Release() noexcept {
        if (_block != nullptr && _block->length != 0 && --_block->count <= 0) FreeBlock();
    }
    void FreeBlock() noexcept;

    static int _backSlashReplacementOnUnix;

    Block* _block = nullptr;
};

// A list of names; equal lists have equal names without regard to case.
class ZELListValTAFileName : public ZELListVal<TAFileName> {
public:
    using ZELListVal<TAFileName>::ZELListVal;
};

#endif
