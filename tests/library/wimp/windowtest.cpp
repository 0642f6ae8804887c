#include "windowfixture.h"

#include "library/wimp/gl/glcontext.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QTextDocumentFragment>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolTip>

TEST_F(TWindowClassTest, AClassIsRegisteredOnce)
{
    TWindowClass windowClass("test_once");
    windowClass.Register(117, 0x123456);
    EXPECT_TRUE(windowClass.IsRegistered());
    EXPECT_EQ(windowClass.GetIcon(), 117);
    EXPECT_EQ(windowClass.GetBackground(), 0x123456u);
    EXPECT_EQ(AssertionOf([&] { windowClass.Register(117, 0); }),
              "!Registered : Attempt to reregister class atom");
}

TEST_F(TWindowClassTest, AWindowIsFoundByItsHandle)
{
    EXPECT_EQ(TWindow::Find(Widget()), &Window);
    EXPECT_EQ(TWindow::Find(nullptr), nullptr);
}

TEST_F(TWindowClassTest, AutomationFindsAWindowByItsClassName)
{
    EXPECT_EQ(Widget()->objectName(), QString("test_window"));
}

TEST_F(TWindowClassTest, AWindowIsAddedOnce)
{
    EXPECT_EQ(AssertionOf([&] { TWindowMap::Add(&Window); }),
              "Windows.find(window->GetHandle()) == Windows.end() : Attempt to add window twice");
}

TEST_F(TWindowClassTest, OnlyARegisteredWindowIsRemoved)
{
    TWindow window;
    EXPECT_EQ(AssertionOf([&] { TWindowMap::Remove(&window); }),
              "0 : Attempt to remove non-registered window");
}

TEST_F(TWindowClassTest, AControlNeedsAHandle)
{
    TTestControl control;
    EXPECT_EQ(AssertionOf([&] { control.Bind(nullptr, &Window); }), "Hwnd != 0 : Bad control handle");
}

TEST_F(TWindowClassTest, AControlIsAddedOnce)
{
    QWidget* widget = new QWidget(Widget());
    TTestControl control;
    control.Bind(widget, &Window);
    EXPECT_EQ(AssertionOf([&] { Window.AddSubControl(&control); }),
              "SubControls.find(hwnd) == SubControls.end() : Attempt to add sub control twice");
}

TEST_F(TWindowClassTest, OnlyAKnownControlIsRemoved)
{
    TTestControl control;
    EXPECT_EQ(AssertionOf([&] { Window.RemoveSubControl(&control); }),
              "0 : Attempt to remove non-registered sub control");
}

TEST_F(TWindowClassTest, AControlFindsTheTopWindow)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    TTestControl control;
    control.Bind(new QWidget(child.GetHandle()), &child);
    EXPECT_EQ(control.GetTopWindow(), &Window);
    EXPECT_EQ(Window.GetTopWindow(), &Window);
    TTestControl lost;
    EXPECT_EQ(AssertionOf([&] { lost.GetTopWindow(); }), "ctrl != 0");
}

TEST_F(TWindowClassTest, OnlyWindowsWithAFrameAreOfTypeOne)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    EXPECT_EQ(Window.GetType(), 1);
    EXPECT_EQ(child.GetType(), 0);
}

TEST_F(TWindowClassTest, AChildWithoutAnOwnerIsNotCreated)
{
    TRecordingWindow child;
    TWindowParams params;
    params.Class = &ChildClass;
    EXPECT_FALSE(child.Create(params));
    EXPECT_EQ(child.GetHandle(), nullptr);
}

TEST_F(TWindowClassTest, ADocumentWindowWithoutAMainWindowIsNotCreated)
{
    TRecordingWindow child;
    EXPECT_FALSE(MakeChild(child, WK_MDICHILD));
}

TEST_F(TWindowClassTest, ATopWindowStandsWhereItWasPut)
{
    int width = 0;
    int height = 0;
    Window.GetSize(width, height);
    EXPECT_EQ(width, 300);
    EXPECT_EQ(height, 200);
    EXPECT_EQ(Widget()->frameGeometry().topLeft(), QPoint(40, 40));
    EXPECT_EQ(Widget()->windowTitle(), QString("Test"));
    EXPECT_TRUE(Window.IsShown());
    Window.Hide();
    EXPECT_FALSE(Window.IsShown());
}

TEST_F(TWindowClassTest, ASizeIsToldWithTheMessage)
{
    Window.Forget();
    Window.MoveTo(60, 70, 320, 240);
    ASSERT_TRUE(WaitFor([&] { return Window.Count(MT_SIZE) > 0; }));
    EXPECT_EQ(Window.Last(MT_SIZE).X, 320);
    EXPECT_EQ(Window.Last(MT_SIZE).Y, 240);
}

TEST_F(TWindowClassTest, AnyNumberOfRedrawsGiveOnePaint)
{
    Settle();
    Window.Forget();
    for (int i = 0; i < 10; ++i)
        Window.Redraw();
    Settle();
    EXPECT_EQ(Window.Count(MT_PAINT), 1);
}

