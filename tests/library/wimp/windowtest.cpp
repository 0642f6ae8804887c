#include "library/wimp/window.h"

#include "library/system/message.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/wimp.h"
#include "library/wimp/windowpeer.h"
#include "support/windowtest.h"

#include <QtGui/QInputMethodEvent>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>

#include <memory>

namespace {

class TTestControl : public TWimpControl
{
public:
    using TWimpControl::Bind;
    using TWimpControl::Unbind;
};

class TRecordedDrag : public TMouseDrag
{
public:
    explicit TRecordedDrag(TWindow& window) { TWimp::Get().SetMouseDrag(this, window); }
    void OnCaptureLost() override { ++NumLosses; }
    void OnMouseMove(double x, double y, int buttons) override
    {
        Calls.push_back({x, y, static_cast<double>(buttons)});
        if (Action)
            Action();
    }
    std::vector<std::array<double, 3>> Calls;
    int NumLosses = 0;
    std::function<void()> Action;
};

class TWindowClassTest : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }
    QWidget* Widget() { return Window.GetHandle(); }
    bool MakeChild(TWindow& child, TWindowKind kind = WK_CHILD)
    {
        TWindowParams params;
        params.Class = &ChildClass;
        params.Owner = &Window;
        params.Kind = kind;
        return child.Create(params);
    }
    // As the window system tells it: the text goes with the key.
    void Send(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, const QString& text, quint32 place)
    {
        QKeyEvent event(type, key, modifiers, place, 0, 0, text);
        QApplication::sendEvent(Widget(), &event);
    }
    void Click(int key, Qt::KeyboardModifiers modifiers, const QString& text, quint32 place = 0)
    {
        Send(QEvent::KeyPress, key, modifiers, text, place);
        Send(QEvent::KeyRelease, key, modifiers, text, place);
    }

    TWindowClass Class{"test_window"};
    TWindowClass ChildClass{"test_child"};
    TWindowClass OtherClass{"test_other"};
    TRecordingWindow Window;
};

} // namespace

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

TEST_F(TWindowClassTest, MouseMessagesUpdatePlaceAndButtons)
{
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(12, 34));
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 1);
    EXPECT_EQ(Window.Last(MT_LEFTDOWN).Buttons, MB_LEFT);
    EXPECT_EQ(Window.GetMouseX(), 12);
    EXPECT_EQ(Window.GetMouseY(), 34);
    EXPECT_EQ(Window.GetButtons(), MB_LEFT);
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(13, 35));
    EXPECT_EQ(Window.Count(MT_LEFTUP), 1);
    EXPECT_EQ(Window.GetButtons(), 0);
    EXPECT_EQ(Window.GetMouseX(), 13);
}

TEST_F(TWindowClassTest, EachButtonHasItsMessagesAndItsBit)
{
    QTest::mouseClick(Widget(), Qt::MiddleButton, Qt::ShiftModifier, QPoint(5, 5));
    QTest::mousePress(Widget(), Qt::RightButton, Qt::ControlModifier, QPoint(5, 5));
    EXPECT_EQ(Window.Count(MT_MIDDLEDOWN), 1);
    EXPECT_EQ(Window.Last(MT_MIDDLEDOWN).Buttons, MB_MIDDLE);
    EXPECT_EQ(Window.Last(MT_MIDDLEDOWN).KeyFlags, KF_SHIFT);
    EXPECT_EQ(Window.Count(MT_MIDDLEUP), 1);
    EXPECT_EQ(Window.Last(MT_RIGHTDOWN).Buttons, MB_RIGHT);
    EXPECT_EQ(Window.Last(MT_RIGHTDOWN).KeyFlags, KF_CTRL);
    QTest::mouseRelease(Widget(), Qt::RightButton, {}, QPoint(5, 5));
    EXPECT_EQ(Window.Count(MT_RIGHTUP), 1);
}

