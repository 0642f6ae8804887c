#include "particles/cindermill/interface/particles/particlewindow.h"

#include "support/paintcounter.h"
#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/system/clock.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/toolnode.h"

#include <QtGui/QKeyEvent>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace {

uint32_t TestTick = 5000;

uint32_t GetTestTick()
{
    return TestTick;
}

class ParticleWindow : public TWindowTest
{
protected:
    void SetUp() override
    {
        SetTickCountSource(&GetTestTick);
        ASSERT_TRUE(Window.Create(*Sample));
        Window.Show();
        ASSERT_TRUE(WaitFor([this] { return Window.IsShown(); }));
        Settle();
    }
    void TearDown() override
    {
        Window.Destroy();
        SetTickCountSource(nullptr);
    }
    template <class TWidget>
    TWidget* Find(const char* name)
    {
        TWidget* widget = Window.GetHandle()->findChild<TWidget*>(QString::fromUtf8(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void Click(const char* name) { Find<QPushButton>(name)->click(); }
    void Tick(uint32_t milliseconds)
    {
        TestTick += milliseconds;
        Window.Tick();
    }
    std::string TimeShown() { return Find<QLineEdit>("time")->text().toStdString(); }
    TVector3 EyeDirection()
    {
        TMatrix4 view;
        Window.GetRenderWindow().GetCamera().GetView(view);
        return TVector3(view[0][2], view[1][2], view[2][2]);
    }
    static TMessage Mouse(TMessageType type, int x, int y, int buttons)
    {
        TMessage message;
        message.Type = type;
        message.X = x;
        message.Y = y;
        message.Buttons = buttons;
        return message;
    }

    TTestApp App;
    TSampleDocument Sample{App, "fountain"};
    TParticleWindow Window;
};

// Each pair leads there and back; Shift hurries, Ctrl slows down.
TEST_F(ParticleWindow, TheFlyingCameraHasAKeyForEachWay)
{
    App.Get().GetSettings().SetCameraMode(1);
    Tick(10);
    QWidget* widget = Find<QWidget>("cindermill_particlewindow_render");
    const auto view = [this] {
        TMatrix4 matrix;
        Window.GetRenderWindow().GetCamera().GetView(matrix);
        return TVector3(matrix[3][0], matrix[3][1], matrix[3][2]);
    };
    // How far the key moves the eye.
    const auto move = [&](int key, int held = 0) {
        const TVector3 before = view();
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
            for (const int which : {held, key}) {
                QKeyEvent event(type, which, Qt::NoModifier);
                if (which != 0)
                    QApplication::sendEvent(widget, &event);
                if (which == key && type == QEvent::KeyPress)
                    Tick(20);
            }
        return view() - before;
    };
    const int pairs[][2] = {
        {Qt::Key_Up, Qt::Key_Down}, {Qt::Key_Left, Qt::Key_Right}, {Qt::Key_PageUp, Qt::Key_PageDown}};
    TVector3 ways[3];
    for (int i = 0; i < 3; ++i) {
        ways[i] = move(pairs[i][0]);
        const TVector3 back = move(pairs[i][1]);
        EXPECT_GT(ways[i].Length(), 0.001f) << i;
        EXPECT_LT((ways[i] + back).Length(), 0.0001f) << i;
        for (int k = 0; k < i; ++k)
            EXPECT_GT((ways[i] - ways[k]).Length(), 0.001f) << i;
    }
    const float plain = ways[0].Length();
    EXPECT_GT(move(Qt::Key_Up, Qt::Key_Shift).Length(), plain * 1.5f);
    EXPECT_LT(move(Qt::Key_Up, Qt::Key_Control).Length(), plain * 0.75f);
}

TEST_F(ParticleWindow, IsATopWindowWithItsTwoChildren)
{
    EXPECT_EQ(Window.GetType(), 1);
    EXPECT_EQ(Window.GetHandle()->objectName().toStdString(), "cindermill_particlewindow");
    EXPECT_EQ(Window.GetHandle()->windowTitle().toStdString(), "Effect Display [doc]");
    // From (0, 50) to (800, 650).
    EXPECT_EQ(Window.GetHandle()->geometry(), QRect(0, 50, 800, 600));
    Find<QWidget>("cindermill_particlewindow_render");
    Find<QWidget>("cindermill_particlewindow_timeline");
    EXPECT_EQ(Find<QPushButton>("update")->text().toStdString(), "Update");
    EXPECT_EQ(Find<QLabel>("timelabel")->text().toStdString(), "Time:");
    for (const char* icon : {"step", "pause", "play"})
        EXPECT_FALSE(Find<QPushButton>(icon)->icon().isNull()) << icon;
}

TEST_F(ParticleWindow, TheTimelineTakesTheBottom32Pixels)
{
    for (const int height : {400, 250, 600}) {
        Window.MoveTo(10, 10, 500, height);
        Settle();
        int width = 0;
        int whole = 0;
        Window.GetSize(width, whole);
        const QRect render = Find<QWidget>("cindermill_particlewindow_render")->geometry();
        const QRect timeline = Find<QWidget>("cindermill_particlewindow_timeline")->geometry();
        EXPECT_EQ(render, QRect(0, 0, width, whole - 32));
        EXPECT_EQ(timeline, QRect(0, whole - 32, width, 32));
    }
}

TEST_F(ParticleWindow, TheEffectRunsWithTheTicks)
{
    Tick(20);
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.02f);
    EXPECT_EQ(TimeShown(), "0.00");
    Tick(1000);
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.07f);
    EXPECT_EQ(TimeShown(), "0.02");
    Tick(0);
    EXPECT_EQ(TimeShown(), "0.07");
}

TEST_F(ParticleWindow, TheTimeIsShownToTwoPlacesAndStandsStillWhilePaused)
{
    Sample->GetEngine().SetTime(1.5f);
    Tick(0);
    EXPECT_EQ(TimeShown(), "1.50");
    Click("pause");
    Sample->GetEngine().SetTime(3);
    Tick(20);
    EXPECT_EQ(TimeShown(), "1.50");
    EXPECT_EQ(Window.GetTime(), 3);
    Click("pause");
    Tick(20);
    EXPECT_EQ(TimeShown(), "3.00");
}

TEST_F(ParticleWindow, AfterStepTheEffectStaysPausedAndPlayResumes)
{
    Click("step");
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.01f);
    EXPECT_EQ(TimeShown(), "0.01");
    EXPECT_TRUE(Window.GetTimeline().IsPaused());
    EXPECT_TRUE(Find<QPushButton>("pause")->isChecked());
    Tick(40);
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.01f);
    Click("play");
    EXPECT_FALSE(Find<QPushButton>("pause")->isChecked());
    Tick(40);
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.05f);
}

