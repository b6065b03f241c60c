// A launch in named steps: convert the line, build the environment, take the start-up information, make the files
// inheritable, create the process.
//
// The dangerous case is inheritance: a child gets every handle that is inheritable when it is created, whoever it is
// meant for. So files are opened closed to children; inheritable twins of them exist only under a lock that every
// launch of this library holds while it creates its process.

#include "platform/process_launch.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <cwchar>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/native_path.h"
#include "platform/system.h"
#include "platform/windows/handle.h"
#include "platform/windows/wide_text.h"

using namespace zel;

namespace {

constexpr std::size_t LongestLine = 32766;  // of CreateProcessW, without the terminator
constexpr wchar_t Name[] = L"RemoteKill=";
constexpr std::size_t NameLength = sizeof Name / sizeof *Name - 1;

SRWLOCK inheritance = SRWLOCK_INIT;

class InheritanceLock {
public:
    InheritanceLock() noexcept { AcquireSRWLockExclusive(&inheritance); }
    InheritanceLock(const InheritanceLock&) = delete;
    InheritanceLock& operator=(const InheritanceLock&) = delete;
    ~InheritanceLock() { ReleaseSRWLockExclusive(&inheritance); }
};

// The caller's variables with RemoteKill=PID among them, in the order that the system wants.
class ChildEnvironment {
public:
    ChildEnvironment() noexcept {
        wchar_t* const own = GetEnvironmentStringsW();
        if (own == nullptr) return;
        std::size_t length = 0;
        while (own[length] != L'\0') length += std::wcslen(own + length) + 1;
        constexpr std::size_t MarkRoom = 32;
        const std::size_t size = (length + MarkRoom + 1) * sizeof(wchar_t);
        _text = static_cast<wchar_t*>(Allocate(size));
        if (_text != nullptr)
            Write(own);
        else
            ReportAllocFailure("ChildEnvironment", size);
        FreeEnvironmentStringsW(own);
    }
    ChildEnvironment(const ChildEnvironment&) = delete;
    ChildEnvironment& operator=(const ChildEnvironment&) = delete;
    ~ChildEnvironment() { Free(_text); }

    wchar_t* Text() const noexcept { return _text; }

private:
    void Write(const wchar_t* own) noexcept {
        wchar_t* out = _text;
        bool isMarked = false;
        for (; *own != L'\0'; own += std::wcslen(own) + 1) {
            const int order = _wcsnicmp(own, Name, NameLength);
            if (order == 0) continue;
            if (order > 0 && !isMarked) out = WriteMark(out);
            isMarked = isMarked || order > 0;
            const std::size_t length = std::wcslen(own) + 1;
            std::wmemcpy(out, own, length);
            out += length;
        }
        if (!isMarked) out = WriteMark(out);
        *out = L'\0';
    }
    static wchar_t* WriteMark(wchar_t* out) noexcept {
        std::wmemcpy(out, Name, NameLength);
        _ultow(GetCurrentProcessId(), out + NameLength, 10);
        return out + std::wcslen(out) + 1;
    }

