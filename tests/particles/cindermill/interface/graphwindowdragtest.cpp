#include "graphwindowfixture.h"

#include "library/wimp/dialog.h"

#include <QtWidgets/QDialog>

TEST_F(GraphWindow, ALeftButtonPanDoesNotSwallowALaterRightClick)
{
    SetPanButton(PanLeft);
    Drag(Graph(), Empty, Empty + QPoint(50, 0));
    EXPECT_NE(RightClick(MiddleOf(*Document, First)), "");
}

TEST_F(GraphWindow, TheReleaseAfterACancelledPanIsNoClick)
{
    SetPanButton(PanRight);
    const QPoint at = MiddleOf(*Document, First);
    EXPECT_EQ(MenuOf([&] {
                  Press(Graph(), at, Qt::RightButton);
                  Key(Graph(), Qt::Key_Escape);
                  Release(Graph(), at, Qt::RightButton);
              }),
              "");
    EXPECT_NE(RightClick(at), "");
}

TEST_F(GraphWindow, WhileAnotherButtonPansAPressOnANodeStartsNoDrag)
{
    SetPanButton(PanMiddle);
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at, Qt::MiddleButton);
    TMessage press;
    press.Type = MT_LEFTDOWN;
    press.X = at.x();
    press.Y = at.y();
    press.Buttons = MB_LEFT | MB_MIDDLE;
    EXPECT_EQ(AssertionOf([&] { Graph().OnMessage(press); }), "");
    EXPECT_FALSE(WindowsOf(*Document).GetScene().GetCanvas().IsDragging());
    Move(Graph(), at + QPoint(20, 0), Qt::LeftButton | Qt::MiddleButton);
    Release(Graph(), at + QPoint(20, 0));
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(Second->GetX(), 200);
}

TEST_F(GraphWindow, APanFromANodeGoesOnWhileTheLeftButtonIsPressedAndReleased)
{
    SetPanButton(PanMiddle);
    const int steps = NumUndoSteps();
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at, Qt::MiddleButton);
    Move(Graph(), at + QPoint(10, 0), Qt::MiddleButton);
    Press(Graph(), at + QPoint(10, 0), Qt::LeftButton, Qt::NoModifier, Qt::MiddleButton);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), &Graph());
    EXPECT_TRUE(IsSelected(Second));
    Move(Graph(), at + QPoint(40, 5), Qt::LeftButton | Qt::MiddleButton);
    EXPECT_EQ(Offset(), TVector2(40, 5));
    Release(Graph(), at + QPoint(40, 5), Qt::LeftButton, Qt::NoModifier, Qt::MiddleButton);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_PANNING);
    Move(Graph(), at + QPoint(50, 5), Qt::MiddleButton);
    EXPECT_EQ(Offset(), TVector2(50, 5));
    Release(Graph(), at + QPoint(50, 5), Qt::MiddleButton);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(NumUndoSteps(), steps);
    // The next drag is a node's again.
    Drag(Graph(), MiddleOf(*Document, Second), MiddleOf(*Document, Second) + QPoint(20, 0));
    EXPECT_EQ(Second->GetX(), 220);
}

TEST_F(GraphWindow, APanEndsWithItsOwnButtonWhateverElseIsHeld)
{
    SetPanButton(PanMiddle);
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at, Qt::MiddleButton);
    Press(Graph(), at, Qt::LeftButton, Qt::NoModifier, Qt::MiddleButton);
    Release(Graph(), at, Qt::MiddleButton, Qt::NoModifier, Qt::LeftButton);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Move(Graph(), at + QPoint(40, 5), Qt::LeftButton);
    EXPECT_EQ(Offset(), TVector2(0, 0));
    Release(Graph(), at + QPoint(40, 5));
    EXPECT_EQ(Second->GetX(), 200);
}

