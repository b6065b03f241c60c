// Descriptors that a thread holds in reserve, for work that must not fail half-way because the process has no more.
//
// A spare is closed at the moment when the system refuses a descriptor, and taken again before the next one is opened.
// The hazard is another thread that opens a file between the two calls: the work then fails after all.
#ifndef PLATFORM_POSIX_SPARE_DESCRIPTORS_H
#define PLATFORM_POSIX_SPARE_DESCRIPTORS_H

#include <fcntl.h>

#include <cerrno>

#include "platform/posix/descriptor.h"

namespace zel {

// Whether the system lacked a descriptor or memory, so that the call may succeed later.
inline bool IsShortage(int error) noexcept {
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

class SpareDescriptors {
public:
    // Duplicates `model` until all spares are there. False when the process has too few descriptors.
    bool Take(int model) noexcept {
        _model = model;
        return Take();
    }
    bool Take() noexcept {
        for (Descriptor& spare : _spares) {
            if (!spare.IsOpen()) spare = Descriptor(fcntl(_model, F_DUPFD_CLOEXEC, 0));
            if (!spare.IsOpen()) return false;
        }
        return true;
    }
    // Closes one; false when none is left.
    bool Spend() noexcept {
        for (Descriptor& spare : _spares)
            if (spare.IsOpen()) return spare.Close();
        return false;
    }

private:
    Descriptor _spares[3];  // for a process, its threads and one of these
    int _model = -1;
};

// Those of this thread; null when it has none.
inline thread_local SpareDescriptors* spareDescriptors = nullptr;

// Opens a descriptor, if need be in the place of a spare.
template <class Open>
Descriptor OpenWithSpares(Open open) noexcept {
    if (spareDescriptors != nullptr) spareDescriptors->Take();
    Descriptor opened(RetryInterrupted(open));
    while (!opened.IsOpen() && (errno == EMFILE || errno == ENFILE)) {
        const int error = errno;
        const bool canRetry = spareDescriptors != nullptr && spareDescriptors->Spend();
        errno = error;
        if (!canRetry) break;
        opened = Descriptor(RetryInterrupted(open));
    }
    return opened;
}

}  // namespace zel

#endif
