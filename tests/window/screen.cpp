#include "window/screen.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// The time between the events of a hand.
constexpr const char* StepDelay = "0.02";

void ChangeEnvironment(const std::vector<std::string>& changes)
{
    for (const std::string& change : changes) {
        const size_t at = change.find('=');
        if (at == std::string::npos)
            unsetenv(change.c_str());
        else
            setenv(change.substr(0, at).c_str(), change.substr(at + 1).c_str(), 1);
    }
}

// In the child: never returns.
[[noreturn]] void Execute(const std::vector<std::string>& arguments)
{
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

int WaitForEnd(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
        ;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void End(pid_t process)
{
    if (process <= 0)
        return;
    kill(process, SIGTERM);
    WaitForEnd(process);
}

std::string Number(int value)
{
    return std::to_string(value);
}

std::string Geometry(const TRectangle& part)
{
    return Number(part.Width) + "x" + Number(part.Height) + "+" + Number(part.X) + "+" + Number(part.Y);
}

} // namespace

void Sleep(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

bool WaitUntil(const std::function<bool()>& condition, int seconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        Sleep(30);
    }
    return true;
}

TCommandResult RunCommand(const std::vector<std::string>& arguments, const std::vector<std::string>& changes)
{
    TCommandResult result;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return result;
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], 1);
        dup2(ends[1], 2);
        ChangeEnvironment(changes);
        Execute(arguments);
    }
    close(ends[1]);
    char buffer[65536];
    for (;;) {
        const ssize_t got = read(ends[0], buffer, sizeof(buffer));
        if (got <= 0)
            break;
        result.Output.append(buffer, static_cast<size_t>(got));
    }
    close(ends[0]);
    result.Status = WaitForEnd(process);
    return result;
}

