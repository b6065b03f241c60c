#include "buffers/whole_file.h"

#include "support/test_system.h"
#include "support/testing.h"

namespace {

std::string RandomText(std::size_t size) {
    std::mt19937 random(static_cast<unsigned>(size));
    std::string text(size, '\0');
    for (char& c : text) c = "\0\n\xFFx"[random() % 4];
    return text;
}

int callsUntilRefusal;

void* Resize(void* block, std::size_t size) {
    return callsUntilRefusal-- == 0 ? nullptr : std::realloc(block, size);
}

// The text, which must end with a NUL.
std::string Read(const std::string& path, const WholeFileRules& rules, std::size_t* refused = nullptr) {
    const WholeFile file = ReadWholeFile(path.c_str(), rules);
    if (refused != nullptr) *refused = file.refused;
    const auto size = static_cast<std::size_t>(file.size);
    const std::string text(file.text, file.text != nullptr ? size + 1 : 0);
    EXPECT_TRUE(file.isOpened && (file.text == nullptr || text.back() == '\0'));
    std::free(file.text);
    return text.substr(0, size);
}

}  // namespace

TEST(WholeFile, EverySizeUnderEveryRuleAndRefusal) {
    const TemporaryFolder folder;
    const std::string path = folder / "file";
    for (const std::size_t size : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 31u, 4094u, 4095u, 4096u, 4097u, 100000u}) {
        const std::string text = RandomText(size);
        WriteBytes(path, text);
        for (const std::size_t firstBlock : {1u, 2u, 6u, 7u, 4096u, 1u << 20})
            for (const std::size_t most : {1u, 2u, 8u, 4095u, 4096u, 4097u, 1u << 20}) {
                const WholeFileRules rules = {most, firstBlock, Resize};
                callsUntilRefusal = -1;
                const std::string expected = text.substr(0, most);
                ASSERT_EQ(Read(path, rules), expected) << size << ' ' << firstBlock << ' ' << most;
                for (int refused = -callsUntilRefusal - 2; refused >= 0; --refused) {
                    callsUntilRefusal = refused;
                    std::size_t bytes = 0;
                    const std::string cut = Read(path, rules, &bytes);
                    ASSERT_EQ(cut, expected.substr(0, cut.size()));
                    ASSERT_TRUE(bytes > cut.size() || cut == expected);  // only trimming may be refused unsaid
                }
            }
    }
}

TEST(WholeFile, LargeOnesMoveAndGrow) {
    const TemporaryFolder folder;
    for (const std::size_t size : {(4u << 20) - 2, 4u << 20, 9u << 20}) {
        const std::string text = RandomText(size);
        WriteBytes(folder / "file", text);
        for (const std::size_t firstBlock : {1u << 20, 4u << 20, 64u << 20})
            ASSERT_TRUE(Read(folder / "file", {.firstBlock = firstBlock}) == text) << size << ' ' << firstBlock;
    }
}

TEST(WholeFile, WhatIsNoOrdinaryFile) {
    const TemporaryFolder folder;
    const std::string missing = folder / "missing", directory = folder.Path();
    for (const char* const path : {static_cast<const char*>(nullptr), "", missing.c_str(), directory.c_str()}) {
        const WholeFile file = ReadWholeFile(path);
        EXPECT_TRUE(!file.isOpened && file.text == nullptr && file.size == 0);
    }
    const std::string text = "a\r\n\x1A\n";
    WriteBytes(folder / "text", text);
    EXPECT_EQ(Read(folder / "text", {}), onWindows ? "a\n" : text);
    EXPECT_EQ(Read(EndlessDevice, {.most = 9'000}), std::string(onWindows ? 0 : 9'000, '\0'));
    if (const std::string pipe = folder / "pipe"; MakeNamedPipe(pipe)) {
        const std::string sent = RandomText(300'000);
        const std::jthread writer([&] { WriteBytes(pipe, sent); });
        EXPECT_EQ(Read(pipe, {}), sent);
    }
}
