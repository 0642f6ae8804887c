#include "window/programfixture.h"

#include "support/rootmessages.h"

namespace {
// A session bus of the test's own.
class TSessionBus
{
public:
    explicit TSessionBus(const std::string& folder) : Output(folder + "/bus")
    {
        Process = StartCommand({"dbus-daemon", "--session", "--nofork", "--print-address=1"}, {}, Output,
                               folder, 0);
        WaitUntil([this] { return !GetAddress().empty(); });
    }
    ~TSessionBus()
    {
        kill(Process, SIGKILL);
        waitpid(Process, nullptr, 0);
    }
    TSessionBus(const TSessionBus&) = delete;
    TSessionBus& operator=(const TSessionBus&) = delete;

    // From now on it takes connections, and answers nothing.
    void Stop() const { kill(Process, SIGSTOP); }
    std::string GetVariable() const { return "DBUS_SESSION_BUS_ADDRESS=" + GetAddress(); }
    // As the desktop calls the program that has the name.
    bool Call(const std::string& method, const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> command = {"gdbus",
                                            "call",
                                            "--session",
                                            "--timeout",
                                            "20",
                                            "--dest",
                                            "org.cindermill.Cindermill",
                                            "--object-path",
                                            "/org/cindermill/Cindermill",
                                            "--method",
                                            "org.freedesktop.Application." + method};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return RunCommand(command, {GetVariable()}).Status == 0;
    }
    bool HasProgram() const
    {
        return RunCommand({"gdbus", "wait", "--session", "--timeout", "20", "org.cindermill.Cindermill"},
                          {GetVariable()})
                   .Status == 0;
    }

private:
    std::string GetAddress() const
    {
        const std::string text = FileExists(Output.c_str()) ? ReadBytes(Output) : std::string();
        return text.substr(0, text.find('\n') == std::string::npos ? 0 : text.find('\n'));
    }

    std::string Output;
    pid_t Process;
};

std::string Url(const std::string& path)
{
    return "['file://" + path + "']";
}
} // namespace

TEST_F(Program, WhatTheDesktopOpensComesUpInTheRunningProgram)
{
    TTempFolder folder;
    TSessionBus bus(folder.GetFolder());
    TProgramOptions options;
    options.Environment = {bus.GetVariable()};
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    ASSERT_TRUE(bus.HasProgram());
    // The desktop hears that it can stop to wait, and as of when the window wants the front.
    TRootMessages desktop(Screen.GetDisplay().c_str());
    ASSERT_TRUE(bus.Call("Open", {Url(SourcePath("samples/rain.effect")),
                                  "{'desktop-startup-id': <'files-1_TIME4000000000'>, 'other': <3>}"}));
    EXPECT_TRUE(desktop.AwaitText("remove: ID=files-1_TIME4000000000"));
    EXPECT_TRUE(desktop.AwaitFront(4000000000u));
    EXPECT_TRUE(WaitForDocument("rain.effect"));
    const std::string spaced = folder.Path("a fire.effect");
    std::filesystem::copy_file(SourcePath("samples/campfire.effect"), spaced);
    ASSERT_TRUE(bus.Call("Open", {"['file://" + folder.GetFolder() + "/a%20fire.effect']", "{}"}));
    EXPECT_TRUE(WaitForDocument("a fire.effect"));
    EXPECT_TRUE(bus.Call("Activate", {"{}"}));
    // What the interface has not is refused, and changes nothing.
    EXPECT_FALSE(bus.Call("ActivateAction", {"quit", "[]", "{}"}));
    EXPECT_TRUE(program.IsRunning());
    Exit(program);
}

TEST_F(Program, WhatTheDesktopOpensWaitsForTheAnswerOfADialog)
{
    TTempFolder folder;
    TSessionBus bus(folder.GetFolder());
    TProgramOptions options;
    options.Environment = {bus.GetVariable()};
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    ASSERT_TRUE(bus.HasProgram());
    ASSERT_TRUE(bus.Call("Open", {Url("/no/such/file.effect"), "{}"}));
    ASSERT_TRUE(Screen.WaitForWindow(MessageTitle));
    ASSERT_TRUE(bus.Call("Open", {Url(SourcePath("samples/rain.effect")), "{}"}));
    Screen.Settle();
    EXPECT_EQ(Screen.FindWindow("rain.effect"), "");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_TRUE(WaitForDocument("rain.effect"));
    Exit(program);
}

TEST_F(Program, ASecondProgramRunsBesideTheOneThatHasTheName)
{
    TTempFolder folder;
    TSessionBus bus(folder.GetFolder());
    TProgramOptions options;
    options.Environment = {bus.GetVariable()};
    TProgram first(Screen, options);
    ASSERT_TRUE(first.IsUp()) << first.GetOutput();
    ASSERT_TRUE(bus.HasProgram());
    TProgram second(Screen, options);
    EXPECT_TRUE(WaitUntil([&] { return second.GetOutput().find("Cindermill v0.0") != std::string::npos; }));
    EXPECT_TRUE(first.IsRunning());
    EXPECT_TRUE(second.IsRunning());
}

TEST_F(Program, ABusThatAnswersNothingHoldsNobodyUp)
{
    TTempFolder folder;
    TSessionBus bus(folder.GetFolder());
    TProgramOptions options;
    options.Environment = {bus.GetVariable()};
    bus.Stop();
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    EXPECT_EQ(
        program.GetOutput().find("The session's bus does not answer; the program goes on without it.\n"), 0u)
        << program.GetOutput();
    Open(program, SourcePath("samples/rain.effect"));
    Exit(program);
}
