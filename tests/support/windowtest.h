#pragma once

#include "library/wimp/window.h"
#include "support/testsupport.h"

#include <functional>
#include <string>
#include <vector>

class QDialog;
class QMenu;
class QTimer;

// Tests with windows: the window system is started once for the program.
class TWindowTest : public testing::Test
{
protected:
    ~TWindowTest() override;
    static void SetUpTestSuite();
    // Does the work, once, when the condition holds, in whatever loop turns then: that of a dialog, say,
    // which the test itself is about to open. A condition that never comes to hold fails the test.
    void Once(const std::function<bool()>& condition, const std::function<void()>& work);
    // What is done to the modal dialog that comes up next, or to the next of that name.
    void Meet(const std::function<void(QDialog&)>& work);
    void Meet(const char* name, const std::function<void(QDialog&)>& work);
    // What is done to the menu that pops up next.
    void MeetMenu(const std::function<void(QMenu&)>& work);
    // The assertion of asking for the instance before the start.
    static std::string BeforeStart;
    // Where settings are kept, of this program alone.
    static const std::string& GetSettingsFolder();

private:
    // The conditions that have not come to hold.
    std::vector<QTimer*> Awaited;
};

// Leaves so much of the screen to the windows, as a desktop with a panel does, while it lives.
class TWorkArea
{
public:
    explicit TWorkArea(const QRect& area);
    ~TWorkArea();
    TWorkArea(const TWorkArea&) = delete;
    TWorkArea& operator=(const TWorkArea&) = delete;
};

// Turns the loop until the condition holds; false once the patience is at an end.
bool WaitFor(const std::function<bool()>& condition);
// Turns the loop until all has been heard that the window system has to say to what was asked of it, and to
// what was asked in answer to that, and all that was due at once has been done.
void Settle();
// The same with turns of another loop.
void Settle(const std::function<void()>& turn);

// A window that keeps what it hears.
class TRecordingWindow : public TWindow
{
public:
    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

    int Count(TMessageType type) const;
    // The last of the kind, or an empty one.
    TMessage Last(TMessageType type) const;
    void Forget() { Messages.clear(); }

    std::vector<TMessage> Messages;
    std::vector<TMessageType> Consumed;
    std::function<void(const TMessage&)> Answer;

    struct TCommand
    {
        TWimpControl* Control;
        intptr_t Argument;
        int Code;
    };
    std::vector<TCommand> Commands;
    std::function<void(const TCommand&)> AnswerCommand;
    // Code 0 is answered as a window does by itself.
    bool CloseByItself = false;
};

// A window of its own on the screen, shown.
void ShowTopWindow(TWindow& window, const TWindowClass& windowClass, int width = 300, int height = 200);
