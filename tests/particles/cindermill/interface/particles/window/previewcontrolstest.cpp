#include "particles/cindermill/interface/particles/particlewindow.h"

#include "support/accessnames.h"
#include "support/menutext.h"
#include "support/paintcounter.h"
#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/system/clock.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/usage.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include <filesystem>

namespace {

uint32_t ControlTick = 9000;

uint32_t GetControlTick()
{
    return ControlTick;
}

class TFramingHost : public TParticleWindowHost
{
public:
    void FrameGroup(TDocument&, int group) override { Framed.push_back(group); }
    std::vector<int> Framed;
};

class PreviewControls : public TWindowTest
{
protected:
    void SetUp() override
    {
        SetTickCountSource(&GetControlTick);
        ASSERT_TRUE(Window.Create(*Sample));
        Window.SetHost(&Host);
        Window.Show();
        ASSERT_TRUE(WaitFor([this] { return Window.IsShown(); }));
        Settle();
        Tick(20);
    }
    void TearDown() override
    {
        Window.Destroy();
        SetTickCountSource(nullptr);
        SetOpenFileChooser(nullptr);
    }
    template <class TWidget>
    TWidget* Find(const char* name)
    {
        TWidget* widget = Window.GetHandle()->findChild<TWidget*>(QString::fromUtf8(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QWidget* GetView() { return Find<QWidget>("cindermill_particlewindow_render"); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(GetView(), key, modifiers);
    }
    void Tick(uint32_t milliseconds)
    {
        ControlTick += milliseconds;
        Window.Tick();
    }
    void Run(int ticks)
    {
        for (int i = 0; i < ticks; ++i)
            Tick(40);
    }
    void Arrive()
    {
        for (int i = 0; GetClock().IsSeeking() && i < 10000; ++i)
            Window.Tick();
    }
    TPreviewClock& GetClock() { return Window.GetTimeline().GetClock(); }
    std::string TimeShown() { return Find<QLineEdit>("time")->text().toStdString(); }
    TVector3 EyeDirection()
    {
        TMatrix4 view;
        Window.GetRenderWindow().GetCamera().GetView(view);
        return TVector3(view[0][2], view[1][2], view[2][2]);
    }
    void ExpectEye(float x, float y, float z)
    {
        const TVector3 eye = EyeDirection();
        EXPECT_NEAR(eye[0], x, 1e-5f);
        EXPECT_NEAR(eye[1], y, 1e-5f);
        EXPECT_NEAR(eye[2], z, 1e-5f);
    }
    // Clicks an entry of the menu that the right button opens in the view.
    void Choose(int id)
    {
        MeetMenu([id](QMenu& menu) {
            QAction* action = menu.findChild<QAction*>(QStringLiteral("menu%1").arg(id));
            ASSERT_NE(action, nullptr) << id;
            EXPECT_TRUE(action->isEnabled()) << id;
            action->trigger();
            menu.close();
        });
        QTest::mouseClick(GetView(), Qt::RightButton, Qt::NoModifier, QPoint(60, 60));
    }
    std::vector<int> GetParticleGroupNumbers()
    {
        std::vector<int> groups;
        for (int g = 0; g < Sample->GetSchedule().GetNumGroups(); ++g)
            if (!Sample->GetSchedule().IsTriggerGroup(g))
                groups.push_back(g);
        return groups;
    }
    static void MoveIn(QWidget& widget, const QPoint& at, Qt::MouseButtons buttons)
    {
        QMouseEvent move(QEvent::MouseMove, QPointF(at), widget.mapToGlobal(QPointF(at)), Qt::NoButton,
                         buttons, Qt::NoModifier);
        QApplication::sendEvent(&widget, &move);
    }
    // Who may take the mouse away in the middle of a drag.
    std::vector<std::pair<std::string, std::function<void()>>> GetTakers(QWidget& widget)
    {
        return {{"menu",
                 [this] {
                     MeetMenu([](QMenu& menu) { menu.close(); });
                     Window.OpenPreviewMenu(Window, 10, 10);
                 }},
                {"another window",
                 [&widget] {
                     QEvent gone(QEvent::WindowDeactivate);
                     QApplication::sendEvent(&widget, &gone);
                 }},
                {"hidden", [this] { Window.Hide(); }}};
    }
    // Of the budget's lines, from the first group's on.
    QImage GrabBudgetLine(int line)
    {
        const QImage picture = GetBudget()->grab().toImage();
        return picture.copy(0, 18 * (line + 1), picture.width(), 18);
    }
    // Edges of lines and letters are only nearly of their colour.
    static int CountColour(const QImage& picture, QRgb colour, int near = 1)
    {
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                const QRgb pixel = picture.pixel(x, y);
                const int distance = std::abs(qRed(pixel) - qRed(colour)) +
                                     std::abs(qGreen(pixel) - qGreen(colour)) +
                                     std::abs(qBlue(pixel) - qBlue(colour));
                count += distance < near ? 1 : 0;
            }
        return count;
    }
    QWidget* GetBudget() { return Find<QWidget>("cindermill_particlewindow_budget"); }
    void ShowBudget()
    {
        Choose(PC_BUDGET);
        Settle();
        Run(10);
        Settle();
    }

    TQuiet Quiet;
    TTestApp App;
    TSampleDocument Sample{App, "campfire"};
    TFramingHost Host;
    TParticleWindow Window;
};

} // namespace

TEST_F(PreviewControls, KeysRestartPauseAndStep)
{
    Run(10);
    QTest::keyClicks(GetView(), " ");
    EXPECT_TRUE(Window.GetTimeline().IsPaused());
    EXPECT_TRUE(Find<QPushButton>("pause")->isChecked());
    const float there = Window.GetTime();
    Run(3);
    EXPECT_EQ(Window.GetTime(), there);
    QTest::keyClicks(GetView(), ".");
    EXPECT_NEAR(Window.GetTime(), there + 0.01f, 1e-5f);
    // An Update in a pause shows its time.
    Key(Qt::Key_Home);
    EXPECT_EQ(Window.GetTime(), 0);
    EXPECT_EQ(TimeShown(), "0.00");
    EXPECT_TRUE(Window.GetTimeline().IsPaused());
    QTest::keyClicks(GetView(), " ");
    EXPECT_FALSE(Find<QPushButton>("pause")->isChecked());
    Run(3);
    EXPECT_GT(Window.GetTime(), 0.1f);
}

TEST_F(PreviewControls, TheTimeShownFollowsARestartInAPause)
{
    Run(10);
    QTest::mouseClick(Find<QPushButton>("pause"), Qt::LeftButton);
    EXPECT_NE(TimeShown(), "0.00");
    QTest::mouseClick(Find<QPushButton>("update"), Qt::LeftButton);
    EXPECT_EQ(TimeShown(), "0.00");
    // By whoever restarts it.
    QTest::keyClicks(GetView(), ".");
    EXPECT_EQ(TimeShown(), "0.01");
    Sample->RebuildSchedule(true);
    Tick(10);
    EXPECT_EQ(TimeShown(), "0.00");
}

TEST_F(PreviewControls, SpeedsAreChosenByKeysAndByTheButton)
{
    QPushButton* button = Find<QPushButton>("speed");
    EXPECT_EQ(button->text().toStdString(), "1x");
    QTest::keyClicks(GetView(), "+");
    EXPECT_EQ(button->text().toStdString(), "2x");
    QTest::keyClicks(GetView(), "---");
    EXPECT_EQ(button->text().toStdString(), "1/4x");
    const float before = Window.GetTime();
    Run(10);
    EXPECT_NEAR(Window.GetTime() - before, 0.1f, 1e-3f);
    MeetMenu([](QMenu& menu) {
        EXPECT_TRUE(menu.findChild<QAction*>(QStringLiteral("menu%1").arg(PC_SPEED + 1))->isChecked());
        menu.findChild<QAction*>(QStringLiteral("menu%1").arg(PC_SPEED + 5))->trigger();
        menu.close();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(button->text().toStdString(), "4x");
    EXPECT_EQ(GetClock().GetSpeed(), 5);
}

TEST_F(PreviewControls, TheBarIsDraggedToAnotherTime)
{
    Run(75);
    ASSERT_NEAR(Window.GetTime(), 3, 0.1f);
    QWidget* bar = Find<QWidget>("cindermill_particlewindow_seek");
    ASSERT_TRUE(bar->isVisible());
    ASSERT_GT(bar->width(), 200);
    // Its end is at five seconds, left of the label.
    const auto place = [bar](double part) {
        return QPoint(4 + int(part * (bar->width() - 42 - 4)), bar->height() / 2);
    };
    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, place(0.2));
    Arrive();
    EXPECT_NEAR(Window.GetTime(), 1, 0.03f);
    Run(5);
    EXPECT_NEAR(Window.GetTime(), 1, 0.03f) << "it is held";
    QMouseEvent move(QEvent::MouseMove, QPointF(place(0.8)), bar->mapToGlobal(QPointF(place(0.8))),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(bar, &move);
    Arrive();
    EXPECT_NEAR(Window.GetTime(), 4, 0.03f);
    QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, place(0.8));
    Run(5);
    EXPECT_NEAR(Window.GetTime(), 4.2f, 0.03f) << "it plays on";
    EXPECT_FALSE(Window.GetTimeline().IsPaused());
}

// The release of the mouse may never be heard of.
TEST_F(PreviewControls, ADragOfTheTimeEndsWhereTheMouseIsTakenAway)
{
    Run(75);
    QWidget* bar = Find<QWidget>("cindermill_particlewindow_seek");
    const QPoint place(4 + (bar->width() - 46) / 5, bar->height() / 2);
    for (const auto& [taker, take] : GetTakers(*bar)) {
        QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, place);
        Arrive();
        const float held = Window.GetTime();
        Run(5);
        ASSERT_EQ(Window.GetTime(), held) << taker;
        take();
        Run(5);
        EXPECT_NEAR(Window.GetTime(), held + 0.2f, 0.03f) << taker;
        // What comes of the drag afterwards is none.
        MoveIn(*bar, place + QPoint(100, 0), Qt::LeftButton);
        QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, place + QPoint(100, 0));
        Arrive();
        EXPECT_LT(Window.GetTime(), held + 0.3f) << taker;
        Window.Show();
        Settle();
    }
}

TEST_F(PreviewControls, ADragOfTheCameraEndsWhereTheMouseIsTakenAway)
{
    QWidget* view = GetView();
    for (const auto& [taker, take] : GetTakers(*view)) {
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
            QTest::mousePress(view, button, Qt::NoModifier, QPoint(60, 60));
            MoveIn(*view, QPoint(61, 61), button);
            EXPECT_NE(Window.GetRenderWindow().GetCamera().GetButtons(), 0) << taker;
            take();
            EXPECT_EQ(Window.GetRenderWindow().GetCamera().GetButtons(), 0) << taker;
            Tick(20);
            const TVector3 eye = EyeDirection();
            const float distance = Window.GetRenderWindow().GetCamera().GetPlace().Distance;
            MoveIn(*view, QPoint(90, 80), button);
            Tick(20);
            EXPECT_EQ(EyeDirection(), eye) << taker;
            EXPECT_EQ(Window.GetRenderWindow().GetCamera().GetPlace().Distance, distance) << taker;
            bool opened = false;
            QTimer watch;
            QObject::connect(&watch, &QTimer::timeout, [&] {
                if (QWidget* menu = QApplication::activePopupWidget()) {
                    opened = true;
                    menu->close();
                }
            });
            watch.start(1);
            QTest::mouseRelease(view, button, Qt::NoModifier, QPoint(61, 61));
            Settle();
            EXPECT_FALSE(opened) << taker;
            Window.Show();
            Settle();
        }
    }
    // The next drag is one again.
    const TVector3 eye = EyeDirection();
    QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
    MoveIn(*view, QPoint(90, 60), Qt::LeftButton);
    QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(90, 60));
    Tick(20);
    EXPECT_NE(EyeDirection(), eye);
}