TEST_F(TWindowClassTest, TheFocusIsToldWhenItComesAndGoes)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    Settle();
    child.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return child.HasFocus(); }));
    EXPECT_EQ(child.Count(MT_FOCUSGAINED), 1);
    Window.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Window.HasFocus(); }));
    EXPECT_EQ(child.Count(MT_FOCUSLOST), 1);
}

TEST_F(TWindowClassTest, ATimerComesOnce)
{
    Window.StartTimer(7, 10);
    ASSERT_TRUE(WaitFor([&] { return Window.Count(MT_TIMER) > 0; }));
    EXPECT_EQ(Window.Last(MT_TIMER).Timer, 7);
    Settle();
    EXPECT_EQ(Window.Count(MT_TIMER), 1);
}

TEST_F(TWindowClassTest, AStoppedTimerDoesNotComeAndAnotherDoes)
{
    Window.StartTimer(1, 5);
    Window.StartTimer(2, 5);
    Window.StopTimer(1);
    ASSERT_TRUE(WaitFor([&] { return Window.Count(MT_TIMER) > 0; }));
    Settle();
    EXPECT_EQ(Window.Count(MT_TIMER), 1);
    EXPECT_EQ(Window.Last(MT_TIMER).Timer, 2);
}

TEST_F(TWindowClassTest, AConsumedCloseLeavesTheWindowOpen)
{
    Window.Consumed.push_back(MT_CLOSE);
    Widget()->close();
    EXPECT_EQ(Window.Count(MT_CLOSE), 1);
    EXPECT_TRUE(Window.IsShown());
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWindowClassTest, ACloseThatIsPassedOnIsReportedAsCode0)
{
    Widget()->close();
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Code, CC_CLOSE);
    EXPECT_TRUE(Window.IsShown());
}

TEST_F(TWindowClassTest, AWindowThatDoesNotCareIsHiddenByItsClose)
{
    Window.CloseByItself = true;
    Widget()->close();
    EXPECT_FALSE(Window.IsShown());
    EXPECT_NE(Window.GetHandle(), nullptr);
}

namespace {

// Destroys a window, with one inside, in the middle of a message.
class TDoomed
{
public:
    TDoomed(const TWindowClass& windowClass, TMessageType type)
    {
        ShowTopWindow(Window, windowClass);
        TWindowParams params;
        params.Class = &windowClass;
        params.Owner = &Window;
        EXPECT_TRUE(Inner.Create(params));
        Window.TakeFocus();
        Settle();
        Widget = Window.GetHandle();
        Window.Answer = [this, type](const TMessage& message) {
            if (message.Type == type)
                Window.Destroy();
        };
    }

