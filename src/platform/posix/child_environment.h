// The environment that a child gets, and the caller's own mark in its environment.
#ifndef PLATFORM_POSIX_CHILD_ENVIRONMENT_H
#define PLATFORM_POSIX_CHILD_ENVIRONMENT_H

namespace zel {

// The caller's variables, with RemoteKill=PID of the caller in place of any other of that name. The texts are the
// caller's.
class ChildEnvironment {
public:
    ChildEnvironment() noexcept;
    ChildEnvironment(const ChildEnvironment&) = delete;
    ChildEnvironment& operator=(const ChildEnvironment&) = delete;
    ~ChildEnvironment();

    // Null when memory ran out (said on standard output).
    char** Texts() const noexcept { return _texts; }

private:
    char** _texts;
    char _remoteKill[32];
};

}  // namespace zel

#endif