TEST_F(ParticleWindow, UpdateRestartsTheEffect)
{
    Tick(50);
    const TQuiet quiet;
    Click("update");
    EXPECT_EQ(Window.GetTime(), 0);
    EXPECT_TRUE(Sample->GetEngine().IsInited());
}

TEST_F(ParticleWindow, AnEffectThatDoesNotRunTellsWhatToDoAboutIt)
{
    const char* const hint = "Not running. Update starts the effect, or lists what it lacks.";
    const auto shown = [this] { return Find<QLabel>("hint")->text().toStdString(); };
    EXPECT_EQ(shown(), "") << "nothing is known before the first idle pass";
    Tick(20);
    EXPECT_EQ(shown(), "");
    Click("pause");
    Tick(20);
    EXPECT_EQ(shown(), "") << "a paused effect is there";
    Sample->ClearEngine();
    Tick(20);
    EXPECT_EQ(shown(), hint);
    Click("step");
    EXPECT_EQ(shown(), hint);
    const TQuiet quiet;
    Click("update");
    EXPECT_EQ(shown(), "");

    TDocument fresh(App.Get());
    ASSERT_TRUE(fresh.New());
    TParticleWindow empty;
    ASSERT_TRUE(empty.Create(fresh));
    empty.Show();
    empty.Tick();
    Settle();
    const QLabel* label = empty.GetHandle()->findChild<QLabel*>("hint");
    EXPECT_EQ(label->text().toStdString(), hint);
    // All of it can be read, beside the controls.
    EXPECT_GE(label->width(), label->sizeHint().width());
    EXPECT_GE(label->geometry().left(), Find<QPushButton>("play")->geometry().right());
    EXPECT_LE(label->geometry().right(), 800);
    // Where it has no room, shorter ones take its place, before there is none.
    for (int width = 700; width > 200; width -= 50) {
        empty.MoveTo(0, 0, width, 500);
        Settle();
        empty.Tick();
        Settle();
        if (label->isVisible()) {
            EXPECT_EQ(label->text().left(11).toStdString(), "Not running");
            EXPECT_GE(label->width(), label->sizeHint().width()) << width;
        }
        EXPECT_EQ(label->isVisible(), width >= 350) << width;
    }
    empty.Destroy();
}

