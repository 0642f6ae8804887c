#include "support/windowtest.h"

#include "library/wimp/wimp.h"

#include <algorithm>
#include <chrono>

std::string TWindowTest::BeforeStart;

void TWindowTest::SetUpTestSuite()
{
    static int count = 1;
    static char program[] = "test";
    static char* arguments[] = {program, nullptr};
    if (!TWimp::Get().IsInited())
        BeforeStart = AssertionOf([] { TWimp::Get().GetInstance(); });
    ASSERT_TRUE(TWimp::Get().Init(count, arguments));
}

bool WaitFor(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        TWimp::Get().Step();
    }
    return true;
}

void Settle()
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(30);
    while (std::chrono::steady_clock::now() < end)
        TWimp::Get().Step();
}

bool TRecordingWindow::OnMessage(const TMessage& message)
{
    Messages.push_back(message);
    const bool consumed = std::find(Consumed.begin(), Consumed.end(), message.Type) != Consumed.end();
    if (Answer)
        Answer(message);
    return consumed;
}

void TRecordingWindow::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    const TCommand command = {control, argument, code};
    Commands.push_back(command);
    if (CloseByItself)
        TWindow::OnCommand(control, argument, code);
    if (AnswerCommand)
        AnswerCommand(command);
}

int TRecordingWindow::Count(TMessageType type) const
{
    return static_cast<int>(std::count_if(Messages.begin(), Messages.end(),
                                          [type](const TMessage& message) { return message.Type == type; }));
}

TMessage TRecordingWindow::Last(TMessageType type) const
{
    for (auto it = Messages.rbegin(); it != Messages.rend(); ++it)
        if (it->Type == type)
            return *it;
    return TMessage();
}

void ShowTopWindow(TWindow& window, const TWindowClass& windowClass, int width, int height)
{
    TWindowParams params;
    params.Class = &windowClass;
    params.Title = "Test";
    params.Kind = WK_TOP;
    params.X = 40;
    params.Y = 40;
    params.Width = width;
    params.Height = height;
    ASSERT_TRUE(window.Create(params));
    window.Show();
    window.BringToTop();
    Settle();
}
