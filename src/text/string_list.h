// Lists of texts, for the loops of the library that fill them.
#ifndef TEXT_STRING_LIST_H
#define TEXT_STRING_LIST_H

#include <string_view>

#include "ZELListValZELString.h"

namespace zel {

// Appends a text without copying it twice. False, and the list unchanged, when memory runs out.
bool AppendText(ZELListValZELString& list, std::string_view text) noexcept;

}  // namespace zel

#endif