TEST_F(PreviewControls, AMoveWithoutAButtonTellsThatTheCamerasDragHasEnded)
{
    QWidget* view = GetView();
    QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
    MoveIn(*view, QPoint(90, 60), Qt::NoButton);
    EXPECT_EQ(Window.GetRenderWindow().GetCamera().GetButtons(), 0);
    EXPECT_NE(QWidget::mouseGrabber(), view);
    QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(90, 60));
}

TEST_F(PreviewControls, ATimeIsTypedAndReachedOrGivenUp)
{
    QTest::keyClicks(GetView(), " ");
    QLineEdit* field = Find<QLineEdit>("time");
    EXPECT_FALSE(field->isReadOnly()) << "it looks like one that takes input";
    const auto type = [&](const char* text, Qt::Key end) {
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        Tick(10);
        EXPECT_EQ(field->text().toStdString(), text);
        QTest::keyClick(field, end);
        Arrive();
        Tick(10);
    };
    type("2.5", Qt::Key_Return);
    EXPECT_NEAR(Window.GetTime(), 2.5f, 1e-3f);
    EXPECT_EQ(TimeShown(), "2.50");
    EXPECT_EQ(Window.GetHandle()->focusWidget(), GetView());
    type("1", Qt::Key_Escape);
    EXPECT_EQ(TimeShown(), "2.50");
    for (const char* text : {"abc", "-1", "1x", "inf", "nan"})
        type(text, Qt::Key_Return);
    EXPECT_EQ(TimeShown(), "2.50");
    EXPECT_NEAR(Window.GetTime(), 2.5f, 1e-3f);
    // A time that is left there is given up too.
    field->setFocus();
    QTest::keyClicks(field, "7");
    GetView()->setFocus();
    Tick(10);
    EXPECT_EQ(TimeShown(), "2.50");
}

