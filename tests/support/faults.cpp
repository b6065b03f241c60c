// The counters of the calls, which both targets share.

#include "support/faults.h"

namespace {

// Set by the thread of the test while nobody else calls.
std::atomic<bool> isCounting = false;
FaultyCall* failing = nullptr;
const Fault* way = nullptr;
int first = 0;
bool goesOn = false;
std::atomic<bool> hasFailed = false;

}  // namespace

std::vector<FaultyCall*>& FaultyCall::All() {
    static std::vector<FaultyCall*> all;
    return all;
}

FaultyCall::FaultyCall(const char* callName, std::initializer_list<Fault> ways) : name(callName), faults(ways) {
    All().push_back(this);
}

void BeginFaults(FaultyCall* call, const Fault* fault, int number, zel::Afterwards afterwards) {
    for (FaultyCall* const other : FaultyCall::All()) other->count = 0;
    failing = call;
    way = fault;
    first = number;
    goesOn = afterwards == zel::Afterwards::Fail;
    hasFailed = false;
    isCounting = true;
}

bool EndFaults() {
    isCounting = false;
    return hasFailed;
}

const Fault* CountCall(FaultyCall& call) {
    if (!isCounting) return nullptr;
    const int number = ++call.count;
    if (&call != failing || number < first) return nullptr;
    // What is tried again must succeed one day.
    const bool isDue = number == first || (goesOn && (way->kind != Fault::Transient || (number - first) % 2 == 0));
    if (!isDue) return nullptr;
    hasFailed = true;
    return way;
}
