// How far a tool is: one line that rewrites itself where a person looks on, and a plain line now and then elsewhere.
#ifndef EXAMPLES_SUPPORT_PROGRESS_H
#define EXAMPLES_SUPPORT_PROGRESS_H

#include <chrono>
#include <cstdio>

#include "ZELString.h"
#include "support/machine.h"

class Progress {
public:
    // Calls `text()` for the line only when it is time for one.
    template <class Text>
    void Show(Text text) {
        const auto pause = _terminal ? std::chrono::milliseconds(100) : std::chrono::milliseconds(5000);
        if (Clock::now() - _shown < pause) return;
        _shown = Clock::now();
        const ZELString line = text();
        std::fprintf(stderr, _terminal ? "\r   %-70s" : "   %s\n", line.CastToCharPtr());
        std::fflush(stderr);
    }
    // Makes room for a line that stays.
    void Clear() {
        if (!_terminal) return;
        std::fprintf(stderr, "\r%74s\r", "");
        std::fflush(stderr);
    }
    ~Progress() { Clear(); }

private:
    using Clock = std::chrono::steady_clock;

    bool _terminal = IsTerminal(stderr);
    Clock::time_point _shown = Clock::now();
};

#endif
