// Connections: each conversation in one thread, since it fits into the buffers of the system.

#include "TASocket.h"
#include "ZELListValZELString.h"
#include "faults/sweep.h"

namespace {

const std::string Long = Repeat("words of a text ", 40);

// A client and the server's end of its connection.
struct Pair {
    bool Open() {
        return server.OpenServer(0) == 0 && client.OpenClient("127.0.0.1", server.GetPort(), 10) == 0 &&
               server.GetQuery(accepted) == 0;
    }
    TASocket server, client, accepted;
};

Outcome Texts(Round& round) {
    ZELString text;
    ZELListValZELString words, arrived;
    for (int i = 0; i < 5; ++i) words.Append((std::to_string(i) + Long).c_str());
    int number = 0, size = 0;
    void* block = nullptr;
    const ZELString sent(Long.c_str());
    round.Begin();
    bool done = false;
    {
        Pair pair;
        done = pair.Open() && pair.client.PutBlock(sent) == 0 && pair.client.PutBlock(words) == 0 &&
               pair.client.PutBinBlock(static_cast<int>(Long.size()), const_cast<char*>(Long.data())) == 0 &&
               pair.client.Write(7) == 0 && pair.client.Flush() == 0;
        done = done && pair.accepted.GetBlock(text, 5) == 0 && pair.accepted.GetBlock(arrived, 5) == 0 &&
               pair.accepted.GetBinBlock(&size, &block, 5) == 0 && pair.accepted.Read(number, 5) == 0;
        done = pair.client.Close() == 0 && done;
    }
    round.End();
    std::string state = text.CastToCharPtr() + std::to_string(number);
    for (const ZELString& word : arrived) state += word.CastToCharPtr();
    if (block != nullptr) state.append(static_cast<char*>(block), static_cast<std::size_t>(size));
    std::free(block);
    return {done, state};
}

Outcome Files(Round& round) {
    WriteBytes(round / "sent", Long);
    const ZELString from((round / "sent").c_str()), to((round / "received").c_str());
    round.Begin();
    bool done = false;
    {
        Pair pair;
        done = pair.Open() && pair.client.PutFile(from) == 0 && pair.client.Flush() == 0 &&
               pair.accepted.GetFile(to, 5) == 0;
    }
    round.End();
    const std::string received = ReadBytes(round / "received");
    EXPECT_TRUE(Long.starts_with(received));
    return {done, received};
}

const Scenario scenarios[] = {{"Connections", Texts, 6}, {"FileTransfers", Files, 6}};

}  // namespace
