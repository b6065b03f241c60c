// The rows of docs/commands.md: what stands behind the program in a command text, and the arguments that arrive.
#ifndef SUPPORT_COMMAND_ROWS_H
#define SUPPORT_COMMAND_ROWS_H

#include <string>
#include <vector>

struct CommandRow {
    std::string text;
    std::vector<std::string> words;
};

inline const std::vector<CommandRow> commandRows = {
    {"a b", {"a", "b"}},
    {"a \t  b ", {"a", "b"}},
    {R"("a b" c)", {"a b", "c"}},
    {R"(a"b c"d)", {"ab cd"}},
    {R"("" a)", {"", "a"}},
    {R"(C:\x\y\)", {R"(C:\x\y\)"}},
    {R"(\"a\")", {R"("a")"}},
    {R"(a\\b)", {R"(a\\b)"}},
    {R"("a\\" b)", {R"(a\)", "b"}},
    {R"("a\\\" b")", {R"(a\" b)"}},
    {R"("a""b c")", {R"(a"b c)"}},
    {R"("a b)", {"a b"}},
    {R"('a b')", {"'a", "b'"}},
    {R"($HOME %PATH% ~ ; & | >)", {"$HOME", "%PATH%", "~", ";", "&", "|", ">"}},
};

#endif
