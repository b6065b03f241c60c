#include "ZELFileBufferPool.h"

#include "TAFileBuffer.h"
#include "TAThread.h"
#include "buffers/load_queue.h"
#include "support/failing_memory.h"
#include "support/gate.h"
#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

struct Subscriber : TACallbackSubscriber {
    void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) override {
        auto* const buffer = static_cast<ZELFileBuffer*>(publisher);
        buffer->AddRef();  // a subscriber may count on the buffer that ends
        EXPECT_TRUE(buffer->Release() >= 1 && buffer->isDestroyed());
        log += event->GetEventName() + std::string(" ") + buffer->getBuffer();
        if (act) act();
    }

    std::string log;
    std::function<void()> act;
};

void End(ZELFileBuffer* buffer, bool isDestroyed) {
    isDestroyed ? buffer->destroy() : static_cast<void>(buffer->Release());
}

struct FileBuffers : testing::Test {
    FileBuffers() {
        WriteBytes(folder / "empty", "");
        WriteBytes(folder / "text", "text");
    }
    ZELFileBuffer* Make(const std::string& name) { return new ZELFileBuffer((folder / name).c_str()); }
    void Storm(int count, std::size_t size);

    const TemporaryFolder folder;
};

// Four consumers take `count` buffers in turns and read, drop or destroy them, while a loader with room for eight files
// runs in front of them and is replaced ten times, whatever it is doing.
void FileBuffers::Storm(int count, std::size_t size) {
    constexpr int Files = 9, Consumers = 4, Ahead = 100;
    for (int i = 1; i <= Files; ++i) WriteBytes(folder / std::to_string(i), std::string(size, static_cast<char>(i)));
    const auto ceiling = static_cast<std::int64_t>(8 * size);
    std::vector<ZELFileBuffer*> buffers;
    for (int i = 0; i < count; ++i) buffers.push_back(Make(std::to_string(i % Files + 1)));
    const int perLoader = count / 10;
    std::atomic<int> appended{0}, taken{0}, loaders{0};
    const auto consume = [&](unsigned seed) {
        std::mt19937 random(seed);
        for (int i; (i = taken++) < count;) {
            while (i >= appended) std::this_thread::yield();
            ZELFileBuffer* const buffer = buffers[static_cast<std::size_t>(i)];
            const unsigned choice = random() % 8;
            // Leaves the reading to the loader, as long as it lives.
            while (choice > 2 && !buffer->isLoaded() && loaders <= i / perLoader + 1) std::this_thread::yield();
            EXPECT_TRUE(choice < 2 || std::string(size, static_cast<char>(i % Files + 1)) == buffer->getBuffer());
            End(buffer, choice == 0);
        }
    };
    std::vector<std::jthread> consumers;
    for (unsigned i = 0; i < Consumers; ++i) consumers.emplace_back(consume, i);
    std::unique_ptr<FileBufferLoader> loader;
    for (; appended < count; ++appended) {
        while (appended > taken + Ahead) std::this_thread::yield();
        if (appended % perLoader == 0) {
            ++loaders;
            loader = std::make_unique<FileBufferLoader>(ceiling);
            const bool isStarted = loader->Start();
            EXPECT_TRUE(isStarted);
            if (!isStarted) loaders = count;  // the consumers wait for none
        }
        loader->Queue()->Append(buffers[static_cast<std::size_t>(appended)]);
        EXPECT_LT(loader->Queue()->LoadedBytes(), ceiling + static_cast<std::int64_t>(size));
    }
    consumers.clear();
    loader->Queue()->Stop();
    loader->Join();
    EXPECT_EQ(loader->Queue()->LoadedBytes(), 0);
}

}  // namespace

TEST_F(FileBuffers, HoldTheirTextAndAnnounceItsEndOnce) {
    const std::tuple<const char*, int, const char*> rows[] = {
        {"text", 0, "text"}, {"empty", 0, ""}, {"missing", 1, nullptr}, {".", 1, nullptr}, {nullptr, 3, nullptr}};
    for (const auto& [name, status, text] : rows)
        for (const bool isDestroyed : {false, true}) {
            auto* const buffer = name != nullptr ? Make(name) : new ZELFileBuffer(nullptr);
            Subscriber subscriber;
            buffer->AddSubscriber(&subscriber);
            EXPECT_TRUE(buffer->getStatus() == 2 && !buffer->isLoaded());
            EXPECT_STREQ(buffer->getBuffer(), text);
            EXPECT_EQ(buffer->getBufferSize(), text != nullptr ? static_cast<int>(std::strlen(text)) : 0);
            EXPECT_TRUE(buffer->getStatus() == status && buffer->isLoaded() && !buffer->isDestroyed());
            buffer->AddRef();
            End(buffer, isDestroyed);
            EXPECT_EQ(buffer->getBuffer() != nullptr, text != nullptr && !isDestroyed);
            EXPECT_EQ(buffer->Release(), 0);
            EXPECT_EQ(subscriber.log, text != nullptr ? std::string("EventBufferDeletion ") + text : "");
        }
    ZELFileBuffer* const unread = Make("text");
    unread->AddRef();
    unread->destroy();
    EXPECT_TRUE(unread->getBuffer() == nullptr && unread->getStatus() == 2 && unread->isLoaded());
    unread->Release();
}

