#pragma once

#include "library/wimp/window.h"
#include "support/testsupport.h"

#include <functional>
#include <string>
#include <vector>

// Tests with windows: the window system is started once for the program.
class TWindowTest : public testing::Test
{
protected:
    static void SetUpTestSuite();
    // The assertion of asking for the instance before the start.
    static std::string BeforeStart;
};

// Turns the loop until the condition holds; false after two seconds.
bool WaitFor(const std::function<bool()>& condition);
// Turns the loop until nothing has happened for some turns.
void Settle();

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
