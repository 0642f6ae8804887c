#include "windowfixture.h"

#include "library/wimp/gl/glcontext.h"
#include "library/wimp/keyboardshortcut.h"

#include <QtGui/QInputMethodEvent>
#include <QtTest/QTest>

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

// Whoever clicks twice on what opens at the first click has not meant what then stands there.
TEST_F(TWindowClassTest, ADoubleClickThatBeganElsewhereIsNoPress)
{
    QWidget other;
    other.show();
    QTest::mouseClick(&other, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseDClick(Widget(), Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 0);
    EXPECT_EQ(Window.Count(MT_LEFTUP), 0);
    QTest::mouseClick(Widget(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(Window.Count(MT_LEFTDOWN), 1);
    EXPECT_EQ(Window.Count(MT_LEFTUP), 1);
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

// The release may go to whatever is there now, and the keys do.
TEST_F(TWindowClassTest, ADragIsLostWhenAnotherWindowComesToTheFrontOrItsOwnIsHidden)
{
    TWindow child;
    ASSERT_TRUE(MakeChild(child));
    for (TWindow* window : {static_cast<TWindow*>(&Window), &child})
        for (const QEvent::Type type : {QEvent::WindowDeactivate, QEvent::Hide}) {
            TRecordedDrag drag(*window);
            // What befalls another window is none of its concern.
            QEvent event(type);
            QApplication::sendEvent(window == &Window ? child.GetHandle() : Widget(), &event);
            const bool isConcerned = window == &child && type == QEvent::WindowDeactivate;
            EXPECT_EQ(drag.NumLosses, isConcerned ? 1 : 0) << type;
            if (isConcerned)
                continue;
            QApplication::sendEvent(window->GetHandle(), &event);
            EXPECT_EQ(drag.NumLosses, 1) << type;
            EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
            EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
        }
    child.Destroy();
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
    struct TKeyPosition
    {
        int Character;
        quint32 ScanCode;
        int Key;
    };
    // As the X server counts.
    const TKeyPosition keys[] = {{0x419, 24, 'Q'}, {0x417, 33, 'P'}, {0x42B, 39, 'S'},
                                 {0x42F, 52, 'Z'}, {0x42C, 58, 'M'}, {0x3A3, 39, 'S'}};
    for (const TKeyPosition& key : keys) {
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

TEST_F(TWindowClassTest, TheMenuKeyAndShiftF10AskForAMenuUnlessShiftF10IsTaken)
{
    QTest::keyClick(Widget(), Qt::Key_Menu);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_MENU);
    Window.Forget();
    QTest::keyClick(Widget(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_MENU);
    Window.Forget();
    QTest::keyClick(Widget(), Qt::Key_F10);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_F10);
    Window.Consumed.push_back(MT_KEYDOWN);
    QTest::keyClick(Widget(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_F10);
}
