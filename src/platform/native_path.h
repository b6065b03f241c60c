// The disk boundary: every path of a caller passes through here on its way to the system.
//
// Path values hold backslashes on both targets. On Linux a backslash becomes a slash, and a drive prefix stands for the
// root: "C:\temp" is "/temp", "C:" is "/", while "a:b" is a name like any other. On Windows the text goes to the system
// unchanged. Names from a directory listing never pass through here: they may contain backslashes of their own.
#ifndef PLATFORM_NATIVE_PATH_H
#define PLATFORM_NATIVE_PATH_H

namespace zel {

// One path in the form of the system. If no character has to change, it refers to the caller's text, which must outlive
// the object.
class NativePath {
public:
    explicit NativePath(const char* path) noexcept;
    NativePath(const NativePath&) = delete;
    NativePath& operator=(const NativePath&) = delete;
    ~NativePath();

    // Null when the path was null, or when memory ran out, which is reported on standard output.
    const char* Text() const noexcept { return _text; }

private:
    const char* _text;
    [[maybe_unused]] char* _block = nullptr;  // null while _text is the text of the caller or is in _room
    [[maybe_unused]] char _room[256];
};

// Turns a path of the system into a path value, in place and of the same length.
void ToPathValue(char* nativePath) noexcept;

}  // namespace zel

#endif
