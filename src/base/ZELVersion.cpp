// The version that the library was compiled with.

#include "ZELVersion.h"

#define ZEL_TEXT_OF(number) #number
#define ZEL_TEXT(number) ZEL_TEXT_OF(number)

int ZELVersionLinked() noexcept {
    return ZEL_VERSION;
}

const char* ZELVersionText() noexcept {
    return ZEL_TEXT(ZEL_VERSION_MAJOR) "." ZEL_TEXT(ZEL_VERSION_MINOR) "." ZEL_TEXT(ZEL_VERSION_PATCH);
}