TEST_F(PreviewControls, LoopAndSeedAreSwitchedByKeysAndMenu)
{
    Key(Qt::Key_L);
    EXPECT_EQ(GetClock().GetLoop(), 5);
    Choose(PC_LOOP + 1);
    EXPECT_EQ(GetClock().GetLoop(), 1);
    Key(Qt::Key_L);
    EXPECT_EQ(GetClock().GetLoop(), 0);
    Key(Qt::Key_L);
    EXPECT_EQ(GetClock().GetLoop(), 1);
    Key(Qt::Key_Home);
    Run(20);
    Choose(PC_LOOPHERE);
    EXPECT_NEAR(GetClock().GetLoop(), 0.8f, 1e-3f);
    Key(Qt::Key_S);
    EXPECT_TRUE(GetClock().IsSeedKept());
    EXPECT_EQ(Window.GetTime(), 0);
    Run(5);
    Choose(PC_ANOTHERSEED);
    EXPECT_EQ(Window.GetTime(), 0);
    Choose(PC_SAMESEED);
    EXPECT_FALSE(GetClock().IsSeedKept());
}

TEST_F(PreviewControls, BirthsAreAsOnTheConsoleFromARestartOn)
{
    const auto text = [this] {
        std::string found;
        MeetMenu([&](QMenu& menu) {
            for (QAction* action : menu.actions())
                if (action->objectName() == QStringLiteral("menu%1").arg(PC_BIRTHSAPART))
                    found = ShownText(*action) + (action->isChecked() ? " on" : " off");
            menu.close();
        });
        QTest::mouseClick(GetView(), Qt::RightButton, Qt::NoModifier, QPoint(60, 60));
        return found;
    };
    EXPECT_EQ(text(), "Births as on the console off");
    Run(10);
    const unsigned starts = Sample->GetEngine().GetNumStarts();
    Choose(PC_BIRTHSAPART);
    EXPECT_TRUE(Sample->GetEngine().AreBirthsApart());
    EXPECT_EQ(Sample->GetEngine().GetNumStarts(), starts + 1);
    EXPECT_EQ(text(), "Births as on the console on");
    Choose(PC_BIRTHSAPART);
    EXPECT_FALSE(Sample->GetEngine().AreBirthsApart());
}

