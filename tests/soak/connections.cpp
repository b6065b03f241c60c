// Conversations of two threads: whole ones, and ones in which either side drops out, sends lies or leaves bytes unread.
#include <cstdlib>
#include <cstring>

#include "TASocket.h"
#include "soak/soak.h"
#include "support/files.h"

namespace {

constexpr int Large = 3'000'000, Patience = 60;
// Wine does not wake a sender whose peer is gone.
const int Stall = onWindows ? 2 : Patience;

struct Files {
    const TemporaryFolder folder;
    const std::string source = folder / "source", received = folder / "received";
    const std::string bytes = std::string(Large - 1, 'f') + '\n';
};

// A text, a list, a number and a file, which the other side sends back. Returns the first step that failed, or null.
const char* TalkToTheEnd(TASocket& client, const Files& files) {
    ZELListValZELString words, back;
    for (const char* const word : {"one", "two", "three"}) words.Append(word);
    ZELString text;
    int number = 0;
    const std::string received = files.received + ".back";
    if (client.PutBlock("whole") + client.PutBlock("text") + client.GetBlock(text, Patience) != 0) return "text";
    if (client.PutBlock(words) + client.GetBlock(back, Patience) != 0) return "list";
    if (client.Write(-7) + client.Read(number, Patience) != 0) return "number";
    if (client.PutFile(files.source.c_str()) + client.GetFile(received.c_str(), Patience) != 0) return "file";
    return text != "text" || back != words || number != -7 || ReadWhole(received) != files.bytes ? "contents" : nullptr;
}

// The other side of it.
void Answer(TASocket& socket, const Files& files) {
    ZELString text;
    ZELListValZELString words;
    int number = 0;
    if (socket.GetBlock(text, Patience) != 0 || socket.PutBlock(text) != 0) return;
    if (socket.GetBlock(words, Patience) != 0 || socket.PutBlock(words) != 0) return;
    if (socket.Read(number, Patience) != 0 || socket.Write(number) != 0) return;
    if (socket.GetFile(files.received.c_str(), Patience) != 0 || socket.PutFile(files.received.c_str()) != 0) return;
    socket.Close();
}

void Serve(TASocket& server, const Files& files, int count) {
    for (int i = 0; i < count; ++i) {
        TASocket socket;
        ZELString query;
        socket.SetIdleLimit(Stall);
        if (server.GetQuery(Patience, query, socket, Patience) != 0) continue;  // what came was no query
        int size = 0;
        void* data = nullptr;
        if (query == "whole") Answer(socket, files);
        if (query == "take") socket.GetBinBlock(&size, &data, Patience);
        if (query == "give") socket.PutFile(files.source.c_str());
        std::free(data);  // the socket is dropped, with or without bytes that nobody read
    }
}

// What a client may do that goes away before its conversation ends.
const char* BreakOff(TASocket& client, const Files& files, std::mt19937& random) {
    ZELString text;
    switch (random() % 5) {
        case 0:  // nothing was said
            break;
        case 1:  // a block that claims more than comes, or less than nothing
            for (unsigned count = random() % 5; count > 0; --count) client.Write(static_cast<int>(random()));
            client.Flush();
            break;
        case 2:  // the answer is not read, or in part
            client.PutBlock("give");
            client.Flush();
            if (random() % 2 == 0) client.GetBlock(text, Patience);
            break;
        case 3:  // the server has gone when the second block comes
            client.PutBlock("take");
            client.PutBinBlock(Large, const_cast<char*>(files.bytes.data()));
            client.PutBinBlock(Large, const_cast<char*>(files.bytes.data()));
            break;
        default:  // in the middle of a conversation
            client.PutBlock("whole");
            client.PutBlock("text");
            client.GetBlock(text, Patience);
    }
    return nullptr;
}

}  // namespace

void RunConnections(Soak& soak, unsigned seed) {
    const int Count = onWindows ? 12 : 40;
    const Files files;
    WriteWhole(files.source, std::string(Large - 1, 'f'));
    std::mt19937 random(seed);
    TASocket server;
    if (server.OpenServer(0) != 0) return soak.Fail(Results, "connections: no server");
    const std::jthread serving([&] { Serve(server, files, Count); });
    for (int i = 0; i < Count; ++i) {
        const std::string text = "connections, seed " + std::to_string(seed) + ", number " + std::to_string(i);
        TASocket client;
        client.SetIdleLimit(Stall);
        soak.Check(client.OpenClient("127.0.0.1", server.GetPort(), Patience) == 0, text + ": no connection");
        const char* const failed = i % 4 == 0 ? TalkToTheEnd(client, files) : BreakOff(client, files, random);
        if (failed != nullptr) soak.Fail(Results, text + ": " + failed + ", " + client.GetErrMsg());
        soak.Add(Connections);
    }
}
