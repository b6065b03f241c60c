// Progress lines, error lines, fatal internal errors, and integers as text.
//
// Everything goes to the process's standard streams (the C runtime's `stdout` and `stderr`); there is no log file, no
// level and no environment switch. Each line ends with an end-of-line and a flush. Each line is handed to the stream in
// one piece; lines of several threads may still follow each other in any order. A null text prints as the empty text;
// errors of the streams are ignored.
//
//     Trace("Compilation", 1);                   // "## 03-05.07:08 - Compilation" between empty lines
//     Trace("3 files", 0);                       // "   3 files"
//     FATAL(count < 0, "Cache : negative count"); // goes on, or ends the process with a stack listing
#ifndef TADIAGNOSTICS_H
#define TADIAGNOSTICS_H

#include "ZELExport.h"
#include "ZELString.h"

// Standard output. With `header` zero: three blanks and the text. Otherwise a block of two empty lines,
// "## " + GetShortDate() + " - " + text, and one empty line.
ZEL_API void Trace(const char* text, int header);
ZEL_API void Trace(ZELString text, int header);

// Standard output, although its name says error, so that error lines keep their place among the progress lines:
// "   ERROR :" and the text.
ZEL_API void TraceErr(ZELString text);

// Standard error: the text alone.
ZEL_API void TraceStdErr(const char* text);
ZEL_API void TraceStdErr(ZELString text);

// For broken internal invariants, never for errors of users. Does nothing when `condition` is 0. Otherwise writes a
// banner and `message` to standard error and the call stack to standard output, flushes both, and calls abort(): no
// destructor, exit handler or flush of the caller's own streams runs.
ZEL_API void FATAL(int condition, const char* message);

// The decimal form of `value`.
ZEL_API ZELString toString(int value);

// Writes `value` in `radix` (2 to 36, lower-case letters) with a terminator into `buffer` and returns it. Radix 10
// writes a minus sign; every other radix shows the 32 bits as an unsigned number. A radix outside 2 to 36 gives the
// empty text. `buffer` is the caller's: 33 bytes serve every radix. Null is returned untouched.
ZEL_API char* TAItoa(int value, char* buffer, int radix);

#endif