TEST_F(ParticleWindow, TheSettingsChooseTheCamera)
{
    const auto kind = [this] {
        return dynamic_cast<const TQuakeCamera*>(&Window.GetRenderWindow().GetCamera()) != nullptr;
    };
    Tick(10);
    EXPECT_FALSE(kind());
    App.Get().GetSettings().SetCameraMode(1);
    Tick(10);
    EXPECT_TRUE(kind());
    App.Get().GetSettings().SetCameraMode(0);
    Tick(10);
    EXPECT_FALSE(kind());
}

TEST_F(ParticleWindow, ADragMovesTheCameraWithTheNextTick)
{
    TParticleRenderWindow& render = Window.GetRenderWindow();
    const TVector3 before = EyeDirection();
    render.OnMessage(Mouse(MT_MOUSEMOVE, 90, 100, 0));
    render.OnMessage(Mouse(MT_LEFTDOWN, 100, 100, MB_LEFT));
    render.OnMessage(Mouse(MT_MOUSEMOVE, 130, 100, MB_LEFT));
    render.OnMessage(Mouse(MT_MOUSEMOVE, 150, 100, MB_LEFT));
    EXPECT_EQ(EyeDirection(), before);
    Tick(10);
    const TVector3 after = EyeDirection();
    EXPECT_NE(after, before);
    Tick(10);
    EXPECT_EQ(EyeDirection(), after);
    render.OnMessage(Mouse(MT_MOUSEMOVE, 160, 100, MB_LEFT));
    render.OnMessage(Mouse(MT_LEFTUP, 160, 100, 0));
    EXPECT_NE(EyeDirection(), after) << "the rest of the drag counts";
    const TVector3 let = EyeDirection();
    render.OnMessage(Mouse(MT_MOUSEMOVE, 300, 100, 0));
    Tick(10);
    EXPECT_EQ(EyeDirection(), let);
    // What a reset of the camera goes back to.
    TMessage key;
    key.Type = MT_KEYDOWN;
    key.Key = 'R';
    render.OnMessage(key);
    EXPECT_EQ(EyeDirection(), before);
}

TEST_F(ParticleWindow, TheWheelMovesTheCameraAtOnce)
{
    TParticleRenderWindow& render = Window.GetRenderWindow();
    TMatrix4 before;
    TMatrix4 after;
    render.GetCamera().GetView(before);
    TMessage wheel;
    wheel.Type = MT_WHEEL;
    wheel.Delta = 120;
    render.OnMessage(wheel);
    render.GetCamera().GetView(after);
    EXPECT_NE(before, after);
}

