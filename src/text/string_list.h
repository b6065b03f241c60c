// Filling lists of texts without copying a text twice.
#ifndef TEXT_STRING_LIST_H
#define TEXT_STRING_LIST_H

#include <string_view>

#include "ZELListValZELString.h"

namespace zel {

// Appends a text; false, and the list as it was, when memory runs out.
inline bool AppendText(ZELListValZELString& list, std::string_view text) noexcept {
    if (list.Append(ZELString()) != 0) return false;
    ZELString& added = list[list.Size()];
    added = ZELString(text);
    if (added.View().size() == text.size()) return true;
    list.RemovePosition(list.Size());
    return false;
}

}  // namespace zel

#endif
