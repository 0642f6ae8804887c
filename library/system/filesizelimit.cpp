#include "library/system/filesizelimit.h"

#include <signal.h>

void TakeFileSizeLimitAsError()
{
    signal(SIGXFSZ, SIG_IGN);
}
