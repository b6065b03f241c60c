// Processes, threads, and files that are loaded.

#include "TAFileBuffer.h"
#include "TAMutex.h"
#include "TAProcessList.h"
#include "TAThread.h"
#include "ZELFileBuffer.h"
#include "ZELFileBufferPool.h"
#include "ZELFilePrepro.h"
#include "ZELThreads.h"
#include "faults/sweep.h"
#include "process/processes.h"

namespace {

const std::string Sources = Repeat("int main() { return \"text\"; } // comment\n", 400);

Outcome RunsOne(Round& round) {
    const ZELString command = ChildCommand("args one two"), output((round / "out").c_str());
    round.Begin();
    TAProcess process;
    process.SetOutput(output);
    int code = -1;
    const bool isStarted = process.Start(command, 0) == 0;
    const bool isOver = isStarted && process.Wait(code) == 0;
    round.End();
    const bool canWait = !isStarted || isOver || CodeOf(process) == 0;
    EXPECT_TRUE(canWait) << "a wait that failed can be repeated";
    return {isOver, std::to_string(code) + ReadBytes(round / "out")};
}

Outcome RunsBatch(Round& round) {
    const ZELString commands[] = {ChildCommand("exit 3"), ChildCommand("args x"), ChildCommand("exit 0")};
    bool done = true;
    std::string state;
    round.Begin();
    {
        TAProcessList batch(2);
        for (const ZELString& command : commands) done = batch.Start(command, 60, -1) > 0 && done;
        done = done && Eventually([&] { return batch.Check() < 0 || batch.NDone() == batch.Size(); });
        for (int number = 1; number <= batch.Size(); ++number) {
            state += std::to_string(batch.GetReturnCode(number)) + " ";
            done = done && batch.GetReturnCode(number) < 200;
        }
    }
    round.End();
    return {done, state};
}

std::atomic<int> sum;

void Add(int count, const char** texts) {
    for (int i = 0; i < count; ++i) sum += std::atoi(texts[i]);
}

Outcome StartsThreads(Round& round) {
    sum = 0;
    char one[] = "1", two[] = "2";
    bool done = true;
    round.Begin();
    {
        TAThread thread;
        thread.SetArgs(Add, one, two, nullptr);
        done = thread.Start() == 0;
        auto* const detached = new TAThread;
        if (detached != nullptr) detached->SetArgs(Add, two, nullptr);
        const bool isDetached = detached != nullptr && detached->StartDetach() == 0;
        if (!isDetached) delete detached;
        if (done) TAThread::WaitForAll();
        done = done && isDetached;
        ZELThreads own("a thread of its own");
        own.SetFunction([](void*) { return sum += 10, 0; }, nullptr);
        done = own.Run(0) == 0 && done;
        own.Join();
    }
    TAThread::WaitForAll();
    round.End();
    return {done, std::to_string(sum)};
}

Outcome LocksNamed(Round& round) {
    const ZELString name(("a mutex of the sweep with a long name " + std::to_string(TAProcess::Getpid())).c_str());
    round.Begin();
    int locked, unlocked;
    {
        TAMutex mutex(name);
        locked = mutex.Lock();
        unlocked = mutex.Unlock();
    }
    round.End();
    EXPECT_TRUE(unlocked == 0 || locked >= 0);
    return {locked >= 0, std::to_string(locked)};
}

Outcome LoadsFiles(Round& round) {
    WriteBytes(round / "file", Sources);
    round.Begin();
    auto* const buffer = new ZELFileBuffer((round / "file").c_str());
    bool done = false;
    std::string state;
    if (buffer != nullptr) {
        buffer->loadFile();
        done = buffer->getStatus() == 0;
        if (done && buffer->getBuffer() != nullptr) state = buffer->getBuffer();
        buffer->Release();
    }
    round.End();
    return {done, state};
}

Outcome LoadsAhead(Round& round) {
    WriteBytes(round / "file", Sources);
    round.Begin();
    auto* const buffer = new ZELFileBuffer((round / "file").c_str());
    bool done = buffer != nullptr;
    std::string state;
    {
        ZELFileBufferPool::enableMultiThread();
        ZELFileBufferPool pool;
        pool.append(buffer);
        if (buffer != nullptr && buffer->getBuffer() != nullptr) state = buffer->getBuffer();
        done = done && buffer->getStatus() == 0;
    }
    if (buffer != nullptr) buffer->Release();
    round.End();
    return {done, state};
}

Outcome SavesAhead(Round& round) {
    WriteBytes(round / "file", Sources);
    TAFileName copy((round / "copy").c_str());
    int failed;
    round.Begin();
    {
        TAFileBuffer buffer((round / "file").c_str(), 0);
        failed = buffer.SaveAs(copy);
    }
    TAFileBuffer::ASyncCleanup();
    TAThread::WaitForAll();
    round.End();
    return {failed == 0, failed == 0 ? ReadBytes(round / "copy") : ""};
}

Outcome ScansSources(Round& round) {
    WriteBytes(round / "file", Sources);
    round.Begin();
    char* text = nullptr;
    int failed;
    {
        ZELFilePrepro scanner((round / "file").c_str());
        failed = scanner.preprocess(ZELFilePrepro::REMOVE_SLCOMMENTS, text);
    }
    round.End();
    const std::string state = text != nullptr ? text : "";
    std::free(text);
    return {failed == 0, state};
}

const Scenario scenarios[] = {
    {"Processes", RunsOne, 4},   {"Batches", RunsBatch, 4}, {"Threads", StartsThreads}, {"NamedMutexes", LocksNamed},
    {"FileBuffers", LoadsFiles}, {"Pools", LoadsAhead},     {"ReadAhead", SavesAhead},  {"Scanner", ScansSources},
};

}  // namespace
