#include <deque>
#include <functional>
#include <memory>

#include "ZELFileBufferPool.h"
#include "files/load_queue.h"
#include "support/files.h"
#include "support/gate.h"
#include "support/programs.h"
#include "support/testing.h"

namespace {

struct Subscriber : TACallbackSubscriber {
    void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) override {
        auto* const buffer = static_cast<ZELFileBuffer*>(publisher);
        EXPECT_EQ(buffer->isDestroyed(), 1);
        const auto size = static_cast<std::size_t>(buffer->getBufferSize());
        log += event->GetEventName() + (" " + std::string(buffer->getBuffer(), size));
        if (act) act(buffer);
    }

    std::string log;
    std::function<void(ZELFileBuffer*)> act;
};

void Await(const ZELFileBuffer& buffer) {
    while (!buffer.isLoaded()) std::this_thread::yield();
}

std::string Text(int number, std::size_t size) {
    return std::string(size, static_cast<char>('a' + number % 26));
}

class FileBuffers : public testing::Test {
protected:
    FileBuffers() {
        WriteBytes(folder / "empty", "");
        WriteBytes(folder / "text", "text");
    }
    ZELFileBuffer* Make(const std::string& name) { return new ZELFileBuffer((folder / name).c_str()); }
    // Makes `count` files of `size` bytes.
    void MakeFiles(int count, std::size_t size) {
        for (int i = 0; i < count; ++i) WriteBytes(folder / std::to_string(i), Text(i, size));
    }
    void Storm(int count, std::size_t size);

    const TemporaryFolder folder;
};