// When the pool's thread gives the last reference back, the subscriber ends the pool on that thread.
TEST_F(FileBuffers, PoolsGetThreadsWhenTheyMayAndSubscribersMayEndThem) {
    for (int round = 0; round < 48; ++round) {
        const bool hasThread = round % 3 == 1;
        if (round > 0) hasThread ? ZELFileBufferPool::enableMultiThread() : ZELFileBufferPool::disableMultiThread();
        auto pool = std::make_unique<ZELFileBufferPool>();
        Gate ended;
        Subscriber subscriber;
        subscriber.act = [&] { pool.reset(), ended.Open(); };
        ZELFileBuffer* const buffer = Make("text");
        buffer->AddSubscriber(&subscriber);
        pool->append(nullptr);
        pool->append(buffer);
        while (hasThread && !buffer->isLoaded()) std::this_thread::yield();
        const int wasLoaded = buffer->isLoaded();
        EXPECT_TRUE(buffer->Release() == 0 || hasThread);
        EXPECT_EQ(wasLoaded, hasThread ? 1 : 0);
        if (hasThread) ended.Pass();
    }
}

// A read error is not the end of the file.
TEST_F(FileBuffers, ReportFilesThatCannotBeReadWhole) {
    if (UnreadableFile.empty()) GTEST_SKIP() << "no file of this system fails while it is read";
    ZELFileBuffer* const shared = new ZELFileBuffer(UnreadableFile.c_str());
    EXPECT_EQ(shared->getBuffer(), nullptr);
    EXPECT_EQ(shared->getBufferSize(), 0);
    EXPECT_EQ(shared->getStatus(), ZELFileBuffer::NotOpened);
    shared->Release();
    TAFileBuffer ahead(UnreadableFile.c_str(), 0);
    EXPECT_TRUE(ahead.GetBuffer() == nullptr && ahead.GetStatus() == ZELFileBuffer::NotOpened);
    TAFileBuffer::ASyncCleanup();
    TAThread::WaitForAll();
}

TEST_F(FileBuffers, EachFailedAllocationIsReportedAndLosesNoMoreThanAText) {
    ZELFileBufferPool::enableMultiThread();
    FailEachAllocation(
        [&](FailingMemory& memory) {
            ZELFileBuffer* const shared = Make("text");
            memory.Begin();
            bool isRead;
            {
                ZELFileBufferPool pool;
                pool.append(shared);
                TAFileBuffer ahead((folder / "text").c_str(), 0);
                isRead = ahead.GetStatus() == 0 && shared->getBuffer() != nullptr;
                EXPECT_TRUE(ahead.GetStatus() != 0 || ahead.GetSize() > 0);
            }
            EXPECT_TRUE(memory.End() || isRead);
            shared->Release();
        },
        Fallback::Possible);
    TAFileBuffer::ASyncCleanup();
    TAThread::WaitForAll();
}

// A ceiling of one byte admits one file: the next is read when the text before it ends. What lies between counts for
// nothing, and what the loader leaves loads on demand.
TEST_F(FileBuffers, LoadsInOrderUnderTheCeilingAndCountsWhatIsAlive) {
    constexpr std::size_t Count = 20;
    std::vector<ZELFileBuffer*> buffers;
    auto loader = std::make_unique<FileBufferLoader>(1);
    LoadQueue& queue = *loader->Queue();
    ASSERT_TRUE(loader->Start());
    for (std::size_t i = 0; i < Count; ++i) {
        ZELFileBuffer* const ready = Make("text");
        ready->loadFile();
        ZELFileBuffer* const other = i % 3 == 0 ? new ZELFileBuffer(nullptr) : Make(i % 3 == 1 ? "missing" : "empty");
        WriteBytes(folder / std::to_string(i), "0123456789");
        buffers.push_back(Make(std::to_string(i)));
        for (ZELFileBuffer* const buffer : {ready, other, buffers.back()}) queue.Append(buffer);
        End(ready, i % 2 == 0);
        other->Release();
    }
    for (std::size_t i = 0; i < Count / 2; ++i) {
        // The bytes alone may still be those of the buffer before, of which the loader gives its reference back.
        while (!buffers[i]->isLoaded() || queue.LoadedBytes() == 0) std::this_thread::yield();
        ASSERT_EQ(queue.LoadedBytes(), 10);
        for (std::size_t j = i; j < Count; ++j) ASSERT_EQ(buffers[j]->isLoaded(), i == j ? 1 : 0);
        End(buffers[i], i % 2 == 0);
    }
    while (!buffers[Count / 2]->isLoaded()) std::this_thread::yield();
    queue.Stop();
    ZELFileBuffer* const late = Make("text");
    queue.Append(late);
    EXPECT_EQ(late->Release(), 0);
    loader.reset();  // does not wait for room
    for (std::size_t i = Count / 2; i < Count; ++i) {
        EXPECT_EQ(buffers[i]->isLoaded(), i == Count / 2 ? 1 : 0);
        EXPECT_EQ(buffers[i]->getBufferSize(), 10);
        EXPECT_EQ(buffers[i]->Release(), 0);
    }
}

TEST_F(FileBuffers, Storms) {
    Storm(10'000, 1024);
    Storm(200, 1 << 20);
}

TEST_F(FileBuffers, ThreadsKeepTheLibraryAndEndWithTheProcess) {
    for (const char* const count : {"2", "3000"}) {  // idle and busy
        const ProgramResult result = RunProgram("unload_probe", {folder / "text", count});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, "loaded\n");
    }
}
