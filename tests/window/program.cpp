#include "window/program.h"

#include <csignal>
#include <ctime>
#include <filesystem>
#include <sys/wait.h>

// A second name of the same file, where that can be.
static void Install(const std::string& path)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::error_code error;
    std::filesystem::create_hard_link(CINDERMILL_PROGRAM, path, error);
    if (error)
        std::filesystem::copy_file(CINDERMILL_PROGRAM, path);
}

TProgram::TProgram(TScreen& screen, const TProgramOptions& options) : Screen(screen), Scale(options.Scale)
{
    const std::string config = Folder.Path("config");
    if (!options.Settings.empty()) {
        std::filesystem::create_directories(config + "/TolvTools");
        WriteBytes(config + "/TolvTools/VORCindermill.conf", "[General]\nRegVersion=0\n" + options.Settings);
    }
    std::vector<std::string> environment = {
        "DISPLAY=" + screen.GetDisplay(), "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "HOME=" + Folder.GetFolder(),
        // No program of whoever runs the tests hears of it.
        "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR=" + Folder.GetFolder(), "XDG_CONFIG_HOME=" + config,
        "XDG_CACHE_HOME=" + Folder.Path("cache"), "XDG_STATE_HOME=" + Folder.Path("state"),
        "LIBGL_ALWAYS_SOFTWARE=1",
        // The window system's own leaks are not this program's.
        "ASAN_OPTIONS=detect_leaks=0",
        // Tells the screen when the program has dealt with what was done to it.
        "QT_QPA_GENERIC_PLUGINS=turnteller", std::string("QT_PLUGIN_PATH=") + CINDERMILL_TEST_PLUGINS};
    environment.insert(environment.end(), options.Environment.begin(), options.Environment.end());
    if (Scale != 1)
        environment.push_back("QT_SCALE_FACTOR=" + std::to_string(Scale));
    std::string program = options.Path.empty() ? CINDERMILL_PROGRAM : options.Path;
    if (!options.Installed.empty()) {
        program = Folder.Path(options.Installed);
        Install(program);
    }
    Process = StartCommand({program}, environment, Folder.Path("output"), Folder.GetFolder(),
                           options.FileSizeLimit);
}

TProgram::~TProgram()
{
    if (!IsRunning())
        return;
    kill(Process, SIGKILL);
    waitpid(Process, nullptr, 0);
}

bool TProgram::IsUp() const
{
    if (!Screen.WaitForWindow(MainTitle) || !Screen.HasProgram())
        return false;
    Screen.Settle();
    return WaitUntil([this] {
        if (Screen.IsActive(MainTitle))
            return true;
        // A window manager that is still starting may have overlooked the window.
        Screen.Activate(Screen.FindWindow(MainTitle));
        Screen.Settle();
        return Screen.IsActive(MainTitle);
    });
}

bool TProgram::IsRunning()
{
    if (Process <= 0)
        return false;
    int status = 0;
    if (waitpid(Process, &status, WNOHANG) == 0)
        return true;
    Status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    Process = -1;
    return false;
}

void TProgram::Send(int signal) const
{
    kill(Process, signal);
}

double TProgram::GetProcessorSeconds() const
{
    clockid_t clock = 0;
    timespec time = {};
    if (clock_getcpuclockid(Process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return 0;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

int TProgram::WaitForEnd()
{
    WaitUntil([this] { return !IsRunning(); });
    return Status;
}

std::string TProgram::GetOutput() const
{
    return ReadBytes(Folder.Path("output"));
}

TRectangle TProgram::GetMainRectangle() const
{
    return Screen.GetPosition(Screen.FindWindow(MainTitle));
}

void TProgram::ChooseFromFileMenu(int number)
{
    const TRectangle place = GetMainRectangle();
    Screen.Click(place.X + 15 * Scale, place.Y + 11 * Scale);
    // The last one from below: Recent Files cannot be chosen while there are none.
    for (int i = 0; i < number && number != FE_EXIT; ++i)
        Screen.Key("Down");
    if (number == FE_EXIT)
        Screen.Key("Up");
    Screen.Key("Return");
}

bool TProgram::AnswerChooser(const std::string& title, const std::string& path)
{
    if (!Screen.WaitForWindow(title) || !Screen.WaitUntilActive(title))
        return false;
    const std::string window = Screen.FindWindow(title);
    Screen.Key("ctrl+a");
    Screen.Type(path);
    Screen.Key("Return");
    // The next chooser of the same title may come up at once.
    return WaitUntil([&] { return Screen.FindWindow(title) != window; });
}

bool TProgram::AnswerDialog(const std::string& title, const std::string& key)
{
    if (!Screen.WaitForWindow(title) || !Screen.WaitUntilActive(title))
        return false;
    const std::string window = Screen.FindWindow(title);
    Screen.Key(key);
    return WaitUntil([&] { return Screen.FindWindow(title) != window; });
}
