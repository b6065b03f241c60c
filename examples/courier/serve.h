// The receiving side.
#ifndef EXAMPLES_COURIER_SERVE_H
#define EXAMPLES_COURIER_SERVE_H

#include "ZELString.h"

struct ServeOptions {
    ZELString directory;
    int port = -1;
    int patience = 60;
};

// Until it is interrupted. Gives the exit code.
int Serve(const ServeOptions& options);

#endif
