#include "report/markup.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "TATextUtilities.h"

// Not substituteEntities, which has a word of its own for the ampersand.
ZELString Escaped(const ZELString& text) {
    char* block = static_cast<char*>(std::malloc(text.View().size() + 1));
    if (block == nullptr) return ZELString::Incomplete();
    std::memcpy(block, text.CastToCharPtr(), text.View().size() + 1);
    const bool isEscaped = encodeXMLString(block) != 0 || text.View().find_first_of("&<>\"'") == std::string_view::npos;
    const ZELString escaped(block);
    std::free(block);
    return isEscaped && !text.IsIncomplete() ? escaped : ZELString::Incomplete();
}

ZELString Grouped(long long number) {
    const std::string digits = std::to_string(number);
    ZELString grouped;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) grouped += "&#8239;";
        grouped += digits[i];
    }
    return grouped;
}

ZELString Seconds(long long milliseconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%.2f s", static_cast<double>(milliseconds) / 1000);
    return text;
}

ZELString BarCell(double share) {
    char text[80];
    std::snprintf(text, sizeof text, "<td class=\"plot\"><div style=\"width:%.1f%%\"></div></td>", share * 100);
    return text;
}
