// Tables of the standard library, whose one exception is caught here.

#include "network/word_tables.h"

#include <new>
#include <utility>

#include "base/failure_report.h"

using namespace zel;

namespace {

// Whether `enter` found memory for `word`.
template <class Enter>
bool Succeeds(std::string_view word, Enter enter) noexcept {
    try {
        enter();
        return true;
    } catch (const std::bad_alloc&) {
        ReportAllocFailure("TASocket", word.size());
        return false;
    }
}

}  // namespace

int SentWords::Find(std::string_view word) const noexcept {
    const auto entry = _numbers.find(word);
    return entry != _numbers.end() ? entry->second : -1;
}

bool SentWords::Add(std::string_view word) noexcept {
    return Succeeds(word, [&] { _numbers.emplace(word, Next()); });
}

const ZELString* ReceivedWords::Find(int number) const noexcept {
    if (number >= 0 && static_cast<std::size_t>(number) < _inOrder.size())
        return &_inOrder[static_cast<std::size_t>(number)];
    const auto entry = _others.find(number);
    return entry != _others.end() ? &entry->second : nullptr;
}

bool ReceivedWords::Add(int number, ZELString&& word) noexcept {
    if (Find(number) != nullptr) return true;
    return Succeeds(word.View(), [&] {
        if (number >= 0 && static_cast<std::size_t>(number) == _inOrder.size())
            _inOrder.push_back(std::move(word));
        else
            _others.emplace(number, std::move(word));
    });
}
