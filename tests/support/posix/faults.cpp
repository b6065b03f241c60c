// The calls of the library on Linux that can fail, each with the errors that it really has.

#include "support/faults.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

// Calls that cannot fail here, that only print, or whose failure has no effect; memory fails by its own hook.
// exempt: _GLOBAL_OFFSET_TABLE_ __cpu_model __dso_handle __errno_location __tls_get_addr environ stderr stdin stdout
// exempt: malloc calloc realloc free posix_memalign madvise munmap bcmp memchr memcmp memcpy memmove memset
// exempt: strchr strcmp strcpy strcspn strerror strerror_r strlen strncmp strncpy strrchr strtol strtoll strtoul
// exempt: snprintf sprintf vsnprintf __isoc99_sscanf ctime_r gai_strerror printf puts fgets
// exempt: __fbufsize __flbf __fpending __fpurge __fwritable __overflow __uflow clearerr clearerr_unlocked feof ferror
// exempt: fileno flockfile funlockfile fwide rewinddir setvbuf closedir dirfd freeaddrinfo freeifaddrs
// exempt: clock clock_gettime time sched_yield getenv unsetenv getpid gettid geteuid gethostname uname sysconf abort
// exempt: backtrace dladdr dlclose sigfillset pthread_sigmask pthread_self pthread_setname_np
// exempt: pthread_attr_destroy pthread_attr_init pthread_attr_setdetachstate pthread_mutex_consistent
// exempt: pthread_mutex_lock pthread_mutex_unlock pthread_mutexattr_destroy pthread_mutexattr_init
// exempt: pthread_mutexattr_setpshared pthread_mutexattr_setrobust

namespace {

void SetErrno(long code) {
    errno = static_cast<int>(code);
}
void MarkStream(std::FILE* stream) {
    constexpr int ErrorSeen = 0x20;
    stream->_flags |= ErrorSeen;
}

}  // namespace

// CALL(result, name, parameters, arguments, result of a failure, faults...)
#define CALL(result, name, parameters, arguments, failed, ...)                                              \
    extern "C" result __real_##name parameters;                                                             \
    static FaultyCall name##Call(#name, {__VA_ARGS__});                                                     \
    extern "C" result __wrap_##name parameters {                                                            \
        return PassOn<result>(name##Call, SetErrno, failed, [&](bool) { return __real_##name arguments; }); \
    }
// The same for calls that may do a part of their work: `size` becomes 1.
#define SIZED(result, name, parameters, arguments, failed, ...)                   \
    extern "C" result __real_##name parameters;                                   \
    static FaultyCall name##Call(#name, {__VA_ARGS__, PARTIAL});                  \
    extern "C" result __wrap_##name parameters {                                  \
        return PassOn<result>(name##Call, SetErrno, failed, [&](bool isPartial) { \
            if (isPartial && size > 1) size = 1;                                  \
            return __real_##name arguments;                                       \
        });                                                                       \
    }
// Functions that return their error.
#define STATUS(result, name, parameters, arguments, ...)                                   \
    extern "C" int __real_##name parameters;                                               \
    static FaultyCall name##Call(#name, {__VA_ARGS__});                                    \
    extern "C" int __wrap_##name parameters {                                              \
        const Fault* const fault = CountCall(name##Call);                                  \
        return fault != nullptr ? static_cast<int>(fault->code) : __real_##name arguments; \
    }

// Functions on streams, which remember that they failed.
#define STREAM(result, name, parameters, arguments, failed, ...) \
    extern "C" result __real_##name parameters;                  \
    static FaultyCall name##Call(#name, {__VA_ARGS__});          \
    extern "C" result __wrap_##name parameters {                 \
        const Fault* const fault = CountCall(name##Call);        \
        if (fault == nullptr) return __real_##name arguments;    \
        const result value = failed;                             \
        MarkStream(stream);                                      \
        SetErrno(fault->code);                                   \
        return value;                                            \
    }

// The row of a wrapper that is written out.
#define OTHER(result, name)

// Files
CALL(int, open, (const char* path, int flags, mode_t mode), (path, flags, mode), -1, TRANSIENT(EINTR), REFUSED(EMFILE),
     REFUSED(EACCES), REFUSED(ENOSPC))
CALL(int, openat, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode), -1,
     TRANSIENT(EINTR), REFUSED(EMFILE), REFUSED(EACCES), REFUSED(ENOSPC))
