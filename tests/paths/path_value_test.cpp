#include "paths/path_value.h"
#include "paths/path_model.h"
#include "support/testing.h"

namespace {

std::string Normalised(const std::string& path) {
    std::vector<char> block(path.begin(), path.end());
    block.resize(path.size() / PathPadding * PathPadding + PathPadding, '/');
    return std::string(block.data(), NormalisePath(block.data(), path.size()));
}

}  // namespace

TEST(PathNormalise, TableOfForms) {
    const std::pair<const char*, const char*> rows[] = {
        {"a/b//c/./d/../e/", "a\\b\\c\\e"},
        {"C:/a/../b", "C:\\b"},
        {"a/../b", "a\\..\\b"},
        {"C:/../b", "C:\\..\\b"},
        {"/a/../b", "\\b"},
        {"/a/..", ""},
        {"a/b/../..", "a\\.."},
        {"a/.../../b", "a\\...\\..\\b"},
        {"\\\\.\\COM1", "\\\\COM1"},
        {".", "."},
        {"./../.", ".."},
        {"\\\\\\host\\\\x", "\\\\host\\x"},
        {"C:\\", "C:"},
        {"/", "\\"},
        {"//", "\\"},
        {"a.b/.c/..d/e..", "a.b\\.c\\..d\\e.."},
    };
    for (const auto& [path, expected] : rows) EXPECT_EQ(Normalised(path), expected) << path;
}

TEST(PathNormalise, EveryShortPathAgreesWithTheRulesAndStaysWhenNormalisedAgain) {
    const std::string letters = "/\\.a:";
    std::vector<std::string> paths{""};
    for (std::size_t done = 0; done < paths.size() && paths[done].size() < 7; ++done)
        for (const char letter : letters) paths.push_back(paths[done] + letter);
    for (const std::string& path : paths) {
        const std::string once = Normalised(path);
        ASSERT_EQ(once, NormalisedByRules(path)) << path;
        ASSERT_EQ(Normalised(once), once) << path;
    }
}

TEST(PathNormalise, LongPathsAgreeWithTheRules) {
    std::mt19937 random(7);
    const std::vector<std::string> pieces{"/", "\\", "//", ".", "..", "...", "name", "a.b", "0123456789abcde", "C:"};
    for (int round = 0; round < 20000; ++round) {
        std::string path;
        for (std::size_t i = random() % 24; i > 0; --i) path += pieces[random() % pieces.size()];
        ASSERT_EQ(Normalised(path), NormalisedByRules(path)) << path;
    }
}