TEST_F(TWindowClassTest, ADoubleClickCountsAsButtonDown)
{
    QTest::mouseClick(Widget(), Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseDClick(Widget(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 2);
    EXPECT_EQ(Window.Last(MT_LEFTDOWN).X, 5);
}

TEST_F(TWindowClassTest, ADragGetsPressMoveAndReleaseFirst)
{
    TRecordedDrag drag(Window);
    std::vector<size_t> heardBefore;
    Window.Forget();
    drag.Action = [&] { heardBefore.push_back(Window.Messages.size()); };
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(10, 20));
    QTest::mouseMove(Widget(), QPoint(15, 25));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(16, 26));
    ASSERT_GE(drag.Calls.size(), 3u);
    EXPECT_EQ(drag.Calls.front(), (std::array<double, 3>{10, 20, MB_LEFT}));
    EXPECT_EQ(drag.Calls.back(), (std::array<double, 3>{16, 26, 0}));
    EXPECT_EQ(heardBefore.front(), 0u);
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 1);
    EXPECT_EQ(Window.Count(MT_LEFTUP), 1);
}

TEST_F(TWindowClassTest, ADragHearsPixelsOfItsWindow)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    child.MoveTo(100, 50, 100, 100);
    Settle();
    TRecordedDrag drag(Window);
    TMessage message;
    message.Type = MT_MOUSEMOVE;
    QMouseEvent move(QEvent::MouseMove, QPointF(7, 8), child.GetHandle()->mapToGlobal(QPointF(7, 8)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(child.GetHandle(), &move);
    ASSERT_EQ(drag.Calls.size(), 1u);
    EXPECT_EQ(drag.Calls[0], (std::array<double, 3>{107, 58, MB_LEFT}));
}

TEST_F(TWindowClassTest, ADragMayCloseTheWindow)
{
    TRecordedDrag drag(Window);
    drag.Action = [&] { Window.Destroy(); };
    Window.Forget();
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(10, 20));
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 0);
    EXPECT_EQ(Window.GetHandle(), nullptr);
}

TEST_F(TWindowClassTest, ADragHasTheMouseUntilItIsCleared)
{
    TRecordedDrag drag(Window);
    EXPECT_EQ(drag.GetDragWindow(), &Window);
    EXPECT_EQ(QWidget::mouseGrabber(), Widget());
    TWimp::Get().ClearMouseDrag();
    EXPECT_EQ(drag.GetDragWindow(), nullptr);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(drag.NumLosses, 0);
}

TEST_F(TWindowClassTest, ADragIsLostWithItsWindow)
{
    TRecordedDrag drag(Window);
    Window.Destroy();
    EXPECT_EQ(drag.NumLosses, 1);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
}

TEST_F(TWindowClassTest, ADragThatIsDeletedGivesTheMouseBack)
{
    {
        TRecordedDrag drag(Window);
    }
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
}

TEST_F(TWindowClassTest, WhileCapturedTheMouseStaysWithTheWindow)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    child.MoveTo(100, 50, 100, 100);
    Settle();
    Window.SetCapture();
    EXPECT_EQ(QWidget::mouseGrabber(), Widget());
    Window.SetCursor(CU_DROP);
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    Window.ReleaseCapture();
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(TWindowClassTest, ADestroyedWindowGivesTheMouseBack)
{
    Window.SetCapture();
    Window.Destroy();
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
}

TEST_F(TWindowClassTest, ANotchOfTheWheelIs120)
{
    QWheelEvent wheel(QPointF(20, 30), Widget()->mapToGlobal(QPointF(20, 30)), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Widget(), &wheel);
    ASSERT_EQ(Window.Count(MT_WHEEL), 1);
    EXPECT_EQ(Window.Last(MT_WHEEL).Delta, 120);
    EXPECT_EQ(Window.Last(MT_WHEEL).X, 20);
    EXPECT_EQ(Window.Last(MT_WHEEL).Y, 30);
}

