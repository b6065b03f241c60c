// Each text is composed whole and handed to its C stream in one piece (see failure_report.h).

#include "TADiagnostics.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "TAEnvironment.h"
#include "TARefCounter.h"
#include "ZELStackTrace.h"
#include "base/failure_report.h"

using namespace zel;

namespace {

std::string_view TextOf(const char* text) {
    return text != nullptr ? text : "";
}

void WriteTrace(std::string_view text, int header) {
    if (header != 0)
        WriteText(stdout, {"\n\n## ", GetShortDate().View(), " - ", text, "\n\n"});
    else
        WriteText(stdout, {"   ", text, "\n"});
}

}  // namespace

void Trace(const char* text, int header) {
    WriteTrace(TextOf(text), header);
}

void Trace(ZELString text, int header) {
    WriteTrace(text.View(), header);
}

void TraceErr(ZELString text) {
    WriteText(stdout, {"   ERROR :", text.View(), "\n"});
}

void TraceStdErr(const char* text) {
    WriteText(stderr, {TextOf(text), "\n"});
}

void TraceStdErr(ZELString text) {
    WriteText(stderr, {text.View(), "\n"});
}

void FATAL(int condition, const char* message) {
    if (condition == 0) return;
    WriteText(stderr, {"FATAL INTERNAL ERROR ------------------------\n", TextOf(message),
                       "\nSTACK ---------------------------------------\n"});
    ZELStackTrace stack;
    stack.GetTrace();
    stack.Print(stdout, 0, 0);
    std::abort();
}

ZELString toString(int value) {
    char text[16];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    return ZELString(text, static_cast<std::size_t>(end.ptr - text));
}

char* TAItoa(int value, char* buffer, int radix) {
    if (buffer == nullptr) return nullptr;
    char* end = buffer;
    constexpr std::size_t Room = 32;  // 32 binary digits, or a sign and 10 decimal ones
    if (radix == 10)
        end = std::to_chars(buffer, buffer + Room, value).ptr;
    else if (radix >= 2 && radix <= 36)
        end = std::to_chars(buffer, buffer + Room, static_cast<unsigned>(value), radix).ptr;
    *end = '\0';
    return buffer;
}

// The reference count: a plain number with two checks that end the process, one for a release too many, one for a
// deletion while others hold references.

TARefCounter::~TARefCounter() {
    FATAL(_count != 1, "Delete on referenced object");
    // Volatile, or compilers leave it out: until the memory is used again, it shows a release that comes too late.
    *const_cast<volatile unsigned int*>(&_count) = 0;
}

void TARefCounter::Release() {
    FATAL(_count < 1, "Too many release on object");
    if (_count == 1)
        delete this;
    else
        --_count;
}
