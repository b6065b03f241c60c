// What tests need of the system; one half per target.
#ifndef TESTS_SUPPORT_TEST_SYSTEM_H
#define TESTS_SUPPORT_TEST_SYSTEM_H

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// Stands for the path of a standard stream that the program finds closed.
inline const std::string ClosedStream = "-";

// Runs the program `name` of the test's own folder with its outputs in two files; see ProgramResult for the result.
int RunAndWait(const std::string& name, const std::vector<std::string>& arguments, const std::string& outPath,
               const std::string& errPath);

// Where the program `name` of the test's own folder stands, as a path of the system.
std::string ProgramPath(const std::string& name);

// Whether programs can be asked to end here, as far as the system and its display allow.
bool CanAskPrograms();

// For its life the process has the system throw away how its children end; false in `isIgnoring` where it cannot.
class IgnoredChildren {
public:
    IgnoredChildren();
    ~IgnoredChildren();
    bool isIgnoring;
};

// How much of a long test is run where starting a program takes a millisecond (100) or hundreds of them.
extern const int StormPercent;

// A file of the system that takes no byte, and a place that reads but is no regular file; empty where there is none.
extern const std::string FullDevice;
// A file whose reading fails after it was opened; empty where the system has none.
extern const std::string UnreadableFile;
extern const std::string EndlessDevice;
// False where file names cannot stand for pipes.
bool MakeNamedPipe(const std::string& path);

// For its life the thread acts as a user without rights, if it was one with all of them.
class OrdinaryUser {
public:
    OrdinaryUser();
    ~OrdinaryUser();
    // False where the test cannot give its rights up.
    bool IsOrdinary() const { return _ordinary; }

private:
    bool _ordinary;
};

// Loads the library `name` of the test's own folder, lets `use` work with a function of it, and unloads it. Whether the
// code whose address `use` returns is still there.
bool StaysLoaded(const std::string& name, const char* function, const std::function<void*(void*)>& use);

// The open descriptors (Windows: handles) that a child would get, ascending.
std::vector<long> InheritedDescriptors();

// How many descriptors (Windows: handles) are open, and how many threads run.
std::size_t OpenDescriptors();
std::size_t RunningThreads();

// Bytes of the heap that are in use; 0 where nobody tells.
std::size_t AllocatedBytes();

// Makes `levels` directories below each other at `path`, which exists, a file "f" in each, or as many as paths can be
// long. Returns their number.
int MakeDeepTree(const std::string& path, int levels);

// Runs `work` in a thread with a stack of 256 KiB, while the process may have 64 descriptors where that can be set.
void RunConfined(const std::function<void()>& work);

// What `work` gives in a forked copy of this process; empty where processes cannot be forked.
std::string OutputOfFork(const std::function<std::string()>& work);

// For its life a signal interrupts the process's calls about a thousand times a second, where there are signals.
class Interruptions {
public:
    Interruptions();
    ~Interruptions();
};

// A stream with a buffer of 100 bytes whose `number`th write to `arrived` is interrupted; null where the C library has
// no such streams. Its end flushes it.
std::FILE* OpenInterrupted(std::string& arrived, int number);

#endif
