// courier: brings files to another machine, and is sure that they arrived.
//
//     courier serve inbox --port 7000         takes what comes and puts it into the directory "inbox"
//     courier send build-server:7000 out log  sends the file or directory "out", and "log"
//
// A directory goes with all that is in it, under its last name ("out/." means what is in it alone); contents and names
// travel, nothing else of a file. An existing file is replaced, in one step, when its new content has arrived whole;
// until then that stands beside it in a file ".courier-" and an identifier, which a server that is killed leaves
// behind. The server takes one sender after the other. It writes nowhere but below its directory, whatever the sender
// says: names that lead out of it or mean something else elsewhere are refused, and so is every way through a link.
// Senders do not follow links inside a directory. Nothing is encrypted and nobody is asked who they are: for networks
// that one trusts.
//
// How couriers talk: blocks of TASocket, all texts but the contents. The sender begins; "<" is an answer.
//
//     courier 1                   who speaks, and which version of this
//   < courier 1                   or "no " and a reason, and the end
//     file 9 out/notes.txt        the size, and the name below the directory
//     (blocks of bytes)           the content, in up to 262144 bytes each; an empty block is its end
//     sum 1a2b3c4d                of the blocks; "broken" when the file could not be read to its end
//   < ok 1a2b3c4d                 it stands there, with that sum; or "no " and a reason
//     directory out/empty         may be there already
//   < ok                          or "no " and a reason
//     end
//   < end 2                       as many were taken
//
// A side that hears nothing for so many seconds as --timeout says, or what it does not understand, hangs up.

#include <cstdio>
#include <string_view>
#include <utility>

#include "ZELString.h"
#include "courier/send.h"
#include "courier/serve.h"
#include "support/numbers.h"
#include "support/output.h"

namespace {

int Usage(std::FILE* stream, int result) {
    std::fputs(
        "usage: courier serve DIRECTORY --port PORT [--timeout SECONDS]\n"
        "       courier send HOST:PORT [--timeout SECONDS] FILE...\n"
        "\n"
        "serve  takes files and puts them into DIRECTORY, until Ctrl-C; port 0 takes a free one and tells which\n"
        "send   sends files, and directories with all that is in them\n"
        "\n"
        "  --timeout  gives up a connection that is silent for so long, 60 at first\n"
        "\n"
        "exit code of send   0 all is there and verified, 1 something is not, which is told, 2 wrong usage\n"
        "exit code of serve  0 ended by Ctrl-C, 1 it cannot serve, 2 wrong usage\n",
        stream);
    return result;
}

// "host:7000", "[::1]:7000"
bool ReadAddress(std::string_view text, SendOptions& options) {
    const std::size_t colon = text.rfind(':');
    if (colon == text.npos || !ReadNumber(text.substr(colon + 1), 1, 65535, options.port)) return false;
    std::string_view host = text.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    options.host = ZELString(host);
    return !host.empty();
}

struct Words {
    ZELListValZELString plain;
    int port = -1;
    int patience = 60;
};

// False for a command line that makes no sense, or found no memory. What stands behind "--" is no option.
bool Read(int argc, char** argv, Words& words) {
    bool areOptions = true;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        const std::string_view value = i + 1 < argc ? argv[i + 1] : "";
        if (!areOptions || !argument.starts_with("--")) {
            if (words.plain.Append(argv[i]) != 0) return false;
        } else if (argument == "--") {
            areOptions = false;
        } else if (argument == "--port" || argument == "--timeout") {
            const bool isPort = argument == "--port";
            if (!ReadNumber(value, isPort ? 0 : 1, isPort ? 65535 : 1000000, isPort ? words.port : words.patience))
                return false;
            ++i;
        } else {
            return false;
        }
    }
    return words.plain.Size() >= 2;
}

int Main(int argc, char** argv) {
    Words words;
    if (argc == 2 && std::string_view(argv[1]) == "--help") return Usage(stdout, 0);
    if (!Read(argc, argv, words)) return Usage(stderr, 2);
    const ZELString verb = words.plain[1];
    if (verb == "serve" && words.plain.Size() == 2 && words.plain[2].Length() > 0 && words.port >= 0)
        return Serve({words.plain[2], words.port, words.patience});
    SendOptions options;
    options.patience = words.patience;
    if (verb != "send" || words.port >= 0 || words.plain.Size() < 3 || !ReadAddress(words.plain[2].View(), options))
        return Usage(stderr, 2);
    words.plain.RemovePosition(1, 2);
    options.paths = std::move(words.plain);
    return Send(options);
}

}  // namespace

int main(int argc, char** argv) {
    return ExitCode("courier", Main(argc, argv));
}
