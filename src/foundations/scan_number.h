// Reading one integer by a format in the manner of scanf.
#ifndef FOUNDATIONS_SCAN_NUMBER_H
#define FOUNDATIONS_SCAN_NUMBER_H

#include <string_view>

namespace zel {

// The contract is that of ZELUnicodeString::ConvertToNum; `value` is not null.
int ScanNumber(std::u32string_view text, std::u32string_view format, int* value) noexcept;

}  // namespace zel

#endif
