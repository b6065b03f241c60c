#include "paths/path_value.h"
#include "support/testing.h"

namespace {

std::string Normalised(const std::string& path) {
    std::vector<char> block(path.begin(), path.end());
    block.resize(path.size() / PathPadding * PathPadding + PathPadding, '/');
    return std::string(block.data(), NormalisePath(block.data(), path.size()));
}

// The rules one by one, each repeated on the whole text until it changes nothing.
std::string NormalisedByRules(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    for (std::size_t at; (at = path.find("\\\\", 1)) != std::string::npos;) path.erase(at, 1);
    for (std::size_t at; (at = path.find("\\.\\")) != std::string::npos;) path.erase(at, 2);
    if (path.size() >= 3 && path.ends_with("\\.")) path.pop_back();
    if (path.size() >= 3 && path.starts_with(".\\")) path.erase(0, 2);
    for (std::size_t at = 0; (at = path.find("\\..", at)) != std::string::npos;) {
        const std::size_t end = at + 3;
        const std::size_t before = at == 0 ? std::string::npos : path.rfind('\\', at - 1);
        const std::string component = before == std::string::npos ? "" : path.substr(before + 1, at - before - 1);
        if ((end == path.size() || path[end] == '\\') && component.find_first_not_of('.') != std::string::npos)
            path.erase(before, end - before), at = before;
        else
            at += 1;
    }
    if (path.size() >= 2 && path.back() == '\\') path.pop_back();
    return path;
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