TEST_F(PreviewControls, ViewsAreChosenKeptAndFoundAgain)
{
    const TVector3 start = EyeDirection();
    Key(Qt::Key_F2);
    ExpectEye(0, 0, 1);
    Key(Qt::Key_F3);
    ExpectEye(1, 0, 0);
    Key(Qt::Key_F4);
    ExpectEye(0, 1, 0);
    Key(Qt::Key_F9, Qt::ShiftModifier);
    Key(Qt::Key_F10);
    ExpectEye(0, 1, 0);
    Key(Qt::Key_R);
    EXPECT_EQ(EyeDirection(), start);
    Key(Qt::Key_F9);
    ExpectEye(0, 1, 0);
    Choose(PC_STARTVIEW);
    EXPECT_EQ(EyeDirection(), start);
    Choose(PC_CAMERA);
    ExpectEye(0, 1, 0);
}

TEST_F(PreviewControls, TheEffectIsFramed)
{
    Run(50);
    const auto place = [this] { return Window.GetRenderWindow().GetCamera().GetPlace(); };
    const TCameraPlace before = place();
    Key(Qt::Key_F5);
    const TCameraPlace framed = place();
    EXPECT_NE(framed.Target, before.Target);
    EXPECT_EQ(framed.Yaw, before.Yaw);
    // Without particles there is nothing to frame.
    Sample->RebuildSchedule(true);
    Key(Qt::Key_R);
    Key(Qt::Key_F5);
    EXPECT_EQ(place().Target, before.Target);
}

