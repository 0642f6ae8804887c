#include "library/wimp/controls/button.h"
#include "library/wimp/controls/splitwindow.h"
#include "library/wimp/controls/textfield.h"
#include "support/windowtest.h"

#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <memory>

namespace {

class TControlTest : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }

    TWindowClass Class{"test_controls"};
    TRecordingWindow Window;
};

// An owner as a document window is one.
class TSplitOwner : public TRecordingWindow
{
public:
    bool OnMessage(const TMessage& message) override
    {
        TRecordingWindow::OnMessage(message);
        LastTaken = Split.OnMessage(message);
        return LastTaken;
    }
    TSplitWindow Split;
    bool LastTaken = false;
};

class TSplitWindowTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        Owner.Split.Attach(&Owner);
        ShowTopWindow(Owner, Class, 404, 300);
        for (TRecordingWindow& pane : Panes) {
            TWindowParams params;
            params.Class = &PaneClass;
            params.Owner = &Owner;
            ASSERT_TRUE(pane.Create(params));
        }
    }
    QRect Place(int pane) { return Panes[pane].GetHandle()->geometry(); }
    QWidget* Widget() { return Owner.GetHandle(); }

    TWindowClass Class{"test_split"};
    TWindowClass PaneClass{"test_pane"};
    TSplitOwner Owner;
    TRecordingWindow Panes[3];
};

} // namespace

TEST_F(TControlTest, AButtonReportsCode7)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 42, "Update", "update"));
    QPushButton* widget = Window.GetHandle()->findChild<QPushButton*>("update");
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->text(), QString("Update"));
    QTest::mouseClick(widget, Qt::LeftButton);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Control, &button);
    EXPECT_EQ(Window.Commands[0].Argument, 42);
    EXPECT_EQ(Window.Commands[0].Code, CC_BUTTON);
}

TEST_F(TControlTest, ADisabledButtonReportsNothing)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "x", "x"));
    button.Enable(false);
    QTest::mouseClick(button.GetHandle(), Qt::LeftButton);
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TControlTest, AButtonShowsAPictureWithATip)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "", "pause"));
    button.SetIcon(131, "Pause");
    const QPushButton* widget = qobject_cast<QPushButton*>(button.GetHandle());
    EXPECT_FALSE(widget->icon().isNull());
    EXPECT_EQ(widget->toolTip(), QString("Pause"));
}

TEST_F(TControlTest, OnlyTheProgramPressesAButtonForGood)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "", "pause"));
    button.SetPressed(true);
    const QPushButton* widget = qobject_cast<QPushButton*>(button.GetHandle());
    EXPECT_TRUE(widget->isChecked());
    QTest::mouseClick(button.GetHandle(), Qt::LeftButton);
    EXPECT_TRUE(widget->isChecked());
    button.SetPressed(false);
    EXPECT_FALSE(widget->isChecked());
}

TEST_F(TControlTest, AButtonAndItsWindowMayGoInTheAnswer)
{
    auto button = std::make_unique<TButton>();
    ASSERT_TRUE(button->Create(&Window, 1, "x", "x"));
    Window.AnswerCommand = [&](const TRecordingWindow::TCommand&) {
        button.reset();
        Window.Destroy();
    };
    QTest::mouseClick(button->GetHandle(), Qt::LeftButton);
    EXPECT_EQ(button, nullptr);
    Settle();
    EXPECT_EQ(Window.GetHandle(), nullptr);
}

TEST_F(TControlTest, AControlNeedsAnOwner)
{
    TButton button;
    EXPECT_FALSE(button.Create(nullptr, 1, "x", "x"));
    TTextField field;
    EXPECT_FALSE(field.Create(nullptr, 1, "x", true));
    EXPECT_FALSE(field.CreateLabel(nullptr, "x", "x"));
}

TEST_F(TControlTest, AControlIsMovedAndHidden)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "x", "x"));
    button.MoveTo(10, 20, 80, 24);
    EXPECT_EQ(button.GetHandle()->geometry(), QRect(10, 20, 80, 24));
    button.Show(false);
    EXPECT_FALSE(button.GetHandle()->isVisible());
}

TEST_F(TControlTest, ATextFieldShowsItsText)
{
    TTextField field;
    ASSERT_TRUE(field.Create(&Window, 5, "time", true));
    field.SetText("1.25");
    const QLineEdit* widget = Window.GetHandle()->findChild<QLineEdit*>("time");
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->text(), QString("1.25"));
    EXPECT_TRUE(widget->isReadOnly());
    TString text;
    field.GetText(text);
    EXPECT_EQ(Text(text), "1.25");
}

TEST_F(TControlTest, ALabelShowsItsText)
{
    TTextField label;
    ASSERT_TRUE(label.CreateLabel(&Window, "Time:", "timelabel"));
    EXPECT_EQ(Window.GetHandle()->findChild<QLabel*>("timelabel")->text(), QString("Time:"));
    label.SetText("<b>");
    TString text;
    label.GetText(text);
    EXPECT_EQ(Text(text), "<b>");
}

