// The arithmetic of the disk boundary for systems with slashes and without drives; see native_path.h. Compiled on both
// targets.
#ifndef BASE_SLASH_PATH_H
#define BASE_SLASH_PATH_H

namespace zel {

// False when such a system understands the path unchanged: it has no backslash and no drive prefix.
bool NeedsSlashPath(const char* path) noexcept;

// Writes the slashed form with a terminator to `result`, which has room for strlen(path) + 1 bytes: the form is never
// longer than the path.
void WriteSlashPath(const char* path, char* result) noexcept;

}  // namespace zel

#endif
