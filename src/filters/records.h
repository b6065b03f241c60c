// Flat arrays of records that a filter keeps from one compilation to the next.
#ifndef FILTERS_RECORDS_H
#define FILTERS_RECORDS_H

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <type_traits>

#include "base/failure_report.h"
#include "base/memory.h"

namespace zel {

// Makes room for `count` records: `First` of them, and twice as many until they suffice. What was there is kept. False,
// and nothing changed, without memory.
template <int First = 64, class Record>
bool MakeRoomForRecords(Record*& records, int& capacity, int count) noexcept {
    static_assert(std::is_trivially_copyable_v<Record>);
    if (count <= capacity) return true;
    int room = capacity > 0 ? capacity : First;
    while (room < count && room <= INT_MAX / 2) room *= 2;
    const std::size_t bytes = static_cast<std::size_t>(room) * sizeof(Record);
    auto* const grown =
        room >= count && !AllocationFails() ? static_cast<Record*>(std::realloc(records, bytes)) : nullptr;
    if (grown == nullptr) {
        ReportAllocFailure("TAUnicodeRegularExpression", bytes);
        return false;
    }
    records = grown;
    capacity = room;
    return true;
}

}  // namespace zel

#endif
