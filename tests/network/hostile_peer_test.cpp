// Peers that break off, lie, dawdle and vanish. Whatever they do, a call ends with its message and nothing is lost.
#include <chrono>

#include "network/peer.h"
#include "support/failing_memory.h"
#include "support/files.h"
#include "support/test_system.h"

namespace {

using Get = int (*)(TASocket& socket);

int GetText(TASocket& socket) {
    ZELString text("before");
    const int result = socket.GetBlock(text, Patience);
    EXPECT_TRUE(result == 0 || text == "") << text;
    return result;
}

int GetList(TASocket& socket) {
    ZELListValZELString list = List({"before"});
    const int result = socket.GetBlock(list, Patience);
    EXPECT_TRUE(result == 0 || list.Size() == 0);
    return result;
}

int GetBytes(TASocket& socket) {
    int size = 0;
    void* data = nullptr;
    const int result = socket.GetBinBlock(&size, &data, Patience);
    EXPECT_EQ(data != nullptr, result == 0 && size > 0);
    std::free(data);
    return result;
}

int GetInteger(TASocket& socket) {
    int value = 0;
    return socket.Read(value, Patience);
}

int GetString(TASocket& socket) {
    ZELString text;
    return socket.Read(text, Patience);
}

int GetFile(TASocket& socket) {
    const TemporaryFolder folder;
    return socket.GetFile((folder / "file").c_str(), Patience);
}

struct Lie {
    const char* name;
    Get get;
    std::string bytes;  // then the peer hangs up
    const char* message;
};

constexpr const char* NoText = "Unable to get block size ";
constexpr const char* NoSize = "Unable to get block size";
constexpr const char* NotFull = "Unable to get full block";
constexpr int Most = INT_MAX;
const std::string word = Number(0) + Text("a");

const Lie lies[] = {
    {"text", GetText, "", NoText},
    {"text", GetText, "   ", NoText},
    {"text", GetText, Header(3) + "ab", NotFull},
    {"huge text", GetText, "\xBF\xBF\xBF\xBF x", NotFull},
    {"list", GetList, Header(70000) + "a b", NotFull},
    {"bytes", GetBytes, "    "[0] + std::string(), NoSize},
    {"bytes", GetBytes, Header(16000000) + std::string(100000, 'x'), NotFull},
    {"negative bytes", GetBytes, Header(-3) + "abc", NotFull},
    {"huge bytes", GetBytes, "\xBF\xBF\xBF\xBF x", NotFull},
    {"integer", GetInteger, "abc", NoSize},
    {"string", GetString, "abc", NoSize},
    {"string", GetString, Number(3) + "ab", NotFull},
    {"huge string", GetString, Number(Most) + "ab", NotFull},
    {"negative string", GetString, Number(-1) + "ab", NotFull},
    {"lowest string", GetString, Number(INT_MIN) + "ab", NotFull},
    {"unknown number", GetText, Header(-1) + word + Number(-1) + Number(1) + Number(1), NotFull},
    {"unknown number", GetText, Header(-1) + word + Number(-1) + Number(1) + Number(-7), NotFull},
    {"negative count", GetText, Header(-1) + word + Number(-1) + Number(-1) + Number(0), NotFull},
    {"lowest count", GetList, Header(-1) + word + Number(-1) + Number(INT_MIN) + Number(0), NotFull},
    {"huge count", GetText, Header(-1) + word + Number(-1) + Number(Most) + Number(0), NotFull},
    {"huge count", GetList, Header(-1) + word + Number(-1) + Number(Most) + Text("x"), NotFull},
    {"huge word", GetText, Header(-1) + Number(0) + Number(Most) + "x", NotFull},
    {"negative word", GetText, Header(-1) + Number(0) + Number(-2), NotFull},
    {"endless words", GetText, Header(-1) + word + word, NotFull},
    {"negative file", GetFile, Block("abc") + Header(-5), NotFull},
    {"wrong total", GetFile, Block("abc") + "    " + Block("4"), "Wrong byte count in GetFile"},
    {"no number", GetFile, Block("abc") + "    " + Block("3x"), "Wrong byte count in GetFile"},
    {"no total", GetFile, "    " + Block(""), "Wrong byte count in GetFile"},
    {"huge total", GetFile, "    " + Block("99999999999999999999"), "Wrong byte count in GetFile"},
    {"compressed total", GetFile, "    " + Header(-1), NotFull},
    // Ends in the middle of everything.
    {"text", GetText, Header(-3) + word + Number(1) + Text("b") + Number(-1) + Number(2) + Number(0) + Number(1),
     nullptr},
    {"list", GetList, Header(-2) + word + Number(-1) + Number(2) + Text("a") + Text("a"), nullptr},
    {"text", GetText, Block("hello"), nullptr},
    {"list", GetList, Block("a b  c"), nullptr},
    {"bytes", GetBytes, Block("hello"), nullptr},
    {"string", GetString, Text("hello"), nullptr},
    {"file", GetFile, Block("hello") + Block("x") + "    " + Block("6"), nullptr},
};

TEST(HostilePeer, Lies) {
    Listener listener;
    for (const Lie& lie : lies) {
        // Rows without a message succeed when they are whole, and fail wherever they are cut.
        for (std::size_t cut = lie.message != nullptr ? lie.bytes.size() : 0; cut <= lie.bytes.size(); ++cut) {
            SCOPED_TRACE(testing::Message() << lie.name << ' ' << cut);
            Conversation talk(listener);
            talk.peer.Send(lie.bytes.substr(0, cut));
            talk.peer.Close();
            const bool isWhole = lie.message == nullptr && cut == lie.bytes.size();
            EXPECT_EQ(lie.get(talk.socket), isWhole ? 0 : 1);
            const std::string message = talk.socket.GetErrMsg();
            EXPECT_TRUE(lie.message ? message == lie.message : (message == "no error on socket") == isWhole) << message;
        }
    }
}

// Each value of each byte of a header, with three bytes behind it, against the rule in words.
TEST(HostilePeer, EveryHeader) {
    Listener listener;
    for (int at = 0; at < 4; ++at) {
        for (int value = 0; value < 256; value += StormPercent == 100 ? 1 : 7) {
            std::string bytes = Header(0) + "abc";
            bytes[static_cast<std::size_t>(at)] = static_cast<char>(value);
            int length = value - 32;
            const bool isNegative = (length & 64) != 0;
            for (int i = 0; i < at; ++i) length *= 64;
            if (isNegative) length = -length;
            Conversation talk(listener);
            talk.peer.Send(bytes);
            talk.peer.Close();
            EXPECT_EQ(GetText(talk.socket), length >= 0 && length <= 3 ? 0 : 1) << at << ' ' << value;
        }
    }
}

TEST(HostilePeer, MillionWords) {
    const int count = StormPercent * 10000;
    Conversation talk;
    std::thread sender([&] {
        std::string bytes = Header(-1);
        const std::string second = Text("second");
        for (int i = 0; i < count; ++i) {
            // Half of them in order, half backwards from the highest number, and each number twice.
            const std::string number = Number(i % 2 == 0 ? i / 2 : INT_MAX - i);
            bytes.append(number).append(Text(std::to_string(i))).append(number).append(second);
        }
        talk.peer.Send(bytes + Number(-1) + Number(3) + Number(2) + Number(INT_MAX - 1) + Number(INT_MAX - count + 1));
    });
    ZELString text;
    EXPECT_EQ(talk.socket.GetBlock(text, Patience), 0) << talk.socket.GetErrMsg();
    EXPECT_EQ(text, ("4 1 " + std::to_string(count - 1)).c_str());
    talk.socket.Close();  // the sender does not wait for a reader that failed
    sender.join();
}

// Four bytes may stand for a long word, but not for as many as one likes.
TEST(HostilePeer, TextThatGrows) {
    Conversation talk;
    const int length = 1 << 20;
    std::thread sender([&] {
        std::string bytes = Header(-1) + Number(0) + Text(std::string(length, 'x')) + Number(-1) + Number(1 << 20);
        for (int i = 0; i < 1 << 16; ++i) bytes += Number(0);
        talk.peer.Send(bytes);
    });
    EXPECT_TRUE(Gives(1, NotFull, talk.socket, GetText(talk.socket)));
    talk.socket.Close();
    sender.join();
}

// For its life, the seconds that have passed.
struct Watch {
    double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(); }
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

TEST(HostilePeer, SilentPeer) {
    const Interruptions interruptions;
    Conversation talk;
    const Watch watch;
    ZELString text("before");
    EXPECT_TRUE(Gives(2, "Error reading from stream socket (select): Connection timed out", talk.socket,
                      talk.socket.GetBlock(text, 1)));
    EXPECT_GE(watch.Seconds(), 0.99);
    EXPECT_EQ(text, "before");
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "before");
    EXPECT_EQ(talk.socket.GetFile((folder / "file").c_str(), 1), 2);
    EXPECT_EQ(ReadBytes(folder / "file"), "before");
    talk.peer.Send(Block("late"));
    EXPECT_EQ(talk.socket.GetBlock(text, Patience), 0);
    EXPECT_EQ(text, "late");
    // A file's limit counts anew before each piece.
    talk.peer.Send(Block("half"));
    EXPECT_EQ(talk.socket.GetFile((folder / "file").c_str(), 1), 2);
    EXPECT_EQ(ReadBytes(folder / "file"), "half");
}

