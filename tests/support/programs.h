// Running a program of this build from a test.
#ifndef TESTS_SUPPORT_PROGRAMS_H
#define TESTS_SUPPORT_PROGRAMS_H

#include <string>
#include <vector>

struct ProgramResult {
    int exitCode;     // 128 + the signal after a death by signal; -1 when the program could not be started
    std::string out;  // line ends are "\n" on both targets
    std::string err;
};

// Runs the program `name` that stands beside the test and waits for its end. `outPath`: where its standard output goes
// instead of into the result.
ProgramResult RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                         const std::string& outPath = {});

#endif
