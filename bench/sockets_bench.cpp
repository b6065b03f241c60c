// Files, requests and command lines over the loopback, both ends on threads of one process, beside plain loops of
// system calls.
//
// A transfer goes from one file in memory to another, or to the device that drops everything, and ends when the
// receiver says so. The peers have no frames and no check; "sendfile" receives in pieces of 256 KiB. "memory" is no
// peer but the bound of all that frame as we do: it sends what needs no reading. A request is 100 bytes and so is its
// answer; "within 10 s" has the system keep the limit that ours keeps, which costs a timer for each wait. The command
// lines are of one compiler with many options, as they follow each other in a build; "plain" sends the same blocks
// uncompressed, and "bytes" is what a line takes on the wire.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "TAPerfo.h"
#include "TASocket.h"

namespace {

constexpr std::size_t FileSize = std::size_t{1} << 30;
const char* const source = "/dev/shm/zel_bench_source";
const char* const target = "/dev/shm/zel_bench_target";
const char* const nowhere = "/dev/null";

struct SourceFile {
    SourceFile() {
        const std::string piece(1 << 20, 'x');
        std::ofstream file(source, std::ios::binary);
        for (std::size_t done = 0; done < FileSize; done += piece.size()) file << piece;
    }
    ~SourceFile() {
        unlink(source);
        unlink(target);
    }
};

struct OurPair {
    OurPair() {
        TASocket server;
        if (server.OpenServer(0) != 0 || client.OpenClient("127.0.0.1", server.GetPort()) != 0 ||
            server.GetQuery(accepted) != 0)
            std::abort();
    }
    TASocket client, accepted;
};

struct RawPair {
    RawPair() {
        const int server = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        const auto name = reinterpret_cast<sockaddr*>(&address);
        client = socket(AF_INET, SOCK_STREAM, 0);
        if (bind(server, name, size) != 0 || listen(server, 1) != 0 || getsockname(server, name, &size) != 0 ||
            connect(client, name, size) != 0)
            std::abort();
        accepted = accept(server, nullptr, nullptr);
        close(server);
        const int on = 1;
        for (const int end : {client, accepted}) setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    ~RawPair() {
        close(client);
        close(accepted);
    }
    int client, accepted;
};

bool SendAll(int socket, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

void OurTransfer(benchmark::State& state, const char* path) {
    OurPair pair;
    std::thread receiver([&] {
        while (pair.accepted.GetFile(path, 0) == 0) {
            pair.accepted.Write(1);
            pair.accepted.Flush();
        }
    });
    int answer = 0;
    for (auto _ : state)
        if (pair.client.PutFile(source) != 0 || pair.client.Read(answer, 0) != 0) state.SkipWithError("failed");
    pair.client.Close();
    receiver.join();
}

void SendBySendfile(int socket, int file, std::size_t) {
    off_t at = 0;
    while (static_cast<std::size_t>(at) < FileSize && sendfile(socket, file, &at, FileSize) > 0) {
    }
}

void SendByLoop(int socket, int file, std::size_t piece) {
    std::vector<char> bytes(piece);
    for (ssize_t count; (count = read(file, bytes.data(), piece)) > 0;)
        SendAll(socket, bytes.data(), static_cast<std::size_t>(count));
}

void SendFromMemory(int socket, int, std::size_t) {
    constexpr std::size_t frame = 8192, most = 127;
    std::vector<char> bytes(most * frame, 'x');
    iovec parts[2 * most];
    for (std::size_t i = 0; i < most; ++i) {
        parts[2 * i] = {bytes.data(), 4};
        parts[2 * i + 1] = {bytes.data() + i * frame, frame - 4};
    }
    for (std::size_t left = FileSize / frame, count; left > 0; left -= count) {
        count = std::min(left, most);
        msghdr message = {};
        message.msg_iov = parts;
        message.msg_iovlen = 2 * count;
        if (sendmsg(socket, &message, MSG_NOSIGNAL) != static_cast<ssize_t>(count * frame)) return;
    }
}

template <void (*Send)(int, int, std::size_t)>
void RawTransfer(benchmark::State& state, const char* path, std::size_t piece) {
    RawPair pair;
    std::thread receiver([&] {
        std::vector<char> bytes(piece);
        ssize_t count = 1;
        while (count > 0) {
            const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
            std::size_t done = 0;
            for (; done < FileSize && (count = recv(pair.accepted, bytes.data(), piece, 0)) > 0;
                 done += static_cast<std::size_t>(count))
                if (write(file, bytes.data(), static_cast<std::size_t>(count)) != count) std::abort();
            close(file);
            if (count > 0) SendAll(pair.accepted, "y", 1);
        }
    });
    char answer;
    for (auto _ : state) {
        const int file = open(source, O_RDONLY);
        Send(pair.client, file, piece);
        close(file);
        if (recv(pair.client, &answer, 1, 0) != 1) state.SkipWithError("failed");
    }
    shutdown(pair.client, SHUT_RDWR);
    receiver.join();
}

void OurRequests(benchmark::State& state) {
    OurPair pair;
    std::thread responder([&] {
        ZELString text;
        while (pair.accepted.GetBlock(text, 10) == 0 && pair.accepted.PutBlock(text) == 0) {
        }
    });
    const ZELString request(std::string(100, 'r').c_str());
    ZELString answer;
    for (auto _ : state)
        if (pair.client.PutBlock(request) != 0 || pair.client.GetBlock(answer, 10) != 0) state.SkipWithError("failed");
    pair.client.Close();
    responder.join();
}

void RawRequests(benchmark::State& state, time_t limit) {
    RawPair pair;
    const timeval time = {limit, 0};  // 0: none
    for (const int end : {pair.client, pair.accepted}) setsockopt(end, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
    std::thread responder([&] {
        char bytes[104];
        while (recv(pair.accepted, bytes, sizeof bytes, 0) == sizeof bytes) SendAll(pair.accepted, bytes, sizeof bytes);
    });
    char bytes[104] = {};
    for (auto _ : state) {
        SendAll(pair.client, bytes, sizeof bytes);
        if (recv(pair.client, bytes, sizeof bytes, 0) != sizeof bytes) state.SkipWithError("failed");
    }
    shutdown(pair.client, SHUT_RDWR);
    responder.join();
}

std::vector<ZELString> CommandLines() {
    std::vector<ZELString> lines;
    for (int i = 0; i < 1000; ++i) {
        std::string line = "/usr/bin/c++ -O2 -g -Wall -Wextra -std=c++20 -fPIC -fvisibility=hidden -DNDEBUG";
        for (int path = 0; path < 20; ++path) line += " -I/build/product/framework" + std::to_string(path) + "/include";
        const std::string file = "module" + std::to_string(i % 25) + "/source" + std::to_string(i);
        lines.emplace_back((line + " -c " + file + ".cpp -o " + file + ".o").c_str());
    }
    return lines;
}

struct Meter : TAPerfo {
    void Count(int amount) override { total += amount; }
    std::int64_t total = 0;
};

void SendCommandLines(benchmark::State& state, bool isCompressed) {
    const std::vector<ZELString> lines = CommandLines();
    std::int64_t bytes = 0;
    setenv("TASocketCompress", isCompressed ? "1" : "", 1);
    for (auto _ : state) {
        OurPair pair;
        Meter meter;
        pair.client.SetPerfo(nullptr, &meter);
        std::thread receiver([&] {
            ZELString text;
            while (pair.accepted.GetBlock(text, 0) == 0) benchmark::DoNotOptimize(text);
        });
        for (const ZELString& line : lines) pair.client.PutBlock(line);
        pair.client.Close();
        receiver.join();
        bytes = meter.total + 4 * static_cast<std::int64_t>(lines.size());
    }
    setenv("TASocketCompress", "", 1);
    const auto count = static_cast<std::int64_t>(lines.size());
    state.SetItemsProcessed(state.iterations() * count);
    state.counters["bytes"] = static_cast<double>(bytes) / static_cast<double>(count);
}

template <class Run>
void Register(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->MeasureProcessCPUTime();
}

void RegisterTransfers(const std::string& operation, const char* path) {
    const auto add = [&](const char* contender, auto run) {
        Register(operation + '/' + contender + "/1GiB", [=](benchmark::State& state) { run(state, path); });
    };
    add("ours", OurTransfer);
    add("sendfile", [](auto& state, auto to) { RawTransfer<SendBySendfile>(state, to, 256 << 10); });
    add("memory", [](auto& state, auto to) { RawTransfer<SendFromMemory>(state, to, 64 << 10); });
    add("8 KiB loop", [](auto& state, auto to) { RawTransfer<SendByLoop>(state, to, 8 << 10); });
    add("64 KiB loop", [](auto& state, auto to) { RawTransfer<SendByLoop>(state, to, 64 << 10); });
}

const bool registered = [] {
    static const SourceFile file;
    RegisterTransfers("transfer_to_file", target);
    RegisterTransfers("transfer_to_nowhere", nowhere);
    Register("request_and_answer/ours/100", OurRequests);
    Register("request_and_answer/send and recv/100", [](auto& state) { RawRequests(state, 0); });
    Register("request_and_answer/within 10 s/100", [](auto& state) { RawRequests(state, 10); });
    Register("command_lines/ours/1000", [](auto& state) { SendCommandLines(state, true); });
    Register("command_lines/plain/1000", [](auto& state) { SendCommandLines(state, false); });
    return true;
}();

}  // namespace