TEST_F(GraphWindow, ADragOfANodeGoesOnWhileOtherButtonsArePressedAndReleased)
{
    for (int button : {PanLeft, PanMiddle, PanRight}) {
        SetPanButton(button);
        const int steps = NumUndoSteps();
        const int x = Second->GetX();
        const QPoint at = MiddleOf(*Document, Second);
        Press(Graph(), at);
        Move(Graph(), at + QPoint(10, 0));
        for (Qt::MouseButton other : {Qt::MiddleButton, Qt::RightButton}) {
            EXPECT_EQ(MenuOf([&] {
                          Press(Graph(), at + QPoint(10, 0), other, Qt::NoModifier, Qt::LeftButton);
                          Move(Graph(), at + QPoint(20, 0), Qt::LeftButton | other);
                          Release(Graph(), at + QPoint(20, 0), other, Qt::NoModifier, Qt::LeftButton);
                      }),
                      "");
            EXPECT_TRUE(WindowsOf(*Document).GetScene().GetCanvas().IsDragging());
        }
        Release(Graph(), at + QPoint(20, 0));
        EXPECT_EQ(Second->GetX(), x + 20);
        EXPECT_EQ(Offset(), TVector2(0, 0));
        EXPECT_EQ(NumUndoSteps(), steps + 1);
    }
}

TEST_F(GraphWindow, ABoxGoesOnWhileOtherButtonsArePressedAndReleased)
{
    SetPanButton(PanMiddle);
    Press(Graph(), QPoint(100, 100));
    Move(Graph(), QPoint(250, 250));
    for (Qt::MouseButton other : {Qt::MiddleButton, Qt::RightButton})
        EXPECT_EQ(MenuOf([&] {
                      Press(Graph(), MiddleOf(*Document, First), other, Qt::NoModifier, Qt::LeftButton);
                      Release(Graph(), MiddleOf(*Document, First), other, Qt::NoModifier, Qt::LeftButton);
                  }),
                  "");
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_BOXSELECT);
    Move(Graph(), QPoint(500, 550));
    Release(Graph(), QPoint(500, 550));
    EXPECT_EQ(NumSelected(), 2);
    EXPECT_EQ(Offset(), TVector2(0, 0));
}

TEST_F(GraphWindow, ANumberOfThePanButtonThatNamesNoneLetsEveryLeftDragSelect)
{
    for (int button : {3, -1, 40}) {
        SetPanButton(button);
        Document->ClearSelection();
        Drag(Graph(), Empty, Empty + QPoint(30, 0), Qt::MiddleButton);
        Drag(Graph(), Empty, Empty + QPoint(30, 0), Qt::RightButton);
        EXPECT_EQ(Offset(), TVector2(0, 0));
        Drag(Graph(), QPoint(100, 100), QPoint(500, 550));
        EXPECT_EQ(NumSelected(), 2);
    }
}

TEST_F(GraphWindow, AWheelDuringAPanLeavesTheWorldUnderThePointer)
{
    SetPanButton(PanMiddle);
    Press(Graph(), Empty, Qt::MiddleButton);
    const QPoint at = Empty + QPoint(50, 30);
    Move(Graph(), at, Qt::MiddleButton);
    const TVector2 held = Graph().PixelToWorld(at.x(), at.y());
    for (int i = 0; i < 5; ++i)
        Wheel(Graph(), at, 120);
    ASSERT_GT(Graph().GetView().GetScale()[0], 1.3f);
    Move(Graph(), at, Qt::MiddleButton);
    TVector2 now = Graph().PixelToWorld(at.x(), at.y());
    EXPECT_NEAR(now[0], held[0], 1);
    EXPECT_NEAR(now[1], held[1], 1);
    Move(Graph(), at + QPoint(60, -20), Qt::MiddleButton);
    now = Graph().PixelToWorld(at.x() + 60, at.y() - 20);
    EXPECT_NEAR(now[0], held[0], 1);
    EXPECT_NEAR(now[1], held[1], 1);
    Release(Graph(), at + QPoint(60, -20), Qt::MiddleButton);
}

TEST_F(GraphWindow, AWheelDuringADragOfANodeLeavesItUnderThePointer)
{
    const int steps = NumUndoSteps();
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at);
    for (int i = 0; i < 7; ++i)
        Wheel(Graph(), at, i < 4 ? -120 : 120);
    Move(Graph(), at);
    Release(Graph(), at);
    EXPECT_EQ(Second->GetX(), 200);
    EXPECT_EQ(Second->GetY(), 400);
    EXPECT_EQ(NumUndoSteps(), steps);
}

