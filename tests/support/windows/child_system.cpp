#include "support/child_system.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

#include "support/windows/command_line.h"

namespace {

bool ignoresRequests = false;
bool wasAsked = false;

LRESULT CALLBACK HandleMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message != WM_CLOSE) return DefWindowProcA(window, message, first, second);
    wasAsked = !ignoresRequests;
    return 0;
}

}  // namespace

void MakeStreamsBinary() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

void DieBySignal(int number) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(128 + number));
    Sleep(INFINITE);
    __builtin_unreachable();
}

bool AwaitPoliteRequest(bool ignore, int milliseconds, void (*ready)()) {
    ignoresRequests = ignore;
    WNDCLASSA shape = {};
    shape.lpfnWndProc = HandleMessage;
    shape.hInstance = GetModuleHandleA(nullptr);
    shape.lpszClassName = "zel_test_child";
    RegisterClassA(&shape);
    CreateWindowA(shape.lpszClassName, "child", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 80, 60, nullptr, nullptr,
                  shape.hInstance, nullptr);
    ready();
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (ULONGLONG now = GetTickCount64(); now < end && !wasAsked; now = GetTickCount64()) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
    }
    return wasAsked;
}

bool StartAgain(const std::vector<std::string>& arguments) {
    std::string line = Quoted(FolderOfThisProgram() + "child.exe");
    for (const std::string& argument : arguments) line += ' ' + Quoted(argument);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION child;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child))
        return false;
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return true;
}

int OwnProcessId() {
    return static_cast<int>(GetCurrentProcessId());
}

std::vector<long> OpenDescriptors() {
    // Handles are small multiples of four.
    std::vector<long> open;
    DWORD flags;
    for (long value = 4; value < 65536; value += 4)
        if (GetHandleInformation(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(value)), &flags)) open.push_back(value);
    return open;
}
