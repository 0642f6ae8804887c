#include "library/system/writefaults.h"

#include <signal.h>

void TakeFileSizeLimitAsError()
{
    signal(SIGXFSZ, SIG_IGN);
}

void TakeClosedPipeAsError()
{
    signal(SIGPIPE, SIG_IGN);
}
