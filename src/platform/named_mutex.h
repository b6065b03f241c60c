// A mutex that processes of one user share by its name.
#ifndef PLATFORM_NAMED_MUTEX_H
#define PLATFORM_NAMED_MUTEX_H

#include <string_view>

namespace zel {

// Owned by a thread, which may lock it several times and unlocks it as often. It is there as long as a process has it
// open; the system closes what dead processes had open. Not inherited by programs that this one starts.
//
// Windows: the kernel's named object; the name goes through the ANSI code page, and what the system refuses (a
// backslash that is no known prefix, a name of another kind of object) leaves the mutex unusable. Linux: a file of the
// user's in shared memory, mode 0600. Any name serves; one that does not fit into a file name is told from others by
// its first bytes, its length and a hash value. A file of that name that belongs to somebody else, that others may
// open, or that is no plain file leaves the mutex unusable; so does shared memory that is missing or full. A file that
// nobody has open any more counts as new, whatever is in it; the last to close removes it.
class NamedMutex {
public:
    // Opens or makes the mutex. An empty name makes one of this object's own.
    explicit NamedMutex(std::string_view name) noexcept;
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;
    // Does not unlock: a mutex that is still locked stays so until its thread ends, for which what the system keeps of
    // it is left behind.
    ~NamedMutex();

    // Waits without time limit. 0 when locked; 128 when locked and its last owner ended without unlocking; -1 when the
    // mutex is unusable or was locked too often.
    int Lock() noexcept;
    // False when this thread has not locked it.
    bool Unlock() noexcept;

private:
    struct State;

    State* _state = nullptr;  // null when unusable
};

}  // namespace zel

#endif