// Time-outs end with the first byte. A stall in the middle is the idle limit's, in both directions.
TEST(HostilePeer, SlowPeer) {
    Conversation talk;
    std::thread sender([&] {
        for (const char byte : Block("slow")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            talk.peer.Send(std::string(1, byte));
        }
    });
    EXPECT_EQ(GetText(talk.socket), 0);
    sender.join();
    talk.socket.SetIdleLimit(1);
    talk.peer.Send(Header(4) + "st");
    EXPECT_TRUE(Gives(1, NotFull, talk.socket, GetText(talk.socket)));
    std::vector<char> bytes(16000000);
    EXPECT_TRUE(Gives(1, "Unable to flush buffer", talk.socket, talk.socket.PutBinBlock(16000000, bytes.data())));
    EXPECT_EQ(talk.socket.Close(), 0);
    EXPECT_TRUE(Gives(1, "unable to close not opened socket", talk.socket, talk.socket.Close()));
}

TEST(HostilePeer, PeerThatIsGone) {
    Conversation talk;
    talk.peer.Send("what nobody reads makes the end a reset");
    talk.peer.Close();
    const ZELString text("x");
    int result = 0;
    for (int i = 0; i < 100000 && result == 0; ++i) result = talk.socket.PutBlock(text) | talk.socket.Flush();
    EXPECT_TRUE(Gives(1, "Unable to flush buffer", talk.socket, result));
    EXPECT_EQ(talk.socket.Flush(), 0);  // the buffer is empty now
    EXPECT_EQ(talk.socket.PutBlock(text), 0);
    EXPECT_TRUE(Gives(1, "Unable to flush buffer", talk.socket, talk.socket.Close()));
    EXPECT_TRUE(Gives(1, "Socket not opened, unable to put data block", talk.socket, talk.socket.PutBlock(text)));
    EXPECT_TRUE(Gives(2, "Socket not opened, unable to get data block", talk.socket,
                      talk.socket.Flush() + GetString(talk.socket)));
}

