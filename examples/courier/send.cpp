// Items go one after the other, each with its verdict: one that the other side refuses, or that cannot be read, is told
// and does not keep the others.

#include "send.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "TADiagnostics.h"
#include "TASocket.h"
#include "YAVFStream.h"
#include "content_sum.h"
#include "conversation.h"
#include "names.h"
#include "parcel.h"
#include "support/interruption.h"
#include "support/places.h"
#include "support/progress.h"

namespace {

class Journey {
public:
    Journey(TASocket& socket, const Parcel& parcel, int patience)
        : _talk(socket, patience), _parcel(parcel), _buffer(BlockSize) {}

    // The number of items that are there in the end; -1 when the connection failed, which was told.
    int Run() {
        ZELString answer;
        if (!_talk.Tell(Greeting) || !_talk.Hear(answer)) return Complain(_talk.Problem());
        if (answer != Greeting) return Complain("the other side says: " + answer);
        int next = 0;
        for (const Item& item : _parcel.Items()) {
            ++next;
            if (!(item.isDirectory ? SendDirectory(item) : SendFile(item, next))) return Complain(_talk.Problem());
        }
        if (!_talk.Tell("end") || !_talk.Hear(answer)) return Complain(_talk.Problem());
        if (answer != ZELString("end ") + toString(_sent)) return Complain("the other side counted otherwise");
        return _sent;
    }
    ZELString Speed() { return _talk.Speed(); }

private:
    int Complain(const ZELString& problem) {
        _progress.Clear();
        TraceStdErr("courier: " + Printable(problem.View()));
        return -1;
    }

    bool SendDirectory(const Item& item) {
        ZELString answer;
        return _talk.Tell("directory " + item.name) && _talk.Hear(answer) && Note(item, answer, "ok");
    }

    bool SendFile(const Item& item, int number) {
        const Place place = item.mayBeLink ? LookBehind(item.path) : LookAt(item.path);
        YAVIFStream stream;
        if (place.kind != Place::Kind::File || stream.open(item.path, "rb") != 0)
            return Note(item, "no it cannot be read", "");
        char size[24];
        std::snprintf(size, sizeof size, "%lld ", place.size);
        ContentSum sum;
        if (!_talk.Tell("file " + (size + item.name)) || !SendContent(stream, number, place.size, sum)) return false;
        const bool isWhole = _rest == 0;
        ZELString answer;
        if (!_talk.Tell(isWhole ? "sum " + sum.Text() : ZELString("broken")) || !_talk.Hear(answer)) return false;
        return Note(item, answer, "ok " + sum.Text());
    }

    // As much as was announced, though the file may grow meanwhile; less when it cannot be read.
    bool SendContent(YAVIFStream& stream, int number, long long size, ContentSum& sum) {
        for (_rest = size; _rest > 0;) {
            const std::size_t part = static_cast<std::size_t>(std::min<long long>(_rest, BlockSize));
            const std::size_t count = stream.read(_buffer.data(), part);
            if (count == 0) break;
            if (!_talk.TellBlock(_buffer.data(), static_cast<int>(count))) return false;
            sum.Add(_buffer.data(), count);
            _rest -= static_cast<long long>(count);
            _progress.Show([&] {
                return toString(number) + " of " + toString(static_cast<int>(_parcel.Items().size())) + ", " +
                       toString(static_cast<int>((size - _rest) * 100 / size)) + "%, " + _talk.Speed();
            });
        }
        return _talk.TellBlock(_buffer.data(), 0);
    }

    // Tells what became of an item. `good` is what the answer to it should be.
    bool Note(const Item& item, const ZELString& answer, const ZELString& good) {
        _progress.Clear();
        const bool isSent = answer == good;
        if (isSent) {
            ++_sent;
            Trace("sent " + Printable(item.name.View()) + (item.isDirectory ? "/" : answer.SubString(2, 9)), 0);
        } else {
            const bool isRefusal = answer.View().starts_with("no ");
            TraceErr("not sent " + Printable(item.name.View()) + ": " +
                     (isRefusal ? Printable(answer.View().substr(3)) : ZELString("the checksums differ")));
        }
        return true;
    }

    Conversation _talk;
    const Parcel& _parcel;
    std::vector<char> _buffer;
    Progress _progress;
    long long _rest = 0;  // of the file that is being sent
    int _sent = 0;
};

}  // namespace

int Send(const SendOptions& options) {
    Parcel parcel;
    for (const ZELString& path : options.paths) parcel.Add(path);
    TASocket socket;
    if (socket.OpenClient(options.host, options.port, options.patience) != 0) {
        TraceStdErr(ZELString("courier: ") + socket.GetErrMsg());
        return 1;
    }
    interruption::Heed();  // before this, nobody waits for a good end
    const int count = static_cast<int>(parcel.Items().size());
    Journey journey(socket, parcel, options.patience);
    const int sent = journey.Run();
    if (sent < 0) return 1;
    Trace(toString(sent) + " of " + toString(count + parcel.Missed()) + " sent, " + journey.Speed(), 0);
    return sent == count && parcel.Missed() == 0 ? 0 : 1;
}
