// Text files of either system, line by line.
#ifndef EXAMPLES_SUPPORT_LINES_H
#define EXAMPLES_SUPPORT_LINES_H

#include "YAVFStream.h"
#include "ZELString.h"

// The next line without its end, be that of one character or of two. False at the end, and when reading fails.
inline bool NextLine(YAVIFStream& stream, ZELString& line) {
    if (stream.getline(line, '\n', 0) != 0) return false;
    if (line.View().ends_with('\r')) line = ZELString(line.View().substr(0, line.View().size() - 1));
    return true;
}

#endif