TEST_F(ParticleWindow, KeysAreHeldUntilTheyAreLetGoOrTheFocusIsLost)
{
    TParticleRenderWindow& render = Window.GetRenderWindow();
    TMessage key;
    key.Type = MT_KEYDOWN;
    key.Key = KEY_RIGHT;
    render.OnMessage(key);
    const TVector3 start = EyeDirection();
    Tick(20);
    const TVector3 once = EyeDirection();
    EXPECT_NE(once, start);
    Tick(20);
    EXPECT_NE(EyeDirection(), once);
    TMessage lost;
    lost.Type = MT_FOCUSLOST;
    render.OnMessage(lost);
    const TVector3 last = EyeDirection();
    Tick(20);
    EXPECT_EQ(EyeDirection(), last);
}

TEST_F(ParticleWindow, PrintableKeysLeaveTheCameraAlone)
{
    QWidget* widget = Find<QWidget>("cindermill_particlewindow_render");
    const auto send = [widget](QEvent::Type type, int key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(type, key, modifiers, QString(QChar(key)));
        QApplication::sendEvent(widget, &event);
    };
    const auto view = [this] {
        TMatrix4 matrix;
        Window.GetRenderWindow().GetCamera().GetView(matrix);
        return matrix;
    };
    const Qt::KeyboardModifiers with[] = {Qt::NoModifier,      Qt::ShiftModifier,
                                          Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier,
                                          Qt::KeypadModifier,  Qt::KeypadModifier | Qt::ControlModifier};
    for (const int mode : {0, 1}) {
        App.Get().GetSettings().SetCameraMode(mode);
        Tick(10);
        // Away from where a reset would take it.
        send(QEvent::KeyPress, Qt::Key_Left, Qt::KeypadModifier);
        const TMatrix4 first = view();
        Tick(50);
        send(QEvent::KeyRelease, Qt::Key_Left, Qt::KeypadModifier);
        const TMatrix4 before = view();
        ASSERT_NE(first, before);
        for (int key = Qt::Key_Space; key <= Qt::Key_ydiaeresis; ++key)
            for (const Qt::KeyboardModifiers modifiers : with) {
                if (!QChar::isPrint(static_cast<char32_t>(key)) || key == Qt::Key_R)
                    continue;
                send(QEvent::KeyPress, key, modifiers);
                Tick(20);
                ASSERT_EQ(view(), before) << key << " " << int(modifiers) << " " << mode;
                send(QEvent::KeyRelease, key, modifiers);
            }
        send(QEvent::KeyPress, Qt::Key_R, Qt::NoModifier);
        send(QEvent::KeyRelease, Qt::Key_R, Qt::NoModifier);
        EXPECT_NE(view(), before);
    }
}

TEST_F(ParticleWindow, AClickGivesTheViewTheKeys)
{
    QWidget* widget = Find<QWidget>("cindermill_particlewindow_render");
    Find<QLineEdit>("time")->setFocus();
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    // Without a window manager no window is the active one.
    EXPECT_EQ(Window.GetHandle()->focusWidget(), widget);
}

TEST_F(ParticleWindow, APictureOfTheEffectIsShown)
{
    Sample.Run(1);
    Window.GetRenderWindow().Redraw();
    const auto shown = [this] {
        const QImage image = Find<QWidget>("cindermill_particlewindow_render")->grab().toImage();
        if (image.pixelColor(3, 3) != QColor(204, 204, 204))
            return false;
        int water = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                water += image.pixelColor(x, y).blue() - image.pixelColor(x, y).red() > 30 ? 1 : 0;
        return water > 100;
    };
    EXPECT_TRUE(WaitFor(shown));
}

