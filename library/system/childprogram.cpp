#include "library/system/childprogram.h"

#include "library/system/path.h"

#include <cerrno>
#include <cstring>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

bool RunChildProgram(const vector<TString>& words, int& status, TString& fault)
{
    TString path;
    ToSystemPath(words[0], path);
    vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    arguments.push_back(const_cast<char*>(path.Print()));
    for (int i = 1; i < words.size(); ++i)
        arguments.push_back(const_cast<char*>(words[i].Print()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int error = posix_spawn(&child, path.Print(), nullptr, nullptr, arguments.data(), environ);
    if (error != 0) {
        fault = std::strerror(error);
        return false;
    }
    int state = 0;
    while (waitpid(child, &state, 0) == -1)
        if (errno != EINTR) {
            fault = std::strerror(errno);
            return false;
        }
    if (!WIFEXITED(state)) {
        fault.Format("It was ended by signal %d", WTERMSIG(state));
        return false;
    }
    status = WEXITSTATUS(state);
    return true;
}
