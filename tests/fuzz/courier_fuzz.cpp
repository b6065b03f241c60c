// The serving courier: names by their rule, and any requests of a peer: nothing is written outside of the inbox, only
// whole files are put into it, and it serves the next visit.
#include "courier/content_sum.h"
#include "courier/conversation.h"
#include "courier/names.h"
#include "courier/serve.h"
#include "fuzz/input.h"

namespace {

namespace fs = std::filesystem;
constexpr int Patience = 15;

// Whether every system takes the name for the same file.
bool IsGood(const std::string& name) {
    if (name.empty() || name.size() > LongestName) return false;
    std::istringstream parts(name + '/');
    for (std::string part; std::getline(parts, part, '/');) {
        if (part.empty() || part.size() > 255 || part.back() == '.' || part.back() == ' ') return false;
        for (const char c : part)
            if ((c >= 0 && c < ' ') || c == 127 || std::strchr("<>:\"\\|?*", c)) return false;
    }
    return name.back() != '/';
}

std::string Name(Input& input) {
    return input.Flip()
               ? input.Text(300)
               : input.Spell({"a", "/", "\\", "..", ".", " ", ":", "sub", "/../", "CON", "com1", ".txt", "~", "*"}, 12);
}

// A server in a thread of its own, for as long as the process runs.
struct Server {
    Server() {
        TASocket probe;
        EXPECT_EQ(probe.OpenServer(0), 0);
        port = probe.GetPort();
        probe.Close();
        std::thread([this] {
            ServeOptions options;
            options.directory = (folder / "inbox").c_str();
            options.port = port;
            options.patience = Patience;
            Serve(options);
        }).detach();
        TASocket visitor;
        while (visitor.OpenClient("127.0.0.1", port) != 0) std::this_thread::yield();
    }
    const TemporaryFolder folder;
    int port = 0;
};

std::string Ask(TASocket& socket, const std::string& text) {
    ZELString answer;
    if (socket.PutBlock(ZELString(std::string_view(text))) != 0 || socket.GetBlock(answer, Patience) != 0) return "-";
    return std::string(answer.View());
}

std::set<std::string> FilesIn(const std::string& directory) {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(directory))
        if (!entry.is_directory()) names.insert(fs::relative(entry.path(), directory).string());
    return names;
}

}  // namespace

FUZZ_TARGET(input) {
    static Server server;
    const std::string inbox = server.folder / "inbox";
    for (const auto& entry : fs::directory_iterator(inbox)) fs::remove_all(entry.path());
    std::set<std::string> taken;
    TASocket socket;
    ASSERT_EQ(socket.OpenClient("127.0.0.1", server.port), 0) << socket.GetErrMsg();
    std::string answer = Ask(socket, input.Number(0, 9) == 0 ? input.Text(20) : Greeting);
    while (answer != "-" && input.remaining_bytes() > 0) {
        const std::string name = Name(input);
        const int kind = input.Number(0, 6);
        const bool hasProblem = NameProblem(name).Length() > 0;
        ASSERT_TRUE(hasProblem || IsGood(name));
        if (kind == 0) {
            const std::string request = input.Text(40);
            if (request.starts_with("file ")) break;  // the server would wait for the contents
            answer = Ask(socket, request);
        } else if (kind == 1) {
            answer = Ask(socket, "directory " + name);
            ASSERT_TRUE(!hasProblem || !answer.starts_with("ok"));
        } else {
            std::string content = input.Text(60);
            const int claimed = kind == 2 ? input.Number(-1, 70) : static_cast<int>(content.size());
            socket.PutBlock(ZELString(std::string_view("file " + std::to_string(claimed) + ' ' + name)));
            if (!content.empty()) socket.PutBinBlock(static_cast<int>(content.size()), content.data());
            char none = 0;
            socket.PutBinBlock(0, &none);
            ContentSum sum;
            if (!content.empty()) sum.Add(content.data(), content.size());
            const ZELString right = "sum " + sum.Text();
            answer = Ask(socket, kind == 3 ? input.Text(12) : std::string(right.View()));
            if (!answer.starts_with("ok")) continue;
            ASSERT_TRUE(!hasProblem && claimed == std::ssize(content));
            ASSERT_EQ(ReadBytes(inbox + '/' + name), content);
            taken.insert(fs::path(name).lexically_normal().string());
        }
    }
    socket.Close();
    TASocket last;  // the server reads it after the visit
    ASSERT_EQ(last.OpenClient("127.0.0.1", server.port), 0);
    ASSERT_EQ(Ask(last, Greeting), Greeting);
    ASSERT_EQ(FilesIn(server.folder.Path()).size(), taken.size());
    ASSERT_EQ(FilesIn(inbox), taken);
}
