// What goes over the wire, byte for byte, and what comes back out of it.
#include <functional>
#include <numeric>

#include "TAPerfo.h"
#include "network/block_header.h"
#include "network/peer.h"
#include "support/files.h"
#include "support/test_system.h"

namespace {

struct Meter : TAPerfo {
    void Count(int amount) override { amounts.push_back(amount); }
    std::vector<int> amounts;
};

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) bytes += static_cast<char>(value);
    return bytes;
}

using Action = std::function<int(TASocket&)>;

struct Item {
    const char* name;
    Action put;
    std::string wire;
    int sent;    // what the sender's counter is told in all
    Action get;  // whether the same came back, in which case 0
    int received;
};

Action PutText(std::string text) {
    return [text](TASocket& socket) { return socket.PutBlock(ZELString(text.data(), text.size())); };
}

Action GetText(std::string text) {
    return [text](TASocket& socket) {
        ZELString got("before");
        return socket.GetBlock(got, Patience) == 0 && got.View() == text ? 0 : 1;
    };
}

Action PutList(std::initializer_list<const char*> words) {
    return [list = List(words)](TASocket& socket) mutable { return socket.PutBlock(list); };
}

Action GetList(std::initializer_list<const char*> words) {
    return [list = List(words)](TASocket& socket) {
        ZELListValZELString got = List({"before"});
        return socket.GetBlock(got, Patience) == 0 && got == list ? 0 : 1;
    };
}

int GetBytes(TASocket& socket, const std::string& expected) {
    int size = -1;
    void* data = nullptr;
    const int result = socket.GetBinBlock(&size, &data, Patience);
    const bool isSame = std::string(static_cast<char*>(data), static_cast<std::size_t>(size)) == expected;
    EXPECT_EQ(data == nullptr, expected.empty());
    std::free(data);
    return result == 0 && isSame ? 0 : 1;
}

template <class Value>
Action Reading(Value value) {
    return [value](TASocket& socket) {
        Value got{};
        return socket.Read(got, Patience) == 0 && got == value ? 0 : 1;
    };
}

const std::vector<Item> plainItems = {
    {"integer", [](TASocket& s) { return s.Write(258); }, Bytes({2, 1, 0, 0}), 4, Reading(258), 0},
    {"negative", [](TASocket& s) { return s.Write(-2); }, Bytes({254, 255, 255, 255}), 4, Reading(-2), 0},
    {"string", [](TASocket& s) { return s.Write(ZELString("a\0b", 3)); }, Bytes({3, 0, 0, 0, 'a', 0, 'b'}), 7,
     Reading(ZELString("a\0b", 3)), 0},
    {"no string", [](TASocket& s) { return s.Write(ZELString()); }, Bytes({0, 0, 0, 0}), 4, Reading(ZELString()), 0},
    {"text", PutText("hello"), Bytes({37, 32, 32, 32}) + "hello", 5, GetText("hello"), 5},
    {"null text", [](TASocket& s) { return s.PutBlock(static_cast<const char*>(nullptr)); }, "    ", 0, GetText(""), 0},
    {"hundred", PutText(std::string(100, '\xFF')), Bytes({68, 33, 32, 32}) + std::string(100, '\xFF'), 100,
     GetText(std::string(100, '\xFF')), 100},
    {"list", PutList({"a", "", "bc", ""}), Bytes({38, 32, 32, 32}) + "a  bc ", 6, GetList({"a", "", "bc", ""}), 6},
    {"empty list", PutList({}), "    ", 0, GetList({}), 0},
    {"bytes", [](TASocket& s) { return s.PutBinBlock(3, const_cast<char*>("\0\n\r")); },
     Bytes({35, 32, 32, 32, 0, 10, 13}), 3, [](TASocket& s) { return GetBytes(s, std::string("\0\n\r", 3)); }, 3},
    {"no bytes", [](TASocket& s) { return s.PutBinBlock(0, nullptr); }, "    ", 0,
     [](TASocket& s) { return GetBytes(s, ""); }, 0},
};

