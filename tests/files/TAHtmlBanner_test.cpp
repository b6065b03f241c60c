#include "TAHtmlBanner.h"

#include "TAEnvironment.h"
#include "support/testing.h"

namespace {

const std::filesystem::path repository(ZEL_REPOSITORY);

std::set<std::string> FilesBelow(const std::filesystem::path& folder) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.insert(entry.path().lexically_relative(folder).generic_string());
    return files;
}

struct Style : testing::Test {
    int CopyFrom(const std::string& roots) {
        const TAEnvVariable variable("RkrkROOT_PATH", 4000);
        variable.PutEnvironmentValue(roots.c_str());
        const int result = CopyDefaultHtmlStyle(TAFileName((folder / "a/report").c_str()));
        variable.UnsetEnvironmentValue();
        return result;
    }

    const TemporaryFolder folder;
    const std::filesystem::path report = folder / "a/report";
    const std::filesystem::path resources = repository / "resources/ZELToolsInfrastructure";
};

}  // namespace

TEST(BuildHtmlBanner, HasFixedFragmentsAroundThoseOfTheCaller) {
    const std::string link = "style=\"display:block;width:100%;height:100%;\" href=\"";
    for (int links = 0; links < 4; ++links) {
        ZELListValZELString menu;
        std::string expected =
            R"(<table id="top">|<tr>|<td>|<div class="logo-zeq"></div>|<div class="compass-ct">|)"
            R"(<div class="compass"></div></div>|</td>|<td class="title"><span>A & B | </span></td>|)"
            R"(<td class="menuHorizontal">|<table cellspacing="10" ><tr>|)";
        for (int entry = 0; entry < links; ++entry) {
            menu.Append("<b>one</b>");
            expected += "<td><b>one</b></td>|";
        }
        expected += "</tr></table>|</td>|";
        if (links & 1) expected += "<td class=\"home\"><a id=\"linkHome\" " + link + "h\" /></td>|";
        if (links & 2) expected += "<td class=\"help\"><a id=\"linkHelp\" target=\"extern\" " + link + "?\" /></td>|";
        std::string banner;
        for (const ZELString& fragment : BuildHtmlBanner("A & B", menu, links & 1 ? "h" : "", links & 2 ? "?" : ""))
            banner += std::string(fragment.View()) + "|";
        ASSERT_EQ(banner, expected + "</tr>|</table>|");
    }
}

TEST_F(Style, NoRootIsNoFailure) {
    for (const std::string& roots : {std::string(), std::string(";;"), folder.Path(), folder / "missing"})
        EXPECT_EQ(CopyFrom(roots), 0);
    EXPECT_FALSE(std::filesystem::exists(report));
}

TEST_F(Style, TheRepositoryServesAsARoot) {
    std::filesystem::create_directories(report / "css");
    WriteBytes((report / "css/TAReportDefaultStyle.css").string(), "old");
    EXPECT_EQ(CopyFrom(folder.Path() + ";;" + repository.string() + ";" + folder / "later"), 0);
    const std::set<std::string> files = FilesBelow(report);
    EXPECT_EQ(files, FilesBelow(resources));
    EXPECT_EQ(files.size(), 7u);
    for (const std::string& file : files)
        EXPECT_EQ(ReadBytes((report / file).string()), ReadBytes((resources / file).string())) << file;
}

TEST_F(Style, AMissingPictureKeepsNoOtherBack) {
    const std::string root = folder / "root";
    std::filesystem::create_directories(root + "/resources");
    std::filesystem::copy(resources, root + "/resources/ZELToolsInfrastructure",
                          std::filesystem::copy_options::recursive);
    std::filesystem::remove(root + "/resources/ZELToolsInfrastructure/pictures/compass.png");
    EXPECT_EQ(CopyFrom(root + ";" + repository.string()), 1);
    EXPECT_EQ(FilesBelow(report).size(), 6u);
}
