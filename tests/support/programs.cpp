#include "support/programs.h"

#include "support/files.h"
#include "support/test_system.h"

ProgramResult RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                         const std::string& outPath) {
    // Through files: nothing can block, whatever the program writes and leaves running.
    const TemporaryFolder folder;
    const std::string out = outPath.empty() ? folder / "out" : outPath;
    ProgramResult result;
    result.exitCode = RunAndWait(name, arguments, out, folder / "err");
    if (outPath.empty()) result.out = WithoutReturns(ReadBytes(out));
    result.err = WithoutReturns(ReadBytes(folder / "err"));
    return result;
}
