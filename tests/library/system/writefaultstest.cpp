#include "support/testsupport.h"

#include "library/system/writefaults.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// How a process of its own ends that does this.
int StatusOf(const std::function<bool()>& work)
{
    const pid_t process = fork();
    if (process == 0) {
        signal(SIGPIPE, SIG_DFL);
        signal(SIGXFSZ, SIG_DFL);
        _exit(work() ? 0 : 1);
    }
    int status = -1;
    waitpid(process, &status, 0);
    return status;
}

bool WriteToClosedPipe()
{
    int ends[2] = {};
    if (pipe(ends) != 0)
        return false;
    close(ends[0]);
    return write(ends[1], "x", 1) == -1 && errno == EPIPE;
}

bool WritePastTheLimit(const char* path)
{
    const rlimit limit = {1, 1};
    FILE* file = fopen(path, "w");
    return file != nullptr && setrlimit(RLIMIT_FSIZE, &limit) == 0 && write(fileno(file), "x", 1) == 1 &&
           write(fileno(file), "y", 1) == -1 && errno == EFBIG;
}

} // namespace

TEST(WriteFaults, APipeThatNobodyReadsIsAnErrorOnceItIsTakenSo)
{
    const int before = StatusOf(WriteToClosedPipe);
    EXPECT_TRUE(WIFSIGNALED(before) && WTERMSIG(before) == SIGPIPE) << before;
    EXPECT_EQ(StatusOf([] {
                  TakeClosedPipeAsError();
                  return WriteToClosedPipe();
              }),
              0);
}

TEST(WriteFaults, AFileDoesNotGetTheNumberOfAClosedStream)
{
    const auto openFirst = [] {
        for (int stream : {STDIN_FILENO, STDERR_FILENO})
            close(stream);
        return open("/dev/null", O_WRONLY);
    };
    EXPECT_EQ(StatusOf([&] { return openFirst() == STDIN_FILENO; }), 0);
    EXPECT_EQ(StatusOf([&] {
                  close(openFirst());
                  TakeClosedStreamsAsErrors();
                  return open("/dev/null", O_WRONLY) > STDERR_FILENO && fcntl(STDOUT_FILENO, F_GETFD) >= 0 &&
                         write(STDERR_FILENO, "x", 1) == -1;
              }),
              0);
}

TEST(WriteFaults, SoIsALimitOnTheSizeOfFiles)
{
    const TTempFolder folder;
    const std::string path = folder.Path("file");
    const int before = StatusOf([&] { return WritePastTheLimit(path.c_str()); });
    EXPECT_TRUE(WIFSIGNALED(before) && WTERMSIG(before) == SIGXFSZ) << before;
    EXPECT_EQ(StatusOf([&] {
                  TakeFileSizeLimitAsError();
                  return WritePastTheLimit(path.c_str());
              }),
              0);
}
