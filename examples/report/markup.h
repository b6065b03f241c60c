// Texts and numbers as they stand in a page.
#ifndef EXAMPLES_REPORT_MARKUP_H
#define EXAMPLES_REPORT_MARKUP_H

#include "ZELString.h"

// A text of anybody's, between tags or in the quotes of an attribute.
ZELString Escaped(const ZELString& text);

// "11 714 044", of which no line is broken.
ZELString Grouped(long long number);
// "0.94 s"
ZELString Seconds(long long milliseconds);
// A cell with a bar whose length tells a share from 0 to 1.
ZELString BarCell(double share);

#endif