TEST(HostilePeer, FilesThatFail) {
    const TemporaryFolder folder;
    Conversation talk(6);
    const auto fails = [&](int result, const char* message) {
        return result == 1 && std::string(talk.socket.GetErrMsg()) == message;
    };
    for (const std::string& path : {folder / "missing", folder.Path(), std::string()})
        EXPECT_TRUE(fails(talk.socket.PutFile(path.c_str()), "Unable to read file for TASocket::PutFile")) << path;
    talk.peer.Send(Block("abc") + "    " + Block("3"));
    for (const std::string& path : {folder / "no" + "/file", folder.Path(), std::string()})
        EXPECT_TRUE(
            fails(talk.socket.GetFile(path.c_str(), Patience), "Unable to write in file for TASocket::GetFile"));
    EXPECT_EQ(talk.socket.GetFile((folder / "file").c_str(), Patience), 0);  // nothing was lost by that
    if (!FullDevice.empty()) {
        talk.peer.Send(Block("abc") + "    " + Block("3"));
        EXPECT_TRUE(
            fails(talk.socket.GetFile(FullDevice.c_str(), Patience), "Unable to write in file for TASocket::GetFile"));
    }
    // The number of bytes must fit as well.
    WriteBytes(folder / "file", "0123456789");
    EXPECT_TRUE(
        fails(talk.socket.PutFile((folder / "file").c_str()), "Unable to put block in buffer (block size is 2)"));
    Conversation narrow(4);
    EXPECT_TRUE(
        Gives(1, "Unable to free write buffer", narrow.socket, narrow.socket.PutFile((folder / "file").c_str())));
}

