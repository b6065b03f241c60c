// An amount has three digits at most, so decimals appear below 100 and a second one below 10. They come from the
// remainder of the last division alone and are cut, never rounded: an amount never reads larger than it is.

#include "measure/amount_text.h"

#include <algorithm>

#include "TADiagnostics.h"

using namespace zel;

ZELString zel::AmountText(int amount) noexcept {
    constexpr char units[] = {'k', 'M', 'T'};
    int whole = std::max(amount, 0), remainder = 0, divisions = 0;
    for (; whole > 1000 && divisions < 3; ++divisions) {
        remainder = whole & 1023;
        whole >>= 10;
    }
    ZELString text = toString(whole);
    if (divisions == 0) return text;
    const int tenths = whole < 100 ? remainder * 5 >> 9 : 0;
    const int hundredths = whole < 10 ? (remainder * 100 >> 10) % 10 : 0;
    if (tenths != 0 || hundredths != 0) (text += '.') += toString(tenths);
    if (hundredths != 0) text += toString(hundredths);
    return text += units[divisions - 1];
}

ZELString zel::DurationText(int seconds) noexcept {
    if (seconds <= 0) return "0s";
    constexpr int Minute = 60, Hour = 60 * Minute, Day = 24 * Hour;
    ZELString text;
    const auto take = [&](int unit, char letter) {
        if (seconds < unit) return false;
        (text += toString(seconds / unit)) += letter;
        seconds %= unit;
        return true;
    };
    const bool hasDays = take(Day, 'd');
    const bool hasHours = take(Hour, 'h');
    if (hasDays && hasHours) return text;
    take(Minute, 'm');
    take(1, 's');
    return text;
}