    TRecordingWindow Window;
    TRecordingWindow Inner;
    QPointer<QWidget> Widget;
};

void SendMouse(QWidget* widget, QEvent::Type type, Qt::MouseButton button)
{
    QMouseEvent event(type, QPointF(9, 9), widget->mapToGlobal(QPointF(9, 9)), button, button,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void SendWheel(QWidget* widget, int delta)
{
    QWheelEvent event(QPointF(20, 30), widget->mapToGlobal(QPointF(20, 30)), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

TEST_F(TWindowClassTest, AWindowMayGoInsideAnyOfItsMessages)
{
    const std::pair<TMessageType, std::function<void(TDoomed&)>> Cases[] = {
        {MT_PAINT, [](TDoomed& doomed) { doomed.Window.Redraw(); }},
        {MT_SIZE, [](TDoomed& doomed) { doomed.Window.MoveTo(10, 10, 123, 45); }},
        {MT_CLOSE, [](TDoomed& doomed) { doomed.Widget->close(); }},
        {MT_LEFTDOWN,
         [](TDoomed& doomed) { SendMouse(doomed.Widget, QEvent::MouseButtonPress, Qt::LeftButton); }},
        {MT_RIGHTUP,
         [](TDoomed& doomed) { SendMouse(doomed.Widget, QEvent::MouseButtonRelease, Qt::RightButton); }},
        {MT_MOUSEMOVE, [](TDoomed& doomed) { SendMouse(doomed.Widget, QEvent::MouseMove, Qt::NoButton); }},
        {MT_WHEEL, [](TDoomed& doomed) { SendWheel(doomed.Widget, 120); }},
        {MT_KEYDOWN, [](TDoomed& doomed) { QTest::keyPress(doomed.Widget, Qt::Key_A); }},
        {MT_CHAR, [](TDoomed& doomed) { QTest::keyPress(doomed.Widget, Qt::Key_A); }},
        {MT_KEYUP, [](TDoomed& doomed) { QTest::keyRelease(doomed.Widget, Qt::Key_A); }},
        {MT_TIMER, [](TDoomed& doomed) { doomed.Window.StartTimer(1, 0); }},
        {MT_FOCUSLOST, [](TDoomed& doomed) { doomed.Widget->clearFocus(); }},
    };
    for (const auto& [type, cause] : Cases) {
        TDoomed doomed(Class, type);
        cause(doomed);
        EXPECT_TRUE(WaitFor([&] { return doomed.Widget == nullptr; })) << type;
        EXPECT_EQ(doomed.Window.GetHandle(), nullptr) << type;
        EXPECT_EQ(doomed.Inner.GetHandle(), nullptr) << type;
    }
}

TEST_F(TWindowClassTest, EventsThatWaitForADestroyedWindowAreDropped)
{
    TRecordingWindow window;
    ShowTopWindow(window, Class);
    window.Redraw();
    window.StartTimer(1, 0);
    QApplication::postEvent(window.GetHandle(),
                            new QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a"));
    window.Forget();
    window.Destroy();
    Settle();
    EXPECT_TRUE(window.Messages.empty());
}

TEST_F(TWindowClassTest, AnOwnersEndTakesWindowsAndControlsAlong)
{
    TRecordingWindow owner;
    ShowTopWindow(owner, Class);
    TRecordingWindow child;
    TWindowParams params;
    params.Class = &ChildClass;
    params.Owner = &owner;
    ASSERT_TRUE(child.Create(params));
    TTestControl control;
    control.Bind(new QWidget(child.GetHandle()), &child);
    owner.Destroy();
    EXPECT_EQ(child.GetHandle(), nullptr);
    EXPECT_EQ(child.GetOwner(), nullptr);
    EXPECT_EQ(control.GetHandle(), nullptr);
    EXPECT_EQ(control.GetOwner(), nullptr);
}

TEST_F(TWindowClassTest, ADestroyedWindowCanBeCreatedAgain)
{
    Window.Destroy();
    ShowTopWindow(Window, Class);
    EXPECT_TRUE(Window.IsShown());
}

TEST_F(TWindowClassTest, OperationsOnAWindowThatIsNotThereDoNothing)
{
    TWindow window;
    window.Show();
    window.Hide();
    window.Redraw();
    window.TakeFocus();
    window.SetCapture();
    window.ReleaseCapture();
    window.BringToTop();
    window.SetTitle("x");
    window.SetCursor(CU_HAND);
    window.MoveTo(1, 2, 3, 4);
    window.StartTimer(1, 1);
    window.StopTimer(1);
    window.SetScrollRange(10, 5, 1);
    window.SetScrollPosition(3);
    int width = 1;
    int height = 1;
    window.GetSize(width, height);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(height, 0);
    EXPECT_EQ(window.GetScrollPosition(), 0);
    EXPECT_FALSE(window.MakeCurrent());
    EXPECT_EQ(window.GetFrameBuffer(), 0u);
    EXPECT_FALSE(window.HasFocus());
    EXPECT_FALSE(window.IsShown());
}

TEST_F(TWindowClassTest, PlacesGoToTheScreenAndBack)
{
    int x = 10;
    int y = 20;
    Window.ClientToScreen(x, y);
    EXPECT_EQ(x, 50);
    EXPECT_EQ(y, 60);
    Window.ScreenToClient(x, y);
    EXPECT_EQ(x, 10);
    EXPECT_EQ(y, 20);
}

TEST_F(TWindowClassTest, TheInnermostWindowIsFoundUnderAPoint)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    child.MoveTo(100, 50, 100, 100);
    Settle();
    EXPECT_EQ(TWindow::FromPoint(40 + 110, 40 + 60), &child);
    EXPECT_EQ(TWindow::FromPoint(40 + 10, 40 + 10), &Window);
    EXPECT_EQ(TWindow::FromPoint(1500, 1100), nullptr);
}

TEST_F(TWindowClassTest, ALongTipIsReadInSeveralLinesAsItWasWritten)
{
    for (const char* part : {"It's \"here\" & there. ", "It's <b>\"here\"</b> & there. "}) {
        std::string text;
        for (int i = 0; i < 40; ++i)
            text += part;
        text += "End";
        Window.ShowTip(10, 10, text.c_str());
        ASSERT_TRUE(QToolTip::isVisible());
        const QLabel* tip = nullptr;
        for (const QWidget* widget : QApplication::topLevelWidgets())
            if (widget->inherits("QTipLabel") && widget->isVisible())
                tip = qobject_cast<const QLabel*>(widget);
        ASSERT_NE(tip, nullptr);
        const QString shown = Qt::mightBeRichText(tip->text())
                                  ? QTextDocumentFragment::fromHtml(tip->text()).toPlainText()
                                  : tip->text();
        EXPECT_EQ(shown.toStdString(), text);
        EXPECT_LT(tip->width(), 1000);
        EXPECT_GT(tip->height(), 2 * tip->fontMetrics().height());
    }
    Window.ShowTip(0, 0, nullptr);
    EXPECT_TRUE(WaitFor([] { return !QToolTip::isVisible(); }));
}