// Each allocation fails once: a call either fails or delivers everything, and the next conversation is complete.
TEST(HostilePeer, WithoutMemory) {
    const TemporaryFolder folder;
    WriteBytes(folder / "in", "contents");
    const Variable compress("TASocketCompress", "1");
    const std::string longWord(100, 'w'), longText(70000, 'x');
    const std::string words = Header(-3) + word + Number(7) + Text(longWord) + Number(-1) + Number(2) + Number(0) +
                              Number(7) + Header(-1) + Number(-1) + Number(1) + Text(longWord);
    const auto talk = [&](FailingMemory& memory) {
        Listener listener;
        Peer peer(listener.port);
        peer.Send(Block("query") + Block(longText) + Block("12345") + "    " + Block("5") + words);
        TASocket socket;
        ZELString query, text;
        ZELListValZELString list;
        int size = 0;
        void* data = nullptr;
        const std::string out = folder / "out";
        memory.Begin();
        const bool hasFailed =
            listener.server.GetQuery(Patience, query, socket) != 0 || socket.GetBinBlock(&size, &data, Patience) != 0 ||
            socket.GetFile(out.c_str(), Patience) != 0 || socket.GetBlock(text, Patience) != 0 ||
            socket.GetBlock(list, Patience) != 0 || socket.PutBlock(("some " + longWord).c_str()) != 0 ||
            socket.PutFile((folder / "in").c_str()) != 0;
        EXPECT_TRUE(memory.End() || !hasFailed);
        const std::unique_ptr<void, FreeBlock> received(data);
        if (hasFailed) return;
        EXPECT_TRUE(query == "query" && size == 70000 && std::memcmp(data, longText.data(), longText.size()) == 0);
        EXPECT_EQ(ReadBytes(out), "12345");
        EXPECT_TRUE(Holds(text.CastToCharPtr(), longWord) && list.Size() == 1 && list[1] == longWord.c_str());
    };
    EXPECT_GE(FailEachAllocation(talk, Fallback::Possible).count, 12);
}

// Many clients at once, each faulty in its own way, again and again.
TEST(HostilePeer, Crowd) {
    Listener listener;
    const auto round = [&](unsigned seed) {
        std::vector<std::unique_ptr<Conversation>> talks(static_cast<std::size_t>(2 * StormPercent));
        for (auto& talk : talks) talk = std::make_unique<Conversation>(listener);
        std::thread crowd([&] {
            std::mt19937 random(seed);
            for (const auto& talk : talks) {
                const std::string& bytes = lies[random() % std::size(lies)].bytes;
                talk->peer.Send(bytes.substr(0, random() % (bytes.size() + 1)));
                if (random() % 2 == 0) talk->peer.Close();
            }
            for (const auto& talk : talks) talk->peer.Close();
        });
        for (std::size_t i = 0; i < talks.size(); ++i) {
            constexpr Get gets[] = {GetText, GetList, GetBytes, GetInteger, GetString, GetFile};
            gets[i % std::size(gets)](talks[i]->socket);
            talks[i]->socket.PutBlock("answer");
        }
        crowd.join();
    };
    for (unsigned seed = 0; seed < 5; ++seed) round(seed);
    const std::size_t before = AllocatedBytes();
    for (unsigned seed = 5; seed < 20; ++seed) round(seed);
    EXPECT_LE(AllocatedBytes(), before + 65536);
}

}  // namespace
