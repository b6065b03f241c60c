// Setting a filter and asking it. A filter is its text, a program that copies share, and the answers that it remembers,
// which are its own.
//
// An answer is remembered only if the filter has so many elements that looking the answer up is faster than finding it
// again. A filter that remembers nothing uses no map, hence nothing that others share.

#include "TAUnicodeRegularExpression.h"

#include <string_view>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "filters/answer_memo.h"
#include "filters/filter_matcher.h"
#include "filters/filter_program.h"

using namespace zel;

struct zel::FilterState {
    FilterState() noexcept = default;
    FilterState(const FilterState&) = delete;
    FilterState& operator=(const FilterState&) = delete;
    ~FilterState() { FilterProgram::Drop(program); }

    int Set(const ZELUnicodeString& wanted, URE_type type, FilterProgram* known) noexcept;
    int Begin(URE_type type, FilterProgram* next) noexcept;
    bool TakeText(const ZELUnicodeString& wanted) noexcept;
    bool IsExpensive() const noexcept;
    int CheckWithMemo(std::u32string_view candidate) noexcept;

    ZELUnicodeString text;
    FilterProgram* program = nullptr;  // null when the text was rejected or memory ran out
    AnswerMemo memo;
};

namespace {

const char* const matchesAll = "*";
constexpr char32_t FilterBlank = U' ';
// Measured on names of files: up to here finding an answer costs less than looking it up among many, most of all when
// the names do not fit the cache.
constexpr int CheapLexemes = 32;
constexpr int CheapOperations = 256;

std::u32string_view WithoutBlanks(std::u32string_view text) noexcept {
    while (!text.empty() && text.front() == FilterBlank) text.remove_prefix(1);
    while (!text.empty() && text.back() == FilterBlank) text.remove_suffix(1);
    return text;
}

// Creates the state if there is none. False without memory.
bool ProvideState(FilterState*& state) noexcept {
    if (state == nullptr) state = ZELNew<FilterState>();
    if (state == nullptr) ReportAllocFailure("TAUnicodeRegularExpression", sizeof(FilterState));
    return state != nullptr;
}

}  // namespace

// SetFilter(). `known` is null or a program that is used if it is that of the text.
int FilterState::Set(const ZELUnicodeString& wanted, URE_type type, FilterProgram* known) noexcept {
    // A null filter is replaced by "*", whatever text is given: the text set before decides, a decision of old.
    if (text.IsNull() != 0)
        text = ZELUnicodeString(matchesAll);
    else if (!TakeText(wanted))
        return Begin(type, nullptr);
    const bool isKnown = known != nullptr && known->Text() == text.View();
    return Begin(type, isKnown ? FilterProgram::Keep(known) : FilterProgram::Compile(text.View()));
}

// Replaces the program. Returns the result of SetFilter().
int FilterState::Begin(URE_type type, FilterProgram* next) noexcept {
    std::swap(program, next);
    FilterProgram::Drop(next);
    if (program != nullptr && !program->IsValid()) FilterProgram::Drop(std::exchange(program, nullptr));
    memo.Begin(program != nullptr && type == URE_Memoised && IsExpensive());
    return program != nullptr ? 0 : 1;
}

// False, and no text, without memory, and for a text that it cut off.
bool FilterState::TakeText(const ZELUnicodeString& wanted) noexcept {
    const std::u32string_view stripped = WithoutBlanks(wanted.View());
    if (stripped.size() == wanted.View().size())
        text = wanted;
    else if (ZELUnicodeString copy = wanted.Strip(ZELStripBoth, FilterBlank); copy.View() == stripped)
        text = std::move(copy);
    if (text.View() == stripped && !text.IsIncomplete() && !wanted.IsIncomplete()) return true;
    text = ZELUnicodeString(ZELString::Incomplete());  // a copy shall not match by an older text
    return false;
}

// Apart from CheckFromFilter(), whose stack frame stays small without the key.
int FilterState::CheckWithMemo(std::u32string_view candidate) noexcept {
    const MemoKey key(candidate);
    const int known = memo.Find(key);
    if (known >= 0) return known;
    const int answer = MatchFilter(*program, candidate);
    if (answer >= 0) memo.Keep(key, answer);
    return answer == 1 ? 1 : 0;
}

bool FilterState::IsExpensive() const noexcept {
    return program->Tail() > CheapLexemes || program->OperationCount() > CheapOperations + 1;
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression() noexcept {
    SetFilter(matchesAll, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const ZELUnicodeString& f) noexcept {
    if (f.GetLengthInChar() < 1 && !f.IsIncomplete())
        SetFilter(matchesAll, URE_Memoised);
    else
        SetFilter(f, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const char* const f) noexcept {
    SetFilter(f == nullptr ? matchesAll : f, URE_Memoised);
}

TAUnicodeRegularExpression::TAUnicodeRegularExpression(const TAUnicodeRegularExpression& other) noexcept {
    *this = other;
}

const TAUnicodeRegularExpression& TAUnicodeRegularExpression::operator=(
    const TAUnicodeRegularExpression& other) noexcept {
    if (other._state == nullptr)
        SetFilter(ZELUnicodeString(), URE_Memoised);
    else if (ProvideState(_state))
        _state->Set(other._state->text, URE_Memoised, other._state->program);
    return *this;
}

TAUnicodeRegularExpression::~TAUnicodeRegularExpression() {
    ZELDelete(_state);
}

int TAUnicodeRegularExpression::SetFilter(const ZELUnicodeString& f, URE_type type) noexcept {
    return ProvideState(_state) ? _state->Set(f, type, nullptr) : 1;
}

ZELUnicodeString TAUnicodeRegularExpression::GetFilter() const noexcept {
    return _state != nullptr ? _state->text : ZELUnicodeString();
}

int TAUnicodeRegularExpression::CheckFromFilter(const ZELUnicodeString& candidate) noexcept {
    if (_state == nullptr || _state->program == nullptr || candidate.IsNull() != 0 || candidate.IsIncomplete())
        return 0;
    const std::u32string_view text = WithoutBlanks(candidate.View());
    if (_state->memo.Remembers(_state->program->Text())) return _state->CheckWithMemo(text);
    return MatchFilter(*_state->program, text) == 1 ? 1 : 0;
}