TEST_F(TSplitWindowTest, APaneNeedsAWindow)
{
    EXPECT_EQ(AssertionOf([&] { Owner.Split.AddPane(nullptr, false, nullptr, -1); }), "window != 0");
}

TEST_F(TSplitWindowTest, TheOnlyPaneFillsItsOwner)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 300));
}

TEST_F(TSplitWindowTest, TheBoundIsTheSizeOfThePaneBeforeTheGap)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    EXPECT_EQ(Place(0), QRect(0, 0, 200, 300));
    EXPECT_EQ(Place(1), QRect(204, 0, 200, 300));
}

TEST_F(TSplitWindowTest, MinusOneIsHalfOfTheNeighbour)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], true, &Panes[0], -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 150));
    EXPECT_EQ(Place(1), QRect(0, 154, 404, 146));
    Owner.Split.AddPane(&Panes[2], false, &Panes[1], -1);
    EXPECT_EQ(Place(1), QRect(0, 154, 202, 146));
    EXPECT_EQ(Place(2), QRect(206, 154, 198, 146));
}

TEST_F(TSplitWindowTest, APaneInsertedBetweenTakesFromItsNeighbourOnly)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.Split.AddPane(&Panes[2], false, &Panes[0], -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 100, 300));
    EXPECT_EQ(Place(2), QRect(104, 0, 96, 300));
    EXPECT_EQ(Place(1), QRect(204, 0, 200, 300));
}

TEST_F(TSplitWindowTest, APaneAfterNoOneComesFirst)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, nullptr, 50);
    EXPECT_EQ(Place(1), QRect(0, 0, 50, 300));
    EXPECT_EQ(Place(0), QRect(54, 0, 350, 300));
}

TEST_F(TSplitWindowTest, TheLastPaneTakesAResize)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.MoveTo(40, 40, 504, 350);
    ASSERT_TRUE(WaitFor([&] { return Place(1).width() == 300; }));
    EXPECT_EQ(Place(0), QRect(0, 0, 200, 350));
    EXPECT_EQ(Place(1), QRect(204, 0, 300, 350));
}

TEST_F(TSplitWindowTest, AnOwnerTooSmallLeavesNoPaneOutside)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.MoveTo(40, 40, 120, 60);
    ASSERT_TRUE(WaitFor([&] { return Place(0).height() == 60; }));
    EXPECT_EQ(Place(0), QRect(0, 0, 116, 60));
    EXPECT_EQ(Place(1).width(), 0);
}

TEST_F(TSplitWindowTest, AGapIsDragged)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(201, 100));
    EXPECT_TRUE(Owner.LastTaken);
    EXPECT_EQ(QWidget::mouseGrabber(), Widget());
    QTest::mouseMove(Widget(), QPoint(251, 120));
    EXPECT_EQ(Place(0), QRect(0, 0, 250, 300));
    EXPECT_EQ(Place(1), QRect(254, 0, 150, 300));
    QTest::mouseMove(Widget(), QPoint(-100, 120));
    EXPECT_EQ(Place(0).width(), 10);
    QTest::mouseMove(Widget(), QPoint(1000, 120));
    EXPECT_EQ(Place(1).width(), 10);
    QTest::mouseMove(Widget(), QPoint(101, 120));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(101, 120));
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::mouseMove(Widget(), QPoint(300, 120));
    EXPECT_EQ(Place(0).width(), 100);
}

TEST_F(TSplitWindowTest, AnUprightGapIsDragged)
{
    Owner.Split.AddPane(&Panes[0], true, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], true, &Panes[0], 100);
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(50, 102));
    QTest::mouseMove(Widget(), QPoint(60, 82));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(60, 82));
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 80));
}

TEST_F(TSplitWindowTest, APressBesideTheGapIsTheOwners)
{
    TMessage message;
    message.Type = MT_LEFTDOWN;
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    message.X = 199;
    EXPECT_FALSE(Owner.Split.OnMessage(message));
    message.X = 204;
    EXPECT_FALSE(Owner.Split.OnMessage(message));
    message.X = 203;
    EXPECT_TRUE(Owner.Split.OnMessage(message));
    message.Type = MT_LEFTUP;
    EXPECT_TRUE(Owner.Split.OnMessage(message));
    EXPECT_FALSE(Owner.Split.OnMessage(message));
}

TEST_F(TSplitWindowTest, ThePointerChangesOverAGap)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.Split.AddPane(&Panes[2], true, &Panes[1], 100);
    TMessage message;
    message.Type = MT_MOUSEMOVE;
    message.X = 202;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::SplitHCursor);
    message.X = 300;
    message.Y = 101;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::SplitVCursor);
    message.Type = MT_MOUSELEAVE;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(TSplitWindowTest, TheGapHasTheColourOfButtons)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Settle();
    const QImage image = Widget()->grab().toImage();
    EXPECT_EQ(image.pixel(201, 50) & 0xFFFFFF, GetButtonColour());
}
