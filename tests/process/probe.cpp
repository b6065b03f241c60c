// `process_probe VERB`: uses the library as a tool would, so that a test can look at its streams and its end.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <thread>

#include "TAMutex.h"
#include "TAProcess.h"
#include "TAProcessKill.h"
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

// Adds 1 to the number in a file, again and again, under a mutex.
int CountUnderMutex(const char* name, const char* path, int rounds) {
    TALockProcess mutex(name);
    for (int round = 0; round < rounds; ++round) {
        if (mutex.Lock() != 0) return 1;
        int number = 0;
        std::fstream(path) >> number;
        std::ofstream(path) << number + 1;
        if (mutex.Unlock() == 0) return 2;
    }
    return 0;
}

// Standard streams that are closed stay so: what a child gets goes to its own.
int CopyWithoutStreams(const char* child, const char* in, const char* out) {
    for (std::FILE* const stream : {stdin, stdout, stderr}) std::fclose(stream);
    TAProcess process;
    process.SetInput(in);
    process.SetOutput(out);
    int exitCode = 0;
    const ZELString command = ZELString("\"") + child + "\" copy";
    return process.Start(command, 0) != 0 || process.Wait(exitCode) != 0 ? 1 : exitCode;
}

// Prints the numbers of a tree that it starts, and kills all of it, itself included.
int KillOwnTree(const char* child) {
    TAProcess process;
    process.Start(ZELString("\"") + child + "\" tree 2 1 60000", 0);
    ZELListValZELString numbers;
    while (numbers.Size() < 3) process.GetProcessTree(numbers);
    for (const ZELString& number : numbers) std::puts(number);
    std::fflush(stdout);
    return KillBaseProcessTree(static_cast<unsigned long>(TAProcess::Getpid()), 1);
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
    if (verb == "count") return CountUnderMutex(arguments[2], arguments[3], 100);
    if (verb == "die") {  // over what the mutex protects
        TAMutex mutex(arguments[2]);
        std::printf("%d\n", mutex.Lock());
        std::fflush(stdout);
        std::_Exit(0);
    }
    if (verb == "closed") return CopyWithoutStreams(arguments[2], arguments[3], arguments[4]);
    if (verb == "kill") return KillOwnTree(arguments[2]);
    if (verb == "delete") {
        TARefCounter* const counter = new TARefCounter;
        counter->AddRef();
        delete counter;
    }
    return 0;
}