const std::vector<Item> compressedItems = {
    {"first", PutText("a b a"), Bytes({155, 96,  96,  96,  0,   0, 0, 0, 1, 0, 0, 0, 'a', 1, 0, 0, 0, 1, 0, 0, 0,
                                       'b', 255, 255, 255, 255, 3, 0, 0, 0, 0, 0, 0, 0,   1, 0, 0, 0, 0, 0, 0, 0}),
     18 + 4 + 4 + 12, GetText("a b a"), 5},
    {"again", PutText("b"), Bytes({159, 96, 96, 96, 255, 255, 255, 255, 1, 0, 0, 0, 1, 0, 0, 0}), 12, GetText("b"), 1},
    {"blanks", PutText("  a "),
     Header(-4) + Number(2) + Text("") + Number(-1) + Number(4) + Number(2) + Number(2) + Number(0) + Number(2),
     8 + 4 + 4 + 16, GetText("  a "), 4},
    {"list", PutList({"c d", "a", "c d"}),
     Header(-3) + Number(3) + Text("c d") + Number(-1) + Number(3) + Text("c d") + Text("a") + Text("c d"),
     11 + 4 + 4 + 19, GetList({"c d", "a", "c d"}), 7},
    {"one empty word", PutList({""}), Header(-1) + Number(-1) + Number(1) + Text(""), 12, GetList({""}), 0},
    {"empty text", PutText(""), "    ", 0, GetText(""), 0},
    {"empty list", PutList({}), "    ", 0, GetList({}), 0},
    {"integer", [](TASocket& s) { return s.Write(7); }, Number(7), 4, Reading(7), 0},
    {"bytes", [](TASocket& s) { return s.PutBinBlock(1, const_cast<char*>("x")); }, Block("x"), 1,
     [](TASocket& s) { return GetBytes(s, "x"); }, 1},
};

// Each item alone, then all on one connection, so that words of one serve the next.
void CheckWire(const std::vector<Item>& items, bool isCompressed) {
    Conversation talk;
    Meter sent, received;
    talk.socket.SetPerfo(&received, &sent);
    std::string all;
    for (const Item& item : items) {
        SCOPED_TRACE(item.name);
        const Variable compress("TASocketCompress", isCompressed ? "1" : "");
        sent.amounts.clear();
        EXPECT_EQ(item.put(talk.socket), 0) << talk.socket.GetErrMsg();
        EXPECT_EQ(talk.socket.Flush(), 0);
        EXPECT_EQ(talk.peer.Receive(item.wire.size()), item.wire);
        EXPECT_EQ(std::accumulate(sent.amounts.begin(), sent.amounts.end(), 0), item.sent);
        all += item.wire;
    }
    // Back, in one piece and then byte by byte.
    for (const std::size_t step : {all.size(), std::size_t{1}}) {
        Conversation back;
        back.socket.SetPerfo(&received, nullptr);
        std::thread sender([&] {
            for (std::size_t at = 0; at < all.size(); at += step) back.peer.Send(all.substr(at, step));
        });
        for (const Item& item : items) {
            received.amounts.clear();
            EXPECT_EQ(item.get(back.socket), 0) << item.name << ": " << back.socket.GetErrMsg();
            EXPECT_EQ(std::accumulate(received.amounts.begin(), received.amounts.end(), 0), item.received) << item.name;
        }
        sender.join();
    }
}

TEST(Wire, PlainItems) {
    CheckWire(plainItems, false);
}
TEST(Wire, CompressedItems) {
    CheckWire(compressedItems, true);
}

// Headers against arithmetic that knows nothing of bits.
TEST(Wire, Headers) {
    for (int value = -70000; value < (1 << 24); value += value < 70000 ? 1 : 4099) {
        char header[4];
        EncodeBlockHeader(value, header);
        ASSERT_EQ(std::string(header, 4), Header(value));
        const int decoded = DecodeBlockHeader(header);
        ASSERT_TRUE(value >= 0 ? decoded == value : decoded < 0) << value;
    }
    EXPECT_EQ(Header(5) + Header(-100), Bytes({37, 32, 32, 32, 124, 159, 96, 96}));
}

