// Source text without comments and literals, by the rules: slow, and independent of the library's scanner.
#ifndef TESTS_SUPPORT_STRIP_MODEL_H
#define TESTS_SUPPORT_STRIP_MODEL_H

#include <string>

struct StrippedText {
    std::string text;
    bool complete;
    bool operator==(const StrippedText&) const = default;
};

// The rules of ZELFilePrepro.h, one byte after the other; `flags` are its REMOVE bits.
inline StrippedText StripByRules(const std::string& text, int flags) {
    enum State { None = 0, Line = 1, Block = 2, Prepro = 4, Single = 8, Double = 16 } state = None;
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool more = i + 1 < text.size();
        const auto write = [&](State element, int count) {
            if ((element & flags) == 0) out.append(text, i, static_cast<std::size_t>(count));
            i += static_cast<std::size_t>(count) - 1;
        };
        if (state == Block && c == '*' && more && text[i + 1] == '/') {
            write(Block, 2);
            state = None;
        } else if (state != None && c == '\n') {
            out += c;
            if (state == Line || state == Prepro) state = None;
        } else if (state == Block || state == Line) {
            write(state, 1);
        } else if (c == '\\' && more) {
            write(state, 2);
        } else if (state != None) {
            write(state, 1);
            if ((state == Double && c == '"') || (state == Single && c == '\'')) state = None;
        } else if (c == '/' && more && (text[i + 1] == '*' || text[i + 1] == '/')) {
            state = text[i + 1] == '*' ? Block : Line;
            write(state, 2);
        } else {
            state = c == '"' ? Double : c == '\'' ? Single : c == '#' ? Prepro : None;
            write(state, 1);
        }
    }
    return {out, state == None};
}

#endif
