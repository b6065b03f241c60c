#include "base/slash_path.h"

#include "support/testing.h"

TEST(SlashPath, EveryShortPathAgreesWithItsDefinition) {
    const std::string letters = "AzZ@[1:\\/\xC3";
    std::vector<std::string> paths = {"", "\\\\server\\share", "C:\\temp\\x", "C:temp\\x", "x\\C:\\y"};
    for (std::size_t i = 0; paths[i].size() < 4; i += i == 0 ? 5 : 1)
        for (const char letter : letters) paths.push_back(paths[i] + letter);
    for (const std::string& path : paths) {
        // A letter and a colon, in front of a separator or the end, stand for the root.
        const bool drive = path[0] > 0 && std::isalpha(path[0]) && path[1] == ':' && std::strchr("\\/", path[2]);
        std::string expected = path;
        if (drive) expected.erase(0, 3).insert(expected.begin(), '/');
        std::replace(expected.begin(), expected.end(), '\\', '/');
        // Exactly as long as promised, so that the sanitizer sees one byte more.
        const std::unique_ptr<char[]> result(new char[path.size() + 1]);
        zel::WriteSlashPath(path.c_str(), result.get());
        ASSERT_EQ(result.get(), expected) << path;
        ASSERT_EQ(zel::NeedsSlashPath(path.c_str()), path != expected) << path;
    }
}
