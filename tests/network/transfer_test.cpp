// Long files from one TASocket to another, while they are what they are and while others change them.
#include "TAPerfo.h"
#include "network/peer.h"
#include "platform/c_streams.h"
#include "platform/file_mapping.h"
#include "support/test_system.h"

namespace {

// What both ends gave, and what came.
struct Transfer {
    explicit Transfer(const std::string& path, TAPerfo* sent = nullptr, TAPerfo* got = nullptr) {
        Listener listener;
        TASocket sender, receiver;
        EXPECT_EQ(sender.OpenClient("127.0.0.1", listener.port), 0);
        EXPECT_EQ(listener.server.GetQuery(receiver), 0);
        sender.SetPerfo(nullptr, sent);
        receiver.SetPerfo(got, nullptr);
        std::thread sending([&] {
            putResult = sender.PutFile(path.c_str());
            message = sender.GetErrMsg();
            sender.Close();
        });
        const TemporaryFolder folder;
        getResult = receiver.GetFile((folder / "out").c_str(), 0);
        receiver.Close();
        sending.join();
        came = ReadBytes(folder / "out");
    }
    bool Succeeds() const { return putResult == 0 && getResult == 0; }

    int putResult, getResult;
    std::string message, came;
};

// Gives the file a new length when the first bytes are told.
struct Resizer : TAPerfo {
    Resizer(const std::string& changed, std::size_t length) : path(changed), size(length) {}
    void Count(int) override {
        if (!std::exchange(isDone, true)) std::filesystem::resize_file(path, size);
    }
    std::string path;
    std::size_t size;
    bool isDone = false;
};

TEST(Transfer, FilesThatChange) {
    const TemporaryFolder folder;
    const std::string path = folder / "in";
    std::mt19937 random(1);
    std::string part((1 << 20) + 13, '\0'), content;
    for (char& c : part) c = static_cast<char>(random());
    for (int i = 0; i < 20; ++i) content += part;
    WriteBytes(path, content);
    EXPECT_TRUE(Transfer(path).came == content);
    // Between two pieces, by the sender's own thread.
    const std::string longer = content + std::string(1 << 20, '\0') + "\0\0\0";
    Resizer grow(path, longer.size());
    const Transfer grown(path, &grow);
    EXPECT_TRUE(grown.Succeeds() && grown.came == longer) << grown.message;
    Resizer shrink(path, 300000);
    const Transfer shrunk(path, &shrink);
    EXPECT_TRUE(shrunk.Succeeds()) << shrunk.message;
    EXPECT_TRUE(shrunk.came.size() >= 1 << 20 && shrunk.came == content.substr(0, shrunk.came.size()));
    // While the receiver does not read: most often within a piece.
    WriteBytes(path, content);
    Resizer cut(path, 300000);
    const Transfer torn(path, nullptr, &cut);
    EXPECT_EQ(torn.putResult, torn.getResult);
    EXPECT_EQ(torn.message, torn.Succeeds() ? "no error on socket" : "Unable to read file for TASocket::PutFile");
    EXPECT_LT(torn.came.size(), content.size());
    EXPECT_TRUE(torn.came == content.substr(0, torn.came.size()));
}

TEST(Transfer, FilesThatAreNone) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    if (!MakeNamedPipe(pipe)) GTEST_SKIP() << "no pipes with names of files";
    const std::string content((1 << 20) + 5, 'x');
    std::thread writer([&] { WriteBytes(pipe, content); });
    EXPECT_TRUE(Transfer(pipe).came == content);
    writer.join();
    // Regular, with contents, and 0 bytes long for who asks.
    EXPECT_EQ(Transfer("/proc/version").came, ReadBytes("/proc/version"));
}

// Whatever part of a file is asked for, it is there, and what is gone is told and kills nobody.
TEST(Transfer, Mapping) {
    const TemporaryFolder folder;
    std::string content(40 << 20, '\0');
    for (std::size_t i = 0; i < content.size(); i += 1000) content[i] = static_cast<char>(i / 1000);
    WriteBytes(folder / "in", content);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(zel::OpenStream((folder / "in").c_str(), "rb"),
                                                               std::fclose);
    zel::FileMapping mapping(file.get());
    if (mapping.Size() < 0) GTEST_SKIP() << "nothing is mapped here";
    EXPECT_EQ(mapping.Size(), static_cast<std::int64_t>(content.size()));
    EXPECT_EQ(mapping.At(1, 40 << 20), nullptr);  // more than a window
    for (const int offset : {0, 1, 70000, (16 << 20) - 300000, 39 << 20, 5})
        EXPECT_EQ(std::memcmp(mapping.At(offset, 300000), content.data() + offset, 300000), 0) << offset;
    const char* const bytes = mapping.At(0, 1 << 20);
    std::filesystem::resize_file(folder / "in", 100000);
    EXPECT_EQ(mapping.Size(), 100000);
    Listener listener;
    zel::Socket socket = zel::Socket::MakeIPv4();
    ASSERT_TRUE(socket.Connect(Loopback(listener.port), 1000 * Patience));
    for (const int count : {1, 2}) {
        const zel::Piece pieces[] = {{bytes + 200000, 1000}, {bytes, 0}};
        EXPECT_EQ(socket.Send(pieces, count), zel::SendStatus::Unreadable);
    }
}

}  // namespace
