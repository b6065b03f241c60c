// Setting a filter, asking it, and what it remembers: a map from the texts of filters to maps from the texts of
// candidates to answers. The answers are two constants, so remembering one costs an entry and nothing else. The maps
// are made when the first answer is to be kept: a filter that is only set touches nothing that others share. An answer
// is kept only where the filter has so many lexemes to walk that looking it up is faster than finding it.
// The danger is a stale answer, hence keys that tell every text from every other (MemoKey).

#include "TAUnicodeRegularExpression.h"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "ZELHashSCMap.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "filters/blanks.h"
#include "filters/filter_matcher.h"
#include "filters/memo_key.h"

using namespace zel;

namespace {

const char* const matchesAll = "*";
// Measured on names of files: up to here finding an answer costs less than looking it up among many, most of all where
// the names do not fit the cache.
constexpr int CheapLexemes = 32;
constexpr int CheapOperations = 256;
int rememberedAnswers[] = {0, 1};  // never written; the maps hold pointers to what is not constant

ZELHashSCMap* MakeMap() noexcept {
    auto* const map = NewObject<ZELHashSCMap>();
    if (map == nullptr) ReportAllocFailure("TAUnicodeRegularExpression", sizeof(ZELHashSCMap));
    return map;
}

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
    if (_memo != nullptr)
        for (const auto& [filter, answers] : *_memo) delete static_cast<ZELHashSCMap*>(answers);
    delete _memo;
    std::free(_lexemes);
    std::free(_operations);
    std::free(_sets);
    std::free(_borders);
}

int TAUnicodeRegularExpression::SetFilter(const ZELUnicodeString& f, URE_type type) noexcept {
    _isCompiled = false;
    _answers = nullptr;
    // A null filter is replaced by "*", whatever is asked for: what was set before decides, a decision of old.
    if (_filter.IsNull() != 0)
        _filter = ZELUnicodeString(matchesAll);
    else if (!_takeText(f))
        return 1;
    _isCompiled = _compile() == 0 && _prepare() == 0;
    _remembers = type == URE_Memoised && (_tail > CheapLexemes || _lastOperation > CheapOperations);
    return _isCompiled ? 0 : 1;
}

// False, and the old text kept, without memory.
bool TAUnicodeRegularExpression::_takeText(const ZELUnicodeString& text) noexcept {
    const std::u32string_view stripped = WithoutBlanks(text.View());
    if (stripped.size() == text.View().size())
        _filter = text;
    else if (ZELUnicodeString copy = text.Strip(ZELStripBoth, FilterBlank); copy.View() == stripped)
        _filter = std::move(copy);
    return _filter.View() == stripped;
}

int TAUnicodeRegularExpression::CheckFromFilter(const ZELUnicodeString& candidate) noexcept {
    if (!_isCompiled || candidate.IsNull() != 0) return 0;
    const std::u32string_view text = WithoutBlanks(candidate.View());
    if (!_remembers || (_answers == nullptr && !_openAnswers())) return MatchFilter(*this, text) == 1 ? 1 : 0;

    const MemoKey key(text);
    void* known = nullptr;
    if (key.Exists() && _answers->search(key.View(), &known) != 0) return *static_cast<const int*>(known);
    const int answer = MatchFilter(*this, text);
    if (answer >= 0 && key.Exists()) _answers->insert(key.Text(), &rememberedAnswers[answer]);
    return answer == 1 ? 1 : 0;
}

// Finds or makes the map of the present filter's answers. Where that fails, nothing is remembered until a filter is set
// again, so that exhausted memory is told once.
bool TAUnicodeRegularExpression::_openAnswers() noexcept {
    _remembers = false;
    const MemoKey key(_filter.View());
    if (!key.Exists()) return false;
    if (_memo == nullptr) _memo = MakeMap();
    if (_memo == nullptr) return false;
    void* known = nullptr;
    if (_memo->search(key.View(), &known) == 0) {
        ZELHashSCMap* const made = MakeMap();
        if (made == nullptr || _memo->insert(key.Text(), made) == nullptr) {
            delete made;
            return false;
        }
        known = made;
    }
    _answers = static_cast<ZELHashSCMap*>(known);
    return _remembers = true;
}