TEST_F(ParticleWindow, APausedPreviewIsDrawnAgainOnlyWhenItWouldLookOtherwise)
{
    TPaintCounter counter(*Find<QWidget>("cindermill_particlewindow_render"));
    const auto paints = [&] {
        Settle();
        counter.Paints = 0;
        for (int i = 0; i < 3; ++i) {
            Tick(10);
            Settle();
        }
        return counter.Paints;
    };
    EXPECT_EQ(paints(), 3) << "it runs";
    Click("pause");
    paints();
    EXPECT_EQ(paints(), 0);
    const auto once = [&](const char* what, const std::function<void()>& change) {
        change();
        EXPECT_EQ(paints(), 1) << what;
        EXPECT_EQ(paints(), 0) << what;
    };
    TMessage message;
    message.Type = MT_WHEEL;
    message.Delta = 120;
    once("the camera", [&] { Window.GetRenderWindow().OnMessage(message); });
    once("the time", [&] { Sample->GetEngine().SetTime(7); });
    TToolNode* node = static_cast<TToolNode*>(Sample->GetGraph()->GetNode(0));
    once("the selection", [&] { Sample->SelectNode(node, true); });
    once("an operation", [&] { Sample->ApplyOperation(new TBypassFlagOp(node, true)); });
    once("undo", [&] { Sample->Undo(); });
    once("redo", [&] { Sample->Redo(); });
    once("the engine", [&] { Sample->ClearEngine(); });
    once("an update", [&] { Click("update"); });
    counter.Paints = 0;
    Window.MoveTo(0, 50, 700, 500);
    Settle();
    EXPECT_GT(counter.Paints, 0);
    EXPECT_EQ(paints(), 0);
}

TEST_F(ParticleWindow, BehindAnotherWindowItRunsOnAndIsDrawnOnceItShows)
{
    TPaintCounter counter(*Find<QWidget>("cindermill_particlewindow_render"));
    const auto tick = [&] {
        Settle();
        counter.Paints = 0;
        Tick(20);
        Settle();
        return counter.Paints;
    };
    EXPECT_EQ(tick(), 1);
    TRecordingWindow other;
    const TWindowClass otherClass("test_other");
    ShowTopWindow(other, otherClass, 900, 700);
    other.MoveTo(0, 0, 900, 700);
    ASSERT_TRUE(WaitFor([&] { return !Window.IsInSight(); }));
    const float time = Window.GetTime();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(tick(), 0);
    EXPECT_FLOAT_EQ(Window.GetTime(), time + 0.06f);
    other.Hide();
    ASSERT_TRUE(WaitFor([&] { return Window.IsInSight(); }));
    counter.Paints = 0;
    Tick(0);
    Settle();
    EXPECT_EQ(counter.Paints, 1);
    EXPECT_FLOAT_EQ(Window.GetTime(), time + 0.06f);
}

TEST_F(ParticleWindow, ClosingHidesIt)
{
    Window.GetHandle()->close();
    EXPECT_TRUE(WaitFor([this] { return !Window.IsShown(); }));
    EXPECT_NE(Window.GetHandle(), nullptr);
    Tick(20);
    EXPECT_FLOAT_EQ(Window.GetTime(), 0.02f);
    Window.Show();
    EXPECT_TRUE(WaitFor([this] { return Window.IsShown(); }));
}

TEST_F(ParticleWindow, AChildWithoutAnOwnersWindowIsRefused)
{
    TWindow owner;
    TParticleRenderWindow render;
    TParticleTimeline timeline;
    EXPECT_FALSE(render.Create(&owner, *Sample));
    EXPECT_FALSE(timeline.Create(&owner, *Sample));
}

TEST_F(ParticleWindow, APartThatCannotBeMadeIsAsserted)
{
    EXPECT_EQ(AssertionOf([this] { Window.Create(*Sample); }), "0 : Failed to create particle window");
    // What is there already is not made again.
    TParticleWindow withView;
    ASSERT_TRUE(withView.GetRenderWindow().Create(&Window, *Sample));
    EXPECT_EQ(AssertionOf([&] { withView.Create(*Sample); }),
              "0 : Failed to create particle render subwindow");
    TParticleWindow withTimeline;
    ASSERT_TRUE(withTimeline.GetTimeline().Create(&Window, *Sample));
    EXPECT_EQ(AssertionOf([&] { withTimeline.Create(*Sample); }),
              "0 : Failed to create particle timelinw subwindow");
}

} // namespace
