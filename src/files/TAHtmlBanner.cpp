// The banner is a list of fixed fragments around those of the caller; the look is a handful of files to copy. Neither
// looks into what it passes on.

#include "TAHtmlBanner.h"

#include <algorithm>
#include <string_view>

#include "TAFileUtilities.h"
#include "platform/system.h"

using namespace zel;

namespace {

constexpr const char* StyleSheet = "TAReportDefaultStyle.css";
constexpr const char* Pictures[] = {
    "zeq_Logo.png",          "compass.png",          "Top_Bar_Layer_Top_Rounded_part.png",
    "Top_Bar_Layer_Top.png", "ToolbarMenuIcons.png", "copy.png"};

// The directory of the resources below the first root that has them; the null name when none has, incomplete when
// nobody can tell.
TAFileName FindResources() noexcept {
    const char* const paths = GetEnvironment("RkrkROOT_PATH");
    for (std::string_view rest(paths != nullptr ? paths : ""); !rest.empty();) {
        const std::string_view root = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(root.size() + 1, rest.size()));
        if (root.empty()) continue;
        const TAFileName resources = TAFileName(ZELString(root)) + "resources" + "ZELToolsInfrastructure";
        const TAFileName styles = resources + "css";
        if (styles.IsIncomplete()) return styles;
        if (styles.IsDirectory() != 0) return resources;
    }
    return TAFileName();
}

}  // namespace

ZELListValZELString BuildHtmlBanner(ZELString title, ZELListValZELString& menu, ZELString homeLink,
                                    ZELString helpLink) noexcept {
    ZELListValZELString banner;
    int failures = title.IsIncomplete() || homeLink.IsIncomplete() || helpLink.IsIncomplete() ? 1 : 0;
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
    if (resources.IsNull() != 0) return resources.IsIncomplete() ? 1 : 0;
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
