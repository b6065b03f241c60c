// Every call fails once, and every allocation: what a scenario does is done again for each allocation and each call of
// the system that it makes, which fails alone, or with all after it.
//
// The sweep refuses silent success first of all: where a scenario reports success, all that it shows must be as without
// a failure. Whatever it reports, no descriptor, thread or process stays, and no file but those of a whole round.
#ifndef TESTS_FAULTS_SWEEP_H
#define TESTS_FAULTS_SWEEP_H

#include "support/faults.h"
#include "support/testing.h"

// One round: what is called between Begin() and End() may fail.
class Round {
public:
    explicit Round(const std::string& folder) : _folder(folder) {}

    // An empty folder of this round's own, which is the working directory too.
    std::string operator/(const std::string& name) const { return _folder + "/" + name; }
    void Begin();
    // Whether something failed.
    bool End();
    // What was printed between, with "\n" on both targets.
    const std::string& Said() const { return _said; }

    // What fails; null and 0 while nothing does.
    FaultyCall* call = nullptr;
    const Fault* fault = nullptr;
    int allocation = 0;
    int number = 0;
    zel::Afterwards afterwards = zel::Afterwards::Succeed;

private:
    const std::string _folder;
    std::string _said;
    bool _isBetween = false;
    bool _hasFailed = false;
};

// What a round reports and shows.
struct Outcome {
    bool success;
    std::string state;
};

// A test of its own, made by its constructor. `run` prepares, acts between Begin() and End(), and looks; it EXPECTs
// what must hold whatever failed.
class Scenario {
public:
    // Of each call, the first `most` fail; 0: all.
    Scenario(const char* name, Outcome (*run)(Round& round), int most = 0);
};

#endif
