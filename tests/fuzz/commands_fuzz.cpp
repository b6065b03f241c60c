// Command texts: their words by the rule, byte by byte; quoted words come back; both tries.
#include "base/command_line.h"
#include "fuzz/input.h"
#include "support/quoted.h"

namespace {

using Words = std::vector<std::string>;

Words WordsByRule(const std::string& line) {
    Words words;
    for (std::size_t at = 0;;) {
        at = line.find_first_not_of(" \t", at);
        if (at == std::string::npos) return words;
        const bool isProgram = words.empty();
        bool isQuoted = false;
        std::string word;
        for (; at < line.size() && (isQuoted || (line[at] != ' ' && line[at] != '\t')); ++at) {
            std::size_t backslashes = 0;
            while (!isProgram && line[at] == '\\') ++backslashes, ++at;
            const bool isQuote = line[at] == '"';  // line[line.size()] is a NUL
            word.append(isQuote ? backslashes / 2 : backslashes, '\\');
            if (!isQuote && backslashes > 0) {
                --at;  // what follows is looked at by itself
            } else if (!isQuote) {
                word += line[at];
            } else if (backslashes % 2 == 1) {
                word += '"';
            } else if (!isProgram && isQuoted && line[at + 1] == '"') {
                word += line[at++];
            } else {
                isQuoted = !isQuoted;
            }
        }
        words.push_back(word);
    }
}

Words WordsOf(const CommandWords& words) {
    return {words.Texts(), words.Texts() + words.Count()};
}

void CheckCommand(const Command& command, const std::string& text) {
    const std::string line = text.find(".bat") == std::string::npos ? text : "cmd /c " + text;
    ASSERT_TRUE(command.IsComplete());
    ASSERT_EQ(command.Line(), line);
    ASSERT_EQ(WordsOf(command.Words()), WordsByRule(line));
    for (int i = 0; i < command.Words().Count(); ++i)
        ASSERT_TRUE(std::string_view(line).ends_with(command.Words().Behind(i)));
    ASSERT_TRUE(command.InterpreterText().empty() || command.IsInterpreterCall());
    ASSERT_TRUE(std::string_view(line).ends_with(command.InterpreterText()));
    ASSERT_TRUE(command.InterpreterText().ends_with(command.BehindBatchFile()));
    ASSERT_TRUE(command.BatchFile().empty() || IsBatchName(command.BatchFile()));
}

}  // namespace

FUZZ_TARGET(input) {
    std::string text = input.Flip() ? input.Spell({" ", "\t", "\"", "\\", "\\\\", "a", "tool", ".bat", "cmd", "/c",
                                                   ".exe", "cmd.exe", "CMD", "\xC3\xA9"},
                                                  40)
                                    : input.Text(400);
    std::erase(text, '\0');
    const Command command(text);
    CheckCommand(command, text);
    const Command second = command.SecondTry();
    ASSERT_TRUE(second.IsComplete());
    if (command.Words().Count() > 0) {
        ASSERT_TRUE(std::string_view(second.Line()).find(".bat") != std::string_view::npos);
    }
    Words words{"p"};
    std::string line = "p";
    while (input.remaining_bytes() > 0) {
        words.push_back(input.Text(40));
        std::erase(words.back(), '\0');
        line += ' ' + Quoted(words.back());
    }
    ASSERT_EQ(WordsOf(CommandWords(line)), words);
}
