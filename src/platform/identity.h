// The identity of the machine and of the process.
#ifndef PLATFORM_IDENTITY_H
#define PLATFORM_IDENTITY_H

#include <atomic>
#include <cstdint>

namespace zel {

// The hardware address of a network adapter.
struct AdapterAddress {
    unsigned char bytes[6];
};

// The first adapter with a 6-byte address that is not all zeros (Windows: LAN adapter 0 of NetBIOS, whatever it has);
// false without one, or when the system reports none.
bool GetAdapterAddress(AdapterAddress& address) noexcept;

// A word that is 0 at first, keeps what is stored in it, and is 0 again in a forked child: a test for "has this process
// been here before" that costs one load. Null when the system has no such memory; then every call must ask.
std::atomic<std::uint32_t>* GetProcessMark() noexcept;

}  // namespace zel

#endif
