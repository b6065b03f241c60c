// Two slow ways to decide whether a filter matches, on elements instead of text.
#ifndef REGEX_FILTER_MODEL_H
#define REGEX_FILTER_MODEL_H

#include <algorithm>
#include <string>
#include <vector>

struct Element {
    std::u32string text;  // as a filter spells it
    enum Kind { Literal, Star, Dot, Block } kind;
    std::u32string characters;  // of the literal, or of the block
    bool isNegated = false;
    int size = 1;  // -1: any number

    bool Admits(const std::u32string& candidate, std::size_t position) const {
        if (position >= candidate.size()) return false;
        if (kind == Dot) return true;
        return (characters.find(candidate[position]) != characters.npos) != isNegated;
    }
};
using Elements = std::vector<Element>;

inline std::u32string Spell(const Elements& elements) {
    std::u32string text;
    for (const Element& element : elements) text += element.text;
    return text;
}

// Literals that stand together are one, as in a compiled filter.
inline Elements JoinLiterals(const Elements& elements) {
    Elements joined;
    for (const Element& element : elements) {
        if (element.kind == Element::Literal && !joined.empty() && joined.back().kind == Element::Literal) {
            joined.back().characters += element.characters;
        } else {
            joined.push_back(element);
        }
        if (element.kind == Element::Literal) joined.back().size = static_cast<int>(joined.back().characters.size());
    }
    return joined;
}

// One way after the other: variable elements take as little as they can, and what fails goes back to the latest of
// them. 1 or 0, and -1 when `limit` steps do not suffice.
class Walk {
public:
    Walk(const Elements& elements, const std::u32string& text)
        : _elements(JoinLiterals(elements)), _text(text), _tried(_elements.size(), -1) {}

    int Decide(int limit) {
        while (limit-- > 0) {
            if (_index == Count() && _position >= Length()) return 1;
            const bool isAtEnd = _position >= Length() && (_index == Count() || Current().size != -1);
            if (!(_index == Count() || isAtEnd ? false : Step())) {
                if (_isDecided) return 0;
                if (!StepBack()) return 0;
            }
            if (_isMatch) return 1;
        }
        return -1;
    }

private:
    int Count() const { return static_cast<int>(_elements.size()); }
    int Length() const { return static_cast<int>(_text.size()); }
    const Element& Current() const { return _elements[static_cast<std::size_t>(_index)]; }
    int& Tried() { return _tried[static_cast<std::size_t>(_index)]; }
    bool Admits(int position) const { return Current().Admits(_text, static_cast<std::size_t>(position)); }

    // Goes back to the latest element of variable size, which is to be tried anew.
    bool StepBack() {
        do {
            if (_index < Count() && (Current().size != -1 || _isUsedUp)) Tried() = -1;
            _isUsedUp = false;
            if (--_index < 0) return false;
        } while (Current().size != -1);
        _position = Tried();
        return true;
    }

    // False when the current element fails.
    bool Step() {
        if (Current().kind == Element::Star) return StepStar();
        if (Current().kind == Element::Block && Current().size == -1) return StepRun();
        if (Current().kind == Element::Literal) {
            const auto& literal = Current().characters;
            if (_text.compare(static_cast<std::size_t>(_position), literal.size(), literal) != 0) return false;
        } else {
            for (int i = 0; i < Current().size; ++i)
                if (!Admits(_position + i)) return false;
        }
        _position += Current().size;
        ++_index;
        return true;
    }

    bool StepStar() {
        const int anl = Tried() == -1 ? _position : Tried() + 1;
        if (anl > Length()) return !(_isUsedUp = true);
        Tried() = _position = anl;
        int& tried = Tried();
        if (++_index == Count()) return _isMatch = true;
        if (Current().kind != Element::Literal) return true;
        const std::size_t found = _text.find(Current().characters[0], static_cast<std::size_t>(_position));
        // Decided outright, without going back to what stands before.
        if (found == _text.npos || _position + Current().size > Length()) return !(_isDecided = true);
        tried = _position = static_cast<int>(found);
        return true;
    }

    bool StepRun() {
        if (Tried() == -1) {
            Tried() = _position;
        } else if (Admits(_position)) {
            Tried() = ++_position;
        } else {
            return !(_isUsedUp = true);
        }
        ++_index;
        return true;
    }

    const Elements _elements;
    const std::u32string& _text;
    std::vector<int> _tried;
    int _index = 0;
    int _position = 0;
    bool _isUsedUp = false;
    bool _isDecided = false;
    bool _isMatch = false;
};

// Every position that can be reached, element by element.
inline bool MatchesByPositions(const Elements& elements, const std::u32string& text) {
    std::vector<bool> reached(text.size() + 1);
    reached[0] = true;
    for (const Element& element : JoinLiterals(elements)) {
        std::vector<bool> next(text.size() + 1);
        for (std::size_t p = 0; p <= text.size(); ++p) {
            if (!reached[p] && !(element.size == -1 && next[p])) continue;
            if (element.size == -1) {
                next[p] = true;
                if (p < text.size() && (element.kind == Element::Star || element.Admits(text, p))) next[p + 1] = true;
                continue;
            }
            const auto size = static_cast<std::size_t>(element.size);
            bool accepted = p < text.size() && p + size <= text.size();
            if (element.kind == Element::Literal)
                accepted = accepted && text.compare(p, size, element.characters) == 0;
            else
                for (std::size_t i = 0; accepted && i < size; ++i) accepted = element.Admits(text, p + i);
            if (accepted) next[p + size] = true;
        }
        reached = next;
    }
    return reached[text.size()];
}

#endif
