// A list of texts: ZELListVal<ZELString> under a name that can be declared in advance.
//
//     ZELListValZELString lines;
//     if (ReadFile("names.txt", lines) == 0) lines.QuickSort(CompareTAStrings);
#ifndef ZELLISTVALZELSTRING_H
#define ZELLISTVALZELSTRING_H

#include "ZELListVal.h"
#include "ZELString.h"

class ZELListValZELString : public ZELListVal<ZELString> {
public:
    using ZELListVal<ZELString>::ZELListVal;
};

#endif
