// `process_probe VERB`: uses the library as a tool would, so that a test can look at its streams and its end.
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>
#include <thread>

#include "TARefCounter.h"
#include "TAThread.h"

namespace {

void Nothing(int, const char**) {}

// Tells what exitCalled() freezes: the first thread to end takes the register with it.
void Freeze() {
    static TAThread thread(Nothing), other(Nothing);  // their destructors must not wait
    TAThread::exitCalled();
    thread.Start();
    std::jthread([] {
        std::thread([] {
            for (;;) TAThread(Nothing).Start();  // blocks, sooner or later
        }).detach();
    }).join();
    std::puts("end");
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view verb = count > 1 ? arguments[1] : "";
    if (verb == "body") {
        TAThread thread;
        thread.Start();
        TAThread::WaitForAll();
    }
    if (verb == "freeze") Freeze();
    if (verb == "release") {
        alignas(TARefCounter) static unsigned char room[sizeof(TARefCounter)];
        auto* const counter = new (room) TARefCounter;
        counter->~TARefCounter();
        counter->Release();
    }
    if (verb == "delete") {
        TARefCounter* const counter = new TARefCounter;
        counter->AddRef();
        delete counter;
    }
    return 0;
}
