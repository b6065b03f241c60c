// Command texts: how they become words. The table in docs/commands.md shows the rule.
#ifndef BASE_COMMAND_LINE_H
#define BASE_COMMAND_LINE_H

#include <cstddef>
#include <string_view>

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

    // False when memory ran out (said on standard output).
    bool AreComplete() const noexcept { return _texts != nullptr; }
    int Count() const noexcept { return _count; }
    // Count() terminated texts, which may be changed in place, and a null. There is a slot to be used in front of them.
    char** Texts() const noexcept { return _texts; }

    // What stands in the line behind the word of that index, from 0; not taken apart, without blanks in front.
    std::string_view Behind(int index) const noexcept;

private:
    std::string_view _line;
    char** _block = nullptr;
    char** _texts = nullptr;
    int _count = 0;
};

// The length that the program word takes at the beginning of a line, quotes included.
std::size_t ProgramWordLength(std::string_view line) noexcept;

// Whether the line asks the command interpreter: "cmd" or "cmd.exe", then "/c", in any case.
bool IsInterpreterCall(const CommandWords& words) noexcept;

}  // namespace zel

#endif
