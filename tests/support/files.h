// Files for tests.
#ifndef TESTS_SUPPORT_FILES_H
#define TESTS_SUPPORT_FILES_H

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

// Whether this is the target with drives, backslashes, and text files whose lines end in "\r\n".
inline const bool onWindows = std::filesystem::path::preferred_separator == '\\';

inline std::string ReadBytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string WithoutReturns(std::string text) {
    std::erase(text, '\r');
    return text;
}

// A folder of the test's own, gone with it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        do _path = std::filesystem::temp_directory_path() / ("zel_test_" + std::to_string(random()));
        while (!std::filesystem::create_directory(_path));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(_path, ignored))
            if (entry.is_regular_file(ignored) && !entry.is_symlink(ignored))
                std::filesystem::permissions(entry, std::filesystem::perms::owner_write,
                                             std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(_path, ignored);
    }

    std::string Path() const { return _path.string(); }
    // The path of a file in it.
    std::string operator/(const std::string& name) const { return (_path / name).string(); }

private:
    std::filesystem::path _path;
};

#endif
