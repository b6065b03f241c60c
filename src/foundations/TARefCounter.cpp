// A plain count with two checks that end the process: a release too many, and an end while others have references.

#include "TARefCounter.h"

#include "TADiagnostics.h"

TARefCounter::~TARefCounter() {
    FATAL(_count != 1, "Delete on referenced object");
    // Volatile, or compilers leave it out: until the memory is used again, it shows who releases what is gone.
    *const_cast<volatile unsigned int*>(&_count) = 0;
}

void TARefCounter::Release() {
    FATAL(_count < 1, "Too many release on object");
    if (_count == 1)
        delete this;
    else
        --_count;
}
