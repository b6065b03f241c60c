// NetBIOS's LAN adapter 0; a Windows process is never forked.

#include "platform/identity.h"

#include <windows.h>
//
#include <nb30.h>

#include <cstring>

using namespace zel;

namespace {

using NetbiosCall = UCHAR(APIENTRY*)(PNCB);

// Loaded when it is first asked for, since it brings several other libraries along that most programs never need; it
// stays loaded.
NetbiosCall LoadNetbios() noexcept {
    const HMODULE library = LoadLibraryExA("netapi32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) return nullptr;
    return reinterpret_cast<NetbiosCall>(reinterpret_cast<void*>(GetProcAddress(library, "Netbios")));
}

}  // namespace

bool zel::GetAdapterAddress(AdapterAddress& address) noexcept {
    static const NetbiosCall netbios = LoadNetbios();
    if (netbios == nullptr) return false;
    NCB reset = {};
    reset.ncb_command = NCBRESET;
    if (netbios(&reset) != NRC_GOODRET) return false;
    alignas(ADAPTER_STATUS) UCHAR status[80];  // the record, and room for a name or two
    NCB query = {};
    query.ncb_command = NCBASTAT;
    std::memset(query.ncb_callname, ' ', sizeof query.ncb_callname);
    query.ncb_callname[0] = '*';
    query.ncb_buffer = status;
    query.ncb_length = sizeof status;
    if (netbios(&query) != NRC_GOODRET) return false;
    std::memcpy(address.bytes, reinterpret_cast<const ADAPTER_STATUS*>(status)->adapter_address, sizeof address.bytes);
    return true;
}

std::atomic<std::uint32_t>* zel::GetProcessMark() noexcept {
    static std::atomic<std::uint32_t> mark = 0;
    return &mark;
}