pid_t StartCommand(const std::vector<std::string>& arguments, const std::vector<std::string>& changes,
                   const std::string& outputPath, const std::string& folder, long fileSizeLimit)
{
    const pid_t process = fork();
    if (process != 0)
        return process;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int output = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(output, 1);
    dup2(output, 2);
    if (!folder.empty() && chdir(folder.c_str()) != 0)
        _exit(126);
    if (fileSizeLimit > 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{static_cast<rlim_t>(fileSizeLimit), static_cast<rlim_t>(fileSizeLimit)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ChangeEnvironment(changes);
    Execute(arguments);
}

TScreen::TScreen(int width, int height)
{
    if (!StartServer(width, height))
        return;
    Manager = StartCommand({"openbox", "--sm-disable"}, {"DISPLAY=" + Display}, "/dev/null");
    // The manager has taken over once it answers for the list of windows.
    WaitUntil([this] { return Do({"get_desktop"}).Status == 0; });
}

TScreen::~TScreen()
{
    End(Manager);
    End(Server);
}

// The server finds a free number by itself and tells it. It must not begin anew when its first client goes.
bool TScreen::StartServer(int width, int height)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const std::string size = Number(width) + "x" + Number(height) + "x24";
    Server = StartCommand(
        {"Xvfb", "-displayfd", Number(ends[1]), "-screen", "0", size, "-nolisten", "tcp", "-noreset"}, {},
        "/dev/null");
    close(ends[1]);
    char number[16] = {};
    const ssize_t got = read(ends[0], number, sizeof(number) - 1);
    close(ends[0]);
    if (got <= 0)
        return false;
    Display = ":" + Number(atoi(number));
    return true;
}

TCommandResult TScreen::Do(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> command = {"xdotool"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunCommand(command, {"DISPLAY=" + Display});
}

void TScreen::MoveTo(int x, int y)
{
    Do({"mousemove", Number(x), Number(y), "sleep", StepDelay});
}

void TScreen::Press(int button)
{
    Do({"mousedown", Number(button), "sleep", StepDelay});
}

void TScreen::Release(int button)
{
    Do({"mouseup", Number(button), "sleep", StepDelay});
}

// The pause keeps two clicks from being one double click.
void TScreen::Click(int x, int y, int button)
{
    MoveTo(x, y);
    Press(button);
    Release(button);
    Sleep(450);
}

void TScreen::Drag(int fromX, int fromY, int toX, int toY, int button)
{
    constexpr int Steps = 6;
    MoveTo(fromX, fromY);
    Press(button);
    std::vector<std::string> moves;
    for (int i = 1; i <= Steps; ++i)
        for (const std::string& word :
             {std::string("mousemove"), Number(fromX + (toX - fromX) * i / Steps),
              Number(fromY + (toY - fromY) * i / Steps), std::string("sleep"), std::string(StepDelay)})
            moves.push_back(word);
    Do(moves);
    Release(button);
    Sleep(450);
}

void TScreen::Wheel(int x, int y, int notches)
{
    MoveTo(x, y);
    const std::string button = notches > 0 ? "4" : "5";
    for (int i = 0; i < std::abs(notches); ++i)
        Do({"click", button, "sleep", StepDelay});
}

void TScreen::Key(const std::string& key)
{
    Do({"key", key, "sleep", StepDelay});
}

void TScreen::Keys(const std::vector<std::string>& keys)
{
    std::vector<std::string> command = {"key", "--delay", "30"};
    command.insert(command.end(), keys.begin(), keys.end());
    Do(command);
}

void TScreen::HoldKey(const std::string& key)
{
    Do({"keydown", key, "sleep", StepDelay});
}

void TScreen::LetKey(const std::string& key)
{
    Do({"keyup", key, "sleep", StepDelay});
}

void TScreen::Type(const std::string& text)
{
    Do({"type", "--delay", "8", text});
}

std::string TScreen::FindWindow(const std::string& title) const
{
    const TCommandResult result = Do({"search", "--onlyvisible", "--name", title});
    const size_t end = result.Output.find('\n');
    if (result.Status != 0 || end == std::string::npos)
        return "";
    return result.Output.substr(0, end);
}

bool TScreen::WaitForWindow(const std::string& title) const
{
    return WaitUntil([&] { return !FindWindow(title).empty(); });
}

bool TScreen::WaitUntilGone(const std::string& title) const
{
    return WaitUntil([&] { return FindWindow(title).empty(); });
}

bool TScreen::WaitUntilActive(const std::string& title, int seconds) const
{
    return WaitUntil(
        [&] {
            const std::string window = FindWindow(title);
            const TCommandResult active = Do({"getactivewindow"});
            return !window.empty() && active.Status == 0 && active.Output == window + "\n";
        },
        seconds);
}

void TScreen::Activate(const std::string& window)
{
    Do({"windowactivate", window});
}

TRectangle TScreen::GetPlace(const std::string& window) const
{
    TRectangle place;
    // Without one the command waits for a click.
    if (window.empty())
        return place;
    const TCommandResult result = RunCommand({"xwininfo", "-id", window}, {"DISPLAY=" + Display});
    const auto value = [&result](const std::string& name) {
        const size_t at = result.Output.find(name);
        return at == std::string::npos ? 0 : atoi(result.Output.c_str() + at + name.size());
    };
    place.X = value("Absolute upper-left X:");
    place.Y = value("Absolute upper-left Y:");
    place.Width = value("Width:");
    place.Height = value("Height:");
    return place;
}

std::string TScreen::GetTitle(const std::string& window) const
{
    std::string title = Do({"getwindowname", window}).Output;
    while (!title.empty() && title.back() == '\n')
        title.pop_back();
    return title;
}

void TScreen::MoveWindow(const std::string& window, int x, int y)
{
    Do({"windowmove", "--sync", window, Number(x), Number(y)});
}

void TScreen::CloseWindow(const std::string& window)
{
    Do({"windowactivate", "--sync", window});
    Key("alt+F4");
}

TPicture TScreen::Grab(const TRectangle& part) const
{
    TPicture picture;
    const TCommandResult result =
        RunCommand({"import", "-silent", "-window", "root", "-crop", Geometry(part), "-depth", "8", "rgb:-"},
                   {"DISPLAY=" + Display});
    const size_t count = static_cast<size_t>(part.Width) * part.Height;
    if (result.Output.size() != count * 3)
        return picture;
    picture.Width = part.Width;
    picture.Height = part.Height;
    const unsigned char* from = reinterpret_cast<const unsigned char*>(result.Output.data());
    for (size_t i = 0; i < count; ++i, from += 3)
        picture.Pixels.push_back(static_cast<uint32_t>(from[0]) << 16 | static_cast<uint32_t>(from[1]) << 8 |
                                 from[2]);
    return picture;
}

bool TScreen::WaitUntilStill(const TRectangle& part) const
{
    TPicture last = Grab(part);
    return WaitUntil([&] {
        Sleep(300);
        TPicture next = Grab(part);
        last.Pixels.swap(next.Pixels);
        return !last.Pixels.empty() && last.Pixels == next.Pixels;
    });
}

void TScreen::Save(const TRectangle& part, const std::string& path) const
{
    RunCommand({"import", "-silent", "-window", "root", "-crop", Geometry(part), "+repage", path},
               {"DISPLAY=" + Display});
}