TEST_F(PreviewControls, LooksAreOffAtFirstAndSwitched)
{
    const TPreviewLook plain;
    EXPECT_EQ(Window.GetLook(), plain);
    EXPECT_EQ(plain.Background, BG_GREY);
    EXPECT_TRUE(plain.Ground && !plain.Boxes && !plain.Velocities && !plain.Emitters);
    Key(Qt::Key_F6);
    EXPECT_TRUE(Window.GetLook().Boxes);
    Key(Qt::Key_F7);
    EXPECT_TRUE(Window.GetLook().Velocities);
    Key(Qt::Key_F8);
    EXPECT_TRUE(Window.GetLook().Emitters);
    Choose(PC_GROUND);
    EXPECT_FALSE(Window.GetLook().Ground);
    Choose(int{PC_BACKGROUND} + BG_CHECKER);
    EXPECT_EQ(Window.GetLook().Background, BG_CHECKER);
    Choose(int{PC_BACKGROUND} + BG_GREY);
    Choose(PC_GROUND);
    for (const Qt::Key key : {Qt::Key_F6, Qt::Key_F7, Qt::Key_F8})
        Key(key);
    EXPECT_EQ(Window.GetLook(), plain);
}

TEST_F(PreviewControls, APictureIsChosenForTheBackground)
{
    SetOpenFileChooser([](const char*, const vector<TFileFilter>&, const char*, TString&) { return false; });
    Choose(int{PC_BACKGROUND} + BG_PICTURE);
    EXPECT_EQ(Window.GetLook().Background, BG_GREY);
    SetOpenFileChooser([](const char*, const vector<TFileFilter>&, const char*, TString& path) {
        path = SourcePath("samples/textures/fire.dds").c_str();
        return true;
    });
    Choose(int{PC_BACKGROUND} + BG_PICTURE);
    EXPECT_EQ(Window.GetLook().Background, BG_PICTURE);
}

// A drag of the right button is the camera's.
TEST_F(PreviewControls, OnlyAClickOpensTheMenu)
{
    QWidget* view = GetView();
    QTest::mousePress(view, Qt::RightButton, Qt::NoModifier, QPoint(60, 60));
    QMouseEvent move(QEvent::MouseMove, QPointF(90, 60), view->mapToGlobal(QPointF(90, 60)), Qt::NoButton,
                     Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::RightButton, Qt::NoModifier, QPoint(90, 60));
    Settle();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    // The button opens the same.
    bool met = false;
    MeetMenu([&](QMenu& menu) {
        met = menu.findChild<QAction*>(QStringLiteral("menu%1").arg(PC_SAVEPICTURE)) != nullptr;
        menu.close();
    });
    QTest::mouseClick(Find<QPushButton>("previewmenu"), Qt::LeftButton);
    EXPECT_TRUE(met);
}

TEST_F(PreviewControls, OneGroupIsShownAloneUntilAllAreAskedFor)
{
    const std::vector<int> groups = GetParticleGroupNumbers();
    ASSERT_EQ(groups.size(), 2u);
    Choose(PC_ONLYGROUP + 1 + groups[1]);
    EXPECT_EQ(Window.GetOnlyGroup(), groups[1]);
    Key(Qt::Key_Escape);
    EXPECT_EQ(Window.GetOnlyGroup(), -1);
    Window.ToggleOnlyGroup(groups[0]);
    EXPECT_EQ(Window.GetOnlyGroup(), groups[0]);
    Window.ToggleOnlyGroup(groups[1]);
    EXPECT_EQ(Window.GetOnlyGroup(), groups[1]);
    Window.ToggleOnlyGroup(groups[1]);
    EXPECT_EQ(Window.GetOnlyGroup(), -1);
    Window.ToggleOnlyGroup(99);
    EXPECT_EQ(Window.GetOnlyGroup(), -1);
}

