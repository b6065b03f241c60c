// Ending one process politely.
#ifndef PROCESS_POLITE_END_H
#define PROCESS_POLITE_END_H

#include "platform/process_table.h"

namespace zel {

// As CloseOrKillPid of TAProcessKill.h, for one certain process.
int EndPolitely(const ProcessIdentity& process) noexcept;

}  // namespace zel

#endif
