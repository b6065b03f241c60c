// What every file of this folder needs around descriptors.
#ifndef PLATFORM_POSIX_DESCRIPTOR_H
#define PLATFORM_POSIX_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace zel {

// Calls again while a signal interrupts: for calls that fail with a negative result and EINTR.
template <class Call>
auto RetryInterrupted(Call call) noexcept {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

// Owns a descriptor.
class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : _number(number) {}
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(_number, other._number);
        return *this;
    }
    ~Descriptor() { Close(); }

    int Number() const noexcept { return _number; }
    bool IsOpen() const noexcept { return _number >= 0; }
    // Gives the descriptor to the caller.
    int Release() noexcept { return std::exchange(_number, -1); }
    // False when the system reports a late failure. Not retried: after an interruption the number is free already.
    bool Close() noexcept {
        const int number = Release();
        return number < 0 || close(number) == 0 || errno == EINTR;
    }

private:
    int _number;
};

}  // namespace zel

#endif