CALL(int, mkostemp, (char* path, int flags), (path, flags), -1, REFUSED(EMFILE), REFUSED(EACCES))
CALL(int, close, (int file), (file), -1, LATE(EIO), LATE(EINTR), LATE(ENOSPC))
CALL(int, fcntl, (int file, int command, void* argument), (file, command, argument), -1, REFUSED(EMFILE),
     REFUSED(ENOLCK))
SIZED(ssize_t, read, (int file, void* bytes, size_t size), (file, bytes, size), -1, TRANSIENT(EINTR), REFUSED(EIO))
SIZED(ssize_t, write, (int file, const void* bytes, size_t size), (file, bytes, size), -1, TRANSIENT(EINTR),
      REFUSED(EIO), REFUSED(ENOSPC))
SIZED(ssize_t, copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags),
      (from, fromAt, to, toAt, size, flags), -1, TRANSIENT(EINTR), REFUSED(EXDEV), REFUSED(EIO), REFUSED(ENOSPC))
CALL(off_t, lseek, (int file, off_t offset, int whence), (file, offset, whence), -1, REFUSED(ESPIPE))
CALL(int, ftruncate, (int file, off_t size), (file, size), -1, TRANSIENT(EINTR), REFUSED(EIO))
STATUS(int, posix_fallocate, (int file, off_t offset, off_t size), (file, offset, size), REFUSED(ENOSPC),
       TRANSIENT(EINTR), REFUSED(EOPNOTSUPP))
CALL(int, fstat, (int file, struct stat* status), (file, status), -1, REFUSED(EIO))
CALL(int, stat, (const char* path, struct stat* status), (path, status), -1, REFUSED(EACCES), REFUSED(EIO))
CALL(int, fstatat, (int folder, const char* path, struct stat* status, int flags), (folder, path, status, flags), -1,
     REFUSED(EACCES), REFUSED(EIO))
CALL(int, access, (const char* path, int mode), (path, mode), -1, REFUSED(EACCES))
CALL(int, faccessat, (int folder, const char* path, int mode, int flags), (folder, path, mode, flags), -1, REFUSED(EIO))
CALL(int, fchmod, (int file, mode_t mode), (file, mode), -1, REFUSED(EPERM))
CALL(int, fchmodat, (int folder, const char* path, mode_t mode, int flags), (folder, path, mode, flags), -1,
     REFUSED(EPERM))
CALL(int, linkat, (int from, const char* path, int to, const char* name, int flags), (from, path, to, name, flags), -1,
     REFUSED(EPERM), REFUSED(ENOSPC))
CALL(int, renameat, (int from, const char* path, int to, const char* name), (from, path, to, name), -1, REFUSED(EACCES),
     REFUSED(EIO))
CALL(int, renameat2, (int from, const char* path, int to, const char* name, unsigned flags),
     (from, path, to, name, flags), -1, REFUSED(ENOSYS), REFUSED(EACCES))
CALL(int, unlink, (const char* path), (path), -1, REFUSED(EACCES), REFUSED(EIO))
CALL(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags), -1, REFUSED(EACCES), REFUSED(EIO))
CALL(int, mkdir, (const char* path, mode_t mode), (path, mode), -1, REFUSED(EACCES), REFUSED(ENOSPC))
CALL(int, rmdir, (const char* path), (path), -1, REFUSED(EACCES), REFUSED(EBUSY))
CALL(int, chdir, (const char* path), (path), -1, REFUSED(EACCES))
CALL(char*, getcwd, (char* path, size_t size), (path, size), nullptr, REFUSED(ENOENT))
CALL(ssize_t, readlink, (const char* path, char* target, size_t size), (path, target, size), -1, REFUSED(EACCES))
CALL(DIR*, opendir, (const char* path), (path), nullptr, REFUSED(EMFILE), REFUSED(EACCES), REFUSED(ENOMEM))
CALL(DIR*, fdopendir, (int file), (file), nullptr, REFUSED(ENOMEM))
CALL(dirent*, readdir, (DIR * directory), (directory), nullptr, REFUSED(EIO))
CALL(ssize_t, getdents64, (int file, void* entries, size_t size), (file, entries, size), -1, REFUSED(EIO))
CALL(void*, mmap, (void* at, size_t size, int protection, int flags, int file, off_t offset),
     (at, size, protection, flags, file, offset), MAP_FAILED, REFUSED(ENOMEM), REFUSED(ENODEV))
CALL(int, shm_open, (const char* name, int flags, mode_t mode), (name, flags, mode), -1, REFUSED(EMFILE),
     REFUSED(EACCES))

