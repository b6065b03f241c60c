// The first network adapter of a Linux machine, and memory that a fork wipes.

#include "platform/identity.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <new>

using namespace zel;

namespace {

// Whether the entry is an adapter with an address; the loopback's is all zeros.
bool IsAdapter(const ifaddrs& entry, AdapterAddress& address) noexcept {
    if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_PACKET) return false;
    const auto& link = reinterpret_cast<const sockaddr_ll&>(*entry.ifa_addr);
    if (link.sll_halen != sizeof address.bytes) return false;
    std::copy_n(link.sll_addr, sizeof address.bytes, address.bytes);
    return std::any_of(address.bytes, address.bytes + sizeof address.bytes,
                       [](unsigned char byte) { return byte != 0; });
}

// One page for the life of the process: a word on it is never given back, so that a late user cannot miss it.
std::atomic<std::uint32_t>* MakeProcessMark() noexcept {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return nullptr;
    if (madvise(page, size, MADV_WIPEONFORK) == 0) return new (page) std::atomic<std::uint32_t>(0);
    munmap(page, size);
    return nullptr;
}

}  // namespace

bool zel::GetAdapterAddress(AdapterAddress& address) noexcept {
    ifaddrs* entries = nullptr;
    if (getifaddrs(&entries) != 0) return false;
    const ifaddrs* entry = entries;
    while (entry != nullptr && !IsAdapter(*entry, address)) entry = entry->ifa_next;
    freeifaddrs(entries);
    return entry != nullptr;
}

std::atomic<std::uint32_t>* zel::GetProcessMark() noexcept {
    static std::atomic<std::uint32_t>* const mark = MakeProcessMark();
    return mark;
}
