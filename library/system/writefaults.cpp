#include "library/system/writefaults.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

void TakeFileSizeLimitAsError()
{
    signal(SIGXFSZ, SIG_IGN);
}

void TakeClosedPipeAsError()
{
    signal(SIGPIPE, SIG_IGN);
}

// In rising order, so that each free number is the next that the system gives out.
void TakeClosedStreamsAsErrors()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}
