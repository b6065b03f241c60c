// Setting a filter and asking it.

#include "TAUnicodeRegularExpression.h"

#include <cstdlib>
#include <utility>

#include "regex/blanks.h"
#include "regex/filter_matcher.h"

namespace {

const char* const matchesAll = "*";

}  // namespace

TAUnicodeRegularExpression::TAUnicodeRegularExpression() noexcept {
    SetFilter(matchesAll, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const ZELUnicodeString& f) noexcept {
    if (f.GetLengthInChar() < 1)
        SetFilter(matchesAll, URE_Memoised);
    else
        SetFilter(f, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const char* const f) noexcept {
    SetFilter(f == nullptr ? matchesAll : f, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const TAUnicodeRegularExpression& other) noexcept {
    SetFilter(other.GetFilter(), URE_Memoised);
}

const TAUnicodeRegularExpression& TAUnicodeRegularExpression::operator=(
    const TAUnicodeRegularExpression& other) noexcept {
    SetFilter(other.GetFilter(), URE_Memoised);
    return *this;
}

TAUnicodeRegularExpression::~TAUnicodeRegularExpression() {
    std::free(_lexemes);
    std::free(_operations);
    std::free(_sets);
    std::free(_borders);
}

int TAUnicodeRegularExpression::SetFilter(const ZELUnicodeString& f, URE_type type) noexcept {
    _isCompiled = false;
    _remembers = type == URE_Memoised;
    // A null filter is replaced by "*", whatever is asked for: what was set before decides, a decision of old.
    ZELUnicodeString text = _filter.IsNull() != 0 ? ZELUnicodeString(matchesAll) : f.Strip(ZELStripBoth, FilterBlank);
    if (_filter.IsNull() == 0 && text.View() != WithoutBlanks(f.View())) return 1;  // no memory for the text
    _filter = std::move(text);
    _isCompiled = _compile() == 0 && _prepare() == 0;
    return _isCompiled ? 0 : 1;
}

int TAUnicodeRegularExpression::CheckFromFilter(const ZELUnicodeString& candidate) noexcept {
    if (!_isCompiled || candidate.IsNull() != 0) return 0;
    return FilterMatcher::Match(*this, WithoutBlanks(candidate.View())) == 1 ? 1 : 0;
}
