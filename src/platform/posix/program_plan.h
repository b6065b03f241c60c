// The program of a command on Linux, and its arguments.
#ifndef PLATFORM_POSIX_PROGRAM_PLAN_H
#define PLATFORM_POSIX_PROGRAM_PLAN_H

#include <memory>

#include "base/command_line.h"
#include "base/memory.h"

namespace zel {

// Everything that a child needs for execve, prepared before the child exists.
//
// The program word is a path value: its backslashes become slashes. Without a separator it is searched along PATH.
// The name of a batch file is searched in the working directory first, and the file needs no permission to be executed.
// The shell serves as the command interpreter; in its text, only the name of a leading batch file is changed.
struct ProgramPlan {
    ProgramPlan() noexcept = default;
    ProgramPlan(const ProgramPlan&) = delete;
    ProgramPlan& operator=(const ProgramPlan&) = delete;

    // False when memory ran out. The plan changes the words of the command, which must outlive it.
    bool Make(const Command& command) noexcept;

    const char* program = "";
    char** arguments = nullptr;
    char** shellArguments = nullptr;   // "/bin/sh", a slot for the path of a script, what follows the program
    const char* searchPath = nullptr;  // null: the program is a path
    char* candidate = nullptr;         // room for a place of the search path and the program's name

private:
    bool MakeInterpreterCall(const Command& command) noexcept;
    bool SetProgram(const char* word) noexcept;

    std::unique_ptr<char[], FreeBlock> _block;  // the path of the program, or the text for the shell
    char* _shell[4] = {};
};

}  // namespace zel

#endif
