// A robust mutex in a file of shared memory.
//
// Whether somebody has the file open decides whether its contents count, and no contents can tell that: a killed
// process leaves them as they were. So every opener holds a lock of the kernel's on the file, which ends with the
// process: a shared one on the byte Presence. Who could have that one exclusively is alone, and starts from an empty
// file. The byte Setup is locked exclusively for the short time in which somebody opens or closes. The locks belong to
// the open file, not to the process, so two mutexes of one process are two. The last to close removes the file; who
// opened it before and then finds it removed starts over.
//
// The mutex itself is locked once, by the outermost call, and unlocked through the same mapping; inner calls count.
//
// The dangerous cases: a mutex that is unmapped while a thread has it locked would leave the thread's list of robust
// mutexes pointing nowhere, so what is still locked stays mapped for ever; and a file that somebody cut shorter would
// raise SIGBUS, which mode 0600 and the owner's check leave to the user's own programs.

#include "platform/named_mutex.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/posix/descriptor.h"

using namespace zel;

namespace {

constexpr char Magic[] = "ZELmutex1";
constexpr int OwnerDied = 128;
enum LockByte : off_t { Setup = 0, Presence = 1 };

// What the file holds. Behind the mutex, who has it locked: written by the owner, read by everybody.
struct SharedMutex {
    char magic[sizeof Magic];
    pthread_mutex_t mutex;
    std::atomic<pid_t> process;
    std::atomic<pid_t> thread;  // 0 when it is free
    std::atomic<std::int64_t> born;
    std::atomic<SharedMutex*> via;  // the mapping through which the owner locked it first
    int depth;
};

// Tells a thread from a dead one whose number it got: when it first asked, in nanoseconds.
std::int64_t OwnBirth() noexcept {
    thread_local std::int64_t born = 0;
    if (born != 0) return born;
    struct timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return born = now.tv_sec * std::int64_t{1000000000} + now.tv_nsec;
}

bool IsOwn(const SharedMutex& shared) noexcept {
    return shared.thread.load() == gettid() && shared.born.load() == OwnBirth();
}

// "/zel-mutex.UID.NAME", with every byte of NAME but letters and digits as %XX.
struct FileName {
    explicit FileName(std::string_view name) noexcept {
        constexpr std::size_t Longest = 200;
        auto length = static_cast<std::size_t>(std::snprintf(text, sizeof text, "/zel-mutex.%u.", geteuid()));
        std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
        for (const char character : name) {
            const auto byte = static_cast<unsigned char>(character);
            hash = (hash ^ byte) * 0x100000001B3;
            if (length > Longest) continue;
            const char* const format = IsAsciiAlnum(byte) ? "%c" : "%%%02X";
            length += static_cast<std::size_t>(std::snprintf(text + length, sizeof text - length, format, byte));
        }
        if (length > Longest)
            std::snprintf(text + length, sizeof text - length, ".%zu.%016llX", name.size(),
                          static_cast<unsigned long long>(hash));
    }

    char text[256];
};

bool LockByteOf(const Descriptor& file, LockByte byte, short kind, bool waits) noexcept {
    struct flock lock = {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    while (fcntl(file.Number(), waits ? F_OFD_SETLKW : F_OFD_SETLK, &lock) != 0)
        if (errno != EINTR) return false;
    return true;
}

// The user's own plain file, which nobody else may open.
bool IsSafe(const struct stat& status) noexcept {
    constexpr mode_t others = S_IRWXG | S_IRWXO;
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() && (status.st_mode & others) == 0;
}

bool MakeMutex(pthread_mutex_t* mutex) noexcept {
    pthread_mutexattr_t kind;
    if (pthread_mutexattr_init(&kind) != 0) return false;
    pthread_mutexattr_setrobust(&kind, PTHREAD_MUTEX_ROBUST);
    pthread_mutexattr_setpshared(&kind, PTHREAD_PROCESS_SHARED);
    const bool made = pthread_mutex_init(mutex, &kind) == 0;
    pthread_mutexattr_destroy(&kind);
    return made;
}

SharedMutex* Map(int descriptor) noexcept {
    const int kind = MAP_SHARED | (descriptor < 0 ? MAP_ANONYMOUS : 0);
    void* const memory = mmap(nullptr, sizeof(SharedMutex), PROT_READ | PROT_WRITE, kind, descriptor, 0);
    return memory != MAP_FAILED ? static_cast<SharedMutex*>(memory) : nullptr;
}

void Unmap(SharedMutex* shared) noexcept {
    if (shared != nullptr) munmap(shared, sizeof *shared);
}

// A mutex in new memory; null, and nothing left, on failure.
SharedMutex* MapNew(int descriptor) noexcept {
    SharedMutex* const shared = Map(descriptor);
    if (shared != nullptr && MakeMutex(&shared->mutex)) {
        std::memcpy(shared->magic, Magic, sizeof Magic);
        return shared;
    }
    Unmap(shared);
    return nullptr;
}

// Under the lock of Setup: maps the file, starting from an empty one when nobody else has it open.
SharedMutex* MapFile(const Descriptor& file, const struct stat& status) noexcept {
    if (LockByteOf(file, Presence, F_WRLCK, false)) {
        // Room first: without it, touching the memory would raise SIGBUS.
        if (ftruncate(file.Number(), 0) != 0) return nullptr;
        int error;
        do error = posix_fallocate(file.Number(), 0, sizeof(SharedMutex));
        while (error == EINTR);
        if (error != 0) return nullptr;
        SharedMutex* const shared = MapNew(file.Number());
        if (shared != nullptr) LockByteOf(file, Presence, F_RDLCK, false);
        return shared;
    }
    if (!LockByteOf(file, Presence, F_RDLCK, false)) return nullptr;
    if (status.st_size != static_cast<off_t>(sizeof(SharedMutex))) return nullptr;
    SharedMutex* const shared = Map(file.Number());
    if (shared != nullptr && std::memcmp(shared->magic, Magic, sizeof Magic) == 0) return shared;
    Unmap(shared);
    return nullptr;
}

}  // namespace

struct NamedMutex::State {
    explicit State(std::string_view name) noexcept : fileName(name), isNamed(!name.empty()) {}

