// Patterns and formulas of them by their rules, step by step.
#ifndef TESTS_TEXT_WILDCARD_MODEL_H
#define TESTS_TEXT_WILDCARD_MODEL_H

#include "support/testing.h"

inline std::vector<std::string> PiecesBetween(const std::string& text, const std::string& separator) {
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) pieces.push_back(text.substr(start, end - start));
        start = end + separator.size();
    }
    return pieces;
}

// The rules of patterns step by step.
inline bool MatchByRules(const std::string& text, const std::string& pattern) {
    if (pattern == "*" || pattern == text) return true;
    const std::vector<std::string> pieces = PiecesBetween(pattern, "*");
    if (pieces.empty()) return false;
    if (pattern.front() != '*' && !text.starts_with(pieces.front())) return false;
    if (pattern.back() != '*' && pieces.back().size() <= text.size() && !text.ends_with(pieces.back())) return false;
    std::size_t from = 0;
    for (const std::string& piece : pieces) {
        from = text.find(piece, from);
        if (from == std::string::npos) return false;
    }
    return true;
}

// The rules of formulas step by step.
inline bool EvaluateByRules(const std::string& text, std::string formula) {
    if (formula.starts_with("!(") && formula.ends_with(")"))
        return formula.size() > 3 && !EvaluateByRules(text, formula.substr(2, formula.size() - 3));
    while (formula.starts_with("(") && formula.ends_with(")")) formula = formula.substr(1, formula.size() - 2);
    std::string copy = formula;
    char kind = '\0';
    int depth = 0;
    for (std::size_t i = 0; i < copy.size(); ++i) {
        depth += (copy[i] == '(') - (copy[i] == ')');
        if (depth != 0 || (copy.compare(i, 2, "&&") != 0 && copy.compare(i, 2, "||") != 0)) continue;
        if (kind != '\0' && kind != copy[i]) return false;
        kind = copy[i];
        copy.replace(i++, 2, "~~");
    }
    if (depth != 0) return false;
    if (kind != '\0') {
        for (const std::string& piece : PiecesBetween(copy, "~~"))
            if (EvaluateByRules(text, piece) != (kind == '&')) return kind != '&';
        return kind == '&';
    }
    bool isNegated = false;
    while (formula.size() > 1) {
        if (formula.front() == '!')
            isNegated = !isNegated;
        else if (!formula.starts_with("(") || !formula.ends_with(")"))
            break;
        formula = formula[0] == '(' && formula.size() < 3 ? "" : formula.substr(1);
    }
    return MatchByRules(text, formula) != isNegated;
}

#endif
