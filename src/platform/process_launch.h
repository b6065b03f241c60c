// Starting a program and learning how it ended.
#ifndef PLATFORM_PROCESS_LAUNCH_H
#define PLATFORM_PROCESS_LAUNCH_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "base/command_line.h"

namespace zel {

// A file that a child gets for standard streams. Never inherited by accident. Paths are path values; see native_path.h.
class ChildFile {
public:
    ChildFile() noexcept = default;
    ChildFile(const ChildFile&) = delete;
    ChildFile& operator=(const ChildFile&) = delete;
    ~ChildFile();

    // Makes or empties the file. Others may read and write it meanwhile.
    bool OpenForWriting(const char* path) noexcept;
    // False for directories too.
    bool OpenForReading(const char* path) noexcept;
    bool IsOpen() const noexcept { return _file != Closed; }
    std::intptr_t Native() const noexcept { return _file; }

private:
    static constexpr std::intptr_t Closed = -1;

    std::intptr_t _file = Closed;
};

// What is known of a child that was started here.
struct ChildEnd {
    enum How { Running, Exited, Killed, AskedToEnd };  // the latter two (Linux): by SIGKILL, by SIGTERM

    How how = Running;
    int code = 0;  // 128 + the signal when one ended it (Linux)
};

// Owns what the system keeps for a child until its launcher has asked for it: a handle, an entry in the process table.
// While that is open, no other process gets the child's number. No locks here: the caller serialises.
class ChildProcess {
public:
    ChildProcess() noexcept = default;
    explicit ChildProcess(int pid, void* handle = nullptr) noexcept : _pid(pid), _handle(handle) {}
    ChildProcess(ChildProcess&& other) noexcept { *this = std::move(other); }
    ChildProcess& operator=(ChildProcess&& other) noexcept {
        std::swap(_pid, other._pid);
        std::swap(_handle, other._handle);
        return *this;
    }
    ~ChildProcess() { Close(); }

    int Pid() const noexcept { return _pid; }
    // False when the system cannot tell, as on Linux when the process ignores SIGCHLD or somebody else waited.
    bool GetEnd(ChildEnd& end) const noexcept;
    // Ends the child by force; needs neither memory nor a descriptor. `exitCode` as for KillProcess of process_kill.h.
    // False when the child has ended, or the system refuses or cannot tell.
    bool Kill(unsigned int exitCode) const noexcept;
    // Blocks until the child has ended; may run beside GetEnd. The child must stay open. Neither reaps nor closes.
    void AwaitEnd() const noexcept;
    // Gives back what the system keeps. On Linux a child that runs on cannot be given back: it ends as a zombie.
    void Close() noexcept;

private:
    int _pid = 0;
    void* _handle = nullptr;  // unused on Linux
};

struct LaunchFailure {
    char text[1000];
    bool isTooLong;  // the line, for the system
};

inline void DescribeTooLong(std::size_t length, std::size_t limit, LaunchFailure& failure) noexcept {
    failure.isTooLong = true;
    std::snprintf(failure.text, sizeof failure.text, "The command line has %zu characters, the limit is %zu", length,
                  limit);
}

// Starts the program of a command, with its arguments. The words of the command may be changed. `input` serves as
// standard input, `output` as standard output and error; streams without an open file are the caller's own. The child
// inherits the handles that the caller made inheritable. Its environment is the caller's, with RemoteKill=PID of the
// caller. Returns when the program has taken over. On failure, `failure` gets the text of the system, or the limit that
// was exceeded. May be called concurrently. The cost does not grow with the caller's memory or descriptors. Linux: no
// signal is blocked or ignored in the child, and no handler of the caller runs in it.
bool Launch(const Command& command, const ChildFile& input, const ChildFile& output, ChildProcess& child,
            LaunchFailure& failure) noexcept;

// Makes RemoteKill=NO the caller's. Safe beside threads that read the environment, unless others change it.
void ResetRemoteKill() noexcept;

}  // namespace zel

#endif
