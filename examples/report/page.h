// The page that people look at.
#ifndef EXAMPLES_REPORT_PAGE_H
#define EXAMPLES_REPORT_PAGE_H

#include "ZELListValZELString.h"
#include "report/run.h"

// The lines of index.html. `styleSheet` and `dump`: links to them from there; without a style sheet the page is plain.
ZELListValZELString MakePage(const Run& run, const ZELString& styleSheet, const ZELString& dump);

#endif
