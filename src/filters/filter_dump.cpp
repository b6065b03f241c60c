// The column "Anl" was the position at which a matcher that went back had been last. Matching keeps no position in a
// lexeme any more, so it is always -1; the column stays for readers of older dumps.

#include "filters/filter_dump.h"

#include <cstdio>

#include "filters/filter_program.h"

using namespace zel;

void zel::DumpProgram(const FilterProgram& program) noexcept {
    std::printf(" ----------> Regular Expression <----------\n");
    std::printf(" ----  Filter definition <%s> with %d valid characters\n",
                ZELUnicodeString(program.Text()).ConvertToChar(), static_cast<int>(program.Text().size()));
    std::printf(" ----  %d lexemes detected\n", program.LexemeCount());
    std::printf(" ----  Lex / Start : Type  : Size  : First : Last  : Anl\n");
    for (int i = 0; i < program.LexemeCount(); ++i) {
        const FilterLexeme& lexeme = program.Lexeme(i);
        std::printf(" ----  %3d / %4d  : %4d  : %4d  : %4d  : %4d  : %4d\n", i, lexeme.start, lexeme.type, lexeme.size,
                    lexeme.first, lexeme.last, -1);
        if (!lexeme.IsBlock()) continue;
        for (int j = lexeme.first; j <= lexeme.last; ++j) {
            const CharacterOperation& operation = program.Operation(j);
            std::printf("     +++  %2d / %2d : %c : %c\n", j, operation.op, static_cast<char>(operation.c1),
                        static_cast<char>(operation.c2));
        }
    }
    std::printf(" ------------------------------------------\n");
    std::fflush(stdout);
}
