// Splitting, escaping and replacing by their rules, step by step.
#ifndef TESTS_TEXT_TEXT_MODEL_H
#define TESTS_TEXT_TEXT_MODEL_H

#include "support/testing.h"

using Fields = std::vector<std::string>;
constexpr int NoLimit = -1;

// The rules step by step.
inline Fields SplitByRules(const std::string& line, const std::string& separator, int n) {
    Fields fields;
    std::size_t start = 0;
    for (int used = 0; n == NoLimit || used < n - 1;) {
        const std::size_t at = separator.empty() ? std::string::npos : line.find(separator, start);
        if (at == std::string::npos) break;
        if (at > start) fields.push_back(line.substr(start, at - start));
        if (!fields.empty()) ++used;
        start = at + (n == NoLimit ? separator.size() : 1);
    }
    if (start < line.size()) fields.push_back(line.substr(start));
    return fields;
}

inline const std::pair<std::string, std::string> entities[] = {
    {"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}};

inline std::string DecodedByPasses(std::string text) {
    for (const auto& [character, entity] : entities)
        for (std::size_t at; (at = text.find(entity)) != std::string::npos;) text.replace(at, entity.size(), character);
    return text;
}

inline std::string EncodedByPasses(std::string text) {
    for (const auto& [character, entity] : entities)
        for (std::size_t at = 0; (at = text.find(character, at)) != std::string::npos; at += entity.size())
            text.replace(at, 1, entity);
    return text;
}

struct Outcome {
    int result;
    std::string text;
    bool operator==(const Outcome&) const = default;
};

inline bool IsPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$';
}

// The rules step by step; nothing when they would go on for ever.
inline std::optional<Outcome> ReplaceByRules(std::string text, const std::string& word, const std::string& open,
                                             const std::string& close, const std::string& by) {
    int result = 0;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(word, from)) != std::string::npos;) {
        from = at + 1;
        if (at > 0 && IsPart(text[at - 1])) continue;
        std::size_t end = at + word.size();
        bool fits = true;
        for (const std::string& follower : {open, close}) {
            if (!fits || follower.empty()) continue;
            const std::size_t found = text.find(follower, end);
            if (found == std::string::npos) return Outcome{0, text};
            fits = text.substr(end, found - end).find_first_not_of(" \t\n\v\f\r") == std::string::npos;
            end = found + follower.size();
        }
        if (!fits || (at + word.size() < text.size() && IsPart(text[at + word.size()]))) continue;
        text.replace(at, end - at, by);
        from = at;
        if (++result > 100) return std::nullopt;
    }
    return Outcome{result > 0 ? 1 : 0, text};
}

#endif