    FileName fileName;
    bool isNamed;
    Descriptor file;
    SharedMutex* shared = nullptr;

    bool Open() noexcept;
    void Close() noexcept;
};

bool NamedMutex::State::Open() noexcept {
    if (!isNamed) return (shared = MapNew(-1)) != nullptr;
    for (;;) {
        file = Descriptor(shm_open(fileName.text, O_RDWR | O_CREAT, S_IRUSR | S_IWUSR));  // never inherited
        struct stat status;
        if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || !IsSafe(status)) return false;
        fchmod(file.Number(), S_IRUSR | S_IWUSR);  // the process's mask may have taken rights away
        if (!LockByteOf(file, Setup, F_WRLCK, true) || fstat(file.Number(), &status) != 0) return false;
        if (status.st_nlink == 0) continue;  // removed by the last one that had it
        shared = MapFile(file, status);
        if (shared == nullptr && LockByteOf(file, Presence, F_WRLCK, false)) shm_unlink(fileName.text);
        LockByteOf(file, Setup, F_UNLCK, false);
        return shared != nullptr;
    }
}

void NamedMutex::State::Close() noexcept {
    if (shared == nullptr) return;
    const bool isLockedHere = shared->thread.load() != 0 && shared->process.load() == getpid();
    if (isLockedHere && shared->via.load() == shared) {  // see above: both stay for the thread that has it locked
        file.Release();
        return;
    }
    Unmap(shared);
    if (!isNamed || !LockByteOf(file, Setup, F_WRLCK, true)) return;
    if (LockByteOf(file, Presence, F_WRLCK, false)) shm_unlink(fileName.text);
}

NamedMutex::NamedMutex(std::string_view name) noexcept : _state(ZELNew<State>(name)) {
    if (_state == nullptr) ReportAllocFailure("NamedMutex", sizeof(State));
    if (_state == nullptr || _state->Open()) return;
    ZELDelete(_state);
    _state = nullptr;
}

NamedMutex::~NamedMutex() {
    if (_state == nullptr) return;
    _state->Close();
    ZELDelete(_state);
}

int NamedMutex::Lock() noexcept {
    if (_state == nullptr) return -1;
    SharedMutex& shared = *_state->shared;
    if (IsOwn(shared)) {
        if (shared.depth == INT_MAX) return -1;
        ++shared.depth;
        return 0;
    }
    const int result = pthread_mutex_lock(&shared.mutex);
    if (result != 0 && result != EOWNERDEAD) return -1;
    shared.process.store(getpid());
    shared.thread.store(gettid());
    shared.born.store(OwnBirth());
    shared.via.store(&shared);
    shared.depth = 1;
    if (result == 0) return 0;
    pthread_mutex_consistent(&shared.mutex);
    return OwnerDied;
}

bool NamedMutex::Unlock() noexcept {
    if (_state == nullptr || !IsOwn(*_state->shared)) return false;
    SharedMutex& shared = *_state->shared->via.load();
    if (--shared.depth > 0) return true;
    shared.thread.store(0);
    return pthread_mutex_unlock(&shared.mutex) == 0;
}
