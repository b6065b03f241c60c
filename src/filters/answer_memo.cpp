// A map from the texts of filters to maps from the texts of candidates to answers. The answers are two constants, so
// remembering one costs an entry and nothing else. The maps are created for the first answer that is kept.
//
// Hazard: a wrong answer, hence keys that differ for all texts (MemoKey).

#include "filters/answer_memo.h"

#include "ZELHashSCMap.h"
#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

int rememberedAnswers[] = {0, 1};  // never written; the maps contain pointers to non-constant values

ZELHashSCMap* MakeMap() noexcept {
    auto* const map = ZELNew<ZELHashSCMap>();
    if (map == nullptr) ReportAllocFailure("TAUnicodeRegularExpression", sizeof(ZELHashSCMap));
    return map;
}

}  // namespace

AnswerMemo::~AnswerMemo() {
    if (_byFilter != nullptr)
        for (const auto& [filter, answers] : *_byFilter) ZELDelete(static_cast<ZELHashSCMap*>(answers));
    ZELDelete(_byFilter);
}

// Finds or creates the map of the present filter. After a failure nothing is remembered, so that exhausted memory is
// reported once.
bool AnswerMemo::Open(std::u32string_view filter) noexcept {
    _remembers = false;
    const MemoKey key(filter);
    if (!key.Exists()) return false;
    if (_byFilter == nullptr) _byFilter = MakeMap();
    if (_byFilter == nullptr) return false;
    void* known = nullptr;
    if (_byFilter->search(key.View(), &known) == 0) {
        ZELHashSCMap* const made = MakeMap();
        if (made == nullptr || _byFilter->insert(key.Text(), made) == nullptr) {
            ZELDelete(made);
            return false;
        }
        known = made;
    }
    _answers = static_cast<ZELHashSCMap*>(known);
    return _remembers = true;
}

int AnswerMemo::Find(const MemoKey& candidate) const noexcept {
    void* known = nullptr;
    const bool isKnown = candidate.Exists() && _answers->search(candidate.View(), &known) != 0;
    return isKnown ? *static_cast<const int*>(known) : -1;
}

void AnswerMemo::Keep(const MemoKey& candidate, int answer) noexcept {
    if (candidate.Exists()) _answers->insert(candidate.Text(), &rememberedAnswers[answer]);
}
