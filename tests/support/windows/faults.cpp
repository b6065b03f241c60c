// The calls of the library on Windows that can fail, each with the errors that it really has.
//
// What a DLL exports is called through a pointer, __imp_NAME, which is replaced by one to a wrapper. The functions of
// the C runtime that the headers do not import come through a stub, which is wrapped as it is.

#include "support/faults.h"

#include <windows.h>
#include <ws2tcpip.h>

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <psapi.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

namespace {

void SetError(long code) {
    SetLastError(static_cast<DWORD>(code));
}
void SetErrno(long code) {
    errno = static_cast<int>(code);
}
// Streams remember that they failed.
void MarkStream(std::FILE* stream) {
    stream->_flag |= _IOERR;
}

template <class Function>
struct Imported;
template <class Result, class... Parameters>
struct Imported<Result (*)(Parameters...)> {
    template <FaultyCall& call, Result (*const& real)(Parameters...), std::intptr_t failed, auto setError>
    static Result Wrapper(Parameters... parameters) {
        return PassOn<Result>(call, setError, (Result)failed, [&](bool) { return real(parameters...); });
    }
};

}  // namespace

// Calls that cannot fail here, that only print, or whose failure has no effect; memory fails by its own hook. The
// failure of DuplicateHandle ends the program in the compiler's library for threads.
// exempt: ___chkstk_ms __cpu_model __emutls_get_address __acrt_iob_func _errno abort atexit malloc calloc realloc free
// exempt: memchr memcmp memcpy memmove memset strchr strcmp strcpy strcspn strlen strncmp wcslen _wcsnicmp _ultow
// exempt: __mingw_vsnprintf _ctime64 _localtime64 _mktime64 _time64 clock nanosleep sched_yield getenv
// exempt: _filbuf _fileno _lock_file _unlock_file _lseeki64 clearerr feof ferror setvbuf
// exempt: pthread_mutex_destroy pthread_mutex_init pthread_mutex_lock pthread_mutex_unlock pthread_self DuplicateHandle
// exempt: AcquireSRWLockExclusive ReleaseSRWLockExclusive WaitOnAddress WakeByAddressAll WakeByAddressSingle
// exempt: CloseHandle FindClose FreeSid FreeEnvironmentStringsW FileTimeToLocalFileTime FileTimeToSystemTime
// exempt: FormatMessageA GetCurrentProcess GetCurrentProcessId GetCurrentThread GetCurrentThreadId GetFileType
// exempt: GetLastError SetLastError GetModuleHandleA GetModuleHandleW GetModuleHandleExA GetProcAddress GetStdHandle
// exempt: GetStartupInfoW GetSystemInfo GetTimeZoneInformation GetVersionExW GetWindowThreadProcessId EnumWindows
// exempt: RtlCaptureStackBackTrace SymFromAddr SymInitialize strerror WSACleanup WSAGetLastError __WSAFDIsSet
// exempt: closesocket freeaddrinfo htonl htons ntohs

// IMPORT(result of a failure, name, where the error goes, faults...)
#define IMPORT(failed, name, setError, ...)               \
    extern "C" decltype(&name) const __real___imp_##name; \
    static FaultyCall name##Call(#name, {__VA_ARGS__});   \
    extern "C" decltype(&name) const __wrap___imp_##name; \
    decltype(&name) const __wrap___imp_##name =           \
        Imported<decltype(&name)>::Wrapper<name##Call, __real___imp_##name, failed, setError>;
// CALL(result, name, parameters, arguments, result of a failure, faults...): of the C runtime, on a stream.
#define CALL(result, name, parameters, arguments, failed, ...) \
    extern "C" result __real_##name parameters;                \
    static FaultyCall name##Call(#name, {__VA_ARGS__});        \
    extern "C" result __wrap_##name parameters {               \
        const Fault* const fault = CountCall(name##Call);      \
        if (fault == nullptr) return __real_##name arguments;  \
        const result value = failed;                           \
        if (fault->kind != Fault::Late) MarkStream(stream);    \
        SetErrno(fault->code);                                 \
        return value;                                          \
    }

// The same for a function that is no import and has no stream.
#define PLAIN(result, name, parameters, arguments, failed, ...)                                             \
    extern "C" result __real_##name parameters;                                                             \
    static FaultyCall name##Call(#name, {__VA_ARGS__});                                                     \
    extern "C" result __wrap_##name parameters {                                                            \
        return PassOn<result>(name##Call, SetError, failed, [&](bool) { return __real_##name arguments; }); \
    }
// The row of a wrapper that is written out.
#define OTHER(result, name)

// Files
IMPORT(-1, CreateFileA, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_TOO_MANY_OPEN_FILES),
       REFUSED(ERROR_SHARING_VIOLATION))
