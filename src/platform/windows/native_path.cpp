// The disk boundary on Windows: the text reaches the system as it is, and the system's paths are path values already.

#include "platform/native_path.h"

platform::NativePath::NativePath(const char* path) noexcept : _text(path) {}

platform::NativePath::~NativePath() = default;

void platform::ToPathValue(char*) noexcept {}
