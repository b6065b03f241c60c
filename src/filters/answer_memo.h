// The answers that a filter remembers.
#ifndef FILTERS_ANSWER_MEMO_H
#define FILTERS_ANSWER_MEMO_H

#include <string_view>

#include "filters/memo_key.h"

class ZELHashSCMap;

namespace zel {

class AnswerMemo {
public:
    AnswerMemo() noexcept = default;
    AnswerMemo(const AnswerMemo&) = delete;
    AnswerMemo& operator=(const AnswerMemo&) = delete;
    ~AnswerMemo();

    // From now on the answers are those of another filter, and remembered or not. Allocates nothing.
    void Begin(bool remembers) noexcept {
        _answers = nullptr;
        _remembers = remembers;
    }
    // Whether answers of the filter of this text are remembered. False after memory ran out, up to the next Begin().
    bool Remembers(std::u32string_view filter) noexcept { return _remembers && (_answers != nullptr || Open(filter)); }

    // Both require Remembers(). The remembered answer for a candidate, 0 or 1; -1 when there is none.
    int Find(const MemoKey& candidate) const noexcept;
    // Without memory the answer is not remembered.
    void Keep(const MemoKey& candidate, int answer) noexcept;

private:
    bool Open(std::u32string_view filter) noexcept;

    ZELHashSCMap* _byFilter = nullptr;  // from texts of filters to maps from candidates to answers, which it owns
    ZELHashSCMap* _answers = nullptr;   // the map of the present filter
    bool _remembers = false;
};

}  // namespace zel

#endif
