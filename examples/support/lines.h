// Text files of either system, line by line.
#ifndef EXAMPLES_SUPPORT_LINES_H
#define EXAMPLES_SUPPORT_LINES_H

#include "YAVFStream.h"
#include "ZELString.h"

// The next line without its end, be that of one character or of two. False at the end, when reading fails, and when
// memory runs out.
inline bool NextLine(YAVIFStream& stream, ZELString& line) {
    if (stream.getline(line, '\n', 0) != 0) return false;
    if (line.View().ends_with('\r')) line = ZELString(line.View().substr(0, line.View().size() - 1));
    return !line.IsIncomplete();
}

// After the last line: whether the stream was read to its end. `line` is the one that was passed last.
inline bool WasReadWhole(const YAVIFStream& stream, const ZELString& line) {
    return stream.isOpen() != 0 && stream.ReadError() == 0 && stream.GetErrno() == 0 && !line.IsIncomplete();
}

#endif
