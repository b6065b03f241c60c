// System information, and an environment variable whose buffer is its own while the environment keeps copies.
//
// Invariant of TAEnvVariable: _buffer is null or has room for the name, "=" and _capacity bytes, and the test in
// PutEnvironmentValue lets no longer value in. The dangerous case is a value that lies in that buffer.

#include "TAEnvironment.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "TADiagnostics.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/system.h"

using namespace zel;

namespace {

char* AllocateText(std::size_t size) {
    char* const text = AllocateArray<char>(size);
    if (text == nullptr) ReportAllocFailure("TAEnvVariable", size);
    return text;
}

char* Duplicate(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    char* const copy = AllocateText(size);
    if (copy != nullptr) std::memcpy(copy, text, size);
    return copy;
}

// An empty text with room for `name` (null: none), "=" and `capacity` bytes.
char* MakeBuffer(const char* name, int capacity) {
    const std::size_t nameLength = name != nullptr ? std::strlen(name) : 0;
    char* const buffer = AllocateText(nameLength + 1 + static_cast<std::size_t>(capacity));
    if (buffer != nullptr) buffer[0] = '\0';
    return buffer;
}

void WarnOfLongValue(std::size_t length, int capacity) {
    char line[128];
    std::snprintf(line, sizeof line, "## WARNING : impossible to execute putenv because of argument value size= %zu \n",
                  length + 1);
    WriteText(stdout, {line});
    std::snprintf(line, sizeof line, "## WARNING : is greater than the allowed size %d \n", capacity);
    WriteText(stdout, {line});
}

// Writes "name=value" to `text`; `value`, of `length` bytes, may lie there.
void WriteAssignment(char* text, const char* name, const char* value, std::size_t length) {
    const std::size_t nameLength = std::strlen(name);
    std::memmove(text + nameLength + 1, value, length);
    std::memcpy(text, name, nameLength);
    text[nameLength] = '=';
    text[nameLength + 1 + length] = '\0';
}

}  // namespace

ZELString GetHostName() noexcept {
    char name[256];
    return GetHost(name, sizeof name) ? name : "";
}

ZELString GetWorkDir() noexcept {
    char path[2048];
    return GetWorkingDirectory(path, sizeof path) ? path : ".";
}

int SetWorkDir(ZELString dir) noexcept {
    return !dir.IsIncomplete() && SetWorkingDirectory(dir) ? 0 : -1;
}

int GetOSVersionInfo(OSVERSIONINFOEXW& info) noexcept {
    if (GetSystemVersion(info)) return 1;
    Trace("ERROR GetOSVersionInfo: Unable to get version", 0);
    return 0;
}

int GetProcessorsNumber() noexcept {
    return GetProcessorCount();
}

int IsUserAdmin() noexcept {
    return IsAdministrator() ? 1 : 0;
}

ZELString TAGetTempDir() noexcept {
    return "C:\\temp";
}

TAEnvVariable::TAEnvVariable(const char* name, int capacity) noexcept
    : _name(name != nullptr && *name != '\0' ? Duplicate(name) : nullptr),
      _buffer(capacity > 0 ? MakeBuffer(_name, capacity) : nullptr),
      _capacity(capacity) {
    if (name != nullptr && *name != '\0' && _name == nullptr) Lose();
}

TAEnvVariable::TAEnvVariable(const TAEnvVariable& other) noexcept : _name(nullptr), _buffer(nullptr), _capacity(0) {
    copy(other);
}

TAEnvVariable& TAEnvVariable::operator=(const TAEnvVariable& other) noexcept {
    if (this != &other) copy(other);
    return *this;
}

TAEnvVariable::~TAEnvVariable() {
    Free(_name);
    Free(_buffer);
}

// Without memory for its name, a variable has none: another one shall not be set in its place.
void TAEnvVariable::Lose() noexcept {
    Free(std::exchange(_name, nullptr));
    Free(std::exchange(_buffer, nullptr));
    _isLost = true;
}

void TAEnvVariable::copy(const TAEnvVariable& other) noexcept {
    const bool hasText = other._buffer != nullptr && *other._buffer != '\0';
    const int capacity = hasText ? static_cast<int>(std::strlen(other._buffer) + 1) : _capacity;
    char* const name = other._name != nullptr ? Duplicate(other._name) : nullptr;
    char* const buffer = hasText ? MakeBuffer(name, capacity) : nullptr;
    if ((name == nullptr && other._name != nullptr) || (buffer == nullptr && hasText)) {
        Free(name);
        Free(buffer);
        return Lose();
    }
    if (hasText) std::strcpy(buffer, other._buffer);
    Free(_name);
    Free(_buffer);
    _name = name;
    _buffer = buffer;
    _capacity = capacity;
    _isLost = other._isLost;
}

int TAEnvVariable::PutEnvironmentValue(const char* value) const noexcept {
    if (_name == nullptr || value == nullptr) return _isLost && value != nullptr ? 1 : 0;
    const std::size_t length = std::strlen(value);
    // The value alone is counted, on purpose: the capacity is that of values, and the name has room of its own.
    if (_capacity <= 0 || length >= static_cast<std::size_t>(_capacity)) {
        WarnOfLongValue(length, _capacity);
        return 1;
    }
    char* const text = _buffer != nullptr ? _buffer : MakeBuffer(_name, _capacity);
    if (text == nullptr) return 1;
    WriteAssignment(text, _name, value, length);
    const bool put = PutEnvironment(text);
    if (text != _buffer) Free(text);
    return put ? 0 : 1;
}

int TAEnvVariable::UnsetEnvironmentValue() const noexcept {
    if (_name != nullptr && GetEnvironment(_name) == nullptr) return 0;
    return PutEnvironmentValue("");
}

const char* TAEnvVariable::GetEnvironmentValue() noexcept {
    return _name != nullptr ? GetEnvironment(_name) : "";
}