IMPORT(-1, CreateFileW, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_TOO_MANY_OPEN_FILES))
IMPORT(0, CopyFileA, SetError, REFUSED(ERROR_DISK_FULL), REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, MoveFileExA, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_SHARING_VIOLATION))
IMPORT(0, DeleteFileA, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, DeleteFileW, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, RemoveDirectoryA, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_DIR_NOT_EMPTY))
IMPORT(0, SetFileAttributesA, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(-1, GetFileAttributesA, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, GetFileInformationByHandle, SetError, REFUSED(ERROR_IO_DEVICE))
IMPORT(0, GetFinalPathNameByHandleA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(-1, FindFirstFileA, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_NO_SYSTEM_RESOURCES))
IMPORT(0, FindNextFileA, SetError, REFUSED(ERROR_IO_DEVICE))
IMPORT(0, GetTempPathA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, GetTempFileNameA, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, GetCurrentDirectoryA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, SetCurrentDirectoryA, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(-1, _mkdir, SetErrno, REFUSED(EACCES), REFUSED(ENOENT))
IMPORT(-1, _filelengthi64, SetErrno, REFUSED(EBADF))
IMPORT(0, _fdopen, SetErrno, REFUSED(ENOMEM))
IMPORT(-1, _close, SetErrno, LATE(EIO))
IMPORT(-1, _read, SetErrno, REFUSED(EIO))
CALL(int, fclose, (std::FILE * stream), (stream), (__real_fclose(stream), EOF), LATE(ENOSPC))
CALL(int, fflush, (std::FILE * stream), (stream), EOF, REFUSED(ENOSPC))
CALL(int, fputc, (int c, std::FILE* stream), (c, stream), EOF, REFUSED(ENOSPC))
CALL(int, fputs, (const char* text, std::FILE* stream), (text, stream), EOF, REFUSED(ENOSPC))
CALL(size_t, fread, (void* bytes, size_t size, size_t count, std::FILE* stream), (bytes, size, count, stream), 0,
     REFUSED(EIO))
// A disk fills up in the middle.
CALL(size_t, fwrite, (const void* bytes, size_t size, size_t count, std::FILE* stream), (bytes, size, count, stream),
     __real_fwrite(bytes, size, count / 2, stream), REFUSED(ENOSPC))
CALL(int, __mingw_vfprintf, (std::FILE * stream, const char* format, va_list values), (stream, format, values), -1,
     REFUSED(ENOSPC))

extern "C" int (*const __real___imp__open)(const char* path, int flags, ...);
static FaultyCall openCall("_open", {REFUSED(EMFILE), REFUSED(EACCES), REFUSED(ENOSPC)});
static int Open(const char* path, int flags, int mode) {
    return PassOn<int>(openCall, SetErrno, -1, [&](bool) { return __real___imp__open(path, flags, mode); });
}
OTHER(int, __imp__open)
extern "C" auto* const __wrap___imp__open = Open;

// Processes and threads
IMPORT(0, AdjustTokenPrivileges, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, AllocateAndInitializeSid, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, CheckTokenMembership, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, GetModuleFileNameA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, GetProcessId, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, LookupPrivilegeValueW, SetError, REFUSED(ERROR_NO_SUCH_PRIVILEGE))
IMPORT(0, QueryDosDeviceA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, ReleaseMutex, SetError, REFUSED(ERROR_NOT_OWNER))
IMPORT(0, SendMessageTimeoutW, SetError, REFUSED(ERROR_TIMEOUT))
IMPORT(0, SetHandleInformation, SetError, REFUSED(ERROR_INVALID_PARAMETER))
IMPORT(-1, WaitForSingleObject, SetError, REFUSED(ERROR_ACCESS_DENIED))
PLAIN(BOOL, K32EnumProcesses, (DWORD * numbers, DWORD size, DWORD* used), (numbers, size, used), FALSE,
      REFUSED(ERROR_NOT_ENOUGH_MEMORY))
PLAIN(DWORD, K32GetProcessImageFileNameA, (HANDLE process, LPSTR name, DWORD size), (process, name, size), 0,
      REFUSED(ERROR_ACCESS_DENIED))
PLAIN(int, system, (const char* command), (command), -1, REFUSED(ENOMEM))
IMPORT(0, CreateProcessW, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY), REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, GetEnvironmentStringsW, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, GetExitCodeProcess, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, OpenProcess, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, TerminateProcess, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, GetProcessTimes, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, OpenProcessToken, SetError, REFUSED(ERROR_ACCESS_DENIED))
IMPORT(0, CreateMutexW, SetError, REFUSED(ERROR_ACCESS_DENIED), REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, _beginthreadex, SetErrno, REFUSED(EAGAIN))
IMPORT(-1, _putenv, SetErrno, REFUSED(ENOMEM))
IMPORT(0, LoadLibraryExA, SetError, REFUSED(ERROR_NOT_ENOUGH_MEMORY))
IMPORT(0, MultiByteToWideChar, SetError, REFUSED(ERROR_NO_UNICODE_TRANSLATION))

// Sockets
IMPORT(-1, WSASocketW, SetError, REFUSED(WSAEMFILE), REFUSED(WSAEAFNOSUPPORT))
IMPORT(WSASYSNOTREADY, WSAStartup, SetError, REFUSED(WSASYSNOTREADY))
IMPORT(-1, gethostname, SetError, REFUSED(WSAEFAULT))
IMPORT(-1, bind, SetError, REFUSED(WSAEADDRINUSE))
IMPORT(-1, listen, SetError, REFUSED(WSAEADDRINUSE))
IMPORT(-1, accept, SetError, REFUSED(WSAEMFILE))
IMPORT(-1, connect, SetError, REFUSED(WSAECONNREFUSED))
IMPORT(-1, setsockopt, SetError, REFUSED(WSAENOBUFS))
IMPORT(-1, ioctlsocket, SetError, REFUSED(WSAENOBUFS))
IMPORT(-1, getsockname, SetError, REFUSED(WSAENOBUFS))
IMPORT(-1, recv, SetError, REFUSED(WSAECONNRESET))
IMPORT(-1, WSASend, SetError, REFUSED(WSAECONNRESET))
IMPORT(-1, select, SetError, REFUSED(WSAENOBUFS))
IMPORT(WSA_NOT_ENOUGH_MEMORY, getaddrinfo, SetError, REFUSED(WSA_NOT_ENOUGH_MEMORY))
IMPORT(WSA_NOT_ENOUGH_MEMORY, getnameinfo, SetError, REFUSED(WSA_NOT_ENOUGH_MEMORY))
