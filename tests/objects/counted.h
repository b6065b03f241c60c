// Objects and paths that tell when they end.
#ifndef TESTS_OBJECTS_COUNTED_H
#define TESTS_OBJECTS_COUNTED_H

#include <string>

#include "TAPObject.h"

// Writes its letter into a log as it ends.
template <class Base>
struct Logged : Base {
    template <class... Arguments>
    explicit Logged(std::string& log, char letter, Arguments... arguments)
        : Base(arguments...), _log(&log), _letter(letter) {}
    ~Logged() override { *_log += _letter; }

private:
    std::string* _log;
    char _letter;
};
using LoggedObject = Logged<TAPObject>;
using LoggedPath = Logged<TAPPath>;

#endif