TEST_F(TWindowClassTest, AWheelThatNoOneTakesIsLeftToTheOwner)
{
    const auto turn = [&] {
        QWheelEvent wheel(QPointF(20, 30), Widget()->mapToGlobal(QPointF(20, 30)), QPoint(), QPoint(0, -240),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(Widget(), &wheel);
        return wheel.isAccepted();
    };
    EXPECT_FALSE(turn());
    Window.Consumed.push_back(MT_WHEEL);
    EXPECT_TRUE(turn());
    EXPECT_EQ(Window.Last(MT_WHEEL).Delta, -240);
}

TEST_F(TWindowClassTest, KeysHaveTheirCodes)
{
    static constexpr std::pair<Qt::Key, int> Keys[] = {
        {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},     {Qt::Key_Return, 13},   {Qt::Key_Enter, 13},
        {Qt::Key_Escape, 27},   {Qt::Key_PageUp, 33}, {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},
        {Qt::Key_Home, 36},     {Qt::Key_Left, 37},   {Qt::Key_Up, 38},       {Qt::Key_Right, 39},
        {Qt::Key_Down, 40},     {Qt::Key_Delete, 46}, {Qt::Key_A, 'A'},       {Qt::Key_Z, 'Z'},
        {Qt::Key_0, '0'},       {Qt::Key_9, '9'},     {Qt::Key_Shift, 16},    {Qt::Key_Control, 17},
        {Qt::Key_Alt, 18}};
    for (const auto& [key, code] : Keys) {
        Window.Forget();
        QTest::keyClick(Widget(), key);
        EXPECT_EQ(Window.Count(MT_KEYDOWN), 1) << code;
        EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, code);
        EXPECT_EQ(Window.Count(MT_KEYUP), 1) << code;
        EXPECT_EQ(Window.Last(MT_KEYUP).Key, code);
    }
}

TEST_F(TWindowClassTest, AKeyOfAnotherScriptIsTheLatinLetterOfItsPlace)
{
    struct TPlacedKey
    {
        int Character;
        quint32 ScanCode;
        int Key;
    };
    // As the X server counts.
    const TPlacedKey keys[] = {{0x419, 24, 'Q'}, {0x417, 33, 'P'}, {0x42B, 39, 'S'},
                               {0x42F, 52, 'Z'}, {0x42C, 58, 'M'}, {0x3A3, 39, 'S'}};
    for (const TPlacedKey& key : keys) {
        const QString text(QChar(key.Character));
        QKeyEvent press(QEvent::KeyPress, key.Character, Qt::NoModifier, key.ScanCode, 0, 0, text);
        QApplication::sendEvent(Widget(), &press);
        EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, key.Key) << key.ScanCode;
        EXPECT_EQ(Window.Last(MT_CHAR).Character, static_cast<uint32_t>(key.Character));
    }
    // An accented letter beside the Latin ones is no key.
    Window.Forget();
    QKeyEvent umlaut(QEvent::KeyPress, Qt::Key_Odiaeresis, Qt::NoModifier, 47, 0, 0, QString(QChar(0xF6)));
    QApplication::sendEvent(Widget(), &umlaut);
    EXPECT_EQ(Window.Count(MT_KEYDOWN), 0);
    EXPECT_EQ(Window.Last(MT_CHAR).Character, 0xF6u);
}

TEST_F(TWindowClassTest, AKeyWithATextGivesACharacterAfterIt)
{
    Window.Forget();
    QTest::keyClick(Widget(), Qt::Key_A);
    ASSERT_EQ(Window.Messages.size(), 3u);
    EXPECT_EQ(Window.Messages[0].Type, MT_KEYDOWN);
    EXPECT_EQ(Window.Messages[1].Type, MT_CHAR);
    EXPECT_EQ(Window.Messages[1].Character, static_cast<uint32_t>('a'));
    EXPECT_EQ(Window.Messages[2].Type, MT_KEYUP);
}

