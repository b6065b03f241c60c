// The machine, the process and its environment.
#ifndef PLATFORM_SYSTEM_H
#define PLATFORM_SYSTEM_H

#include <cstddef>

#include "ZELPlatformTypes.h"

namespace zel {

// Writes the host name with its terminator; false when the system gives none that fits.
bool GetHost(char* name, std::size_t size) noexcept;

// Writes the working directory as a path value with its terminator; false when it cannot be told or does not fit.
bool GetWorkingDirectory(char* path, std::size_t size) noexcept;
// Takes any path value.
bool SetWorkingDirectory(const char* path) noexcept;

// Clears the record, fills it and sets its size field; false when the system does not tell. What Linux has no notion of
// stays 0.
bool GetSystemVersion(OSVERSIONINFOEXW& version) noexcept;

// Processors that are switched on; at least 1.
int GetProcessorCount() noexcept;

// Whether the calling thread acts as an administrator: member of the Administrators group, effective user 0.
bool IsAdministrator() noexcept;

int GetOwnProcessId() noexcept;

// The one place where the library touches the environment. Not safe beside a thread that changes it.
//
// The value of a variable, valid until the variable changes; null when it is not set.
const char* GetEnvironment(const char* name) noexcept;
// Sets a variable by the text "name=value", split at the first "="; an empty value removes the variable. The text stays
// the caller's. False when the system refuses it, as it does a text that begins with "=" or has none.
// The variable is the C runtime's and the system's, so children and getenv see it. Names are case-insensitive on
// Windows.
bool PutEnvironment(const char* assignment) noexcept;

}  // namespace zel

#endif
