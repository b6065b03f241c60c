// Copying one file.
#ifndef PLATFORM_FILE_COPY_H
#define PLATFORM_FILE_COPY_H

namespace zel {

// The result of a copy; the numbers that users see are ZELCopyStatus of ZELDirectory.h.
enum class CopyStatus {
    Done,
    NullArgument,
    SourceUnreadable,
    SourceNotRegular,
    TargetExists,
    TargetUnwritable,
    NoMemory,
};

// Copies contents and permission bits (Windows: attributes) of the regular file `from` to `to`, both any path value, as
// ZELDirectory.h describes: a temporary file with a name of its own in the target's folder takes the bytes and is then
// renamed. It is gone after every failure. Bytes are copied up to the end that the source shows while it is read, so
// files of unknown size, and files that grow or shrink meanwhile, end where reading ends. Pipes and devices are refused
// before they are read. Interruptions are retried, short reads and writes finished. Set-user and set-group bits are not
// copied; a file system without permission bits takes the contents alone.
CopyStatus CopyWholeFile(const char* from, const char* to, bool replaceExisting) noexcept;

// The same for names that have passed the disk boundary and are not empty: the target's half of it.
CopyStatus CopyNativeFile(const char* from, const char* to, bool replaceExisting) noexcept;

constexpr int TemporaryNameSize = 16;

// Writes the next name for a temporary file of this process, in the letters and length that every file system takes. It
// may be taken already, by a file that another machine or an earlier process left: the caller then asks for another.
void MakeTemporaryName(char (&name)[TemporaryNameSize]) noexcept;

}  // namespace zel

#endif
