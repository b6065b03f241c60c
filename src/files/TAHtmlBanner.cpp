// The banner is a list of fixed fragments around those of the caller; the look is a handful of files to copy. Neither
// looks into what it passes on.

#include "TAHtmlBanner.h"

#include "TAEnvironment.h"
#include "TAFileUtilities.h"
#include "TATextUtilities.h"

using namespace zel;

namespace {

constexpr const char* StyleSheet = "TAReportDefaultStyle.css";
constexpr const char* Pictures[] = {
    "zeq_Logo.png",          "compass.png",          "Top_Bar_Layer_Top_Rounded_part.png",
    "Top_Bar_Layer_Top.png", "ToolbarMenuIcons.png", "copy.png"};

// The directory of the resources below the first root that has them; the null name when none has.
TAFileName FindResources() noexcept {
    TAEnvVariable variable("RkrkROOT_PATH", 0);
    ZELString paths(variable.GetEnvironmentValue());
    ZELListValZELString roots;
    Split(paths, roots, ";");
    for (const ZELString& root : roots) {
        const TAFileName resources = TAFileName(root) + "resources" + "ZELToolsInfrastructure";
        if ((resources + "css").IsDirectory() != 0) return resources;
    }
    return TAFileName();
}

}  // namespace

ZELListValZELString BuildHtmlBanner(ZELString title, ZELListValZELString& menu, ZELString homeLink,
                                    ZELString helpLink) noexcept {
    ZELListValZELString banner;
    int failures = 0;
    const auto append = [&](const ZELString& fragment) { failures += banner.Append(fragment); };
    for (const char* const fragment : {"<table id=\"top\">", "<tr>", "<td>", "<div class=\"logo-zeq\"></div>",
                                       "<div class=\"compass-ct\">", "<div class=\"compass\"></div></div>", "</td>"})
        append(fragment);
    append("<td class=\"title\"><span>" + title + " | </span></td>");
    append("<td class=\"menuHorizontal\">");
    append("<table cellspacing=\"10\" ><tr>");
    for (const ZELString& entry : menu) append("<td>" + entry + "</td>");
    append("</tr></table>");
    append("</td>");
    const ZELString fill("style=\"display:block;width:100%;height:100%;\" href=\"");
    if (homeLink.Length() > 0) append("<td class=\"home\"><a id=\"linkHome\" " + fill + homeLink + "\" /></td>");
    if (helpLink.Length() > 0)
        append("<td class=\"help\"><a id=\"linkHelp\" target=\"extern\" " + fill + helpLink + "\" /></td>");
    append("</tr>");
    append("</table>");
    return failures == 0 ? banner : ZELListValZELString();
}

int CopyDefaultHtmlStyle(TAFileName reportDirectory) noexcept {
    const TAFileName resources = FindResources();
    if (resources.IsNull() != 0) return 0;
    int result = 0;
    const auto copy = [&](const char* folder, const char* file) {
        result |= CopyFileW(resources + folder + file, reportDirectory + folder + file) != 0 ? 1 : 0;
    };
    (reportDirectory + "css").CreateRecursiveDirectory();
    copy("css", StyleSheet);
    (reportDirectory + "pictures").CreateRecursiveDirectory();
    for (const char* const picture : Pictures) copy("pictures", picture);
    return result;
}
