#include "support/machine.h"

#include <sys/stat.h>
#include <unistd.h>

ZELString DefaultHeaderDirectory() {
    struct stat status = {};
    for (const char* directory : {"/usr/include/c++", "/usr/include"})
        if (stat(directory, &status) == 0 && S_ISDIR(status.st_mode)) return directory;
    return "";
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}
