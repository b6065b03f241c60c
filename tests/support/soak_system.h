// What the soak needs of the system; one half per target.
#ifndef TESTS_SUPPORT_SOAK_SYSTEM_H
#define TESTS_SUPPORT_SOAK_SYSTEM_H

#include <string>
#include <vector>

// What this process holds; -1 where the system has no such thing.
struct Resources {
    long descriptors = -1;  // Windows: handles
    long threads = -1;
    long heap = -1;      // KiB in use
    long resident = -1;  // KiB
    long children = -1;  // that run
    long zombies = -1;
    long sharedFiles = -1;  // in shared memory, with the mark in their names
};
Resources ReadResources(const std::string& mark);

// Makes the figures of memory comparable: one heap for all threads. To be called before the first thread starts.
void UseOneHeap();

// The processes that run and have `mark` in their command lines, without this one.
std::vector<int> MarkedProcesses(const std::string& mark);

// Ends them by force.
void EndMarkedProcesses(const std::string& mark);

// How a process behaves inside of a tree, where the system knows such things: any of these, added together.
enum MemberTrait : unsigned {
    OwnGroup = 1,      // a job of its own
    OwnSession = 2,    // a session of its own
    DeafToHangup = 4,  // outlives its session
    Stops = 8,         // stops itself whenever somebody lets it continue
    Continues = 16,    // lets its children and its parent continue, again and again
    Breeds = 32,       // forks children that fork
};
// Once, before the process starts others; it joins the group `group` if that is not 0.
void BecomeMember(unsigned traits, int group);
// Again and again.
void ActAsMember(unsigned traits, const std::vector<int>& children);

// Lets the next process that is started have the number `pid`; false where the system or the user's rights forbid it.
bool SetNextProcessId(int pid);

// The command that runs `command` in a name space of processes of its own; empty where there are none.
std::string InOwnNameSpace(const std::string& command);

#endif