    wchar_t* _text = nullptr;
};

// The file as ChildFile keeps it; INVALID_HANDLE_VALUE without memory too.
std::intptr_t OpenForChild(const char* path, DWORD access, DWORD creation) {
    const WideText wide(path);
    constexpr DWORD Sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
    const HANDLE file = wide.Text() != nullptr ? CreateFileW(wide.Text(), access, Sharing, nullptr, creation,
                                                             FILE_ATTRIBUTE_NORMAL, nullptr)
                                               : INVALID_HANDLE_VALUE;
    return reinterpret_cast<std::intptr_t>(file);
}

// An inheritable twin, for as long as the lock is held; none for a file that is not open.
Handle MakeInheritable(HANDLE file) {
    HANDLE twin = nullptr;
    const HANDLE self = GetCurrentProcess();
    if (file != INVALID_HANDLE_VALUE && !DuplicateHandle(self, file, self, &twin, 0, TRUE, DUPLICATE_SAME_ACCESS))
        twin = nullptr;
    return Handle(twin);
}

HANDLE NativeFile(const ChildFile& file) {
    return reinterpret_cast<HANDLE>(file.Native());
}

STARTUPINFOW OwnStartup() {
    STARTUPINFOW start = {};
    GetStartupInfoW(&start);
    // What the C runtime of the caller's launcher left there would overrule the redirected streams.
    start.lpReserved = nullptr;
    start.lpReserved2 = nullptr;
    start.cbReserved2 = 0;
    return start;
}

// The streams that are not redirected stay the caller's.
void SetStreams(STARTUPINFOW& start, const Handle& input, const Handle& output, const Handle& error) {
    if (!input.IsOpen() && !output.IsOpen()) return;
    if ((start.dwFlags & STARTF_USESTDHANDLES) == 0) {
        start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
        start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        start.dwFlags |= STARTF_USESTDHANDLES;
    }
    if (input.IsOpen()) start.hStdInput = input.Get();
    if (output.IsOpen()) start.hStdOutput = output.Get();
    if (error.IsOpen()) start.hStdError = error.Get();
}

// The system's error, or ERROR_SUCCESS.
DWORD CreateChild(wchar_t* line, wchar_t* environment, const ChildFile& inputFile, const ChildFile& outputFile,
                  PROCESS_INFORMATION& created) {
    STARTUPINFOW start = OwnStartup();
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, FALSE};
    const InheritanceLock lock;
    const Handle input = MakeInheritable(NativeFile(inputFile));
    const Handle output = MakeInheritable(NativeFile(outputFile));
    const Handle error = MakeInheritable(NativeFile(outputFile));
    if (inputFile.IsOpen() != input.IsOpen() || outputFile.IsOpen() != (output.IsOpen() && error.IsOpen()))
        return GetLastError();
    SetStreams(start, input, output, error);
    if (CreateProcessW(nullptr, line, &attributes, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT, environment, nullptr,
                       &start, &created))
        return ERROR_SUCCESS;
    return GetLastError();
}

void Describe(DWORD error, LaunchFailure& failure) {
    failure.isTooLong = false;
    constexpr DWORD Flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    if (FormatMessageA(Flags, nullptr, error, 0, failure.text, sizeof failure.text, nullptr) == 0)
        std::snprintf(failure.text, sizeof failure.text, "System error %lu", error);
}

}  // namespace

ChildFile::~ChildFile() {
    if (IsOpen()) CloseHandle(reinterpret_cast<HANDLE>(_file));
}

bool ChildFile::OpenForWriting(const char* path) noexcept {
    _file = OpenForChild(path, GENERIC_WRITE, CREATE_ALWAYS);
    return IsOpen();
}

bool ChildFile::OpenForReading(const char* path) noexcept {
    _file = OpenForChild(path, GENERIC_READ, OPEN_EXISTING);
    return IsOpen();
}

bool ChildProcess::GetEnd(ChildEnd& end) const noexcept {
    DWORD code = 0;
    if (_handle == nullptr || !GetExitCodeProcess(_handle, &code)) return false;
    end = {code == STILL_ACTIVE ? ChildEnd::Running : ChildEnd::Exited, static_cast<int>(code)};
    return true;
}

bool ChildProcess::Kill(unsigned int exitCode) const noexcept {
    return _handle != nullptr && WaitForSingleObject(_handle, 0) != WAIT_OBJECT_0 &&
           TerminateProcess(_handle, exitCode) != 0;
}

void ChildProcess::AwaitEnd() const noexcept {
    WaitForSingleObject(_handle, INFINITE);
}

void ChildProcess::Close() noexcept {
    if (_handle != nullptr) CloseHandle(_handle);
    _handle = nullptr;
    _pid = 0;
}

bool zel::Launch(const Command& command, const ChildFile& input, const ChildFile& output, ChildProcess& child,
                 LaunchFailure& failure) noexcept {
    const WideText wide(command.IsComplete() ? command.Line() : "");
    const ChildEnvironment environment;
    if (!command.IsComplete() || wide.Text() == nullptr || environment.Text() == nullptr) {
        Describe(ERROR_NOT_ENOUGH_MEMORY, failure);
        return false;
    }
    if (wide.Length() > LongestLine) {
        DescribeTooLong(wide.Length(), LongestLine, failure);
        return false;
    }
    PROCESS_INFORMATION created = {};
    const DWORD error = CreateChild(wide.Text(), environment.Text(), input, output, created);
    if (error != ERROR_SUCCESS) {
        Describe(error, failure);
        return false;
    }
    CloseHandle(created.hThread);
    child = ChildProcess(static_cast<int>(created.dwProcessId), created.hProcess);
    return true;
}

void zel::ResetRemoteKill() noexcept {
    const InheritanceLock lock;
    // Left alone when it is right: the C runtime then moves nothing that others may be reading.
    const char* const value = GetEnvironment("RemoteKill");
    if (value == nullptr || std::strcmp(value, "NO") != 0) PutEnvironment("RemoteKill=NO");
}
