#pragma once

#include "support/testsupport.h"
#include "window/display.h"

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

// What a command printed, and how it ended.
struct TCommandResult
{
    int Status = -1;
    std::string Output;
};

// Who has the mouse while Alt is held: most desktops keep it, to move windows.
enum TAltMouse
{
    AM_MANAGERS,
    AM_PROGRAMS
};

// A display of its own, with a window manager, and a person's hands on its mouse and keyboard.
class TScreen
{
public:
    // Wide enough for the main window and an effect's display side by side.
    explicit TScreen(int width = 3000, int height = 1200, int depth = 24, TAltMouse altMouse = AM_MANAGERS);
    ~TScreen();
    TScreen(const TScreen&) = delete;
    TScreen& operator=(const TScreen&) = delete;

    // The display goes, with all that is on it. Nothing else may be asked of it afterwards.
    void Kill();
    bool IsRunning() const { return Connection.IsOpen(); }
    const std::string& GetDisplay() const { return Display; }

    // What a hand does has been dealt with, by the window manager and by the program, once these return; the
    // hand then looks for what comes of it.
    void MoveTo(int x, int y);
    void Press(int button = 1);
    void Release(int button = 1);
    void Click(int x, int y, int button = 1);
    void DoubleClick(int x, int y);
    // Holds the button on the way, which is taken in steps as a hand does.
    void Drag(int fromX, int fromY, int toX, int toY, int button = 1);
    void Wheel(int x, int y, int notches);
    // As "ctrl+z"; goes to the window with the focus.
    void Key(const std::string& key);
    // One after the other.
    void Keys(const std::vector<std::string>& keys);
    void HoldKey(const std::string& key);
    void LetKey(const std::string& key);
    void Type(const std::string& text);
    // The same for what has come about otherwise.
    void Settle();
    // Whether a program runs that can be asked for what it has dealt with.
    bool HasProgram() const { return Connection.HasProgram(); }

    // The visible window whose title matches the expression; "" if there is none.
    std::string FindWindow(const std::string& title) const;
    bool WaitForWindow(const std::string& title) const;
    bool WaitUntilGone(const std::string& title) const;
    bool WaitUntilActive(const std::string& title) const;
    bool IsActive(const std::string& title) const;
    void Activate(const std::string& window);
    TRectangle GetPosition(const std::string& window) const;
    std::string GetTitle(const std::string& window) const;
    void MoveWindow(const std::string& window, int x, int y);
    void CloseWindow(const std::string& window);

    TPicture Grab(const TRectangle& part) const { return Connection.Grab(part); }
    // What the keys that copy have put into the clipboard.
    std::string ReadClipboard() { return Connection.ReadClipboard(); }
    // Waits until the program's message loop has turned so many times.
    bool AwaitTurns(int turns) { return Connection.AwaitProgram(turns); }
    // Waits until nothing moves there any more while the program goes on.
    bool WaitUntilStill(const TRectangle& part);
    void Save(const TRectangle& part, const std::string& path) const;

private:
    friend class THandFlow;
    TCommandResult Do(const std::vector<std::string>& arguments) const;
    void Act(const std::vector<std::string>& words);
    bool StartServer(int width, int height, int depth);
    void StartManager(TAltMouse altMouse);
    void KeepClicksApart(int button);

    std::string Display;
    TDisplay Connection;
    int PointerX = 0;
    int PointerY = 0;
    // The press before.
    int LastX = 0;
    int LastY = 0;
    int LastButton = 0;
    std::chrono::steady_clock::time_point LastPress;
    // Of the flows that run.
    int NumFlows = 0;
    std::vector<std::string> Gathered;
    pid_t Server = -1;
    pid_t Manager = -1;
};

// As long as one lives, what a hand does is only gathered; at its end all is done in one go, as by a hand
// that need not look in between. The outermost one counts.
class THandFlow
{
public:
    explicit THandFlow(TScreen& screen);
    ~THandFlow();
    THandFlow(const THandFlow&) = delete;
    THandFlow& operator=(const THandFlow&) = delete;

private:
    TScreen& Screen;
};

// True as soon as the condition holds; false once the patience is at an end.
bool WaitUntil(const std::function<bool()>& condition);
// Runs a program to its end. The environment is this process's with the changes, each as "NAME=value"; "NAME"
// takes one away.
TCommandResult RunCommand(const std::vector<std::string>& arguments, const std::vector<std::string>& changes);
// Starts one that dies with this process. What it prints goes to the file.
pid_t StartCommand(const std::vector<std::string>& arguments, const std::vector<std::string>& changes,
                   const std::string& outputPath, const std::string& folder = "", long fileSizeLimit = 0);
