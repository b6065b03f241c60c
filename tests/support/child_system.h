// What the helper program needs of the system; one half per target.
#ifndef TESTS_SUPPORT_CHILD_SYSTEM_H
#define TESTS_SUPPORT_CHILD_SYSTEM_H

#include <string>
#include <vector>

// Standard streams carry bytes as they are.
void MakeStreamsBinary();

// Ends the process by the signal; where there are none, with exit code 128 + `number`.
[[noreturn]] void DieBySignal(int number);

// Makes the process one that can be asked politely to end (SIGTERM, or closing its window), calls `ready`, and returns
// true when it is asked, false after `milliseconds`. With `ignore` it hears no request.
bool AwaitPoliteRequest(bool ignore, int milliseconds, void (*ready)());

// Starts this program again, with the same standard streams; false when the system refuses.
bool StartAgain(const std::vector<std::string>& arguments);

int OwnProcessId();

// The open descriptors (Windows: handles), ascending.
std::vector<long> OpenDescriptors();

#endif
