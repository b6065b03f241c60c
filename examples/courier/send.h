// The sending side.
#ifndef EXAMPLES_COURIER_SEND_H
#define EXAMPLES_COURIER_SEND_H

#include "ZELListValZELString.h"
#include "ZELString.h"

struct SendOptions {
    ZELString host;
    int port = 0;
    int patience = 60;
    ZELListValZELString paths;
};

// Gives the exit code: 0 when all is there, 1 when something is not, which was told then.
int Send(const SendOptions& options);

#endif
