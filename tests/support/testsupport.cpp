#include "support/testsupport.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/system/clock.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

std::string AssertionOf(const std::function<void()>& work)
{
    TString text;
    if (RunGuarded(work, text))
        return "";
    return text.Print();
}

std::string LogOf(const std::function<void()>& work)
{
    std::string text;
    TLogCapture capture([](const char* line, void* data) { *static_cast<std::string*>(data) += line; },
                        &text);
    work();
    return text;
}

bool DoAndDie(const std::function<void()>& work)
{
    const pid_t process = fork();
    if (process == 0) {
        TString text;
        if (!RunGuarded(work, text) || testing::Test::HasFailure())
            _exit(1);
        kill(getpid(), SIGKILL);
        _exit(1);
    }
    int status = 0;
    return process > 0 && waitpid(process, &status, 0) == process && WIFSIGNALED(status) &&
           WTERMSIG(status) == SIGKILL;
}

static uint32_t Now;

TFakeClock::TFakeClock(uint32_t now)
{
    Now = now;
    SetTickCountSource([] { return Now; });
}

TFakeClock::~TFakeClock()
{
    SetTickCountSource(nullptr);
}

void TFakeClock::Set(uint32_t now)
{
    Now = now;
}

// The saved user brings the superuser back.
TNobody::TNobody() : WasSuperuser(getuid() == 0)
{
    constexpr uid_t Nobody = 65534;
    if (WasSuperuser && setresuid(Nobody, Nobody, 0) != 0)
        throw std::runtime_error("the user cannot be changed");
}

TNobody::~TNobody()
{
    if (WasSuperuser && setresuid(0, 0, 0) != 0)
        abort();
}

std::string MakeForeignFile(const std::string& folder)
{
    if (getuid() != 0)
        return "/etc/passwd";
    const std::string path = folder + "/foreign";
    WriteBytes(path, "foreign");
    if (chmod(path.c_str(), 0644) != 0 || chmod(folder.c_str(), 0755) != 0)
        throw std::runtime_error(path + " cannot be shown to others");
    return path;
}

TTempFolder::TTempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "cindermill-XXXXXX").string();
    Folder = mkdtemp(pattern.data());
}

TTempFolder::~TTempFolder()
{
    std::error_code error;
    std::filesystem::remove_all(Folder, error);
}

bool WaitFor(const std::function<bool()>& condition, const std::function<void()>& pause)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(Patience);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        pause();
    }
    return true;
}

std::string ReadBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string SourcePath(const std::string& path)
{
    return std::string(CINDERMILL_SOURCE_ROOT) + "/" + path;
}

int main(int argc, char** argv)
{
    // What the driver has compiled once, each program of the tests has, those with a home of their own too.
    setenv("MESA_SHADER_CACHE_DIR", CINDERMILL_SHADER_CACHE, 0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
