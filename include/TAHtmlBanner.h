// The common look of the tools' HTML reports: the banner at the top of a page, and the style sheet with its pictures.
//
//     ZELListValZELString menu;
//     menu.Append("<a href=\"tests.html\">Tests</a>");
//     ZELListValZELString page = BuildHtmlBanner("Nightly build", menu, "index.html", "");
//     CopyDefaultHtmlStyle("reports\\nightly");  // css and pictures beside the report
//
// The page links the style sheet as css/TAReportDefaultStyle.css. docs/reports.md shows a whole page and the classes
// that the sheet knows.
// Both functions may be called from any thread, as long as none changes the menu or the environment. Nothing throws.
#ifndef TAHTMLBANNER_H
#define TAHTMLBANNER_H

#include "TAFileName.h"
#include "ZELExport.h"
#include "ZELListValZELString.h"
#include "ZELString.h"

// The fragments of a table with the id "top": fourteen, one for each entry of `menu`, and one for each link that is not
// empty. Everything goes in as it is, so text must have been escaped (encodeXMLString), and menu entries may be markup.
// Empty when memory runs out.
ZEL_API ZELListValZELString BuildHtmlBanner(ZELString title, ZELListValZELString& menu, ZELString homeLink,
                                            ZELString helpLink) noexcept;

// Copies the style sheet to "css" and the pictures to "pictures" below `reportDirectory`, which are made; what is there
// is overwritten. They come from the first root of the environment variable RkrkROOT_PATH, a list separated by ";",
// that has a directory resources\ZELToolsInfrastructure\css: this repository is such a root, and so is
// share/ZELToolsInfrastructure of an installed copy. 0 when all was copied, and also, nothing done, when there is no
// such root: reports without a look are still reports. 1 when a copy failed; the others are made all the same.
ZEL_API int CopyDefaultHtmlStyle(TAFileName reportDirectory) noexcept;

#endif