// One compressed block makes the receiver compress, whichever GetBlock met it, until it closes. Words of one direction
// are not known to the other.
TEST(Wire, CompressionIsCatching) {
    for (const bool asList : {false, true}) {
        Listener listener;
        Conversation talk(listener);
        ZELString text;
        ZELListValZELString list;
        talk.peer.Send(Header(-1) + Number(0) + Text("a") + Number(-1) + Number(1) + (asList ? Text("a") : Number(0)));
        EXPECT_EQ(asList ? talk.socket.GetBlock(list, Patience) : talk.socket.GetBlock(text, Patience), 0);
        EXPECT_EQ(talk.socket.PutBlock("a"), 0);
        EXPECT_EQ(talk.CloseAndReceive(), Header(-1) + Number(0) + Text("a") + Number(-1) + Number(1) + Number(0));
        Peer second(listener.port);
        ASSERT_EQ(listener.server.GetQuery(talk.socket), 0);
        talk.socket.PutBlock("a");
        talk.socket.Close();
        EXPECT_EQ(second.Receive(), Block("a"));
    }
}

// A model of a socket's buffer: items go in by the rule, or are refused.
TEST(Wire, BufferRule) {
    for (const int size : {-1, 0, 1, 4, 5, 6, 16, 8192}) {
        for (const int waiting : {0, 4, 8}) {
            for (int length : {0, 1, size - 9, size - 8, size - 6, size - 5, size - 4, size - 3, size + 1, 9000}) {
                length = std::max(length, 0);
                SCOPED_TRACE(testing::Message() << size << ' ' << waiting << ' ' << length);
                const std::string text(static_cast<std::size_t>(length), 'x');
                const std::string reason =
                    "Unable to put block in buffer (block size is " + std::to_string(length) + ')';
                const bool fits = length + 4 < size;
                const auto check = [&](const char* kind, const auto& put, std::string wire) {
                    Conversation talk(size);
                    std::string expected;
                    for (int done = 0; done < waiting; done += 4)
                        if (talk.socket.Write(done) == 0) expected += Number(done);
                    EXPECT_EQ(put(talk.socket), wire.empty() ? 1 : 0) << kind;
                    if (wire.empty()) {
                        EXPECT_EQ(talk.socket.GetErrMsg(), reason) << kind;
                    }
                    EXPECT_EQ(talk.CloseAndReceive(), expected + wire) << kind;
                };
                check("text", PutText(text), fits ? Block(text) : "");
                check(
                    "string", [&](TASocket& s) { return s.Write(ZELString(text.c_str())); }, fits ? Text(text) : "");
                check("list", PutList({text.c_str()}), fits ? Block(text) : "");
                check(
                    "bytes", [&](TASocket& s) { return s.PutBinBlock(length, const_cast<char*>(text.data())); },
                    size > 4 ? Block(text) : "");
            }
        }
    }
}

TEST(Wire, WhatNoHeaderTells) {
    Conversation talk(40 << 20);
    std::string text(1 << 24, 'x');
    const ZELString whole(text.data(), text.size());
    ZELListValZELString list;
    list.Append(whole);
    const auto check = [&](int result, const char* size) {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(talk.socket.GetErrMsg(), "Unable to put block in buffer (block size is " + std::string(size) + ')');
    };
    check(talk.socket.PutBlock(text.c_str()), "16777216");
    check(talk.socket.PutBlock(list), "16777216");
    check(talk.socket.PutBinBlock(1 << 24, text.data()), "16777216");
    check(talk.socket.PutBinBlock(-5, text.data()), "-5");
    check(talk.socket.PutBinBlock(5, nullptr), "5");
    const Variable compress("TASocketCompress", "yes");
    check(talk.socket.PutBlock(whole), "16777216");
    EXPECT_EQ(talk.CloseAndReceive(), "");
}

