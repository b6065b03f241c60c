// `probe VERB`: uses the library as a tool would, so that a test can look at its streams and its end.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "TADiagnostics.h"
#include "TAEnvironment.h"
#include "TAUUIDGenerator.h"
#include "ZELTrace.h"

namespace {

// The library serves static objects, before main and after it.
const bool asked = std::getenv("ZEL_PROBE_STATIC") != nullptr;
struct Static {
    Static() { asked ? Trace("before", 0) : void(); }
    ~Static() { asked ? TraceErr("after") : void(); }
} object;

void PrintLines() {
    FATAL(0, nullptr);
    Trace("text", 0);
    Trace(static_cast<const char*>(nullptr), 0);
    Trace(ZELString("string"), 0);
    Trace(ZELString("nul\0inside", 10), 0);
    Trace(std::string(5000, 'l').c_str(), 0);
    TraceErr("error");
    TraceErr(nullptr);
    TraceStdErr("to stderr");
    TraceStdErr(ZELString("and again"));
    TraceStdErr(static_cast<const char*>(nullptr));
    std::_Exit(0);  // loses what was not flushed
}

void PrintTraces() {
    ZELTrace early("TASKLIST", nullptr, ZELTraMode(0), "STDERR", 1024);
    ZELTrace other("tasklist", "", ZELTraAppend, nullptr, 0);
    ZELTrace toOutput("TASKLIST", "reserved", ZELTraTruncate, "STDOUT", -5);
    early.TraPrint("never %d\n", 0);
    ZELTrace::Activate("TASKLIST");
    ZELTrace late("TASKLIST", nullptr, ZELTraAppend, "", 1 << 30);
    early.TraPrint("early %d %s\n", 1, "one");
    other.TraPrint("other\n");
    late.TraPrint("late%%\n");
    toOutput.TraPrint("%s|", std::string(3000, 'x').c_str());
    toOutput.TraPrint(nullptr);
    ZELTrace::Deactivate("TASKLIST");
    early.TraPrint("never again\n");
    std::_Exit(0);
}

void PrintFromThreads() {
    std::vector<std::jthread> threads(4);
    for (std::jthread& thread : threads)
        thread = std::jthread([] {
            for (int line = 0; line < 200; ++line) Trace(std::string(60, 'w').c_str(), 0);
        });
}

}  // namespace

int main(int count, char** arguments) {
    const std::string verb = count > 1 ? arguments[1] : "";
    if (verb == "lines") PrintLines();
    if (verb == "header") Trace("x", 1);
    if (verb == "traces") PrintTraces();
    if (verb == "threads") PrintFromThreads();
    if (verb == "warnings") {
        const TAEnvVariable variable("ZEL_PROBE", 16);
        return variable.PutEnvironmentValue("0123456789abcdef");
    }
    if (verb == "fatal") {
        Trace("progress", 0);
        FATAL(-1, arguments[2]);
    }
    if (verb == "identifiers") {
        TAUUIDGenerator generator;
        for (long left = std::strtol(arguments[2], nullptr, 10); left > 0; --left) std::puts(generator.Get());
    }
    return 0;
}
