#include "support/test_system.h"

#include <windows.h>

#include <tlhelp32.h>

#include "support/windows/command_line.h"

const std::string FullDevice;
const std::string UnreadableFile;
const std::string EndlessDevice = "NUL";
const int StormPercent = 10;

std::string ProgramPath(const std::string& name) {
    return FolderOfThisProgram() + name + ".exe";
}

bool CanAskPrograms() {
    if (GetEnvironmentVariableA("ZEL_WINE_WINDOW", nullptr, 0) == 0) return false;
    // Whoever needs it first starts Wine's desktop: it shall not be found in the tree of a child.
    return GetDesktopWindow() != nullptr;
}

IgnoredChildren::IgnoredChildren() : isIgnoring(false) {}

IgnoredChildren::~IgnoredChildren() = default;

namespace {

int Threads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
    CloseHandle(snapshot);
    return count;
}

// Wine 8 crashes now and then when a process ends while a thread, behind the last of our code, is still ending.
struct LateEnd {
    ~LateEnd() {
        for (int look = 0; look < 200 && Threads() > 1; ++look) Sleep(1);
    }
} lateEnd;

std::string CommandLine(const std::string& name, const std::vector<std::string>& arguments) {
    std::string line = Quoted(ProgramPath(name));
    for (const std::string& argument : arguments) line.append(1, ' ').append(Quoted(argument));
    return line;
}

// For the child's standard streams: open for it to inherit.
HANDLE OpenForChild(const std::string& path) {
    if (path == ClosedStream) return INVALID_HANDLE_VALUE;
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS, 0,
                       nullptr);
}

}  // namespace

int RunAndWait(const std::string& name, const std::vector<std::string>& arguments, const std::string& outPath,
               const std::string& errPath) {
    std::string line = CommandLine(name, arguments);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = OpenForChild(outPath);
    start.hStdError = OpenForChild(errPath);
    PROCESS_INFORMATION child;
    const BOOL started =
        CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    if (!started) return -1;
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(child.hProcess, &exitCode);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return static_cast<int>(exitCode);
}

bool MakeNamedPipe(const std::string&) {
    return false;
}

bool StaysLoaded(const std::string& name, const char* function, const std::function<void*(void*)>& use) {
    const HMODULE library = LoadLibraryA((name + ".dll").c_str());
    void* const code = use(reinterpret_cast<void*>(GetProcAddress(library, function)));
    FreeLibrary(library);
    HMODULE found;
    return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCSTR>(code), &found) != 0;
}

std::vector<long> InheritedDescriptors() {
    // Handles are small multiples of four.
    std::vector<long> found;
    DWORD flags;
    for (long value = 4; value < 65536; value += 4)
        if (GetHandleInformation(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(value)), &flags) &&
            (flags & HANDLE_FLAG_INHERIT) != 0)
            found.push_back(value);
    return found;
}

std::size_t OpenDescriptors() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}
std::size_t RunningThreads() {
    return 0;  // their handles are counted
}

std::size_t AllocatedBytes() {
    return 0;
}

int MakeDeepTree(const std::string& path, int levels) {
    std::string folder = path;
    int made = 0;
    // Leaves room for a name and for the pattern that lists a directory.
    for (; made < levels && folder.size() < MAX_PATH - 16; ++made) {
        const HANDLE file = CreateFileA((folder + "\\f").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_READONLY, nullptr);
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
        folder += "\\d";
        CreateDirectoryA(folder.c_str(), nullptr);
    }
    return made;
}

void RunConfined(const std::function<void()>& work) {
    const auto run = [](void* task) -> DWORD {
        (*static_cast<const std::function<void()>*>(task))();
        return 0;
    };
    const HANDLE thread = CreateThread(nullptr, 256 << 10, run, const_cast<std::function<void()>*>(&work),
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) return;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

OrdinaryUser::OrdinaryUser() : _ordinary(false) {}

OrdinaryUser::~OrdinaryUser() = default;

std::string OutputOfFork(const std::function<std::string()>&) {
    return {};
}

Interruptions::Interruptions() = default;

Interruptions::~Interruptions() = default;

std::FILE* OpenInterrupted(std::string&, int) {
    return nullptr;
}
