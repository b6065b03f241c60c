// Words need one pass over the line. They are written one after the other; since a word is never longer than its text
// in the line, and its terminator takes the place of a separator, the length of the line bounds them all. The pointers
// precede them in the same block.
//
// A command owns its line, and its words and views refer to it.

#include "base/command_line.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "base/failure_report.h"

using namespace zel;

namespace {

constexpr std::string_view BatchEnding = ".bat";
constexpr std::string_view InterpreterPrefix = "cmd /c ";

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

// Both readers begin at `at`, move it past the word, and return the end of the word at `out`. If `out` is null, they
// only move `at`.
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

bool AsksInterpreter(const CommandWords& words) {
    if (words.Count() < 2 || !EqualsIgnoringCase(words.Texts()[1], "/c")) return false;
    return EqualsIgnoringCase(words.Texts()[0], "cmd") || EqualsIgnoringCase(words.Texts()[0], "cmd.exe");
}

std::string_view WithoutQuotes(std::string_view word) {
    const bool isQuoted = word.size() >= 2 && word.front() == '"' && word.back() == '"';
    return isQuoted ? word.substr(1, word.size() - 2) : word;
}

char* Put(std::string_view text, char* out) {
    if (!text.empty()) std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

char* AllocateLine(std::size_t size) {
    char* const line = AllocateArray<char>(size);
    if (line == nullptr) ReportAllocFailure("Command", size);
    return line;
}

char* MakeLine(std::string_view text) {
    const bool isBatch = text.find(BatchEnding) != std::string_view::npos;
    const std::string_view prefix = isBatch ? InterpreterPrefix : std::string_view();
    char* const line = AllocateLine(prefix.size() + text.size() + 1);
    if (line != nullptr) *Put(text, Put(prefix, line)) = '\0';
    return line;
}

char* MakeSecondLine(std::string_view line) {
    char* const second = AllocateLine(line.size() + BatchEnding.size() + 1);
    if (second == nullptr) return nullptr;
    char* out = second;
    for (std::size_t at = line.find_first_not_of(' '); at < line.size(); at = line.find_first_not_of(' ', at)) {
        const bool isFirst = out == second;
        if (!isFirst) *out++ = ' ';
        const std::size_t end = std::min(line.find(' ', at), line.size());
        out = Put(line.substr(at, end - at), out);
        if (isFirst) out = Put(BatchEnding, out);
        at = end;
    }
    *out = '\0';
    return second;
}

}  // namespace

CommandWords::CommandWords(std::string_view line) noexcept : _line(line) {
    // A word takes two characters of the line at least, the separator included; the last one may have none.
    constexpr std::size_t SpareSlots = 1;
    const std::size_t slots = SpareSlots + (line.size() + 1) / 2 + 1;
    const std::size_t size = slots * sizeof(char*) + line.size() + 1;
    _block = static_cast<char**>(Allocate(size));
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
    Free(_block);
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

bool zel::IsBatchName(std::string_view name) noexcept {
    return name.ends_with(BatchEnding);
}

Command::Command(std::string_view text) noexcept : Command(Text(MakeLine(text))) {}

Command::Command(Text line) noexcept
    : _line(std::move(line)),
      _words(_line ? std::string_view(_line.get()) : std::string_view()),
      _isInterpreterCall(AsksInterpreter(_words)) {
    if (!_isInterpreterCall) return;
    _interpreterText = _words.Behind(1);
    std::size_t length = 0;
    ReadProgramWord(_interpreterText, length, nullptr);
    const std::string_view name = WithoutQuotes(_interpreterText.substr(0, length));
    if (!IsBatchName(name)) return;
    _batchFile = name;
    _behindBatchFile = _interpreterText.substr(length);
}

Command Command::SecondTry() const noexcept {
    return Command(Text(MakeSecondLine(_line.get())));
}