TEST_F(PreviewControls, TheBudgetTellsWhatEachGroupTakes)
{
    EXPECT_FALSE(GetBudget()->isVisible());
    const QRect before = GetView()->geometry();
    ShowBudget();
    EXPECT_TRUE(GetBudget()->isVisible());
    // Between the view and the transport, which keeps its place.
    EXPECT_LT(GetView()->height(), before.height());
    EXPECT_EQ(GetView()->height() + GetBudget()->height(), before.height());
    vector<TGroupBudget> groups = Window.GetBudget().GetGroups();
    ASSERT_EQ(groups.size(), 3);
    // What runs once for the effect has its code too, and no particles.
    const TGroupBudget once = groups[2];
    EXPECT_TRUE(Sample->GetSchedule().IsTriggerGroup(once.Group));
    EXPECT_EQ(Text(once.Name), "Triggers");
    EXPECT_FALSE(once.HasParticles);
    EXPECT_GT(once.Rows, 0);
    EXPECT_GT(once.Program[1] + once.Workspace[1], 0);
    groups.resize(2);
    EXPECT_GT(groups[0].Born + groups[1].Born, 0);
    QTest::keyClicks(GetView(), " ");
    Run(10);
    groups = Window.GetBudget().GetGroups();
    groups.resize(2);
    for (const TGroupBudget& group : groups) {
        EXPECT_TRUE(group.HasParticles);
        EXPECT_GT(group.Alive, 0);
        EXPECT_EQ(group.Alive, Sample->GetEngine().GetNumParticles(group.Group));
        EXPECT_EQ(group.Capacity, Sample->GetSchedule().GetParticleCount(group.Group));
        EXPECT_EQ(group.MaxBorn, Sample->GetSchedule().GetMaxEmission(group.Group));
        EXPECT_GE(group.Peak, group.Alive);
        EXPECT_LE(group.Born, group.MaxBorn);
        EXPECT_GT(group.Rows, 5);
        EXPECT_LE(group.Rows, 64);
        EXPECT_GT(group.Program[1], 0);
    }
    EXPECT_STRNE(groups[0].Name.Print(), groups[1].Name.Print());
    TTempFolder folder;
    ASSERT_TRUE(Sample->Export(folder.Path("campfire.efx").c_str()));
    EXPECT_EQ(Window.GetBudget().GetNumBytes(),
              static_cast<int>(std::filesystem::file_size(folder.Path("campfire.efx"))));
    Choose(PC_BUDGET);
    Settle();
    EXPECT_EQ(GetView()->geometry(), before);
}

TEST_F(PreviewControls, AClickOnTheBudgetFramesTheGroupAndWithAltShowsItAlone)
{
    ShowBudget();
    const std::vector<int> groups = GetParticleGroupNumbers();
    const auto row = [](int i) { return QPoint(60, 18 * (i + 1) + 9); };
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::NoModifier, row(1));
    EXPECT_EQ(Host.Framed, std::vector<int>{groups[1]});
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 5));
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::NoModifier, row(3));
    EXPECT_EQ(Host.Framed.size(), 1u) << "titles and totals are no groups";
    // Triggers have nodes, and nothing to draw.
    const int triggers = Window.GetBudget().GetGroups()[2].Group;
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::NoModifier, row(2));
    EXPECT_EQ(Host.Framed, (std::vector<int>{groups[1], triggers}));
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::AltModifier, row(2));
    EXPECT_EQ(Window.GetOnlyGroup(), -1);
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::AltModifier, row(0));
    EXPECT_EQ(Window.GetOnlyGroup(), groups[0]);
    QTest::mouseClick(GetBudget(), Qt::LeftButton, Qt::AltModifier, row(0));
    EXPECT_EQ(Window.GetOnlyGroup(), -1);
    EXPECT_EQ(Host.Framed.size(), 2u);
}

