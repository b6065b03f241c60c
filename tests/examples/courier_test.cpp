#include "TARunLength.h"
#include "TASocket.h"
#include "process/processes.h"
#include "support/programs.h"

namespace {

namespace fs = std::filesystem;

constexpr int Patience = 20;
constexpr char Greeting[] = "courier 1";

// Everything below a directory with its content; directories end with a slash.
std::map<std::string, std::string> Contents(const std::string& directory) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        const std::string name = fs::relative(entry.path(), directory).generic_string();
        if (entry.is_directory())
            contents[name + '/'];
        else
            contents[name] = ReadBytes(entry.path().string());
    }
    return contents;
}

// `courier serve` with an inbox of its own.
class Server {
public:
    explicit Server(const std::string& options = "") {
        fs::create_directory(inbox);
        const std::string verb = "serve " + inbox + " --port 0 " + options;
        const auto lines = StartAndRead(_process, ChildCommand(verb, "courier"), folder / "log", 1);
        if (!lines.empty()) port = std::atoi(lines[0].substr(lines[0].rfind(' ') + 1).c_str());
    }
    ~Server() { _process.Kill(); }

    ProgramResult Take(std::vector<std::string> paths) const {
        paths.insert(paths.begin(), {"send", "localhost:" + std::to_string(port)});
        return RunProgram("courier", paths);
    }
    // Asks it to end, and gives the exit code.
    int Interrupt() {
        KillBaseProcess(static_cast<unsigned long>(_process.GetprocessID()), 0);
        return CodeOf(_process);
    }
    std::string Log() const { return ReadBytes(folder / "log"); }

    const TemporaryFolder folder;
    const std::string inbox = folder / "inbox";
    int port = 0;

private:
    TAProcess _process;
};

// A sender that says what it likes.
class Peer {
public:
    explicit Peer(const Server& server) { EXPECT_EQ(_socket.OpenClient("localhost", server.port), 0); }
    void Say(const std::string& text) { _socket.PutBlock(ZELString(text)); }
    void Bytes(std::string bytes) { _socket.PutBinBlock(static_cast<int>(bytes.size()), bytes.data()); }
    // The header of a text of 100 bytes, and nothing of it.
    void Begin() { _socket.Write(68 | 33 << 8 | 32 << 16 | 32 << 24); }
    void Send() { _socket.Flush(); }
    // "-" when the server hung up.
    std::string Answer() {
        ZELString answer;
        return _socket.GetBlock(answer, Patience) == 0 ? std::string(answer.View()) : "-";
    }
    std::string Ask(const std::string& text) {
        Say(text);
        return Answer();
    }
    std::string OfferFile(const std::string& name, const std::string& content, const std::string& end) {
        Say("file " + std::to_string(content.size()) + ' ' + name);
        if (!content.empty()) Bytes(content);
        Bytes("");
        return Ask(end);
    }

private:
    TASocket _socket;
};

std::string SumOf(const std::string& text) {
    char sum[16];
    std::snprintf(sum, sizeof sum, "%08x", crc(text.c_str(), 0));
    return sum;
}

std::string RandomBytes(std::size_t size) {
    std::mt19937 random(static_cast<unsigned int>(size));
    std::vector<std::uint32_t> words(size / 4 + 1);
    std::generate(words.begin(), words.end(), random);
    return {reinterpret_cast<const char*>(words.data()), size};
}

