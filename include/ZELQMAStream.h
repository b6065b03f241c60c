// Lines of a file in place, as fast as they can be found.
//
//     ZELQMAStream stream;
//     if (stream.fopen("names.txt", "rt") == nullptr) return 1;
//     char* line = nullptr;
//     while (stream.getline(line)) Use(line);
//     stream.fclose();
//
// For files of any size whose every line ends with a line feed: what stands behind the last one is never given. Use
// YAVIFStream where the last line may lack its end.
// The file is the caller's: neither a destructor nor a second fopen closes it. Copies share one file, one position and
// one buffer, and closing in one closes for all. The buffer grows with the longest line and goes with the last copy.
// getline blocks as long as the file does. Distinct streams may be used from distinct threads, copies need a lock.
// When memory runs out, a line that starts with "# Alloc failed in ZELQMAStream" goes to standard output. Nothing
// throws.
#ifndef ZELQMASTREAM_H
#define ZELQMASTREAM_H

#include <cstdio>

#include "ZELExport.h"
#include "ZELShared.h"

class ZEL_API ZELQMAStream {
public:
    ZELQMAStream() noexcept = default;
    ZELQMAStream(const ZELQMAStream&) noexcept = default;
    ZELQMAStream& operator=(const ZELQMAStream&) noexcept = default;
    ~ZELQMAStream();

    // Opens `name`, a path value, with a mode of the C function, and begins at its start. Null, with errno set, when
    // the system refuses, and for a directory; there is no file then. Reads nothing yet; the file has no buffer of its
    // own, so what the caller reads from it first is exactly what getline() leaves out.
    std::FILE* fopen(const char* name, const char* mode) noexcept;
    // 1 when there is no file, else the result of the C function; there is no file afterwards.
    int fclose() noexcept;
    // 1 with the next line in `line`: inside the buffer, NUL-terminated where its line feed was, valid until the next
    // call. It may be changed. 0 at the end, which is final, after a failure and without a file.
    int getline(char*& line) noexcept;
    // 1 when getline() stopped before the end, because reading failed or memory ran out, and without a file; else 0.
    int ReadError() const noexcept;

private:
    class Reader;

    ZELShared<Reader> _reader;  // empty before the first fopen
};

#endif
