// Ending one process politely.
#ifndef PROCESS_POLITE_END_H
#define PROCESS_POLITE_END_H

#include "platform/process_table.h"

// As CloseOrKillPid of TAProcessKill.h, for one certain process.
int EndPolitely(const platform::ProcessIdentity& process) noexcept;

#endif