CALL(int, shm_unlink, (const char* name), (name), -1, REFUSED(EACCES))

// Streams
CALL(std::FILE*, fopen, (const char* path, const char* mode), (path, mode), nullptr, TRANSIENT(EINTR), REFUSED(EMFILE),
     REFUSED(EACCES), REFUSED(ENOMEM))
CALL(std::FILE*, fdopen, (int file, const char* mode), (file, mode), nullptr, REFUSED(ENOMEM))
CALL(int, fclose, (std::FILE * stream), (stream), EOF, LATE(ENOSPC), LATE(EIO))
CALL(int, fflush, (std::FILE * stream), (stream), EOF, REFUSED(ENOSPC), REFUSED(EIO))
SIZED(ssize_t, writev, (int file, const iovec* parts, int size), (file, parts, size), -1, TRANSIENT(EINTR),
      REFUSED(ENOSPC))
STREAM(ssize_t, getdelim, (char** text, size_t* room, int delimiter, std::FILE* stream),
       (text, room, delimiter, stream), -1, REFUSED(EIO), REFUSED(ENOMEM))
STREAM(size_t, fread, (void* bytes, size_t size, size_t count, std::FILE* stream), (bytes, size, count, stream), 0,
       REFUSED(EIO))
// A disk fills up in the middle.
STREAM(size_t, fwrite, (const void* bytes, size_t size, size_t count, std::FILE* stream), (bytes, size, count, stream),
       __real_fwrite(bytes, size, count / 2, stream), REFUSED(ENOSPC), REFUSED(EIO))
STREAM(int, fputc, (int c, std::FILE* stream), (c, stream), EOF, REFUSED(ENOSPC))
STREAM(int, fputs, (const char* text, std::FILE* stream), (text, stream), EOF, REFUSED(ENOSPC))
STREAM(int, vfprintf, (std::FILE * stream, const char* format, va_list values), (stream, format, values), -1,
       REFUSED(ENOSPC))

CALL(int, fflush_unlocked, (std::FILE * stream), (stream), EOF, REFUSED(ENOSPC), REFUSED(EIO))
STREAM(size_t, fread_unlocked, (void* bytes, size_t size, size_t count, std::FILE* stream),
       (bytes, size, count, stream), 0, REFUSED(EIO))
STREAM(size_t, fwrite_unlocked, (const void* bytes, size_t size, size_t count, std::FILE* stream),
       (bytes, size, count, stream), __real_fwrite_unlocked(bytes, size, count / 2, stream), REFUSED(ENOSPC),
       REFUSED(EIO))

// Processes and threads
CALL(int, waitid, (idtype_t kind, id_t process, siginfo_t* about, int options), (kind, process, about, options), -1,
     TRANSIENT(EINTR))
CALL(int, system, (const char* command), (command), -1, REFUSED(EAGAIN))
CALL(pid_t, waitpid, (pid_t process, int* status, int options), (process, status, options), -1, TRANSIENT(EINTR))
CALL(int, kill, (pid_t process, int signal), (process, signal), -1, REFUSED(EPERM))
CALL(int, nanosleep, (const timespec* time, timespec* left), (time, left), -1, TRANSIENT(EINTR))
STATUS(int, pthread_create, (pthread_t * thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument),
       (thread, attributes, run, argument), REFUSED(EAGAIN))
CALL(int, __clone, (int (*run)(void*), void* stack, int flags, void* argument), (run, stack, flags, argument), -1,
     REFUSED(EAGAIN), REFUSED(ENOMEM))
// Of the calls that have no function of their own, those that can fail.
extern "C" long __real_syscall(long number, long a, long b, long c, long d, long e, long f);
static FaultyCall pidfdCall("pidfd_open", {REFUSED(ENOSYS), REFUSED(EMFILE)});
static FaultyCall sendSignalCall("pidfd_send_signal", {REFUSED(EPERM)});
static FaultyCall execveCall("execve", {REFUSED(EACCES), REFUSED(ENOMEM)});
static FaultyCall dup2Call("dup2", {REFUSED(EMFILE)});
OTHER(long, syscall)
// Runs in a child between clone and exec too, on a stack that sanitizers do not know.
extern "C" __attribute__((no_sanitize("address", "undefined"))) long __wrap_syscall(long number, long a, long b, long c,
                                                                                    long d, long e, long f) {
    const Fault* const fault = number == SYS_pidfd_open          ? CountCall(pidfdCall)
                               : number == SYS_pidfd_send_signal ? CountCall(sendSignalCall)
                               : number == SYS_execve            ? CountCall(execveCall)
                               : number == SYS_dup2              ? CountCall(dup2Call)
                                                                 : nullptr;
    if (fault == nullptr) return __real_syscall(number, a, b, c, d, e, f);
    SetErrno(fault->code);
    return -1;
}
CALL(int, setenv, (const char* name, const char* value, int overwrite), (name, value, overwrite), -1, REFUSED(ENOMEM))
STATUS(int, pthread_mutex_init, (pthread_mutex_t * mutex, const pthread_mutexattr_t* kind), (mutex, kind),
       REFUSED(ENOMEM))
