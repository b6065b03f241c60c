// Amounts and times as people read them; TAPerfo.h describes the format.
#ifndef MEASURE_AMOUNT_TEXT_H
#define MEASURE_AMOUNT_TEXT_H

#include "ZELString.h"

namespace zel {

ZELString AmountText(int amount) noexcept;
ZELString DurationText(int seconds) noexcept;

}  // namespace zel

#endif