void MakeTree(const std::string& tree) {
    fs::create_directories(tree + "/a/b/c/d/e");
    fs::create_directories(tree + "/nothing in it/nor here");
    const std::pair<const char*, std::string> files[] = {{"empty", ""},
                                                         {"one", "x"},
                                                         {"zeros", std::string(300'000, '\0')},
                                                         {"block", RandomBytes(256 * 1024)},
                                                         {"a/more", RandomBytes(256 * 1024 + 1)},
                                                         {"a/b/c/d/e/deep.txt", "deep\r\n\x1A\n"},
                                                         {".hidden", "h"},
                                                         {"-a; b=c,[d] {e}~1 %41 'f' $g", "odd"},
                                                         {"com0mon.nul", "no device"},
                                                         {"big", RandomBytes(20 << 20)}};
    for (const auto& [name, content] : files) WriteBytes(tree + '/' + name, content);
}

}  // namespace

TEST(Courier, BringsTreesAndFilesAndReplacesThemWhole) {
    const Server server;
    const std::string tree = server.folder / "tree", file = server.folder / "single";
    MakeTree(tree);
    WriteBytes(file, "first");
    const ProgramResult result = server.Take({tree, file});
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_TRUE(Holds(result.out, "   19 of 19 sent, KiB ")) << result.out;
    EXPECT_TRUE(Holds(result.out, "   sent single " + SumOf("first") + "\n")) << result.out;
    EXPECT_TRUE(Contents(tree) == Contents(server.inbox + "/tree"));
    EXPECT_EQ(ReadBytes(server.inbox + "/single"), "first");

    WriteBytes(file, "second, and longer");
    EXPECT_EQ(server.Take({file, server.folder / "missing"}).exitCode, 1);
    EXPECT_EQ(ReadBytes(server.inbox + "/single"), "second, and longer") << "the others go all the same";
    EXPECT_EQ(server.Take({tree + "/a/."}).exitCode, 0);
    EXPECT_EQ(Contents(tree + "/a/b"), Contents(server.inbox + "/b")) << "a directory that is named . has no name";
    EXPECT_FALSE(Holds(server.Log(), "ended early"));
}

TEST(Courier, RefusesNamesThatLeadElsewhere) {
    const Server server;
    WriteBytes(server.folder / "victim", "untouched");
    fs::create_directory(server.inbox + "/directory");
    WriteBytes(server.inbox + "/file", "old");
    const auto before = Contents(server.inbox);
    Peer peer(server);
    ASSERT_EQ(peer.Ask(Greeting), Greeting);
    std::vector<std::string> names = {"",       "/",        ".",        "..",      "../victim",   "a/../../victim",
                                      "/etc/x", "//x/y",    "a//b",     "a/",      "a/.",         "..\\victim",
                                      "\\x",    "C:x",      "C:/x",     "a:b",     "a/b:$DATA",   "x.",
                                      "x ",     "a./b",     "... ",     "CON",     "con.txt",     "a/Nul",
                                      "nul .x", "COM1",     "lpt9.a.b", "com\xB9", "COM\xC2\xB2", "conin$",
                                      "aux/x",  "a?",       "a*b",      "a\"b",    "a<b",         "a|b",
                                      "a\nb",   "a\x1b[2J", "a\x7F",    "a\tb/c"};
    names.push_back(std::string("a\0b", 3));
    names.push_back(std::string(256, 'x'));
    names.push_back("a/" + std::string(256, 'x') + "/b");
    std::string deep = "x";
    while (deep.size() <= 1000) deep += "/abcdefgh";
    names.push_back(deep);
    for (const std::string& name : names) {
        for (const std::string& answer :
             {peer.OfferFile(name, "abc", "sum " + SumOf("abc")), peer.Ask("directory " + name)})
            EXPECT_TRUE(answer.starts_with("no the name ")) << name << ": " << answer;
    }
    for (const char* name : {"file/x", "directory", "file/x/y"})
        EXPECT_TRUE(peer.OfferFile(name, "abc", "sum " + SumOf("abc")).starts_with("no ")) << name;
    EXPECT_EQ(Contents(server.inbox), before);
    EXPECT_EQ(ReadBytes(server.folder / "victim"), "untouched");
    EXPECT_EQ(peer.OfferFile("good", "abc", "sum " + SumOf("abc")), "ok " + SumOf("abc"));
    EXPECT_EQ(peer.Ask("directory directory/new/newer"), "ok");
    EXPECT_EQ(peer.Ask("end"), "end 2");
    EXPECT_EQ(ReadBytes(server.inbox + "/good"), "abc");
    EXPECT_FALSE(Holds(server.Log(), "\x1b")) << "what peers say does not reach the terminal as it is";
}

TEST(Courier, FollowsNoLinks) {
    const Server server;
    const std::string outside = server.folder / "outside", tree = server.folder / "tree";
    fs::create_directory(outside);
    fs::create_directory(tree);
    WriteBytes(outside + "/secret", "secret");
    std::error_code refused;
    fs::create_directory_symlink(outside, server.inbox + "/out", refused);
    if (refused) GTEST_SKIP() << "no links here: " << refused.message();
    fs::create_symlink(outside + "/secret", server.inbox + "/link");
    fs::create_symlink(outside + "/new", server.inbox + "/dangling");
    Peer peer(server);
    ASSERT_EQ(peer.Ask(Greeting), Greeting);
    for (const char* name : {"link", "dangling", "out", "out/secret", "out/new"}) {
        const std::string answer = peer.OfferFile(name, "abc", "sum " + SumOf("abc"));
        EXPECT_TRUE(Holds(answer, " is a link there")) << answer;
    }
    EXPECT_EQ(peer.Ask("directory out/new"), "no out is a link there");
    EXPECT_EQ(peer.Ask("end"), "end 0");
    EXPECT_EQ(Contents(outside), (std::map<std::string, std::string>{{"secret", "secret"}}));

    // Nor does the sender, but what it is told by name.
    fs::create_directory_symlink(outside, tree + "/out");
    fs::create_symlink(outside + "/secret", tree + "/link");
    WriteBytes(tree + "/plain", "plain");
    const bool isPipe = MakeNamedPipe(tree + "/pipe");
    const ProgramResult result = server.Take({tree, tree + "/pipe", tree + "/link"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(Contents(server.inbox + "/tree"), (std::map<std::string, std::string>{{"plain", "plain"}})) << isPipe;
    EXPECT_TRUE(Holds(result.out, "not sent link: link is a link there")) << result.out;
}

TEST(Courier, OutlivesPeersThatBreakTheRules) {
    const Server server("--timeout 2");
    // What they do, what they say (a number stands for a block of so many bytes), and the answer.
    const std::tuple<const char*, std::vector<std::string>, const char*> rows[] = {
        {"another version", {"courier 2"}, "no this is courier 1 and understands nothing else"},
        {"no greeting", {"file 1 x"}, "no this is courier 1 and understands nothing else"},
        {"nonsense", {Greeting, "remove x"}, "no a request that has no meaning"},
        {"no size", {Greeting, "file x y"}, "no a request without a size"},
        {"a negative size", {Greeting, "file -1 y"}, "no a request without a size"},
        {"no name", {Greeting, "file 1"}, "no a request without a size"},
        {"too much", {Greeting, "file 3 x", "4"}, "no more than was announced"},
        {"a huge block", {Greeting, "file 999999 x", "300000"}, "-"},
        {"too little", {Greeting, "file 3 x", "2", "0", "sum 0"}, "no the sender could not read it to its end"},
        {"a false sum", {Greeting, "file 2 x", "2", "0", "sum 00000000"}, "no the checksum differs"},
        {"broken", {Greeting, "file 2 x", "2", "0", "broken"}, "no the sender could not read it to its end"},
        {"silence", {Greeting, "file 2 x", "1"}, "-"},
        {"silence at once", {}, "-"},
        {"silence in the greeting", {"..."}, "-"},
    };
    for (const auto& [what, texts, answer] : rows) {
        Peer peer(server);
        for (const std::string& text : texts) {
            if (text == "...")
                peer.Begin();
            else if (text == Greeting)
                peer.Ask(text);
            else if (text.find_first_not_of("0123456789") == text.npos)
                peer.Bytes(std::string(std::stoul(text), 'x'));
            else
                peer.Say(text);
        }
        EXPECT_EQ(peer.Answer(), answer) << what;
    }
    {
        Peer gone(server);  // hangs up in the middle
        EXPECT_EQ(gone.Ask(Greeting), Greeting);
        gone.Say("file 100 x");
        gone.Bytes("part");
    }
    WriteBytes(server.folder / "good", "good");
    EXPECT_EQ(server.Take({server.folder / "good"}).exitCode, 0);
    EXPECT_EQ(Contents(server.inbox), (std::map<std::string, std::string>{{"good", "good"}})) << server.Log();
}

TEST(Courier, TellsWhatTheOtherSideDoesWrong) {
    const TemporaryFolder folder;
    WriteBytes(folder / "file", "abc");
    const std::pair<std::vector<const char*>, const char*> rows[] = {
        {{"no \x1b[31mnot now"}, "the other side says: no ?[31mnot now"},
        {{Greeting, "ok 00000000"}, "not sent file: the checksums differ"},
        {{Greeting, "no \x07room"}, "not sent file: ?room"},
        {{Greeting, nullptr}, "courier: "},
        {{Greeting, "no", "end 7"}, "the other side counted otherwise"},
    };
    TASocket server;
    ASSERT_EQ(server.OpenServer(0), 0);
    for (const auto& row : rows) {
        std::jthread other([&] {
            TASocket client;
            ZELString text;
            server.GetQuery(Patience, text, client, Patience);
            for (std::size_t i = 0; i < row.first.size() && row.first[i] != nullptr; ++i) {
                for (int size = 1; i == 1 && size > 0;) {  // the content
                    void* bytes = nullptr;
                    if (size == 1) client.GetBlock(text, Patience);
                    if (client.GetBinBlock(&size, &bytes, Patience) != 0) size = 0;
                    std::free(bytes);
                    if (size == 0) client.GetBlock(text, Patience);
                }
                if (i == 2) client.GetBlock(text, Patience);
                client.PutBlock(row.first[i]);
                client.Flush();
            }
            client.GetBlock(text, 1);
        });
        const ProgramResult result =
            RunProgram("courier", {"send", "localhost:" + std::to_string(server.GetPort()), folder / "file"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(Holds(result.out + result.err, row.second)) << result.out << result.err;
    }
    const std::string port = std::to_string(server.GetPort());
    EXPECT_EQ(RunProgram("courier", {"serve", folder.Path(), "--port", port}).exitCode, 1) << "the port is in use";
    server.Close();
    EXPECT_EQ(RunProgram("courier", {"send", "localhost:" + port, folder / "file"}).err,
              "courier: unable to connect client socket to server\n");
}

TEST(Courier, TellsWhenItCannotWrite) {
    const Server server;
    WriteBytes(server.folder / "file", "abc");
    EXPECT_EQ(RunProgram("courier", {"serve", server.folder / "file/x", "--port", "0"}).exitCode, 1);
    fs::remove(server.inbox);
    const ProgramResult result = server.Take({server.folder / "file"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(Holds(result.out, "not sent file: it cannot be written: ")) << result.out;
    if (onWindows) return;  // no limit of file sizes there
    // As on a full disk: no file may grow beyond 100 blocks.
    const std::string log = server.folder / "log of the full";
    WriteBytes(server.folder / "full", "trap '' XFSZ\nulimit -f 100\nexec '" + ProgramPath("courier") + "' serve '" +
                                           server.inbox + "' --port 0\n");
    WriteBytes(server.folder / "large", RandomBytes(300'000));
    TAProcess full;
    const auto lines = StartAndRead(full, ("/bin/sh \"" + (server.folder / "full") + '"').c_str(), log, 1);
    const std::string address = "localhost:" + lines.at(0).substr(lines[0].rfind(' ') + 1);
    const ProgramResult refused =
        RunProgram("courier", {"send", address, server.folder / "large", server.folder / "file"});
    full.Kill();
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(Holds(refused.out, "not sent large: it cannot be written")) << refused.out;
    EXPECT_EQ(Contents(server.inbox), (std::map<std::string, std::string>{{"file", "abc"}}));
}

TEST(Courier, EndsInGoodOrderWhenItIsInterrupted) {
    if (onWindows) GTEST_SKIP() << "no signal can be sent here";
    Server server;
    Peer peer(server);
    EXPECT_EQ(peer.Ask(Greeting), Greeting);
    peer.Say("file 100 x");
    peer.Bytes("part");
    peer.Send();
    EXPECT_TRUE(Eventually([&] { return !fs::is_empty(server.inbox); }));
    EXPECT_EQ(server.Interrupt(), 0);
    EXPECT_TRUE(Holds(server.Log(), "ended early: interrupted") && Holds(server.Log(), "courier ends, visits: 1"));
    EXPECT_TRUE(fs::is_empty(server.inbox));

    TASocket silent, client;
    ASSERT_EQ(silent.OpenServer(0), 0);
    WriteBytes(server.folder / "file", "abc");
    TAProcess sender;
    sender.SetOutput((server.folder / "sender").c_str());
    const std::string verb = "send localhost:" + std::to_string(silent.GetPort()) + ' ' + (server.folder / "file");
    ASSERT_EQ(sender.Start(ChildCommand(verb, "courier"), 0), 0);
    ZELString text;
    EXPECT_EQ(silent.GetQuery(Patience, text, client, Patience), 0);
    EXPECT_EQ(KillBaseProcess(static_cast<unsigned long>(sender.GetprocessID()), 0), 0);
    EXPECT_EQ(CodeOf(sender), 1);
}

TEST(Courier, RefusesWhatItCannotUse) {
    for (const char* line :
         {"", "serve d", "serve d --port 65536", "serve d --port -1", "serve d e --port 1", "send localhost f",
          "send localhost:0 f", "send :1 f", "send localhost:1", "send localhost:1 f --port 1",
          "send localhost:1 f --timeout 0", "send localhost:1 f --bad", "fetch localhost:1 f"}) {
        std::istringstream words(line);
        EXPECT_EQ(RunProgram("courier", {std::istream_iterator<std::string>(words), {}}).exitCode, 2) << line;
    }
    EXPECT_EQ(RunProgram("courier", {"serve", "", "--port", "0"}).exitCode, 2);
    const ProgramResult help = RunProgram("courier", {"--help"});
    EXPECT_TRUE(help.exitCode == 0 && Holds(help.out, "exit code")) << help.out;
}