TEST_F(GraphWindow, AWheelDuringABoxKeepsItsCornerInTheWorld)
{
    SetPanButton(PanMiddle);
    Press(Graph(), QPoint(100, 100));
    Move(Graph(), QPoint(400, 300));
    for (int i = 0; i < 6; ++i)
        Wheel(Graph(), QPoint(400, 300), -120);
    Move(Graph(), QPoint(401, 320));
    Release(Graph(), QPoint(401, 320));
    EXPECT_TRUE(IsSelected(First));
    EXPECT_FALSE(IsSelected(Second));
}

TEST_F(GraphWindow, FramingDuringAPanGoesOnFromThere)
{
    SetPanButton(PanMiddle);
    Press(Graph(), Empty, Qt::MiddleButton);
    Move(Graph(), Empty + QPoint(30, 0), Qt::MiddleButton);
    View().FocusAll(false);
    const TVector2 before = Graph().PixelToWorld(0, 0);
    Move(Graph(), Empty + QPoint(31, 0), Qt::MiddleButton);
    EXPECT_NEAR(Graph().PixelToWorld(0, 0)[0], before[0], 3);
    Release(Graph(), Empty + QPoint(31, 0), Qt::MiddleButton);
}

TEST_F(GraphWindow, AClickDuringARunningFocusStopsItAndMovesNothing)
{
    const int steps = NumUndoSteps();
    View().FocusAll(true);
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at);
    EXPECT_FALSE(Graph().IsFocusing());
    Document->OnIdle();
    Release(Graph(), at);
    EXPECT_EQ(NumUndoSteps(), steps);
}

TEST_F(GraphWindow, EscapeInThePaletteEndsAPanToo)
{
    SetPanButton(PanMiddle);
    View().GetTool().TakeFocus();
    Press(Graph(), Empty, Qt::MiddleButton);
    Key(View().GetTool(), Qt::Key_Escape);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Release(Graph(), Empty, Qt::MiddleButton);
}

TEST_F(GraphWindow, DeleteDuringADragOfNodesEndsItAndDeletesThem)
{
    const int steps = NumUndoSteps();
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at);
    Move(Graph(), at + QPoint(30, 0));
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Move(Graph(), at + QPoint(60, 0));
    Release(Graph(), at + QPoint(60, 0));
    EXPECT_EQ(NumUndoSteps(), steps + 1);
    Document->Undo();
    EXPECT_EQ(Second->GetX(), 200);
    EXPECT_EQ(WindowsOf(*Document).GetScene().FindNode(Second)->GetOrigin(), TVector2(200, 400));
}

TEST_F(GraphWindow, DeleteDuringAPanLeavesThePanRunning)
{
    SetPanButton(PanMiddle);
    Press(Graph(), MiddleOf(*Document, First));
    Release(Graph(), MiddleOf(*Document, First));
    Press(Graph(), Empty, Qt::MiddleButton);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    Move(Graph(), Empty + QPoint(30, 0), Qt::MiddleButton);
    EXPECT_EQ(Offset(), TVector2(30, 0));
    Release(Graph(), Empty + QPoint(30, 0), Qt::MiddleButton);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
}

TEST_F(GraphWindow, ADragThatLosesTheMouseToADialogIsAsIfItHadNotBeen)
{
    const int steps = NumUndoSteps();
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at);
    Move(Graph(), at + QPoint(30, 0));
    Meet([](QDialog& dialog) { dialog.close(); });
    ListDialog(1, "Another thing", vector<TString>());
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_FALSE(WindowsOf(*Document).GetScene().GetCanvas().IsDragging());
    Move(Graph(), at + QPoint(90, 0), Qt::NoButton);
    EXPECT_EQ(NumUndoSteps(), steps);
    EXPECT_EQ(WindowsOf(*Document).GetScene().FindNode(Second)->GetOrigin(), TVector2(200, 400));
}