// A word that the buffer cannot take is found before anything of its block is written, and words keep their numbers.
TEST(Wire, WordsThatDoNotFit) {
    const Variable compress("TASocketCompress", "1");
    Conversation talk(16);
    const std::string longest(11, 'y');
    EXPECT_TRUE(Gives(1, "Unable to put block in buffer (block size is 12)", talk.socket,
                      talk.socket.PutBlock(("a " + longest + "y b").c_str())));
    EXPECT_EQ(talk.socket.PutBlock((longest + " b").c_str()), 0);
    EXPECT_EQ(talk.CloseAndReceive(), Header(-13) + Number(0) + Text(longest) + Number(1) + Text("b") + Number(-1) +
                                          Number(2) + Number(0) + Number(1));
}

// The stream of a file by a literal model: a buffer that is filled and sent.
std::string FileWire(const std::string& content, std::size_t capacity, std::size_t waiting) {
    std::string wire(waiting, '\0');
    std::size_t position = waiting;
    for (std::size_t at = 0; at < content.size();) {
        if (position + 4 >= capacity) position = 0;
        const std::size_t count = std::min(capacity - position - 4, content.size() - at);
        wire += Block(content.substr(at, count));
        position += count + 4;
        at += count;
    }
    return wire + "    " + Block(std::to_string(content.size()));
}

TEST(Wire, Files) {
    const Interruptions interruptions;
    TemporaryFolder folder;
    std::mt19937 random(1);
    std::string bytes(2500000, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    for (const int size : {16, 1000, 8192, 600000}) {
        for (const int length : {0, 1, size - 13, size - 12, size - 5, size - 4, size - 3, 3 * size - 12, 2500000}) {
            if (size == 16 && length > 100000) continue;
            for (const int waiting : {0, 8, 12}) {
                SCOPED_TRACE(testing::Message() << size << ' ' << length << ' ' << waiting);
                const std::string content = bytes.substr(0, static_cast<std::size_t>(length));
                WriteBytes(folder / "in", content);
                const Variable compress("TASocketCompress", waiting == 8 ? "1" : "");
                Conversation talk(size);
                Meter sent, received;
                talk.socket.SetPerfo(nullptr, &sent);
                for (int done = 0; done < waiting; done += 4) talk.socket.Write(0);
                sent.amounts.clear();
                std::string wire;
                std::thread reader([&] { wire = talk.peer.Receive(); });
                EXPECT_EQ(talk.socket.PutFile((folder / "in").c_str()), 0) << talk.socket.GetErrMsg();
                talk.socket.Close();
                reader.join();
                ASSERT_TRUE(wire ==
                            FileWire(content, static_cast<std::size_t>(size), static_cast<std::size_t>(waiting)));
                EXPECT_EQ(std::accumulate(sent.amounts.begin(), sent.amounts.end(), 0), length);
                EXPECT_EQ(sent.amounts.size() == 1, length < 1 << 20);

                Conversation back;
                back.socket.SetPerfo(&received, nullptr);
                std::thread sender([&] { back.peer.Send(wire.substr(static_cast<std::size_t>(waiting)) + Number(5)); });
                EXPECT_EQ(back.socket.GetFile((folder / "out").c_str(), Patience), 0) << back.socket.GetErrMsg();
                EXPECT_TRUE(ReadBytes(folder / "out") == content);
                EXPECT_EQ(std::accumulate(received.amounts.begin(), received.amounts.end(), 0), length);
                int behind = 0;
                EXPECT_EQ(back.socket.Read(behind, Patience) + behind, 5);
                sender.join();
            }
        }
    }
}

// Line ends in every position, also where one block ends and the next begins.
TEST(Wire, FilesAsText) {
    TemporaryFolder folder;
    const std::string content = "a\nb\r\n\r\r\nc\rd\r";
    for (std::size_t cut = 1; cut < content.size(); ++cut) {
        Conversation talk;
        talk.peer.Send(Block(content.substr(0, cut)) + Block(content.substr(cut)) + "    " +
                       Block(std::to_string(content.size())));
        EXPECT_EQ(talk.socket.GetFileASCII((folder / "out").c_str(), Patience), 0) << talk.socket.GetErrMsg();
        std::ofstream(folder / "same") << "a\nb\n\r\nc\rd\r";
        EXPECT_EQ(ReadBytes(folder / "out"), ReadBytes(folder / "same")) << cut;
    }
}

}  // namespace
