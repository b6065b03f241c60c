// Filters by trying one way after the other.
#ifndef TESTS_FILTERS_FILTER_MODEL_H
#define TESTS_FILTERS_FILTER_MODEL_H

#include "support/testing.h"

struct Element {
    std::u32string text;  // as a filter spells it
    enum Kind { Literal, Star, Dot, Block } kind;
    std::u32string characters;  // of the literal, or of the block
    int size = 1;               // -1: any number
    bool isNegated = false;
};
using Elements = std::vector<Element>;

inline const Elements allElements{
    {U"a", Element::Literal, U"a"},
    {U"ba", Element::Literal, U"ba", 2},
    {U"*", Element::Star, U"", -1},
    {U".", Element::Dot, U""},
    {U"[a\u03A9]", Element::Block, U"a\u03A9"},
    {U"[^a-a]", Element::Block, U"a", 1, true},
    {U"[a]*", Element::Block, U"a", -1},
    {U"[a-b]*", Element::Block, U"ab", -1},
    {U"[^b\u03A9]*", Element::Block, U"b\u03A9", -1, true},
    {U"[ab]\\{2\\}", Element::Block, U"ab", 2},
    {U"[b]\\{0\\}", Element::Block, U"b", 0},
};

inline std::u32string Spell(const Elements& elements) {
    std::u32string text;
    for (const Element& element : elements) text += element.text;
    return text;
}

// Whether the elements in this order are what their text compiles to.
inline bool CanBeSpelled(const Elements& elements) {
    for (std::size_t i = 1; i < elements.size(); ++i) {
        if (elements[i].kind == Element::Star && elements[i - 1].text.ends_with(U']')) return false;
        if (elements[i].kind == Element::Literal && elements[i - 1].kind == Element::Literal) return false;
    }
    return !elements.back().text.ends_with(U'}');
}

// Tries one way after the other: elements of variable size take as little as they can, and what fails goes back to the
// latest of them.
class Walk {
public:
    Walk(const Elements& elements, const std::u32string& text)
        : _elements(elements), _text(text), _tried(elements.size(), None) {}

    // 1 or 0, and -1 when `limit` steps do not suffice.
    int Decide(int limit) {
        Outcome outcome = Passes;
        while (limit-- > 0) {
            if (_index < _elements.size())
                outcome = _position < _text.size() || Current().size == -1 ? Step() : Fails;
            else
                outcome = _position < _text.size() ? Fails : Match;
            if (outcome == Fails && !StepBack()) outcome = NoMatch;
            if (outcome >= NoMatch) return outcome == Match ? 1 : 0;
        }
        return -1;
    }

private:
    static constexpr std::size_t None = std::u32string::npos;
    enum Outcome { Passes, Fails, NoMatch, Match };

    const Element& Current() const { return _elements[_index]; }
    bool IsAdmitted(std::size_t position) const {
        if (position >= _text.size()) return false;
        return Current().kind == Element::Dot ||
               (Current().characters.find(_text[position]) != None) != Current().isNegated;
    }

    bool StepBack() {
        while (_index-- > 0) {
            if (Current().size == -1 && _tried[_index] != None) {
                _position = _tried[_index];
                return true;
            }
            _tried[_index] = None;
        }
        return false;
    }

    Outcome Step() {
        std::size_t& tried = _tried[_index];
        if (Current().kind == Element::Star) return StepStar(tried);
        if (Current().size == -1) {
            if (tried != None && !IsAdmitted(_position)) {
                tried = None;
                return Fails;
            }
            tried = tried == None ? _position : ++_position;
        } else {
            const auto size = static_cast<std::size_t>(Current().size);
            if (Current().kind == Element::Literal && _text.compare(_position, size, Current().characters) != 0)
                return Fails;
            for (std::size_t i = 0; i < size && Current().kind != Element::Literal; ++i)
                if (!IsAdmitted(_position + i)) return Fails;
            _position += size;
        }
        ++_index;
        return Passes;
    }

    Outcome StepStar(std::size_t& tried) {
        tried = tried == None ? _position : tried + 1;
        if (tried > _text.size()) {
            tried = None;
            return Fails;
        }
        _position = tried;
        if (++_index == _elements.size()) return Match;
        if (Current().kind != Element::Literal) return Passes;
        // A failure here ends the walk, although other ways may be left: none of them could match.
        if (_position + Current().characters.size() > _text.size()) return NoMatch;
        tried = _position = _text.find(Current().characters[0], _position);
        return tried == None ? NoMatch : Passes;
    }

    const Elements& _elements;
    const std::u32string& _text;
    std::vector<std::size_t> _tried;  // the position up to which each element of variable size went
    std::size_t _index = 0;
    std::size_t _position = 0;
};

#endif