TEST_F(PreviewControls, AGroupAtItsCapIsRedInTheBudget)
{
    constexpr QRgb calm = 0x9CC4A0;
    constexpr QRgb full = 0xE08078;
    constexpr QRgb over = 0xC01818;
    constexpr int nearly = 100;
    TEffectNode* emitter = nullptr;
    for (int i = 0; i < Sample->GetGraph()->GetNumNodes() && emitter == nullptr; ++i)
        if (Sample->GetGraph()->GetNode(i)->GetNodeType()->FindParameter("Particle Count") != nullptr)
            emitter = Sample->GetGraph()->GetNode(i);
    ASSERT_NE(emitter, nullptr);
    auto& count = *emitter->GetNodeType()->FindParameterOf<TNodeIntParameter>("Particle Count", PK_INT);
    ShowBudget();
    int line = -1;
    const auto shown = [&]() -> const TGroupBudget& { return Window.GetBudget().GetGroups()[line]; };
    for (int i = 0; i < Window.GetBudget().GetGroups().size(); ++i)
        if (Window.GetBudget().GetGroups()[i].Capacity == count.Get())
            line = i;
    ASSERT_NE(line, -1);
    Run(40);
    ASSERT_LT(shown().Alive, shown().Capacity);
    EXPECT_GT(CountColour(GrabBudgetLine(line), calm), 50);
    EXPECT_EQ(CountColour(GrabBudgetLine(line), full), 0);
    EXPECT_EQ(CountColour(GrabBudgetLine(line), over, nearly), 0);
    constexpr int few = 3;
    count.SetValue(few);
    Sample->RebuildSchedule(true);
    Run(40);
    ASSERT_EQ(shown().Capacity, few);
    ASSERT_EQ(shown().Alive, few);
    EXPECT_EQ(CountColour(GrabBudgetLine(line), calm), 0);
    EXPECT_GT(CountColour(GrabBudgetLine(line), full), 300);
    EXPECT_GT(CountColour(GrabBudgetLine(line), over, nearly), 10);
    EXPECT_EQ(CountColour(GrabBudgetLine(line == 0 ? 1 : 0), over, nearly), 0) << "the other group has room";
}

TEST_F(PreviewControls, TheViewSaysWhyNothingIsSeen)
{
    QWidget* notice = Find<QWidget>("cindermill_particlewindow_notice");
    Run(30);
    EXPECT_FALSE(notice->isVisible());
    Sample->ClearEngine();
    Run(5);
    EXPECT_TRUE(notice->isVisible());
    EXPECT_TRUE(notice->toolTip().contains("not running"));
    EXPECT_TRUE(GetView()->rect().contains(notice->geometry()));
    QTest::mouseClick(Find<QPushButton>("update"), Qt::LeftButton);
    Run(30);
    EXPECT_FALSE(notice->isVisible());
}

// Whatever is chosen, whatever the size: it must fit a small screen.
TEST_F(PreviewControls, EverythingFitsANarrowWindow)
{
    ShowBudget();
    for (const int width : {240, 340, 400, 480, 640, 800, 1200}) {
        Window.MoveTo(0, 50, width, 420);
        Settle();
        Tick(20);
        const QWidget* strip = Find<QWidget>("cindermill_particlewindow_timeline");
        QRect last(-1, 0, 1, 1);
        for (const char* name : {"update", "time", "step", "pause", "play", "cindermill_particlewindow_seek",
                                 "speed", "previewmenu"}) {
            const QWidget* control = Find<QWidget>(name);
            if (!control->isVisible())
                continue;
            EXPECT_GT(control->geometry().left(), last.right()) << name << " " << width;
            EXPECT_TRUE(strip->rect().contains(control->geometry())) << name << " " << width;
            last = control->geometry();
        }
        EXPECT_TRUE(Find<QWidget>("play")->isVisible());
        EXPECT_EQ(Find<QWidget>("previewmenu")->isVisible(), width > 260) << width;
        EXPECT_TRUE(Window.GetHandle()->rect().contains(GetBudget()->geometry()));
        EXPECT_GE(GetView()->height(), 150);
    }
}

// Nothing is painted for what does not change.
TEST_F(PreviewControls, APausedPreviewIsLeftAloneWithAllOfItShown)
{
    ShowBudget();
    for (const Qt::Key key : {Qt::Key_F6, Qt::Key_F7, Qt::Key_F8})
        Key(key);
    Run(20);
    QTest::keyClicks(GetView(), " ");
    Run(20);
    Settle();
    TPaintCounter view(*GetView());
    TPaintCounter bar(*Find<QWidget>("cindermill_particlewindow_seek"));
    TPaintCounter strip(*Find<QWidget>("cindermill_particlewindow_timeline"));
    for (int i = 0; i < 20; ++i) {
        Tick(40);
        Settle();
    }
    EXPECT_EQ(view.Paints, 0);
    EXPECT_EQ(bar.Paints, 0);
    EXPECT_EQ(strip.Paints, 0);
    TPaintCounter budget(*GetBudget());
    for (int i = 0; i < 20; ++i) {
        Tick(40);
        Settle();
    }
    EXPECT_EQ(budget.Paints, 0);
}

