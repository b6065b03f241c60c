// The end of a tool whose result is printed.
#ifndef EXAMPLES_SUPPORT_OUTPUT_H
#define EXAMPLES_SUPPORT_OUTPUT_H

#include <cstdio>

// The exit code of a tool: `result`, or 2 in place of success if standard output was not written whole.
inline int ExitCode(const char* tool, int result) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return result;
    std::fprintf(stderr, "%s: cannot write to standard output\n", tool);
    return result != 0 ? result : 2;
}

#endif
