// Calls of the system that fail when a test wants them to.
//
// The linker leads each call of a table (posix/faults.cpp, windows/faults.cpp) that the objects of a test program make
// through a wrapper there (--wrap, see tests/faults/CMakeLists.txt); the library has no part in it. What the system's
// own libraries call is not led anywhere.
#ifndef TESTS_SUPPORT_FAULTS_H
#define TESTS_SUPPORT_FAULTS_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "base/memory.h"

// One way in which a call fails.
struct Fault {
    enum Kind {
        Refused,    // the call is not made
        Late,       // made, but the result is a failure: a file that is closed and could not be written
        Partial,    // made for one byte alone
        Transient,  // refused, and made when it is tried again, even where all calls fail
    };
    const char* name;
    long code;
    Kind kind = Refused;
};

#define REFUSED(code) \
    Fault {           \
#code, code   \
    }
#define TRANSIENT(code)               \
    Fault {                           \
#code, code, Fault::Transient \
    }
#define LATE(code)               \
    Fault {                      \
#code, code, Fault::Late \
    }
#define PARTIAL                       \
    Fault {                           \
        "one byte", 0, Fault::Partial \
    }

// A call of the table.
struct FaultyCall {
    FaultyCall(const char* callName, std::initializer_list<Fault> ways);

    const char* const name;
    const std::vector<Fault> faults;
    std::atomic<int> count = 0;  // calls since the last BeginFaults()

    // Every call of the table.
    static std::vector<FaultyCall*>& All();
};

// From now on calls are counted, and from the `number`th of `call` on (1: the next) one fails, or all. Without a call
// they are counted only.
void BeginFaults(FaultyCall* call, const Fault* fault, int number, zel::Afterwards afterwards);
// Whether one has failed.
bool EndFaults();

// For wrappers: counts a call; how it must fail, or null.
const Fault* CountCall(FaultyCall& call);

template <class Result>
Result PassOn(FaultyCall& call, void (*setError)(long), Result failed, auto&& real) {
    const Fault* const fault = CountCall(call);
    if (fault == nullptr) return real(false);
    if (fault->kind == Fault::Partial) return real(true);
    if (fault->kind == Fault::Late) real(false);
    setError(fault->code);
    return failed;
}

#endif