TEST_F(GraphWindow, EveryKindOfDragEndsWhenTheMouseIsLost)
{
    SetPanButton(PanMiddle);
    TGraphCanvas& canvas = WindowsOf(*Document).GetScene().GetCanvas();
    auto lose = [&] {
        ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
        TWimp::Get().LoseMouseDrag();
        EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
        EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
        EXPECT_FALSE(canvas.IsDragging());
        EXPECT_FALSE(View().IsTypeDragging());
        EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    };
    Press(Graph(), Empty, Qt::MiddleButton);
    lose();
    Press(Graph(), Empty);
    lose();
    const TNodeObj* node = WindowsOf(*Document).GetScene().FindNode(Second);
    Press(Graph(), PixelOf(Graph(), node->GetPortPosition(false, 0)));
    EXPECT_TRUE(canvas.HasRubber());
    lose();
    EXPECT_FALSE(canvas.HasRubber());
    View().BeginTypeDrag(App.Type("Gravity"));
    Move(View(), InWindow(Graph(), Empty, View()));
    lose();
    EXPECT_FALSE(Graph().IsGhostShown());
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphWindow, ADragReleasedOverAnotherViewEndsInItsOwn)
{
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    TGraphWindow& other = GraphOf(*Document, 1);
    SetView(other, 300, 300, 0.5f);
    const TGraphView before = other.GetView();
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at);
    Move(Graph(), at + QPoint(20, 0));
    // As the window system tells it to the view that has the mouse, and to one that has it nevertheless.
    const QPoint there(Graph().GetHandle()->width() + 200, 300);
    Move(Graph(), there);
    const TVector2 place = Graph().PixelToWorld(there.x(), there.y());
    Release(other, InWindow(Graph(), there, other));
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_FALSE(WindowsOf(*Document).GetScene().GetCanvas().IsDragging());
    EXPECT_EQ(other.GetView(), before);
    EXPECT_NEAR(Second->GetX(), place[0] - static_cast<float>(at.x() - 200), 40);
    SetPanButton(PanMiddle);
    Press(other, QPoint(5, 5), Qt::MiddleButton);
    EXPECT_EQ(other.GetState(), TGraphWindow::GS_PANNING);
    Release(Graph(), Empty, Qt::MiddleButton);
    EXPECT_EQ(other.GetState(), TGraphWindow::GS_IDLE);
}

TEST_F(GraphWindow, AViewThatClosesDuringItsDragTakesItAlong)
{
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    SetPanButton(PanMiddle);
    Press(GraphOf(*Document, 1), QPoint(5, 5), Qt::MiddleButton);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), &GraphOf(*Document, 1));
    WindowsOf(*Document).CloseView(&ViewOf(*Document, 1));
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    SetView(GraphOf(*Document, 1), 0, 0, 1);
    Press(GraphOf(*Document, 1), MiddleOf(*Document, Second));
    EXPECT_TRUE(WindowsOf(*Document).GetScene().GetCanvas().IsDragging());
    WindowsOf(*Document).CloseView(&ViewOf(*Document, 1));
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Drag(Graph(), MiddleOf(*Document, Second), MiddleOf(*Document, Second) + QPoint(20, 0));
    EXPECT_EQ(Second->GetX(), 220);
}

TEST_F(GraphWindow, NoHelpIsShownUnderARunningDrag)
{
    SetPanButton(PanMiddle);
    TVector2 min;
    TVector2 max;
    WindowsOf(*Document).GetScene().FindNode(Second)->GetRectangle(min, max);
    const QPoint button = PixelOf(Graph(), TVector2(max[0] - 9, min[1] + 8));
    TMessage hover;
    hover.Type = MT_TIMER;
    hover.Timer = 1;
    Press(Graph(), button, Qt::MiddleButton);
    Move(Graph(), button, Qt::MiddleButton);
    Graph().OnMessage(hover);
    EXPECT_FALSE(WindowsOf(*Document).GetScene().GetHelp().IsShown());
    Release(Graph(), button, Qt::MiddleButton);
    Move(Graph(), button, Qt::NoButton);
    Graph().OnMessage(hover);
    EXPECT_TRUE(WindowsOf(*Document).GetScene().GetHelp().IsShown());
}

TEST_F(GraphWindow, NothingIsUndoneUnderARunningDrag)
{
    SetPanButton(PanLeft);
    Press(Graph(), Empty);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Second->GetY(), 400);
    Release(Graph(), Empty);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(Second->GetY(), 400);
}

TEST_F(GraphWindow, ADragOfANodeIsOneStep)
{
    const int steps = NumUndoSteps();
    const QPoint at = MiddleOf(*Document, Second);
    Drag(Graph(), at, at + QPoint(60, 20));
    EXPECT_EQ(Second->GetX(), 260);
    EXPECT_EQ(Second->GetY(), 420);
    EXPECT_EQ(NumUndoSteps(), steps + 1);
}
