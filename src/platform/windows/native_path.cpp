// The disk boundary on Windows: the text reaches the system as it is, and the system's paths are path values already.

#include "platform/native_path.h"

using namespace zel;

NativePath::NativePath(const char* path) noexcept : _text(path) {}

NativePath::~NativePath() = default;

void zel::ToPathValue(char*) noexcept {}
