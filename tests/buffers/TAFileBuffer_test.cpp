#include "TAFileBuffer.h"

#include <list>

#include "TAThread.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

constexpr std::size_t Budget = 10'240'000;

struct FileBuffer : testing::Test {
    FileBuffer() { Make(File(0), 1); }  // nothing is counted any more, whatever ran before
    ~FileBuffer() override {
        TAFileBuffer::ASyncCleanup();
        TAThread::WaitForAll();
    }
    std::unique_ptr<TAFileBuffer> Make(const std::string& path, int first = 0) {
        return std::make_unique<TAFileBuffer>(path.c_str(), first);
    }
    // A file of that size, named by it.
    std::string File(std::size_t size) {
        const std::string path = folder / std::to_string(size);
        if (!std::filesystem::exists(path)) WriteBytes(path, std::string(size, 'x'));
        return path;
    }
    static void ExpectText(TAFileBuffer& buffer, std::size_t size) {
        static const std::string expected(Budget + 1, 'x');
        ASSERT_EQ(buffer.GetSize(), static_cast<int>(size));
        ASSERT_TRUE(std::memcmp(buffer.GetBuffer(), expected.data(), size) == 0 && buffer.GetBuffer()[size] == '\0');
    }

    const TemporaryFolder folder;
};

}  // namespace

TEST_F(FileBuffer, HoldsTheTextAndSavesIt) {
    WriteBytes(folder / "text", "one\ntwo\n");
    TAFileName copy((folder / "copy").c_str()), nowhere((folder / "missing/copy").c_str()), full(FullDevice.c_str());
    const auto text = Make(folder / "text");
    EXPECT_EQ(text->GetName(), folder / "text");
    EXPECT_EQ(text->SaveAs(copy), 0);
    EXPECT_EQ(text->SaveAs(nowhere), 1);
    EXPECT_EQ(text->SaveAs(full), 1);
    TAFileBuffer again(copy, 0), missing(nowhere, 0), directory(folder.Path().c_str(), 0), none(nullptr, 0);
    EXPECT_STREQ(again.GetBuffer(), "one\ntwo\n");
    EXPECT_EQ(again.GetSize(), 8);
    for (TAFileBuffer* const empty : {&missing, &directory, &none}) {
        EXPECT_EQ(empty->SaveAs(copy), 1);
        EXPECT_TRUE(empty->GetBuffer() == nullptr && empty->GetSize() == 0);
    }
    EXPECT_EQ(WithoutReturns(ReadBytes(folder / "copy")), "one\ntwo\n");  // left alone
}

// Pipes: each gets a writer that counts, so a text tells which in the order of loading it was.
TEST_F(FileBuffer, LoadsInTheOrderOfTheList) {
    const auto pipe = [&](int number) { return folder / ("pipe" + std::to_string(number)); };
    constexpr int Count = 12;
    for (int i = 0; i < Count; ++i)
        if (!MakeNamedPipe(pipe(i))) GTEST_SKIP() << "no pipes with names";
    std::map<int, std::unique_ptr<TAFileBuffer>> buffers;
    buffers[0] = Make(pipe(0));
    std::ofstream gate(pipe(0));  // open as soon as the first file is being loaded: the others wait
    std::list<int> model;
    auto next = model.end();
    std::mt19937 random(1);
    for (int i = 1; i < Count; ++i) {
        const bool isFirst = random() % 3 == 0;
        buffers[i] = Make(pipe(i), isFirst);
        model.insert(isFirst ? next = model.begin() : next, i);
        if (i % 4 != 3) continue;
        const auto neverLoaded = std::find(model.begin(), model.end(), i - 1);
        if (neverLoaded == next) ++next;
        model.erase(neverLoaded);
        buffers.erase(i - 1);
    }
    std::atomic<int> counter{0};
    std::vector<std::jthread> writers;
    for (const int i : model) writers.emplace_back([&, i] { std::ofstream(pipe(i)) << counter++; });
    gate.close();
    for (int i = 0; const int number : model) EXPECT_EQ(buffers[number]->GetBuffer(), std::to_string(i++));
}

// A file that tells the thread that reads it.
TEST_F(FileBuffer, OneByteAboveTheBudgetTheConsumerReadsItself) {
    const std::string teller = "/proc/thread-self/stat";
    if (onWindows || !std::filesystem::exists(teller)) GTEST_SKIP() << "no such file";
    const auto threadIn = [](const std::string& text) { return text.substr(0, text.find(' ')); };
    for (const std::size_t size : {Budget, Budget + 1}) {
        const auto large = Make(File(size)), told = Make(teller);
        const bool isOwn = threadIn(told->GetBuffer()) == threadIn(ReadBytes(teller));
        EXPECT_EQ(isOwn, size > Budget);
    }
    // A first one resets what is counted, so the thread goes on with this and with what follows.
    const auto large = Make(File(Budget + 1)), own = Make(teller);
    const std::string consumer = threadIn(own->GetBuffer());
    const auto first = Make(teller, 1), second = Make(teller);
    EXPECT_TRUE(threadIn(second->GetBuffer()) != consumer && threadIn(first->GetBuffer()) != consumer);
}

TEST_F(FileBuffer, TheThreadEndsOnRequestAndStartsAgain) {
    const std::string file = File(100);
    for (int round = 0; round < 300; ++round) {
        const auto buffer = Make(file);
        if (round % 3 == 0) TAFileBuffer::ASyncCleanup();  // before it could begin
        ASSERT_NO_FATAL_FAILURE(ExpectText(*buffer, 100));
        TAFileBuffer::ASyncCleanup();
        if (round % 2 == 0) TAThread::WaitForAll();
    }
}

TEST_F(FileBuffer, NobodyHangsInWhateverOrder) {
    const std::size_t sizes[] = {0, 100, 5'000, 2'000'000, 6'000'000, Budget + 1};
    for (const std::size_t size : sizes) File(size);
    const auto consume = [&](unsigned seed) {
        std::mt19937 random(seed);
        std::vector<std::pair<std::unique_ptr<TAFileBuffer>, std::size_t>> buffers(8);
        for (int step = 0; step < 80; ++step) {
            auto& [buffer, size] = buffers[random() % buffers.size()];
            if (buffer != nullptr && random() % 2 == 0)
                ExpectText(*buffer, size);
            else
                buffer = Make(File(size = sizes[random() % std::size(sizes)]), random() % 8 == 0);
            if (random() % 16 == 0) TAFileBuffer::ASyncCleanup();
        }
    };
    consume(0);
    std::vector<std::jthread> consumers;
    for (unsigned seed = 1; seed < 4; ++seed) consumers.emplace_back(consume, seed);
}
