#include "bench/benchdisplay.h"
#include "bench/benchfolder.h"
#include "bench/benchtable.h"

#include <xcb/xcb.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// What a start costs, from the call of the program to its first window on the screen: the processor's time,
// which other programs change little, and the clock's.
namespace {

// In milliseconds of the clock, on an idle machine.
constexpr double StartLimit = 200;
constexpr int Patience = 20000;
constexpr int LeastWidth = 200;

const std::string ToolPath = CINDERMILL_BINARY_DIR "/bin/cindermill";
const std::string EmptyPath = CINDERMILL_BINARY_DIR "/bench/emptywindow";

struct TFree
{
    void operator()(void* memory) const { free(memory); }
};

template <class T>
std::unique_ptr<T, TFree> Own(T* reply)
{
    return std::unique_ptr<T, TFree>(reply);
}

double GetSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Sees the windows of all programs come.
class TScreenWatch
{
public:
    TScreenWatch() : Connection(xcb_connect(nullptr, nullptr))
    {
        if (!IsGood())
            return;
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(Connection, root, XCB_CW_EVENT_MASK, &mask);
        Own(xcb_get_input_focus_reply(Connection, xcb_get_input_focus(Connection), nullptr));
    }
    ~TScreenWatch() { xcb_disconnect(Connection); }
    TScreenWatch(const TScreenWatch&) = delete;
    TScreenWatch& operator=(const TScreenWatch&) = delete;

    bool IsGood() const { return xcb_connection_has_error(Connection) == 0; }
    bool WaitForWindow() const
    {
        pollfd poller = {xcb_get_file_descriptor(Connection), POLLIN, 0};
        while (IsGood()) {
            while (const auto event = Own(xcb_poll_for_event(Connection)))
                if (IsWindow(*event))
                    return true;
            if (poll(&poller, 1, Patience) <= 0)
                return false;
        }
        return false;
    }

private:
    bool IsWindow(const xcb_generic_event_t& event) const
    {
        if ((event.response_type & 0x7F) != XCB_MAP_NOTIFY)
            return false;
        const xcb_window_t window = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
        const auto size =
            Own(xcb_get_geometry_reply(Connection, xcb_get_geometry(Connection, window), nullptr));
        return size != nullptr && size->width >= LeastWidth;
    }

    xcb_connection_t* const Connection;
};

pid_t Start(const std::string& program)
{
    const pid_t child = fork();
    if (child != 0)
        return child;
    const std::string folder = GetBenchFolder().GetPath("home");
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
        setenv(name, folder.c_str(), 1);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    if (freopen("/dev/null", "w", stderr) != nullptr)
        execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
    _exit(1);
}

// The seconds of one start; below 0 if no window came.
double MeasureStart(const std::string& program, bool ofProcessor)
{
    const TScreenWatch watch;
    if (!watch.IsGood())
        return -1;
    const double begin = GetSeconds(CLOCK_MONOTONIC);
    const pid_t child = Start(program);
    const bool came = watch.WaitForWindow();
    kill(child, SIGSTOP);
    const double wall = GetSeconds(CLOCK_MONOTONIC) - begin;
    clockid_t clock = CLOCK_MONOTONIC;
    clock_getcpuclockid(child, &clock);
    const double processor = GetSeconds(clock);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    if (!came)
        return -1;
    return ofProcessor ? processor : wall;
}

void RunStart(benchmark::State& state, const std::string& program, bool ofProcessor)
{
    for (auto _ : state) {
        const double seconds = MeasureStart(program, ofProcessor);
        if (seconds < 0) {
            state.SkipWithError("no window");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

void Register(const char* name, const std::string& program, bool ofProcessor)
{
    constexpr int Starts = 10;
    benchmark::RegisterBenchmark(
        name, [program, ofProcessor](benchmark::State& state) { RunStart(state, program, ofProcessor); })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(Starts);
}

} // namespace

bool RegisterBenchmarks()
{
    GoToDisplay();
    // A display begins anew when its last window goes, and then misses those that come.
    static const TScreenWatch keeper;
    std::filesystem::create_directories(GetBenchFolder().GetPath("home"));
    Register("StartTool", ToolPath, true);
    Register("StartEmpty", EmptyPath, true);
    Register("WaitForTool", ToolPath, false);
    Register("WaitForEmpty", EmptyPath, false);
    AddRow({"start to the first window, processor / an empty window", "StartTool", "StartEmpty"});
    AddRow({"start to the first window, clock / an empty window", "WaitForTool", "WaitForEmpty"});
    AddRow({"start to the first window", "WaitForTool", "", StartLimit});
    return true;
}
