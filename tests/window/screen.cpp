#include "window/screen.h"

#include "support/testsupport.h"

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
// Two clicks are one double click when a hand is fast, by the display's clock.
constexpr auto ClicksApart = std::chrono::milliseconds(550);
// Turns of the program's loop in which what it has been sent is done: read in one, told to the windows at its
// end, and what they put off to the next.
constexpr int TurnsToAct = 3;
// Turns in which what moves by itself moves, as a view that glides: it does so when a turn has found nothing
// else.
constexpr int TurnsToMove = 20;

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

bool WaitUntil(const std::function<bool()>& condition)
{
    constexpr auto Pause = std::chrono::milliseconds(30);
    return WaitFor(condition, [Pause] { std::this_thread::sleep_for(Pause); });
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
        const rlimit limit{static_cast<rlim_t>(fileSizeLimit), static_cast<rlim_t>(fileSizeLimit)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ChangeEnvironment(changes);
    Execute(arguments);
}

TScreen::TScreen(int width, int height, int depth, TAltMouse altMouse)
{
    if (!StartServer(width, height, depth))
        return;
    StartManager(altMouse);
    // The manager has taken over once it answers for the list of windows.
    if (WaitUntil([this] { return Do({"get_desktop"}).Status == 0; }))
        Connection.Open(Display);
}

TScreen::~TScreen()
{
    End(Manager);
    End(Server);
}

void TScreen::Kill()
{
    kill(Server, SIGKILL);
    WaitForEnd(Server);
    Server = -1;
}

void TScreen::StartManager(TAltMouse altMouse)
{
    std::vector<std::string> command = {"openbox", "--sm-disable"};
    if (altMouse == AM_PROGRAMS)
        command.insert(command.end(), {"--config-file", SourcePath("tests/window/openbox.xml")});
    Manager = StartCommand(command, {"DISPLAY=" + Display}, "/dev/null");
}

// The server finds a free number by itself and tells it. It must not begin anew when its first client goes.
bool TScreen::StartServer(int width, int height, int depth)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const std::string size = Number(width) + "x" + Number(height) + "x" + Number(depth);
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

// In a flow the words are kept for its end.
void TScreen::Act(const std::vector<std::string>& words)
{
    if (NumFlows > 0)
        Gathered.insert(Gathered.end(), words.begin(), words.end());
    else
        Do(words);
}

void TScreen::Settle()
{
    if (NumFlows > 0)
        return;
    EXPECT_TRUE(Connection.AwaitManager());
    EXPECT_TRUE(Connection.AwaitProgram(TurnsToAct));
}

void TScreen::MoveTo(int x, int y)
{
    Act({"mousemove", Number(x), Number(y), "sleep", StepDelay});
    PointerX = x;
    PointerY = y;
    Settle();
}

void TScreen::KeepClicksApart(int button)
{
    constexpr int Near = 20;
    if (button == LastButton && std::abs(PointerX - LastX) < Near && std::abs(PointerY - LastY) < Near) {
        if (NumFlows > 0)
            Act({"sleep", std::to_string(std::chrono::duration<double>(ClicksApart).count())});
        else
            std::this_thread::sleep_until(LastPress + ClicksApart);
    }
    LastX = PointerX;
    LastY = PointerY;
    LastButton = button;
}

void TScreen::Press(int button)
{
    KeepClicksApart(button);
    Act({"mousedown", Number(button), "sleep", StepDelay});
    LastPress = std::chrono::steady_clock::now();
    Settle();
}

void TScreen::Release(int button)
{
    Act({"mouseup", Number(button), "sleep", StepDelay});
    Settle();
}

void TScreen::Click(int x, int y, int button)
{
    MoveTo(x, y);
    Press(button);
    Release(button);
}

void TScreen::DoubleClick(int x, int y)
{
    MoveTo(x, y);
    KeepClicksApart(1);
    Act({"click", "--repeat", "2", "--delay", "50", "1", "sleep", StepDelay});
    LastPress = std::chrono::steady_clock::now();
    Settle();
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
    Act(moves);
    Release(button);
}

void TScreen::Wheel(int x, int y, int notches)
{
    MoveTo(x, y);
    const std::string button = notches > 0 ? "4" : "5";
    for (int i = 0; i < std::abs(notches); ++i)
        Act({"click", button, "sleep", StepDelay});
    Settle();
}

void TScreen::Key(const std::string& key)
{
    Act({"key", key, "sleep", StepDelay});
    Settle();
}

void TScreen::Keys(const std::vector<std::string>& keys)
{
    std::vector<std::string> command = {"key", "--delay", "30"};
    command.insert(command.end(), keys.begin(), keys.end());
    Act(command);
    Settle();
}

void TScreen::HoldKey(const std::string& key)
{
    Act({"keydown", key, "sleep", StepDelay});
    Settle();
}

void TScreen::LetKey(const std::string& key)
{
    Act({"keyup", key, "sleep", StepDelay});
    Settle();
}

void TScreen::Type(const std::string& text)
{
    // What ends the text must be none itself.
    const std::string end = "\x1e";
    Act({"type", "--delay", "8", "--terminator", end, "--", text, end});
    Settle();
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

bool TScreen::IsActive(const std::string& title) const
{
    const std::string window = FindWindow(title);
    const TCommandResult active = Do({"getactivewindow"});
    return !window.empty() && active.Status == 0 && active.Output == window + "\n";
}

bool TScreen::WaitUntilActive(const std::string& title) const
{
    return WaitUntil([&] { return IsActive(title); });
}

void TScreen::Activate(const std::string& window)
{
    Do({"windowactivate", window});
}

TRectangle TScreen::GetPosition(const std::string& window) const
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

bool TScreen::WaitUntilStill(const TRectangle& part)
{
    Settle();
    TPicture last = Grab(part);
    return WaitUntil([&] {
        if (!Connection.AwaitProgram(TurnsToMove))
            return false;
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

THandFlow::THandFlow(TScreen& screen) : Screen(screen)
{
    ++Screen.NumFlows;
}

THandFlow::~THandFlow()
{
    if (--Screen.NumFlows > 0)
        return;
    Screen.Do(Screen.Gathered);
    Screen.Gathered.clear();
    Screen.LastPress = std::chrono::steady_clock::now();
    Screen.Settle();
}
