#include "support/testsupport.h"

#include "library/system/endsignal.h"

#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// How a process ends that does the work and is then over.
int StatusOf(const std::function<void()>& work)
{
    const pid_t process = fork();
    if (process == 0) {
        work();
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    return status;
}

bool IsReadable()
{
    pollfd handle = {GetEndSignalHandle(), POLLIN, 0};
    return poll(&handle, 1, 0) == 1;
}

} // namespace

TEST(EndSignal, IsNotedAndEndsNothing)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        const int status = StatusOf([signal] {
            if (!WatchEndSignals() || GetEndSignal() != 0 || IsReadable())
                _exit(1);
            raise(signal);
            if (GetEndSignal() != signal || !IsReadable())
                _exit(2);
            // More of them than a pipe holds change nothing.
            for (int i = 0; i < 70000; ++i)
                raise(SIGTERM);
            _exit(GetEndSignal() == signal ? 0 : 3);
        });
        EXPECT_EQ(status, 0) << signal;
    }
}

TEST(EndSignal, IsTheProcessesEndInTheEnd)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        const int status = StatusOf([signal] {
            WatchEndSignals();
            raise(signal);
            EndBySignal(GetEndSignal());
        });
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
    }
}

TEST(EndSignal, ThatIsIgnoredStaysSo)
{
    const int status = StatusOf([] {
        signal(SIGHUP, SIG_IGN);
        WatchEndSignals();
        raise(SIGHUP);
        _exit(GetEndSignal());
    });
    EXPECT_EQ(status, 0);
}
