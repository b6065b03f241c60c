// A scan of all processes, compared with a prefix. Each entry keeps the birth of its process beside the number, so that
// a kill much later hits nobody who got the number meanwhile.

#include "TAInsTaskList.h"

#include <cstring>
#include <memory>
#include <string_view>

#include "TAFileName.h"
#include "ZELString.h"
#include "base/ascii.h"
#include "base/failure_report.h"
#include "base/growing_array.h"
#include "base/memory.h"
#include "paths/path_value.h"
#include "platform/process_image.h"
#include "platform/process_table.h"
#include "process/child_ledger.h"

using namespace zel;

namespace {

constexpr int MostProcesses = 1000;

using Text = std::unique_ptr<char, FreeBlock>;

struct Task {
    ProcessIdentity process;
    char image[ImagePathSize];
};

bool BeginsWith(std::string_view image, std::string_view prefix) noexcept {
    return EqualsIgnoringCase(image.substr(0, prefix.size()), prefix);
}

// How the programs below a directory begin; null when nothing is to be found there.
Text PrefixOf(const char* dir) noexcept {
    const TAFileName directory(dir);
    const std::string_view text = directory.View();
    char* prefix = nullptr;
    if (text.empty() || text == "\\" || IsDrive(text) || !MakeImagePrefix(directory, prefix)) return nullptr;
    return Text(prefix);
}

// The processes whose programs begin with a prefix, in the system's order; none when there are too many processes.
class Scan {
public:
    explicit Scan(const char* prefix) noexcept : _prefix(prefix) {
        if (prefix == nullptr) return;
        const auto visit = [](const ProcessEntry& entry, void* scan) { static_cast<Scan*>(scan)->Look(entry.self); };
        if (!VisitProcesses(visit, this) || _visited > MostProcesses) _tasks.Clear();
    }

    int Size() const noexcept { return static_cast<int>(_tasks.Size()); }
    const Task& operator[](int i) const noexcept { return _tasks[static_cast<std::size_t>(i)]; }

private:
    void Look(const ProcessIdentity& process) noexcept {
        if (++_visited > MostProcesses) return;
        Task task = {process, {}};
        if (!ReadProcessImage(process.pid, task.image)) return;
        const std::string_view image(task.image);
        const bool isProgram = image.find(".exe") != image.npos || image.find(".EXE") != image.npos;
        if (!isProgram || !BeginsWith(image, _prefix)) return;
        if (!_tasks.Append(task)) ReportAllocFailure("TAInsTaskList", (_tasks.Size() + 1) * sizeof task);
    }

    const char* const _prefix;
    GrowingArray<Task> _tasks;
    int _visited = 0;
};

// What is left out beside the program `name` itself.
constexpr std::string_view Manager = "ZELSoftwareMgt";

ZELString Exclusion(const char* dir, std::string_view program) noexcept {
    return ZELString(dir).Append("\\code\\bin\\").Append(program).Append(".exe");
}

}  // namespace

TAInsTaskList::TAInsTaskList() noexcept
    : _names(static_cast<char**>(AllocateZeroed(MaxTasks * sizeof(char*)))),
      _trace("TASKLIST", "", ZELTraAppend, "STDERR", 1024) {
    if (_names == nullptr) ReportAllocFailure("TAInsTaskList", MaxTasks * sizeof(char*));
}

TAInsTaskList::~TAInsTaskList() {
    Clear();
    Free(_names);
}

void TAInsTaskList::Clear() noexcept {
    while (_count > 0) Free(_names[--_count]);
}

bool TAInsTaskList::Add(int pid, __int64 born, const char* image) noexcept {
    auto* const name = _names != nullptr ? AllocateArray<char>(NameSize) : nullptr;
    if (name == nullptr) {
        ReportAllocFailure("TAInsTaskList", NameSize);
        return false;
    }
    static_assert(NameSize == ImagePathSize);
    std::memcpy(name, image, NameSize);
    _names[_count] = name;
    _pids[_count] = pid;
    _born[_count] = born;
    ++_count;
    return true;
}

int TAInsTaskList::TAInsCheckTask(const char* dir, char* name) noexcept {
    _trace.TraPrint("TAInsCheckTask DEBUT\n");
    _trace.TraPrint("TAInsCheckTask Dir = %s\n", dir != nullptr ? dir : "");
    Clear();
    if (dir == nullptr) return 0;
    ZELString exclusions[2];
    if (name != nullptr) {
        exclusions[0] = Exclusion(dir, name);
        if (name == Manager) exclusions[1] = Exclusion(dir, "ZELSoftwareMgtAdmin");
        // Cut off, it would not protect the process that is to be left out.
        if (exclusions[0].IsIncomplete() || exclusions[1].IsIncomplete()) return 0;
        _trace.TraPrint("ZELInsCheckTask NoCheck sur %s\n", exclusions[0].CastToCharPtr());
    }
    _trace.TraPrint("-----ZELInsGetTaskList : installpath = %s \n", dir);
    const Text prefix = PrefixOf(dir);
    const Scan scan(prefix.get());
    _trace.TraPrint("-----ZELInsGetTaskList  FIN NbTasks = %d\n", scan.Size());
    _trace.TraPrint("ZELInsCheckTask nb proc %d\n", scan.Size());
    for (int i = 0; i < scan.Size() && _count < MaxTasks; ++i) {
        _trace.TraPrint("TAInsCheckTask process : %s\n", scan[i].image);
        bool isExcluded = false;
        for (const ZELString& exclusion : exclusions)
            isExcluded |= exclusion.Length() > 0 && BeginsWith(scan[i].image, exclusion.View());
        if (!isExcluded && !Add(scan[i].process.pid, scan[i].process.born, scan[i].image)) break;
    }
    _trace.TraPrint("TAInsCheckTask FIN nbProcess = %d\n", _count);
    return _count;
}

void TAInsTaskList::TAInsGetListTask(char*** names, int* count) noexcept {
    if (count != nullptr) *count = _count;
    if (_count != 0 && names != nullptr) *names = _names;
    _trace.TraPrint("TAInsGetListTask = %d\n", _count);
}

void TAInsTaskList::TAInsKillTask() noexcept {
    _trace.TraPrint("ZELInsKillTask DEBUT \n");
    for (int i = 0; i < _count; ++i) {
        const int pid = static_cast<int>(_pids[i]);
        _trace.TraPrint("TAInsKillTask terminate %d\n", pid);
        KillAndNote({pid, _born[i]}, 0);
    }
    _trace.TraPrint("TAInsKillTask FIN \n");
}