// Four consumers take `count` buffers in turns and read, drop or destroy them, while a loader with room for eight files
// runs in front of them and is replaced ten times, whatever it is doing.
void FileBuffers::Storm(int count, std::size_t size) {
    constexpr int Files = 16, Consumers = 4, Ahead = 100;
    MakeFiles(Files, size);
    const auto ceiling = static_cast<std::int64_t>(8 * size);
    std::vector<ZELFileBuffer*> buffers;
    for (int i = 0; i < count; ++i) buffers.push_back(Make(std::to_string(i % Files)));
    const int perLoader = count / 10;
    std::atomic<int> appended{0}, taken{0}, loaders{0};
    const auto consume = [&](unsigned seed) {
        std::mt19937 random(seed);
        for (int i; (i = taken++) < count;) {
            while (i >= appended) std::this_thread::yield();
            ZELFileBuffer* const buffer = buffers[static_cast<std::size_t>(i)];
            const unsigned choice = random() % 8;
            if (choice == 0) {
                buffer->destroy();
                continue;
            }
            // Leaves the reading to the loader, as long as it lives.
            while (choice > 2 && !buffer->isLoaded() && loaders <= i / perLoader + 1) std::this_thread::yield();
            if (choice > 1) {
                EXPECT_TRUE(buffer->getBuffer() == Text(i % Files, size)) << i;
                EXPECT_EQ(buffer->getBufferSize(), static_cast<int>(size));
            }
            buffer->Release();
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
            ASSERT_TRUE(loader->Start());
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

TEST_F(FileBuffers, WhatTheyHoldBeforeAndAfterLoading) {
    struct Row {
        const char* name;
        int status;
        const char* text;
    };
    for (const Row& row : {Row{"text", 0, "text"}, Row{"empty", 0, ""}, Row{"missing", 1, nullptr},
                           Row{".", 1, nullptr}, Row{nullptr, 3, nullptr}}) {
        auto* const buffer = row.name != nullptr ? Make(row.name) : new ZELFileBuffer(nullptr);
        EXPECT_TRUE(buffer->getStatus() == 2 && !buffer->isLoaded());
        EXPECT_STREQ(buffer->getBuffer(), row.text);
        EXPECT_EQ(buffer->getBufferSize(), row.text != nullptr ? static_cast<int>(std::strlen(row.text)) : 0);
        EXPECT_TRUE(buffer->getStatus() == row.status && buffer->isLoaded() && !buffer->isDestroyed());
        buffer->AddRef();
        EXPECT_EQ(buffer->Release(), 1);
        EXPECT_EQ(buffer->Release(), 0);
    }
}

TEST_F(FileBuffers, AnnounceTheEndOfTheirTextOnce) {
    Subscriber subscriber, unsubscribed;
    // Subscribers may count on the buffer while it ends.
    subscriber.act = [&](ZELFileBuffer* buffer) {
        buffer->AddRef();
        EXPECT_GE(buffer->Release(), 1);
        buffer->RemoveSubscriber(&unsubscribed);
    };
    const auto make = [&](const char* name) {
        ZELFileBuffer* const buffer = Make(name);
        buffer->AddSubscriber(&subscriber);
        return buffer;
    };
    ZELFileBuffer* buffer = make("text");
    EXPECT_EQ(buffer->Release(), 0);  // never loaded: nothing ends
    make("missing")->Release();
    EXPECT_EQ(subscriber.log, "");

    buffer = make("text");
    buffer->loadFile();
    EXPECT_EQ(buffer->Release(), 0);
    EXPECT_EQ(std::exchange(subscriber.log, ""), "EventBufferDeletion text");

    buffer = make("text");
    buffer->loadFile();
    buffer->AddRef();
    buffer->destroy();
    EXPECT_EQ(std::exchange(subscriber.log, ""), "EventBufferDeletion text");
    EXPECT_TRUE(buffer->getBuffer() == nullptr && buffer->getBufferSize() == 0 && buffer->getStatus() == 0);
    buffer->AddRef();
    buffer->destroy();
    EXPECT_EQ(buffer->Release(), 0);

    buffer = make("text");
    buffer->AddRef();
    buffer->destroy();
    EXPECT_TRUE(buffer->getBuffer() == nullptr && buffer->getStatus() == 2 && buffer->isLoaded() == 1);
    buffer->Release();
    EXPECT_EQ(subscriber.log, "");
}

TEST_F(FileBuffers, PoolsGetThreadsWhenTheyMay) {
    for (const int step : {0, 1, 2}) {
        if (step == 1) ZELFileBufferPool::enableMultiThread();
        if (step == 2) ZELFileBufferPool::disableMultiThread();
        ZELFileBufferPool pool;
        ZELFileBuffer* const buffer = Make("text");
        pool.append(nullptr);
        pool.append(buffer);
        if (step == 1) Await(*buffer);
        EXPECT_EQ(buffer->isLoaded(), step == 1 ? 1 : 0);
        EXPECT_STREQ(buffer->getBuffer(), "text");
        const int left = buffer->Release();
        EXPECT_TRUE(step == 1 || left == 0) << left;  // no pool has a reference
    }
}

// A ceiling of one byte admits one file: the next is read when the text before it ends.
TEST_F(FileBuffers, LoadsInOrderUnderTheCeilingAndCountsWhatIsAlive) {
    constexpr int Count = 20;
    MakeFiles(Count, 10);
    std::deque<ZELFileBuffer*> buffers;
    {
        FileBufferLoader loader(1);
        ASSERT_TRUE(loader.Start());
        for (int i = 0; i < Count; ++i) {
            buffers.push_back(Make(std::to_string(i)));
            ZELFileBuffer* const ready = Make("text");  // counts for nobody
            if (i % 2 == 0)
                ready->loadFile();
            else
                ready->AddRef(), ready->destroy();
            auto* const without = i % 3 == 0 ? new ZELFileBuffer(nullptr) : Make(i % 3 == 1 ? "missing" : "empty");
            for (ZELFileBuffer* const buffer : {ready, without, buffers.back()}) loader.Queue()->Append(buffer);
            without->Release();
            ready->Release();
        }
        for (int i = 0; i < Count / 2; ++i) {
            Await(*buffers.front());
            for (std::size_t later = 1; later < buffers.size(); ++later) ASSERT_FALSE(buffers[later]->isLoaded());
            while (loader.Queue()->LoadedBytes() == 0) std::this_thread::yield();
            ASSERT_EQ(loader.Queue()->LoadedBytes(), 10);
            if (i % 2 == 0) {
                buffers.front()->AddRef();
                buffers.front()->destroy();
            }
            buffers.front()->Release();
            buffers.pop_front();
        }
        Await(*buffers.front());
        loader.Queue()->Stop();
        auto* const late = Make("text");
        loader.Queue()->Append(late);
        EXPECT_EQ(late->Release(), 0);
    }  // does not wait for room
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        EXPECT_EQ(buffers[i]->isLoaded(), i == 0 ? 1 : 0);  // what the loader left loads on demand
        EXPECT_EQ(buffers[i]->getBufferSize(), 10);
        EXPECT_EQ(buffers[i]->Release(), 0);
    }
}

// On the loader's thread, when that gives the last reference back.
TEST_F(FileBuffers, SubscribersMayAppendAndEndThePool) {
    for (int round = 0; round < 50; ++round) {
        auto loader = std::make_unique<FileBufferLoader>(100);
        ASSERT_TRUE(loader->Start());
        Subscriber subscriber;
        Gate ended;
        ZELFileBuffer* const later = Make("text");
        subscriber.act = [&](ZELFileBuffer*) {
            loader->Queue()->Append(later);
            loader.reset();
            ended.Open();
        };
        ZELFileBuffer* const buffer = Make("text");
        buffer->AddSubscriber(&subscriber);
        buffer->loadFile();
        loader->Queue()->Append(buffer);
        buffer->Release();
        ended.Pass();
        later->Release();
    }
}

TEST_F(FileBuffers, StormOfSmallFiles) {
    Storm(10'000, 1024);
}

TEST_F(FileBuffers, StormOfLargeFiles) {
    Storm(200, 1 << 20);
}

TEST_F(FileBuffers, ProcessesEndAndUnloadTheLibraryWhateverItsThreadsDo) {
    WriteBytes(folder / "large", Text(0, 1 << 20));
    for (const char* const way : {"keep", "unload"})
        for (const char* const state : {"idle", "busy"})
            for (const char* const file : {"text", "large"}) {
                const ProgramResult result = RunProgram("unload_probe", {folder / file, way, state});
                EXPECT_EQ(result.exitCode, 0) << way << ' ' << state << ' ' << file << '\n' << result.err;
                EXPECT_EQ(result.out, "end\n");
            }
}