TEST_F(TWindowClassTest, PrintableKeysAreNeverNamedKeys)
{
    const Qt::KeyboardModifiers with[] = {Qt::NoModifier,
                                          Qt::ShiftModifier,
                                          Qt::ControlModifier,
                                          Qt::ControlModifier | Qt::ShiftModifier,
                                          Qt::KeypadModifier,
                                          Qt::KeypadModifier | Qt::ControlModifier,
                                          Qt::KeypadModifier | Qt::ShiftModifier};
    for (int key = Qt::Key_Space; key <= Qt::Key_ydiaeresis; ++key) {
        if (!QChar::isPrint(static_cast<char32_t>(key)))
            continue;
        for (const Qt::KeyboardModifiers modifiers : with) {
            Window.Forget();
            Click(key, modifiers, QString(QChar(key)));
            const bool isCode = (key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z');
            EXPECT_EQ(Window.Count(MT_KEYDOWN), isCode ? 1 : 0) << key << " " << int(modifiers);
            EXPECT_EQ(Window.Count(MT_KEYUP), isCode ? 1 : 0) << key << " " << int(modifiers);
            for (const TMessage& message : Window.Messages)
                EXPECT_EQ(message.Key, message.Type == MT_CHAR ? 0 : key) << int(modifiers);
            const bool isText = !modifiers.testFlag(Qt::ControlModifier);
            ASSERT_EQ(Window.Count(MT_CHAR), isText ? 1 : 0) << key << " " << int(modifiers);
            EXPECT_EQ(Window.Last(MT_CHAR).Character, isText ? static_cast<uint32_t>(key) : 0u);
        }
    }
}

TEST_F(TWindowClassTest, TheKeypadTypesDigitsWithItsLockAndMovesWithoutIt)
{
    struct TKeypadKey
    {
        int Key;
        const char* Text;
        int Code;
        uint32_t Character;
    };
    const TKeypadKey keys[] = {{Qt::Key_4, "4", '4', '4'},
                               {Qt::Key_Period, ".", 0, '.'},
                               {Qt::Key_Comma, ",", 0, ','},
                               {Qt::Key_Minus, "-", 0, '-'},
                               {Qt::Key_Left, "", KEY_LEFT, 0},
                               {Qt::Key_Home, "", KEY_HOME, 0},
                               {Qt::Key_PageDown, "", KEY_PAGEDOWN, 0},
                               {Qt::Key_Delete, "\x7f", KEY_DELETE, 0},
                               {Qt::Key_Enter, "\r", KEY_RETURN, 0},
                               {Qt::Key_Clear, "", 0, 0}};
    for (const TKeypadKey& key : keys) {
        Window.Forget();
        Click(key.Key, Qt::KeypadModifier, QString::fromLatin1(key.Text));
        EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, key.Code) << key.Key;
        EXPECT_EQ(Window.Last(MT_CHAR).Character, key.Character) << key.Key;
    }
}

// The lock, or Shift, changes what the key is called while it is down.
TEST_F(TWindowClassTest, AKeyComesUpAsWhatItWentDown)
{
    constexpr quint32 LeftOnKeypad = 83;
    Send(QEvent::KeyPress, Qt::Key_Left, Qt::KeypadModifier, QString(), LeftOnKeypad);
    Send(QEvent::KeyRelease, Qt::Key_4, Qt::KeypadModifier, "4", LeftOnKeypad);
    EXPECT_EQ(Window.Last(MT_KEYUP).Key, KEY_LEFT);
    Window.Forget();
    Send(QEvent::KeyPress, Qt::Key_Left, Qt::KeypadModifier, QString(), LeftOnKeypad);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_4, Qt::KeypadModifier, LeftOnKeypad, 0, 0, "4", true);
    QApplication::sendEvent(Widget(), &repeat);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_LEFT);
    EXPECT_EQ(Window.Count(MT_CHAR), 0);
    Send(QEvent::KeyRelease, Qt::Key_4, Qt::KeypadModifier, "4", LeftOnKeypad);
    Window.Forget();
    Send(QEvent::KeyPress, Qt::Key_4, Qt::KeypadModifier, "4", LeftOnKeypad);
    Send(QEvent::KeyRelease, Qt::Key_Left, Qt::KeypadModifier, QString(), LeftOnKeypad);
    EXPECT_EQ(Window.Last(MT_KEYUP).Key, '4');
    // What is held when the keys go elsewhere is let go there.
    Send(QEvent::KeyPress, Qt::Key_Left, Qt::KeypadModifier, QString(), LeftOnKeypad);
    QFocusEvent lost(QEvent::FocusOut);
    QApplication::sendEvent(Widget(), &lost);
    Send(QEvent::KeyRelease, Qt::Key_4, Qt::KeypadModifier, "4", LeftOnKeypad);
    EXPECT_EQ(Window.Last(MT_KEYUP).Key, '4');
}

