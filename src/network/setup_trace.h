// The lines by which users see how a connection comes about, and how long that takes.
#ifndef NETWORK_SETUP_TRACE_H
#define NETWORK_SETUP_TRACE_H

#include <ctime>

namespace zel {

// Lines of one call that opens a socket, on standard output and flushed at once. The environment decides whether there
// are any: TASocketIPv6EnableTraces (set) the steps, TASocketIPv6EnablePerfoTraces (neither empty nor the other side's
// word) the time.
class SetupTrace {
public:
    // `operation` is "OpenServer" or "OpenClient"; the words are as in WantsBothFamilies.
    SetupTrace(const char* operation, const char* otherSide) noexcept;

    // The line "operation: step" with the arguments of a printf format.
    template <class... Arguments>
    void Step(const char* format, Arguments... arguments) const noexcept {
        if (_showsSteps) Print(format, arguments...);
    }
    // The processor time since this call began.
    void Time(const char* step) const noexcept;

private:
    void Print(const char* format, ...) const noexcept;

    const char* _operation;
    bool _showsSteps;
    bool _showsTime;
    std::clock_t _begin;
};

// Whether TASocketIPv6 is set to something else than nothing and the word of the other side, in either case of letters:
// "CLIENTONLY" for a server, "SERVERONLY" for a client.
bool WantsBothFamilies(const char* otherSide) noexcept;

}  // namespace zel

#endif