TEST_F(PreviewControls, TheTimeAtTheEndOfTheBarIsReadWhole)
{
    QWidget* bar = Find<QWidget>("cindermill_particlewindow_seek");
    // Ten hours, and what has passed by the time that somebody comes back to a tool left running.
    for (const float end : {5.0f, 12.345f, 600.0f, 3600.0f, 36000.0f}) {
        GetClock().SetLoop(end);
        Tick(20);
        Settle();
        const QImage picture = bar->grab().toImage();
        const QRgb paper = picture.pixel(picture.width() - 1, 0);
        for (int x = picture.width() - 2; x < picture.width(); ++x)
            for (int y = 0; y < picture.height(); ++y)
                EXPECT_EQ(picture.pixel(x, y), paper) << end << " at " << x << ", " << y;
    }
}

TEST_F(PreviewControls, EveryControlHasANameAndTheTimeBarIsASliderOfSeconds)
{
    ShowBudget();
    EXPECT_GE(ExpectNames(*Window.GetHandle()), 8);
    for (const char* name : {"update", "time", "step", "pause", "play", "speed", "previewmenu"})
        EXPECT_FALSE(
            QAccessible::queryAccessibleInterface(Find<QWidget>(name))->text(QAccessible::Name).isEmpty())
            << name;
    EXPECT_EQ(QAccessible::queryAccessibleInterface(Find<QWidget>("speed"))->text(QAccessible::Name),
              QString("Speed 1x"));
    Run(25);
    QWidget* bar = Find<QWidget>("cindermill_particlewindow_seek");
    QAccessibleInterface* slider = QAccessible::queryAccessibleInterface(bar)->child(0);
    ASSERT_NE(slider, nullptr);
    ASSERT_EQ(slider->role(), QAccessible::Slider);
    EXPECT_NEAR(slider->valueInterface()->currentValue().toDouble(), double(Window.GetTime()), 0.05);
    EXPECT_EQ(slider->valueInterface()->maximumValue().toDouble(), 5);
    slider->valueInterface()->setCurrentValue(2.5);
    Arrive();
    EXPECT_NEAR(Window.GetTime(), 2.5f, 0.03f);
    Window.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return Window.GetHandle()->isActiveWindow(); }));
    const QRgb before = bar->grab().toImage().pixel(0, bar->height() / 2);
    bar->setFocus();
    EXPECT_NE(bar->grab().toImage().pixel(0, bar->height() / 2), before);
    // By the keys, a fiftieth of the bar, and ten of these.
    QTest::keyClick(bar, Qt::Key_Right);
    Arrive();
    EXPECT_NEAR(Window.GetTime(), 2.6f, 0.03f);
    QTest::keyClick(bar, Qt::Key_PageDown);
    Arrive();
    EXPECT_NEAR(Window.GetTime(), 1.6f, 0.03f);
    // They end where the bar does.
    const auto press = [&](Qt::Key key, int times) {
        for (; times > 0; --times, Arrive())
            QTest::keyClick(bar, key);
    };
    press(Qt::Key_PageDown, 2);
    press(Qt::Key_Left, 1);
    EXPECT_NEAR(Window.GetTime(), 0, 0.03f);
    press(Qt::Key_PageUp, 5);
    press(Qt::Key_Right, 1);
    EXPECT_NEAR(Window.GetTime(), 5, 0.03f);
    // Its other keys are the preview's.
    QTest::keyClick(bar, Qt::Key_Space);
    EXPECT_TRUE(GetClock().IsPaused());
}

TEST_F(PreviewControls, TheLinesOfTheBudgetAreReadAndPressedByKeys)
{
    ShowBudget();
    Run(10);
    QAccessibleInterface* budget = QAccessible::queryAccessibleInterface(GetBudget());
    const int groups = Window.GetBudget().GetGroups().size();
    ASSERT_GT(groups, 1);
    ASSERT_EQ(budget->childCount(), groups + 1);
    EXPECT_TRUE(budget->child(0)->text(QAccessible::Value).startsWith("Alive "));
    EXPECT_TRUE(budget->child(groups)->text(QAccessible::Name).startsWith("Effect: "));
    QTest::keyClick(GetBudget(), Qt::Key_Down);
    QTest::keyClick(GetBudget(), Qt::Key_Return);
    const int second = Window.GetBudget().GetGroups()[1].Group;
    EXPECT_EQ(Host.Framed, (std::vector<int>{second}));
    budget->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(Host.Framed.size(), 2u);
}
