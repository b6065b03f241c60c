// One pass over the line. Words are written one behind the other; since a word is never longer than its text in the
// line, and its terminator takes the place of a separator, the line's length bounds them all. The pointers stand in
// front of them in the same block.

#include "base/command_line.h"

#include <cstdlib>

#include "base/failure_report.h"

using namespace zel;

namespace {

bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}

std::size_t SkipBlanks(std::string_view line, std::size_t at) {
    while (at < line.size() && IsBlank(line[at])) ++at;
    return at;
}

std::size_t CountBackslashes(std::string_view line, std::size_t at) {
    std::size_t count = 0;
    while (at + count < line.size() && line[at + count] == '\\') ++count;
    return count;
}

// Both readers begin at `at`, which is moved behind the word, and return where the word ends at `out`. Without `out`
// they only move.
char* ReadProgramWord(std::string_view line, std::size_t& at, char* out) {
    bool isQuoted = false;
    for (; at < line.size() && (isQuoted || !IsBlank(line[at])); ++at) {
        if (line[at] == '"')
            isQuoted = !isQuoted;
        else if (out != nullptr)
            *out++ = line[at];
    }
    return out;
}

char* ReadWord(std::string_view line, std::size_t& at, char* out) {
    const auto put = [&out](char character) {
        if (out != nullptr) *out++ = character;
    };
    bool isQuoted = false;
    while (at < line.size() && (isQuoted || !IsBlank(line[at]))) {
        const std::size_t backslashes = CountBackslashes(line, at);
        at += backslashes;
        const bool meetsQuote = at < line.size() && line[at] == '"';
        for (std::size_t i = meetsQuote ? backslashes / 2 : backslashes; i > 0; --i) put('\\');
        if (!meetsQuote) {
            if (backslashes == 0) put(line[at++]);
        } else if (backslashes % 2 != 0) {
            put(line[at++]);
        } else if (isQuoted && at + 1 < line.size() && line[at + 1] == '"') {
            put('"');
            at += 2;
        } else {
            isQuoted = !isQuoted;
            ++at;
        }
    }
    return out;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isUpper = text[i] >= 'A' && text[i] <= 'Z';
        if (static_cast<char>(text[i] + (isUpper ? 'a' - 'A' : 0)) != lower[i]) return false;
    }
    return true;
}

}  // namespace

CommandWords::CommandWords(std::string_view line) noexcept : _line(line) {
    // A word takes two characters of the line at least, the separator included; the last one may have none.
    constexpr std::size_t SpareSlots = 1;
    const std::size_t slots = SpareSlots + (line.size() + 1) / 2 + 1;
    const std::size_t size = slots * sizeof(char*) + line.size() + 1;
    _block = static_cast<char**>(std::malloc(size));
    if (_block == nullptr) {
        ReportAllocFailure("CommandWords", size);
        return;
    }
    _texts = _block + SpareSlots;
    char* out = reinterpret_cast<char*>(_block + slots);
    for (std::size_t at = SkipBlanks(line, 0); at < line.size(); at = SkipBlanks(line, at)) {
        _texts[_count] = out;
        out = _count == 0 ? ReadProgramWord(line, at, out) : ReadWord(line, at, out);
        *out++ = '\0';
        ++_count;
    }
    _texts[_count] = nullptr;
}

CommandWords::~CommandWords() {
    std::free(_block);
}

std::string_view CommandWords::Behind(int index) const noexcept {
    std::size_t at = SkipBlanks(_line, 0);
    for (int i = 0; i <= index; ++i) {
        if (i == 0)
            ReadProgramWord(_line, at, nullptr);
        else
            ReadWord(_line, at, nullptr);
        at = SkipBlanks(_line, at);
    }
    return _line.substr(at);
}

std::size_t zel::ProgramWordLength(std::string_view line) noexcept {
    std::size_t length = 0;
    ReadProgramWord(line, length, nullptr);
    return length;
}

bool zel::IsInterpreterCall(const CommandWords& words) noexcept {
    if (words.Count() < 2 || !EqualsIgnoringCase(words.Texts()[1], "/c")) return false;
    return EqualsIgnoringCase(words.Texts()[0], "cmd") || EqualsIgnoringCase(words.Texts()[0], "cmd.exe");
}
