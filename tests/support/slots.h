// Where a virtual function stands in its class's table: pinned by tests, since programs that were built before rely
// on it. Reads the member pointer as the C++ ABI of both targets' compilers lays it out.
#ifndef SUPPORT_SLOTS_H
#define SUPPORT_SLOTS_H

#include <cstddef>
#include <cstring>

#include "support/testing.h"

template <class Member>
std::size_t SlotOf(Member member) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof member >= sizeof offset);
    std::memcpy(&offset, &member, sizeof offset);
    return static_cast<std::size_t>(offset - 1) / sizeof(void*);  // the lowest bit marks a virtual function
}

// The functions stand one behind the other, from slot `first` on.
template <class... Members>
void ExpectSlots(std::size_t first, Members... members) {
    for (const std::size_t slot : {SlotOf(members)...}) EXPECT_EQ(slot, first++);
}

#endif