TEST_F(TWindowClassTest, ASignOnTheThirdLevelOfALetterIsNoKey)
{
    constexpr quint32 PlaceOfR = 27;
    for (const int sign : {0xB6, 0xAE, 0xB5, 0x20AC, 0x2191}) {
        Window.Forget();
        Click(sign, Qt::NoModifier, QString(QChar(sign)), PlaceOfR);
        EXPECT_EQ(Window.Count(MT_KEYDOWN), 0) << sign;
        EXPECT_EQ(Window.Last(MT_CHAR).Character, static_cast<uint32_t>(sign));
    }
}

TEST_F(TWindowClassTest, WithControlAndAltAKeyIsText)
{
    Window.Forget();
    Click(Qt::Key_At, Qt::ControlModifier | Qt::AltModifier, "@");
    EXPECT_EQ(Window.Last(MT_CHAR).Character, static_cast<uint32_t>('@'));
}

TEST_F(TWindowClassTest, ControlCharactersAreNoText)
{
    struct TControlKey
    {
        Qt::Key Key;
        const char* Text;
    };
    const TControlKey keys[] = {{Qt::Key_Backspace, "\b"},
                                {Qt::Key_Tab, "\t"},
                                {Qt::Key_Return, "\r"},
                                {Qt::Key_Escape, "\x1b"},
                                {Qt::Key_Delete, "\x7f"}};
    Window.Forget();
    for (const TControlKey& key : keys)
        Click(key.Key, Qt::NoModifier, QString::fromLatin1(key.Text));
    EXPECT_EQ(Window.Count(MT_KEYDOWN), 5);
    EXPECT_EQ(Window.Count(MT_CHAR), 0);
    // Keys that are no named ones may give control characters too.
    Click(Qt::Key_Q, Qt::ControlModifier | Qt::AltModifier, QStringLiteral("\x11"));
    Click(Qt::Key_BracketLeft, Qt::NoModifier, QStringLiteral("\x1b"));
    Click(Qt::Key_SysReq, Qt::NoModifier, QStringLiteral("\x7f"));
    EXPECT_EQ(Window.Count(MT_CHAR), 0);
    QInputMethodEvent input;
    input.setCommitString(QStringLiteral("a\nb\x1f"));
    QApplication::sendEvent(Widget(), &input);
    ASSERT_EQ(Window.Count(MT_CHAR), 2);
    EXPECT_EQ(Window.Last(MT_CHAR).Character, uint32_t{'b'});
    // The first character that is one.
    Click(Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    ASSERT_EQ(Window.Count(MT_CHAR), 3);
    EXPECT_EQ(Window.Last(MT_CHAR).Character, 32u);
}

TEST_F(TWindowClassTest, ComposedTextComesAsCharacters)
{
    QInputMethodEvent input;
    input.setCommitString(QString::fromUtf8("\xC3\xA9\xF0\x9F\x94\xA5"));
    QApplication::sendEvent(Widget(), &input);
    ASSERT_EQ(Window.Count(MT_CHAR), 2);
    EXPECT_EQ(Window.Last(MT_CHAR).Character, 0x1F525u);
}

TEST_F(TWindowClassTest, AShortcutTableConsumesAKeyBeforeTheWindowHearsIt)
{
    TKeyboardShortcut table;
    table.Add('O' | SM_CTRL, [](int, void*) { return true; });
    table.Add('N' | SM_CTRL, [](int, void*) { return false; });
    table.Attach(&Window);
    Window.Forget();
    QTest::keyClick(Widget(), Qt::Key_O, Qt::ControlModifier);
    for (const TMessage& message : Window.Messages)
        EXPECT_NE(message.Type == MT_KEYDOWN ? message.Key : 0, 'O');
    Window.Forget();
    QTest::keyPress(Widget(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, 'N');
    EXPECT_EQ(Window.Last(MT_KEYDOWN).KeyFlags, KF_CTRL);
}

TEST_F(TWindowClassTest, ATableDoesNotHoldAModifierThatWasReleasedElsewhere)
{
    static int taken;
    taken = 0;
    TKeyboardShortcut table;
    table.Add('N' | SM_CTRL, [](int, void*) { return ++taken > 0; });
    table.Attach(&Window);
    QTest::keyPress(Widget(), Qt::Key_Control);
    QTest::keyClick(Widget(), Qt::Key_N);
    EXPECT_EQ(taken, 0);
    QTest::keyClick(Widget(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(taken, 1);
}

TEST_F(TWindowClassTest, AKeyThatTheWindowsTablesLeaveGoesToThoseOfItsOwner)
{
    static TWindow* taker;
    taker = nullptr;
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    TKeyboardShortcut table;
    table.Add('O' | SM_CTRL, [](int, void* context) {
        taker = static_cast<TWindow*>(context);
        return true;
    });
    table.Attach(&Window);
    Window.Forget();
    QTest::keyClick(child.GetHandle(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(taker, &Window);
    QTest::keyClick(child.GetHandle(), Qt::Key_P);
    EXPECT_EQ(child.Last(MT_KEYDOWN).Key, 'P');
    EXPECT_EQ(Window.Count(MT_KEYDOWN), 0);
}

TEST_F(TWindowClassTest, AKeyThatAWindowsTablesLeaveGoesToItsKeyOwner)
{
    static int taken;
    taken = 0;
    TRecordingWindow other;
    ShowTopWindow(other, OtherClass);
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    TKeyboardShortcut table;
    table.Add('O' | SM_CTRL, [](int, void*) {
        ++taken;
        return true;
    });
    table.Attach(&Window);
    EXPECT_EQ(other.GetKeyOwner(), nullptr);
    QTest::keyClick(other.GetHandle(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(taken, 0);
    other.SetKeyOwner(&child);
    EXPECT_EQ(child.GetKeyOwner(), &Window);
    QTest::keyClick(other.GetHandle(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(taken, 1);
    // Only the tables are offered them.
    other.Forget();
    QTest::keyClick(other.GetHandle(), Qt::Key_O);
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(other.Count(MT_KEYDOWN), 1);
    EXPECT_EQ(child.Count(MT_KEYDOWN), 0);
}

TEST_F(TWindowClassTest, AKeyOwnerThatGoesIsForgotten)
{
    TRecordingWindow other;
    ShowTopWindow(other, OtherClass);
    {
        TRecordingWindow child;
        ASSERT_TRUE(MakeChild(child));
        other.SetKeyOwner(&child);
        ASSERT_EQ(other.GetKeyOwner(), &child);
    }
    EXPECT_EQ(other.GetKeyOwner(), nullptr);
    QTest::keyClick(other.GetHandle(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(other.Last(MT_KEYDOWN).Key, 'O');
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

namespace {

class TScrollTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        TWindowParams params;
        params.Class = &Class;
        params.Kind = WK_TOP;
        params.Width = 200;
        params.Height = 100;
        params.VerticalScroll = true;
        ASSERT_TRUE(Window.Create(params));
        Window.Show();
        Settle();
        Bar = Window.GetHandle()->findChild<QScrollBar*>();
        ASSERT_NE(Bar, nullptr);
    }
    int Width()
    {
        int width = 0;
        int height = 0;
        Window.GetSize(width, height);
        return width;
    }

    TWindowClass Class{"test_scroll"};
    TRecordingWindow Window;
    QScrollBar* Bar = nullptr;
};

} // namespace

TEST_F(TScrollTest, APageOfTheWholeHidesTheBar)
{
    Window.SetScrollRange(100, 100, 10);
    EXPECT_FALSE(Bar->isVisible());
    EXPECT_EQ(Width(), 200);
    Window.Forget();
    Window.SetScrollRange(101, 100, 10);
    EXPECT_TRUE(Bar->isVisible());
    EXPECT_EQ(Width(), 200 - Bar->width());
    EXPECT_EQ(Window.Last(MT_SIZE).X, 200 - Bar->width());
}

TEST_F(TScrollTest, APersonsScrollingIsToldAndTheProgramsOwnIsNot)
{
    Window.SetScrollRange(500, 100, 10);
    Window.Forget();
    Window.SetScrollPosition(30);
    EXPECT_EQ(Window.GetScrollPosition(), 30);
    EXPECT_EQ(Window.Count(MT_SCROLL), 0);
    Bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(Window.Last(MT_SCROLL).X, 40);
    Bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Window.Last(MT_SCROLL).X, 140);
}

TEST_F(TScrollTest, TheLastPositionShowsTheLastPage)
{
    Window.SetScrollRange(500, 100, 10);
    Window.SetScrollPosition(1000);
    EXPECT_EQ(Window.GetScrollPosition(), 400);
    Window.SetScrollRange(300, 100, 10);
    EXPECT_EQ(Window.GetScrollPosition(), 200);
}

TEST_F(TWindowClassTest, AnOpenGlWindowPaintsWithItsContext)
{
    TRecordingWindow view;
    bool current = false;
    unsigned frameBuffer = 0;
    view.Answer = [&](const TMessage& message) {
        if (message.Type != MT_PAINT)
            return;
        current = view.MakeCurrent();
        frameBuffer = view.GetFrameBuffer();
        EXPECT_EQ(message.Context, nullptr);
    };
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    view.MoveTo(0, 0, 100, 80);
    ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; }));
    EXPECT_TRUE(IsGlReady());
    EXPECT_TRUE(current);
    EXPECT_NE(frameBuffer, 0u);
    view.Redraw();
    view.Forget();
    ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; }));
}

TEST_F(TWindowClassTest, AnOpenGlWindowOfNoSizePaintsAgainOnceItHasOne)
{
    TRecordingWindow view;
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    for (int i = 0; i < 3; ++i) {
        view.MoveTo(0, 0, 0, 0);
        Settle();
        int width = -1;
        int height = -1;
        view.GetSize(width, height);
        EXPECT_EQ(width, 0);
        EXPECT_EQ(height, 0);
        view.MakeCurrent();
        view.Forget();
        view.MoveTo(0, 0, 60, 40);
        ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; })) << i;
        EXPECT_TRUE(view.MakeCurrent());
    }
}

TEST_F(TWindowClassTest, AWindowThatOpenGlDoesNotDrawHasNoContext)
{
    EXPECT_FALSE(Window.MakeCurrent());
    EXPECT_EQ(Window.GetFrameBuffer(), 0u);
}

TEST_F(TWindowClassTest, AnOpenGlWindowMayGoInsideItsPaint)
{
    TRecordingWindow view;
    view.Answer = [&](const TMessage& message) {
        if (message.Type == MT_PAINT)
            view.Destroy();
    };
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    view.MoveTo(0, 0, 100, 80);
    ASSERT_TRUE(WaitFor([&] { return view.GetHandle() == nullptr; }));
    Settle();
    EXPECT_TRUE(Window.IsShown());
}

// Run on its own with the window system told to do without OpenGL.
TEST_F(TWindowClassTest, WithoutOpenGlTheViewStaysEmptyAndOneMessageTellsIt)
{
    if (HasWorkingGl())
        GTEST_SKIP() << "OpenGL works here";
    static int messages;
    messages = 0;
    SetMessageForms([](const char*) { ++messages; }, nullptr);
    TRecordingWindow first;
    TRecordingWindow second;
    ASSERT_TRUE(MakeChild(first, WK_GLCHILD));
    ASSERT_TRUE(MakeChild(second, WK_GLCHILD));
    first.MoveTo(0, 0, 100, 80);
    second.MoveTo(100, 0, 100, 80);
    EXPECT_EQ(messages, 0);
    Settle();
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(first.Count(MT_PAINT), 0);
    EXPECT_FALSE(first.MakeCurrent());
    EXPECT_EQ(first.GetFrameBuffer(), 0u);
    EXPECT_FALSE(IsGlReady());
    QTest::mouseClick(second.GetHandle(), Qt::LeftButton, {}, QPoint(3, 4));
    EXPECT_EQ(second.Count(MT_LEFTDOWN), 1);
    SetMessageForms(nullptr, nullptr);
}
