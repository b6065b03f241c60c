// The shell serves scripts without "#!", batch files that may not be executed, and "cmd /c".
//
// The vector of the words has a spare slot in front of it for the shell: its own vector is the same one, a slot
// earlier, and the program's word gives way to the path of the script only when the program has been refused already.

#include "platform/posix/program_plan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/failure_report.h"
#include "base/memory.h"
#include "base/slash_path.h"

using namespace zel;

namespace {

constexpr const char* Shell = "/bin/sh";

char* AllocateText(std::size_t size) {
    char* const block = AllocateArray<char>(size);
    if (block == nullptr) ReportAllocFailure("ProgramPlan", size);
    return block;
}

bool IsFile(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

// Writes the native form of a program word, "./" in front when it is a batch file of the working directory, to `path`,
// which has room for two bytes more than the word.
void WriteProgram(std::string_view word, char* path) {
    std::memcpy(path, "./", 2);
    char* const name = path + 2;
    std::memcpy(name, word.data(), word.size());
    name[word.size()] = '\0';
    if (NeedsSlashPath(name)) WriteSlashPath(name, name);
    const bool isLocalBatch = IsBatchName(word) && std::strchr(name, '/') == nullptr && IsFile(name);
    if (!isLocalBatch) std::memmove(path, name, std::strlen(name) + 1);
}

bool NeedsShell(const char* path) {
    if (!IsBatchName(path) || std::strchr(path, '/') == nullptr) return false;
    return IsFile(path) && access(path, X_OK) != 0 && access(path, R_OK) == 0;
}

// In single quotes, in which a single quote cannot stand. `out` has room for four times the path and two bytes.
char* WriteQuoted(const char* path, char* out) {
    *out++ = '\'';
    for (; *path != '\0'; ++path) {
        if (*path == '\'') {
            std::memcpy(out, "'\\'", 3);
            out += 3;
        }
        *out++ = *path;
    }
    *out++ = '\'';
    return out;
}

// The shell's form of "NAME.bat rest": the name as a path, in quotes, after "/bin/sh" when the shell must read it.
void WriteBatchCall(const Command& command, char* path, char* out) {
    const std::string_view rest = command.BehindBatchFile();
    WriteProgram(command.BatchFile(), path);
    if (NeedsShell(path)) out += std::sprintf(out, "%s ", Shell);
    out = WriteQuoted(path, out);
    std::memcpy(out, rest.data(), rest.size());
    out[rest.size()] = '\0';
}

}  // namespace

bool ProgramPlan::Make(const Command& command) noexcept {
    if (command.IsInterpreterCall()) return MakeInterpreterCall(command);
    const CommandWords& words = command.Words();
    arguments = words.Texts();
    if (words.Count() == 0) return true;  // the empty name, which is no program
    if (!SetProgram(arguments[0])) return false;
    arguments[0] = const_cast<char*>(program);
    shellArguments = arguments - 1;
    shellArguments[0] = const_cast<char*>(Shell);
    if (NeedsShell(program)) {
        arguments = shellArguments;
        program = Shell;
    }
    return true;
}

bool ProgramPlan::SetProgram(const char* word) noexcept {
    const char* const path = std::getenv("PATH");
    searchPath = path != nullptr ? path : "/bin:/usr/bin";
    const std::size_t length = std::strlen(word) + 3;
    _block.reset(AllocateText(2 * length + std::strlen(searchPath) + 1));
    if (_block == nullptr) return false;
    WriteProgram(word, _block.get());
    program = _block.get();
    candidate = _block.get() + length;
    if (*program == '\0' || std::strchr(program, '/') != nullptr) searchPath = nullptr;
    return true;
}

bool ProgramPlan::MakeInterpreterCall(const Command& command) noexcept {
    const std::string_view text = command.InterpreterText();
    const std::size_t pathRoom = command.BatchFile().size() + 3;
    _block.reset(AllocateText(pathRoom + text.size() + 4 * pathRoom + 16));
    if (_block == nullptr) return false;
    char* const shellText = _block.get() + pathRoom;
    if (!command.BatchFile().empty()) {
        WriteBatchCall(command, _block.get(), shellText);
    } else {
        if (!text.empty()) std::memcpy(shellText, text.data(), text.size());
        shellText[text.size()] = '\0';
    }
    _shell[0] = const_cast<char*>("sh");
    _shell[1] = const_cast<char*>("-c");
    _shell[2] = shellText;
    program = Shell;
    arguments = shellArguments = _shell;
    return true;
}
