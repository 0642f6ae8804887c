#include "particles/cindermill/interface/particles/particlewindow.h"

#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/system/clock.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

namespace {

uint32_t TransportTick = 5000;

uint32_t GetTransportTick()
{
    return TransportTick;
}

class PreviewTransport : public TWindowTest
{
protected:
    void SetUp() override
    {
        SetTickCountSource(&GetTransportTick);
        ASSERT_TRUE(Window.Create(*Sample));
        Window.Show();
        ASSERT_TRUE(WaitFor([this] { return Window.IsShown(); }));
        Settle();
        Run(5);
    }
    void TearDown() override
    {
        Window.Destroy();
        SetTickCountSource(nullptr);
    }
    template <class TWidget = QWidget>
    TWidget* Find(const char* name)
    {
        TWidget* widget = Window.GetHandle()->findChild<TWidget*>(QString::fromUtf8(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void Run(int ticks)
    {
        for (int i = 0; i < ticks; ++i) {
            TransportTick += 40;
            Window.Tick();
        }
    }
    TPreviewClock& GetClock() { return Window.GetTimeline().GetClock(); }

    TQuiet Quiet;
    TTestApp App;
    TSampleDocument Sample{App, "campfire"};
    TParticleWindow Window;
};

} // namespace

TEST_F(PreviewTransport, ATimeIsTypedOverTheOneThatRuns)
{
    QLineEdit* field = Find<QLineEdit>("time");
    QTest::mouseClick(field, Qt::LeftButton, Qt::NoModifier, QPoint(10, 8));
    // Frames pass between a hand's click, its letters and its Return.
    Run(3);
    QTest::keyClick(field, Qt::Key_3);
    Run(3);
    EXPECT_EQ(field->text(), "3");
    QTest::keyClick(field, Qt::Key_0);
    Run(3);
    EXPECT_EQ(field->text(), "30");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(GetClock().IsSeeking());
    EXPECT_EQ(GetClock().GetSeekTime(), 30);
}

// As wide as a display beside a graph is on a usual screen, and with budget and all.
TEST_F(PreviewTransport, TheTimeCanBeDraggedInANarrowWindow)
{
    for (const int width : {420, 487, 535, 599}) {
        Window.MoveTo(0, 50, width, 420);
        Settle();
        const QWidget* bar = Find("cindermill_particlewindow_seek");
        EXPECT_TRUE(bar->isVisible()) << width;
        EXPECT_FALSE(Find("timelabel")->isVisible()) << width;
        const QLineEdit* field = Find<QLineEdit>("time");
        EXPECT_GE(field->width(), field->fontMetrics().horizontalAdvance("3600.00") + 8);
    }
    Window.MoveTo(0, 50, 700, 420);
    Settle();
    EXPECT_TRUE(Find("timelabel")->isVisible());
}

TEST_F(PreviewTransport, GroupsOfOneNameAreToldApartInANarrowBudget)
{
    ASSERT_TRUE(Window.OnPreviewCommand(PC_BUDGET));
    for (const int width : {240, 300, 380, 440, 487, 600, 800, 1800}) {
        Window.MoveTo(0, 50, width, 420);
        Settle();
        Run(5);
        const QImage budget = Find("cindermill_particlewindow_budget")->grab().toImage();
        // How many are alive is told at any width, as a bar right of the name and not far from it.
        constexpr int rowHeight = 18;
        int bar = 0;
        while (bar < width && budget.pixel(bar, rowHeight + 4) != qRgb(0x9C, 0xC4, 0xA0))
            ++bar;
        ASSERT_LT(bar, 400) << width;
        EXPECT_GE(bar, 100) << width;
        EXPECT_NE(budget.copy(0, rowHeight, bar, rowHeight), budget.copy(0, 2 * rowHeight, bar, rowHeight))
            << width;
    }
}

// By the number that matters, where there is no room for what it is made of.
TEST_F(PreviewTransport, TheCostOfAFrameIsNotCutInItsMiddle)
{
    ASSERT_TRUE(Window.OnPreviewCommand(PC_BUDGET));
    for (const int width : {400, 800}) {
        Window.MoveTo(0, 50, width, 420);
        Settle();
        Run(20);
        const QImage budget = Find("cindermill_particlewindow_budget")->grab().toImage();
        const auto hasInk = [&](int x) {
            for (int y = budget.height() - 15; y < budget.height() - 2; ++y)
                if (qGray(budget.pixel(x, y)) < 128)
                    return true;
            return false;
        };
        int gap = 0;
        int widest = 0;
        int inked = 0;
        for (int x = 0; x < width - 20; ++x) {
            const bool ink = hasInk(x);
            inked += ink ? 1 : 0;
            gap = ink ? 0 : gap + 1;
            widest = std::max(widest, gap);
        }
        EXPECT_GT(inked, 30) << width;
        EXPECT_GT(widest, 30) << width;
    }
}

TEST_F(PreviewTransport, TheKeysOfThePreviewWorkWhereverTheFocusIsButInTheTime)
{
    ASSERT_TRUE(Window.OnPreviewCommand(PC_BUDGET));
    const auto getEye = [this] { return Window.GetRenderWindow().GetCamera().GetPlace(); };
    const TCameraPlace first = getEye();
    for (const char* name : {"cindermill_particlewindow_render", "cindermill_particlewindow_seek",
                             "cindermill_particlewindow_budget", "update"}) {
        QWidget* widget = Find(name);
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_F4);
        EXPECT_GT(getEye().Pitch, 1.5f) << name;
        QTest::keyClick(widget, Qt::Key_R);
        EXPECT_EQ(getEye().Pitch, first.Pitch) << name;
        EXPECT_EQ(getEye().Yaw, first.Yaw) << name;
    }
    QLineEdit* field = Find<QLineEdit>("time");
    QTest::keyClick(field, Qt::Key_F4);
    QTest::keyClick(field, Qt::Key_R);
    EXPECT_GT(getEye().Pitch, 1.5f) << "a letter that is typed";
}

TEST_F(PreviewTransport, AHeldKeySwitchesOnceAndStepsOn)
{
    QWidget* view = Find("cindermill_particlewindow_render");
    const auto hold = [view](int key, const char* text) {
        for (const bool isRepeat : {false, true}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text, isRepeat);
            QApplication::sendEvent(view, &event);
        }
        QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(view, &event);
    };
    hold(Qt::Key_L, "l");
    EXPECT_GT(GetClock().GetLoop(), 0);
    hold(Qt::Key_S, "s");
    EXPECT_TRUE(GetClock().IsSeedKept());
    hold(Qt::Key_F6, "");
    EXPECT_TRUE(Window.GetLook().Boxes);
    hold(Qt::Key_F7, "");
    EXPECT_TRUE(Window.GetLook().Velocities);
    hold(Qt::Key_F8, "");
    EXPECT_TRUE(Window.GetLook().Emitters);
    const int speed = GetClock().GetSpeed();
    hold(Qt::Key_Minus, "-");
    EXPECT_EQ(GetClock().GetSpeed(), speed - 2);
    hold(Qt::Key_Plus, "+");
    EXPECT_EQ(GetClock().GetSpeed(), speed);
    hold(Qt::Key_Space, " ");
    EXPECT_TRUE(GetClock().IsPaused());
    const float before = Window.GetTime();
    QTest::keyClick(view, Qt::Key_Period);
    const float step = Window.GetTime() - before;
    ASSERT_GT(step, 0);
    hold(Qt::Key_Period, ".");
    EXPECT_NEAR(Window.GetTime(), before + 3 * step, step / 2);
}