CALL(void*, dlopen, (const char* name, int flags), (name, flags), nullptr, REFUSED(ENOMEM))
CALL(struct tm*, localtime_r, (const time_t* time, struct tm* parts), (time, parts), nullptr, REFUSED(EOVERFLOW))

// Sockets
CALL(int, socket, (int family, int type, int protocol), (family, type, protocol), -1, REFUSED(EMFILE),
     REFUSED(EAFNOSUPPORT))
CALL(int, getifaddrs, (ifaddrs * *found), (found), -1, REFUSED(ENOMEM))
CALL(int, bind, (int file, const sockaddr* address, socklen_t size), (file, address, size), -1, REFUSED(EADDRINUSE))
CALL(int, listen, (int file, int waiting), (file, waiting), -1, REFUSED(EADDRINUSE))
CALL(int, accept4, (int file, sockaddr* address, socklen_t* size, int flags), (file, address, size, flags), -1,
     TRANSIENT(EINTR), TRANSIENT(ECONNABORTED), REFUSED(EMFILE))
CALL(int, connect, (int file, const sockaddr* address, socklen_t size), (file, address, size), -1,
     REFUSED(ECONNREFUSED), REFUSED(ENETUNREACH))
CALL(int, setsockopt, (int file, int level, int name, const void* value, socklen_t size),
     (file, level, name, value, size), -1, REFUSED(ENOBUFS))
CALL(int, getsockopt, (int file, int level, int name, void* value, socklen_t* size), (file, level, name, value, size),
     -1, REFUSED(ENOBUFS))
CALL(int, getsockname, (int file, sockaddr* address, socklen_t* size), (file, address, size), -1, REFUSED(ENOBUFS))
SIZED(ssize_t, recv, (int file, void* bytes, size_t size, int flags), (file, bytes, size, flags), -1, TRANSIENT(EINTR),
      TRANSIENT(EAGAIN), REFUSED(ECONNRESET))
SIZED(ssize_t, send, (int file, const void* bytes, size_t size, int flags), (file, bytes, size, flags), -1,
      TRANSIENT(EINTR), TRANSIENT(EAGAIN), REFUSED(EPIPE))
extern "C" ssize_t __real_sendmsg(int file, const msghdr* message, int flags);
static FaultyCall sendmsgCall("sendmsg", {TRANSIENT(EINTR), TRANSIENT(EAGAIN), REFUSED(EPIPE), PARTIAL});
OTHER(ssize_t, sendmsg)
extern "C" ssize_t __wrap_sendmsg(int file, const msghdr* message, int flags) {
    return PassOn<ssize_t>(sendmsgCall, SetErrno, -1, [&](bool isPartial) {
        if (!isPartial) return __real_sendmsg(file, message, flags);
        iovec first = {message->msg_iov->iov_base, std::min<size_t>(message->msg_iov->iov_len, 1)};
        msghdr one = *message;
        one.msg_iov = &first;
        one.msg_iovlen = 1;
        return __real_sendmsg(file, &one, flags);
    });
}
CALL(int, poll, (pollfd * files, nfds_t count, int milliseconds), (files, count, milliseconds), -1, TRANSIENT(EINTR),
     REFUSED(ENOMEM))
STATUS(int, getaddrinfo, (const char* node, const char* service, const addrinfo* hints, addrinfo** found),
       (node, service, hints, found), REFUSED(EAI_MEMORY), REFUSED(EAI_AGAIN))
STATUS(int, getnameinfo,
       (const sockaddr* address, socklen_t size, char* host, socklen_t hostSize, char* service, socklen_t serviceSize,
        int flags),
       (address, size, host, hostSize, service, serviceSize, flags), REFUSED(EAI_MEMORY))
