// A polite end goes through the enumeration of windows, whose visitor is public and takes a number only: what it found,
// and for whom certainly, is kept for each thread.

#include "process/polite_end.h"

#include "TAProcessKill.h"
#include "platform/process_kill.h"
#include "process/child_ledger.h"

using namespace zel;

namespace {

struct PoliteEnd {
    ProcessIdentity process;
    bool isFound;
    int result;
};

thread_local PoliteEnd polite = {};

int Force(const ProcessIdentity& process) {
    return KillAndNote(process, ForcedExitCode) ? 1 : 0;
}

}  // namespace

int EnumWindowsProc(HWND window, unsigned long pid) noexcept {
    ProcessIdentity process = IdentityByNumber(pid);
    if (process.pid == polite.process.pid) process = polite.process;
    if (process.pid == 0) return 1;
    const Answer answer = AskToEnd(window, process);
    if (answer == Answer::NotIts) return 1;
    polite.isFound = true;
    if (answer == Answer::Ended)
        polite.result = 1;
    else
        polite.result = answer == Answer::Unknown ? 0 : Force(process);
    return 0;
}

int zel::EndPolitely(const ProcessIdentity& process) noexcept {
    if (process.pid <= 0) return 0;
    NoteRequest(process);
    polite = {process, false, 0};
    VisitWindows(EnumWindowsProc, static_cast<unsigned long>(process.pid));
    const PoliteEnd outcome = polite;
    polite = {};
    return outcome.isFound ? outcome.result : Force(process);
}
