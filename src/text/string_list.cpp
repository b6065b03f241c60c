// Lists of texts. Both searches are binary, by bytes. The list is never sorted here: a list that is not in order gives
// some result, without harm.

#include "text/string_list.h"

#include <string_view>

#include "TATextUtilities.h"

using namespace zel;

namespace {

int Sign(std::string_view left, std::string_view right) noexcept {
    const int order = left.compare(right);
    return (order > 0) - (order < 0);
}

std::string_view ViewOf(const ZELString* text) noexcept {
    return text != nullptr ? text->View() : std::string_view();
}

}  // namespace

bool zel::AppendText(ZELListValZELString& list, std::string_view text) noexcept {
    if (list.Append(ZELString()) != 0) return false;
    ZELString& added = list[list.Size()];
    added = ZELString(text);
    if (added.View().size() == text.size()) return true;
    list.RemovePosition(list.Size());
    return false;
}

void InsertInList(ZELString& text, ZELListValZELString& list) noexcept {
    int low = 1;
    int high = list.Size() + 1;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int order = Sign(text.View(), list[middle].View());
        if (order == 0) return;
        if (order < 0)
            high = middle;
        else
            low = middle + 1;
    }
    list.InsertBefore(low, text);
}

int SearchInStringList(ZELString& text, ZELListValZELString& list) noexcept {
    if (list.Size() == 0) return 0;
    int low = 1;
    int high = list.Size();
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        if (text < list[middle])
            high = middle;
        else
            low = middle;
    }
    if (text.View().starts_with(list[low].View())) return low;
    return text.View().starts_with(list[high].View()) ? high : 0;
}

int CompareTAStrings(ZELString* left, ZELString* right) noexcept {
    return Sign(ViewOf(left), ViewOf(right));
}

int CompareTAStrings(TAFileName* left, TAFileName* right) noexcept {
    return TAFileName::Compare(left, right);
}
