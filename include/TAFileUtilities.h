// Whole text files as lists of lines, files that patterns select, trees of files, and facts about one file.
//
//     ZELListValZELString sources, lines;
//     ReadDirectory("src\\*\\*.cpp", sources, 1);
//     for (const ZELString& source : sources)
//         if (ReadFile(source, lines) != 0) printf("%s: not read to its end\n", source.CastToCharPtr());
//
// For text that a person would read. Use ZELFileBuffer for bytes that must arrive unchanged: reading turns control and
// non-ASCII bytes into blanks. ZELDirectory.h lists one directory without patterns.
//
// Paths hold backslashes, slashes or both, on both targets. A path that is too long for the system is a failure, never
// another path. What is appended to a list stays there when the function then fails. Lists are the caller's.
// The functions may be called from every thread as long as no two use one list. They block as long as the disk does.
// When memory runs out, a line that starts with "# Alloc failed in " goes to standard output and the result is the
// failure. Nothing throws.
#ifndef TAFILEUTILITIES_H
#define TAFILEUTILITIES_H

#include "TAFileName.h"
#include "TAIndex.h"
#include "ZELExport.h"
#include "ZELListValZELString.h"
#include "ZELString.h"
#include "ZELXMLNode.h"

// Appends the lines of a text file. Every byte below 32 and above 127 becomes a blank, also the carriage return of a
// line that ends with two characters on Linux. On Windows those ends of lines are single, and a byte 26 ends the file.
// An end of line at the end of the file adds no empty line. A line has at most 4095 characters.
// 0 when the whole file was read. 1 when it cannot be opened (a directory never can), and 1 when a line is too long or
// the disk fails, after the line "   WARNING : ReadFile aborted on " + file + " : file.good() is false" on standard
// output; the lines in front of that place are in the list then.
ZEL_API int ReadFile(ZELString file, ZELListValZELString& lines) noexcept;
// The same for lines of at most `bufferSize` - 1 characters; a size below 2 counts as 2. Memory grows with the lines
// that are found, not with the size.
ZEL_API int ReadFile(ZELString file, ZELListValZELString& lines, int bufferSize) noexcept;
// The same as the first, into an index: each distinct line is a key, with a null value if it is new.
ZEL_API int ReadFile(ZELString file, TAIndex& lines) noexcept;

// Replaces the contents of `file`, or makes it, with each element and an end of line. An empty list gives an empty
// file. 0 when all was written; otherwise 1, after "   WARNING : WriteFile aborted on line " + number +
// " : file.good() is false" on standard output. The number is that of the first line that was not written whole: 1 when
// the file cannot be opened, the last line when the system reports a failure only as the file is closed.
ZEL_API int WriteFile(ZELString file, ZELListValZELString& lines) noexcept;

// Appends the paths that a pattern selects, in the order in which the system lists them. The pattern is a path whose
// components may hold "*", which stands for any characters and none: such a component selects names in the directories
// that the components before it led to, without regard to case, and "." and ".." never. A component without "*" is
// taken as it stands, which on Linux regards case; as the last one it selects what exists. Directories are selected
// like files. Links are followed. Each path begins as the pattern does, with single backslashes between its components;
// one or two leading backslashes stay, and so does a drive, with a backslash behind it. With `sorted` not 0, the paths
// that this call appends are in the order of CompareTAStrings. Directories that cannot be read select nothing. Null and
// the empty pattern select nothing. On Linux, names that hold a backslash or would read as a drive are passed over: as
// parts of a path they would lead elsewhere.
ZEL_API void ReadDirectory(const char* pattern, ZELListValZELString& names, unsigned char sorted) noexcept;
ZEL_API void ReadDirectory(ZELString pattern, ZELListValZELString& names, unsigned char sorted) noexcept;
ZEL_API void ReadDirectory(const char* pattern, ZELListValTAFileName& names) noexcept;
ZEL_API void ReadDirectory(ZELString pattern, ZELListValTAFileName& names) noexcept;

// Appends the paths of all regular files of a tree, each beginning with `directory`, its slashes turned round. Depth
// first: the files of a directory in the order in which the system lists them, then its directories one after the
// other, each with all that is in it. Links are not followed, only `directory` itself may be one. What cannot be read
// is passed over, and so are, on Linux, names that hold a backslash. Trees may be as deep as memory allows.
ZEL_API void ReadRecursiveDirectory(ZELString directory, ZELListValZELString& names) noexcept;

// Removes a directory and all that is in it: 0 when it is gone, else 1. Links are removed and never followed, nothing
// outside of the tree is touched, not even while others move directories and links about in it. What is read-only goes
// too: where removing fails otherwise, directories get mode 0700 and files 0600 (Windows: no attributes).
// A file that cannot be removed is told as "   Unable to delete file " + path on standard output and does not keep the
// others of its directory. A directory below `directory` that cannot be removed is told as "   Unable to delete
// directory " + path, and the other directories beside it stay.
// 1 and nothing done for null, for the empty path, for the root of a drive, for what is no directory, and for a link.
// Trees may be as deep as memory allows (Windows: as paths may be long) and take about 16 open files at most.
ZEL_API int TACleanDirectory(const char* directory) noexcept;

// Copies a file, links followed, with its permissions and replaces the target: it is there complete or as it was. 0, or
// 1 when the source is no file or the copy fails. Both names may lead to one file, which then stays as it is. See
// ZELFCopy.
ZEL_API int CopyFileW(TAFileName source, TAFileName destination) noexcept;
inline int CopyFileA(TAFileName source, TAFileName destination) noexcept {
    return CopyFileW(source, destination);
}
#ifndef CopyFile
inline int CopyFile(TAFileName source, TAFileName destination) noexcept {
    return CopyFileW(source, destination);
}
#endif

// 1 when there is something of that path that is no directory, links followed; else 0.
ZEL_API int FileExists(ZELString path) noexcept;

// When the file or directory was changed last, in local time, as the 24 characters of the C runtime: "Tue Mar  5
// 07:08:09 2024" (see GetDate in TAEnvironment.h). A year before 1000 has fewer digits: "Tue Jan  1 00:00:00 999".
// Empty when the path is empty, nothing is there, or the runtime has no text: beyond 9999, on Windows before 1970.
ZEL_API ZELString GetModifTime(ZELString path) noexcept;

// The bytes of all files that ReadDirectory finds for the pattern; 2147483647 when there are more.
ZEL_API int FileSelectionSize(ZELString selection) noexcept;

// <File Size="1204" Time="Tue Mar  5 07:08:09 2024">
//   <Path>include\ZELString.h</Path> <Name>ZELString.h</Name> <Directory>include</Directory>
// Size in bytes, 0 for a directory. Without the two attributes when nothing is there. The second form has the tag
// "FileRW" and one attribute more: Writable, "1" when the caller may write to it, else "0".
ZEL_API ZELXMLNode GetFileDescription(TAFileName file) noexcept;
ZEL_API ZELXMLNode GetFileDescriptionRW(TAFileName file) noexcept;

#endif
