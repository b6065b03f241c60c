#include "support/test_system.h"

#include <windows.h>

#include <filesystem>

#include "support/windows/command_line.h"

namespace {

// For the child's standard streams: open for it to inherit.
HANDLE OpenForChild(const std::string& path) {
    if (path == ClosedStream) return INVALID_HANDLE_VALUE;
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS, 0,
                       nullptr);
}

}  // namespace

int RunAndWait(const std::string& name, const std::vector<std::string>& arguments, const std::string& outPath,
               const std::string& errPath) {
    std::string line = Quoted(FolderOfThisProgram() + name + ".exe");
    for (const std::string& argument : arguments) line += ' ' + Quoted(argument);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = OpenForChild(outPath);
    start.hStdError = OpenForChild(errPath);
    PROCESS_INFORMATION child;
    const BOOL started =
        CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    if (!started) return -1;
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(child.hProcess, &exitCode);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return static_cast<int>(exitCode);
}

std::string FullDevice() {
    return {};
}

std::string EndlessDevice() {
    return "NUL";
}

bool MakeNamedPipe(const std::string&) {
    return false;
}

OrdinaryUser::OrdinaryUser() : _ordinary(false) {}

OrdinaryUser::~OrdinaryUser() = default;

Interruptions::Interruptions() = default;

Interruptions::~Interruptions() = default;
