// Lines into fields and back.
//
// One cursor walks the line for all forms and gives views of it. A list keeps its elements where it can: a field is
// assigned to the element that stands at its place, which costs no memory for short fields, and only what is left over
// is removed. So a line that is itself an element of the list is copied before the first field is stored.
// An index takes C texts, so each field is terminated in a string of its own first.

#include <climits>
#include <cstddef>
#include <string_view>
#include <utility>

#include "TATextUtilities.h"
#include "foundations/text_search.h"

using namespace zel;

namespace {

constexpr const char* Blank = " ";

struct Rule {
    bool isWhole;  // false: memory cut the separator off
    std::string_view separator;
    std::size_t step;  // from the beginning of a separator to where the text goes on
    int separators;    // how many may be used up behind the beginning of the first field
};

Rule Everywhere(const ZELString& separator) noexcept {
    return {!separator.IsIncomplete(), separator.View(), separator.View().size(), INT_MAX};
}
Rule UpTo(int fields, const ZELString& separator) noexcept {
    return {!separator.IsIncomplete(), separator.View(), 1, fields < 2 ? 0 : fields - 1};
}

class FieldCursor {
public:
    FieldCursor(std::string_view line, const Rule& rule) noexcept : _line(line), _rule(rule) {}

    // The next field; empty when there is none left.
    std::string_view Next() noexcept {
        while (_rule.separators > 0) {
            const std::size_t at = FindText(_line, _rule.separator, _start);
            if (at == std::string_view::npos) break;
            const std::string_view field = _line.substr(_start, at - _start);
            _start = at + _rule.step;
            _hasBegun = _hasBegun || !field.empty();
            if (_hasBegun) --_rule.separators;
            if (!field.empty()) return field;
        }
        const std::string_view rest = _line.substr(_start);
        _start = _line.size();
        return rest;
    }

private:
    std::string_view _line;
    Rule _rule;
    std::size_t _start = 0;
    bool _hasBegun = false;
};

bool IsElement(const ZELString& line, const ZELListValZELString& fields) noexcept {
    for (const ZELString& field : fields)
        if (&field == &line) return true;
    return false;
}

// All fields; none, and false, when memory runs out.
bool Fill(ZELListValZELString& fields, const ZELString& line, const Rule& rule) noexcept {
    const ZELString copy = IsElement(line, fields) ? line : ZELString();
    bool isWhole = rule.isWhole && !line.IsIncomplete() && !copy.IsIncomplete();
    FieldCursor cursor(copy.Length() > 0 ? copy.View() : line.View(), rule);
    std::string_view field = cursor.Next();
    int stored = 0;
    for (auto old = fields.begin(); old != fields.end() && !field.empty(); ++old, ++stored, field = cursor.Next()) {
        *old = ZELString(field);
        isWhole = isWhole && !old->IsIncomplete();
    }
    if (stored < fields.Size()) fields.RemovePosition(stored + 1, static_cast<unsigned int>(fields.Size() - stored));
    for (; isWhole && !field.empty(); field = cursor.Next()) isWhole = fields.Append(ZELString(field)) == 0;
    if (!isWhole) fields.RemoveAll(ZELCollec::KeepMemory);
    return isWhole;
}

bool Fill(TAIndex& fields, const ZELString& line, const Rule& rule) noexcept {
    fields.Reset();
    bool isWhole = rule.isWhole && !line.IsIncomplete();
    FieldCursor cursor(line.View(), rule);
    for (std::string_view field; isWhole && !(field = cursor.Next()).empty();) {
        const ZELString key(field);
        isWhole = !key.IsIncomplete() && fields.Append(key, nullptr) != nullptr;
    }
    if (!isWhole) fields.Reset();
    return isWhole;
}

template <class Fields>
int SplitBy(const Rule& rule, const ZELString& line, Fields& fields) noexcept {
    Fill(fields, line, rule);
    return fields.Size();
}

}  // namespace

int Split(ZELString& line, ZELListValZELString& fields) noexcept {
    return SplitBy(Everywhere(Blank), line, fields);
}

int Split(ZELString& line, ZELListValZELString& fields, int n) noexcept {
    const bool isWhole = Fill(fields, line, UpTo(n, Blank));
    while (isWhole && fields.Size() < n && fields.Append(ZELString()) == 0) continue;
    return fields.Size();
}

int Split(ZELString& line, ZELListValZELString& fields, ZELString separator) noexcept {
    return SplitBy(Everywhere(separator), line, fields);
}

int Split(ZELString& line, ZELListValZELString& fields, ZELString separator, int n) noexcept {
    return SplitBy(UpTo(n, separator), line, fields);
}

int Split(ZELString& line, TAIndex& fields) noexcept {
    return SplitBy(Everywhere(Blank), line, fields);
}

int Split(ZELString& line, TAIndex& fields, int n) noexcept {
    if (Fill(fields, line, UpTo(n, Blank)) && fields.Size() < n) fields.Append("", nullptr);
    return fields.Size();
}

int Split(ZELString& line, TAIndex& fields, ZELString separator) noexcept {
    return SplitBy(Everywhere(separator), line, fields);
}

int Split(ZELString& line, TAIndex& fields, ZELString separator, int n) noexcept {
    return SplitBy(UpTo(n, separator), line, fields);
}

int ToLine(ZELListValZELString& fields, ZELString& line) noexcept {
    return ToLine(fields, line, ZELString(Blank));
}

int ToLine(ZELListValZELString& fields, ZELString& line, ZELString separator) noexcept {
    if (fields.Size() == 0) return 0;
    std::size_t length = 0;
    for (const ZELString& field : fields) length += field.View().size() + separator.View().size();
    ZELString joined;
    joined.Reserve(length);
    for (const ZELString& field : fields) {
        if (&field != &*fields.begin()) joined += separator;
        joined += field;
    }
    if (!joined.IsIncomplete())
        line = std::move(joined);
    else
        line += ZELString::Incomplete();
    return 0;
}
