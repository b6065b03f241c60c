// Facts about a Linux machine and process.

#include "platform/system.h"

#include <sys/utsname.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/native_path.h"
#include "platform/posix/descriptor.h"

using namespace zel;

bool zel::GetHost(char* name, std::size_t size) noexcept {
    // A name that does not fit may come back cut and without its terminator.
    return gethostname(name, size) == 0 && std::memchr(name, '\0', size) != nullptr;
}

bool zel::GetWorkingDirectory(char* path, std::size_t size) noexcept {
    if (getcwd(path, size) == nullptr || path[0] != '/') return false;  // no slash: out of reach of this process's root
    ToPathValue(path);
    return true;
}

bool zel::SetWorkingDirectory(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && RetryInterrupted([&] { return chdir(native.Text()); }) == 0;
}

bool zel::GetSystemVersion(OSVERSIONINFOEXW& version) noexcept {
    version = {};
    version.dwOSVersionInfoSize = sizeof version;
    utsname system;
    if (uname(&system) != 0) return false;
    const char* text = system.release;
    for (unsigned int* const field : {&version.dwMajorVersion, &version.dwMinorVersion, &version.dwBuildNumber}) {
        char* end = nullptr;
        *field = static_cast<unsigned int>(std::strtoul(text, &end, 10));
        if (*end != '.') break;
        text = end + 1;
    }
    return true;
}

int zel::GetProcessorCount() noexcept {
    return static_cast<int>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
}

bool zel::IsAdministrator() noexcept {
    return geteuid() == 0;
}

int zel::GetOwnProcessId() noexcept {
    return getpid();
}

const char* zel::GetEnvironment(const char* name) noexcept {
    return std::getenv(name);
}

bool zel::PutEnvironment(const char* assignment) noexcept {
    const char* const equals = std::strchr(assignment, '=');
    if (equals == nullptr || equals == assignment) return false;
    // Only a copy of the name is needed: the C runtime copies what it keeps.
    const std::string_view written(assignment, static_cast<std::size_t>(equals - assignment));
    char* const name = CopyText(written);
    if (name == nullptr) {
        ReportAllocFailure("PutEnvironment", written.size());
        return false;
    }
    const int result = equals[1] != '\0' ? setenv(name, equals + 1, 1) : unsetenv(name);
    Free(name);
    return result == 0;
}
