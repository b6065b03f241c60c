// A visit is the connection of one sender. Whatever goes wrong in it ends the visit at most, never the server; a file
// that is refused is read to its end all the same, so that the next one can be.

#include "serve.h"

#include <chrono>
#include <cstring>
#include <limits>
#include <string_view>
#include <thread>

#include "TADiagnostics.h"
#include "TASocket.h"
#include "content_sum.h"
#include "conversation.h"
#include "inbox.h"
#include "names.h"
#include "support/interruption.h"
#include "support/numbers.h"
#include "support/progress.h"

namespace {

class Visit {
public:
    Visit(TASocket& socket, const Inbox& inbox, int patience) : _talk(socket, patience), _inbox(inbox) {}
    // `greeting` when it has come already, else null.
    void Run(const ZELString* greeting) {
        const bool isWhole = Greet(greeting) && TakeAll();
        _progress.Clear();
        if (!isWhole && _talk.Problem().Length() > 0) TraceErr("the visit ended early: " + _talk.Problem());
        Trace(ZELString("visit ended: ") + toString(_taken) + " taken, " + toString(_refused) + " refused, " +
                  _talk.Speed(),
              0);
    }

private:
    bool Greet(const ZELString* greeting) {
        ZELString heard;
        if (greeting != nullptr)
            heard = *greeting;
        else if (!_talk.Hear(heard))
            return false;
        if (heard == Greeting) return _talk.Tell(Greeting);
        return HangUp(ZELString("this is ") + Greeting + " and understands nothing else");
    }

    // Tells why there is no way to go on.
    bool HangUp(const ZELString& reason) {
        _talk.Tell("no " + reason);
        TraceErr("refused: " + reason);
        return false;
    }

    bool TakeAll() {
        for (ZELString request; _talk.Hear(request);) {
            const std::string_view text = request.View();
            if (text == "end") return _talk.Tell(ZELString("end ") + toString(_taken));
            if (text.starts_with("directory ")) {
                const std::string_view name = text.substr(std::strlen("directory "));
                if (!Answer(name, _inbox.MakeDirectory(name), "ok")) return false;
            } else if (text.starts_with("file ")) {
                if (!TakeFile(text.substr(std::strlen("file ")))) return false;
            } else {
                return HangUp("a request that has no meaning");
            }
        }
        return false;
    }

    // `text` is the size, a blank and the name.
    bool TakeFile(std::string_view text) {
        const std::size_t blank = text.find(' ');
        long long size = 0;
        if (blank == text.npos || !ReadNumber(text.substr(0, blank), 0LL, std::numeric_limits<long long>::max(), size))
            return HangUp("a request without a size");
        const std::string_view name = text.substr(blank + 1);

        Arrival arrival;
        ZELString path;
        ZELString problem = _inbox.FindPlace(name, path);
        if (!IsProblem(problem)) problem = arrival.Begin(path);
        ContentSum sum;
        ZELString announced;
        if (!TakeContent(arrival, name, size, sum, problem) || !_talk.Hear(announced)) return false;
        if (announced != "sum " + sum.Text() && !IsProblem(problem))
            problem = announced.View().starts_with("sum ") ? "the checksum differs"
                                                           : "the sender could not read it to its end";
        if (!IsProblem(problem)) problem = arrival.Settle();
        return Answer(name, problem, "ok " + sum.Text());
    }

    // What arrives after a problem is read and forgotten.
    bool TakeContent(Arrival& arrival, std::string_view name, long long size, ContentSum& sum, ZELString& problem) {
        Block block;
        long long received = 0;
        while (_talk.HearBlock(block)) {
            if (block.size == 0) {
                if (received < size && !IsProblem(problem)) problem = "the sender could not read it to its end";
                return true;
            }
            received += block.size;
            if (received > size) return HangUp("more than was announced");
            sum.Add(block.bytes.get(), static_cast<std::size_t>(block.size));
            if (!IsProblem(problem)) problem = arrival.Add(block.bytes.get(), block.size);
            _progress.Show([&] {
                return toString(_taken) + " taken, " + toString(static_cast<int>(received * 100 / size)) + "% of " +
                       Printable(name.substr(0, 20)) + ", " + _talk.Speed();
            });
        }
        return false;
    }

    bool Answer(std::string_view name, const ZELString& problem, const ZELString& good) {
        _progress.Clear();
        if (!IsProblem(problem)) {
            ++_taken;
            Trace("took " + Printable(name) + (good == "ok" ? "/" : good.SubString(2, 9)), 0);
            return _talk.Tell(good);
        }
        ++_refused;
        TraceErr("refused " + Printable(name) + ": " + Printable(problem.View()));
        return _talk.Tell("no " + problem);
    }

    Conversation _talk;
    const Inbox& _inbox;
    Progress _progress;
    int _taken = 0, _refused = 0;
};

// Waits a second for a visitor. False when nobody came.
bool Receive(TASocket& server, const Inbox& inbox, int patience) {
    TASocket socket;
    socket.SetIdleLimit(patience);  // a greeting may begin and not end
    ZELString greeting;
    const int result = server.GetQuery(1, greeting, socket, 1);
    if (socket.GetPort() == 0) {
        if (std::strcmp(server.GetErrMsg(), "Query time-out") != 0) {
            TraceErr(server.GetErrMsg());
            std::this_thread::sleep_for(std::chrono::milliseconds(100));  // what the system lacks may come back
        }
        return false;
    }
    if (result == 1) return true;  // it hung up at once
    Visit(socket, inbox, patience).Run(result == 0 ? &greeting : nullptr);
    return true;
}

}  // namespace

int Serve(const ServeOptions& options) {
    const Inbox inbox(options.directory);
    if (const ZELString problem = inbox.Open(); IsProblem(problem)) {
        TraceStdErr("courier: " + problem);
        return 1;
    }
    TASocket server;
    if (server.OpenServer(options.port) != 0) {
        TraceStdErr(ZELString("courier: ") + server.GetErrMsg());
        return 1;
    }
    interruption::Heed();
    Trace("courier takes files for " + options.directory + " at port " + toString(server.GetPort()), 0);
    int visits = 0;
    while (!interruption::Happened()) visits += Receive(server, inbox, options.patience);
    Trace("courier ends, visits: " + toString(visits), 0);
    return 0;
}
