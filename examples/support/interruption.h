// Ctrl-C and a request to end, as a flag that a tool looks at where it can stop in good order.
#ifndef EXAMPLES_SUPPORT_INTERRUPTION_H
#define EXAMPLES_SUPPORT_INTERRUPTION_H

#include <csignal>

namespace interruption {

inline volatile std::sig_atomic_t happened = 0;

// From now on the first request is noted; a second one ends the program as ever.
inline void Heed() {
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int number) {
            happened = 1;
            std::signal(number, SIG_DFL);
        });
}

inline bool Happened() {
    return happened != 0;
}

}  // namespace interruption

#endif
