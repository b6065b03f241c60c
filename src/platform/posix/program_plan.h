// Which program a command line names on Linux, and what that program gets as arguments.
#ifndef PLATFORM_POSIX_PROGRAM_PLAN_H
#define PLATFORM_POSIX_PROGRAM_PLAN_H

#include "base/command_line.h"

namespace zel {

// Everything that a child needs for execve, made before there is a child.
//
// The program word is a path value: its backslashes become slashes. Without a separator it is looked for along PATH.
// A name that ends with ".bat" is looked for in the working directory first, and needs no permission to be executed.
// "cmd /c" is the shell with the rest of the line, of which only a leading batch file's name is touched.
struct ProgramPlan {
    ProgramPlan() noexcept = default;
    ProgramPlan(const ProgramPlan&) = delete;
    ProgramPlan& operator=(const ProgramPlan&) = delete;
    ~ProgramPlan();

    // False when memory ran out. The words are used and changed, and must outlive the plan.
    bool Make(const CommandWords& words) noexcept;

    const char* program = "";
    char** arguments = nullptr;
    char** shellArguments = nullptr;   // "/bin/sh", a slot for the path of a script, what follows the program
    const char* searchPath = nullptr;  // null: the program is a path
    char* candidate = nullptr;         // room for a place of the search path and the program's name

private:
    bool MakeInterpreterCall(const CommandWords& words) noexcept;
    bool SetProgram(const char* word) noexcept;

    char* _block = nullptr;  // malloc'd: the program's path, or the shell's text
    char* _shell[4] = {};
};

}  // namespace zel

#endif
