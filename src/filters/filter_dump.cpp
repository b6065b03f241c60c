// The compiled form as text, for whoever looks for a fault in a filter.

#include <cstdio>

#include "TAUnicodeRegularExpression.h"

using namespace zel;

void TAUnicodeRegularExpression::_print() const noexcept {
    std::printf(" ----------> Regular Expression <----------\n");
    std::printf(" ----  Filter definition <%s> with %d valid characters\n", _filter.ConvertToChar(), _length);
    std::printf(" ----  %d lexemes detected\n", _lastLexeme);
    std::printf(" ----  Lex / Start : Type  : Size  : First : Last  : Anl\n");
    for (int i = 0; i < _lastLexeme; ++i) {
        const Lexeme& lexeme = _lexemes[i];
        std::printf(" ----  %3d / %4d  : %4d  : %4d  : %4d  : %4d  : %4d\n", i, lexeme.start, lexeme.type, lexeme.size,
                    lexeme.first, lexeme.last, lexeme.anl);
        if (lexeme.first == -1) continue;
        for (int j = lexeme.first; j <= lexeme.last; ++j) {
            const CharacterOperation& operation = _operations[j];
            std::printf("     +++  %2d / %2d : %c : %c\n", j, operation.op, static_cast<char>(operation.c1),
                        static_cast<char>(operation.c2));
        }
    }
    std::printf(" ------------------------------------------\n");
    std::fflush(stdout);
}
