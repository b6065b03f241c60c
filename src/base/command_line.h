// Command texts: their words, and the decisions about batch files. docs/commands.md shows the rules in tables.
#ifndef BASE_COMMAND_LINE_H
#define BASE_COMMAND_LINE_H

#include <cstddef>
#include <memory>
#include <string_view>

#include "base/memory.h"

namespace zel {

// The words of a command line as the C runtime of Windows gives them to a program. The first one is the program: quotes
// group, nothing is escaped. In the others, blanks and tabs separate outside quotes; 2n backslashes and a quote give n
// backslashes and open or close; 2n + 1 give n and a quote; two quotes inside quotes give one, and the quotes stay
// open; other backslashes stand for themselves. Needs one block of memory, in proportion to the line.
class CommandWords {
public:
    explicit CommandWords(std::string_view line) noexcept;
    CommandWords(const CommandWords&) = delete;
    CommandWords& operator=(const CommandWords&) = delete;
    ~CommandWords();

    // False when memory ran out, which is reported on standard output.
    bool AreComplete() const noexcept { return _texts != nullptr; }
    int Count() const noexcept { return _count; }
    // Count() terminated texts, which may be changed in place, and a null. One free slot precedes them.
    char** Texts() const noexcept { return _texts; }

    // The rest of the line after the word of that index, from 0, unchanged but without leading blanks.
    std::string_view Behind(int index) const noexcept;

private:
    std::string_view _line;
    char** _block = nullptr;
    char** _texts = nullptr;
    int _count = 0;
};

// Whether a name is that of a batch file: it ends with ".bat".
bool IsBatchName(std::string_view name) noexcept;

// A command text and all decisions about it: its line, its words, whether the command interpreter runs it, which batch
// file it names, and the command of the second try. Every system launches this value.
//
// | text            | line                   | interpreter's text | batch file  | line of the second try     |
// |-----------------|------------------------|--------------------|-------------|----------------------------|
// | `tool  x`       | `tool  x`              |                    |             | `tool.bat x`               |
// | `build.bat all` | `cmd /c build.bat all` | `build.bat all`    | `build.bat` | `cmd.bat /c build.bat all` |
// | `tool x.bat`    | `cmd /c tool x.bat`    | `tool x.bat`       |             | `cmd.bat /c tool x.bat`    |
// | `cmd /c dir`    | `cmd /c dir`           | `dir`              |             | `cmd.bat /c dir`           |
class Command {
public:
    // The text need not outlive the command.
    explicit Command(std::string_view text) noexcept;

    // False when memory ran out, which is reported on standard output. Nothing else may be called then.
    bool IsComplete() const noexcept { return _line != nullptr && _words.AreComplete(); }

    // The text, after "cmd /c " when it contains ".bat" anywhere. Terminated.
    const char* Line() const noexcept { return _line.get(); }
    const CommandWords& Words() const noexcept { return _words; }

    // Whether the line asks the command interpreter: "cmd" or "cmd.exe", then "/c", in any case.
    bool IsInterpreterCall() const noexcept { return _isInterpreterCall; }
    // The line after "/c", for the interpreter.
    std::string_view InterpreterText() const noexcept { return _interpreterText; }
    // The first word of the interpreter's text, without quotes around it, when that is the name of a batch file.
    std::string_view BatchFile() const noexcept { return _batchFile; }
    // The interpreter's text after the batch file.
    std::string_view BehindBatchFile() const noexcept { return _behindBatchFile; }

    // The command to try when the program of this one cannot be started: ".bat" follows the first word. Words end at
    // blanks here, also inside quotes, and one blank separates them. No further "cmd /c " is added.
    Command SecondTry() const noexcept;

private:
    using Text = std::unique_ptr<char[], FreeBlock>;

    explicit Command(Text line) noexcept;

    Text _line;  // null without memory
    CommandWords _words;
    bool _isInterpreterCall;
    std::string_view _interpreterText;
    std::string_view _batchFile;
    std::string_view _behindBatchFile;
};

}  // namespace zel

#endif
