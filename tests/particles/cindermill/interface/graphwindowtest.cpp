#include "docwindowfixture.h"

#include "library/containers/classregistry.h"
#include "library/system/message.h"
#include "library/wimp/dialog.h"
#include "library/wimp/textclipboard.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

#include <cstring>

namespace {

constexpr int PanLeft = 0;
constexpr int PanMiddle = 1;
constexpr int PanRight = 2;

// A document with two nodes in a view at scale 1.
class GraphWindow : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
        First = AddNode(*Document, "Emitter", 200, 200);
        Second = AddNode(*Document, "Gravity", 200, 400);
        SetView(Graph(), 0, 0, 1);
        Settle();
    }
    TGraphWindow& Graph() { return GraphOf(*Document); }
    TDocWindow& View() { return ViewOf(*Document); }
    TVector2 Offset() { return Graph().GetView().GetOffset(); }
    bool IsSelected(const TToolNode* node) const
    {
        return Document->GetSelection().index_of(const_cast<TToolNode*>(node)) != -1;
    }
    int NumSelected() const { return Document->GetSelection().size(); }
    void SetPanButton(int button) { App.Get().GetSettings().SetGraphPanButton(button); }
    int NumUndoSteps() const
    {
        int steps = 0;
        while (Document->CanUndo()) {
            Document->Undo();
            ++steps;
        }
        for (int i = 0; i < steps; ++i)
            Document->Redo();
        return steps;
    }
    // The texts of the menu that the work opens, which is closed again; "" for none.
    static std::string MenuOf(const std::function<void()>& work)
    {
        std::string texts;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            for (const QAction* action : menu->actions())
                texts += action->text().toStdString() + "|" + action->objectName().toStdString() + "\n";
            menu->close();
        });
        watch.start(20);
        work();
        if (texts.empty())
            Settle();
        return texts;
    }
    std::string RightClick(const QPoint& at)
    {
        return MenuOf([&] {
            Press(Graph(), at, Qt::RightButton);
            Release(Graph(), at, Qt::RightButton);
        });
    }

    TDocument* Document = nullptr;
    TToolNode* First = nullptr;
    TToolNode* Second = nullptr;
    static inline const QPoint Empty = QPoint(600, 100);
};

} // namespace

TEST_F(GraphWindow, TheWheelZoomsAboutThePointer)
{
    const TVector2 before = Graph().PixelToWorld(300, 200);
    Wheel(Graph(), QPoint(300, 200), 120);
    EXPECT_FLOAT_EQ(Graph().GetView().GetScale()[0], 1.06f);
    const TVector2 after = Graph().PixelToWorld(300, 200);
    EXPECT_NEAR(after[0], before[0], 1e-3);
    EXPECT_NEAR(after[1], before[1], 1e-3);
}

TEST_F(GraphWindow, AZoomStopsARunningFocus)
{
    View().FocusAll(true);
    EXPECT_TRUE(Graph().IsFocusing());
    Wheel(Graph(), QPoint(300, 200), 120);
    EXPECT_FALSE(Graph().IsFocusing());
}

TEST_F(GraphWindow, ALeftDragOnEmptySpacePansByDefault)
{
    SetPanButton(PanLeft);
    Press(Graph(), Empty);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_PANNING);
    Move(Graph(), Empty + QPoint(30, -20));
    EXPECT_EQ(Offset(), TVector2(30, -20));
    Release(Graph(), Empty + QPoint(30, -20));
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Move(Graph(), Empty, Qt::NoButton);
    EXPECT_EQ(Offset(), TVector2(30, -20));
}

TEST_F(GraphWindow, WithControlALeftDragSelects)
{
    SetPanButton(PanLeft);
    Drag(Graph(), QPoint(100, 100), QPoint(500, 300), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(IsSelected(First));
    EXPECT_FALSE(IsSelected(Second));
    EXPECT_EQ(Offset(), TVector2(0, 0));
}

TEST_F(GraphWindow, WithGraphPanButtonOneALeftDragOnEmptySpaceSelectsAndAMiddleDragPans)
{
    SetPanButton(PanMiddle);
    Press(Graph(), QPoint(100, 100));
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_BOXSELECT);
    Move(Graph(), QPoint(500, 500));
    Release(Graph(), QPoint(500, 500));
    EXPECT_EQ(NumSelected(), 2);
    EXPECT_EQ(Offset(), TVector2(0, 0));
    Drag(Graph(), QPoint(100, 100), QPoint(140, 90), Qt::MiddleButton);
    EXPECT_EQ(Offset(), TVector2(40, -10));
    EXPECT_EQ(NumSelected(), 2);
}

TEST_F(GraphWindow, OtherButtonsThanTheChosenOneDoNotPan)
{
    SetPanButton(PanRight);
    Drag(Graph(), Empty, Empty + QPoint(30, 0), Qt::MiddleButton);
    EXPECT_EQ(Offset(), TVector2(0, 0));
    Drag(Graph(), Empty, Empty + QPoint(30, 0), Qt::RightButton);
    EXPECT_EQ(Offset(), TVector2(30, 0));
    SetPanButton(PanMiddle);
    Drag(Graph(), Empty, Empty + QPoint(30, 0), Qt::RightButton);
    EXPECT_EQ(Offset(), TVector2(30, 0));
}

TEST_F(GraphWindow, AClickOnEmptySpaceClearsTheSelection)
{
    Document->SelectNode(First, true);
    Press(Graph(), Empty);
    EXPECT_EQ(NumSelected(), 0);
    Release(Graph(), Empty);
}

TEST_F(GraphWindow, ShiftClickOnEmptySpaceKeepsTheSelectionAndABoxThenAddsToIt)
{
    SetPanButton(PanMiddle);
    Document->SelectNode(First, true);
    Press(Graph(), Empty, Qt::LeftButton, Qt::ShiftModifier);
    Release(Graph(), Empty, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_TRUE(IsSelected(First));
    Drag(Graph(), QPoint(100, 350), QPoint(500, 550), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(NumSelected(), 2);
    EXPECT_TRUE(IsSelected(Second));
    // A node that was selected is not selected twice.
    Drag(Graph(), QPoint(100, 100), QPoint(500, 550), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(NumSelected(), 2);
}

TEST_F(GraphWindow, ABoxWithoutSizeSelectsNothing)
{
    SetPanButton(PanMiddle);
    SetView(Graph(), 0, 0, 7);
    const QPoint at = PixelOf(Graph(), TVector2(190, 190));
    Press(Graph(), at);
    Release(Graph(), at);
    EXPECT_EQ(NumSelected(), 0);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
}

TEST_F(GraphWindow, TheBoxIsPartOfTheDrawingWhileItRuns)
{
    SetPanButton(PanMiddle);
    TRenderObjects& root = WindowsOf(*Document).GetScene().GetRoot();
    const int before = root.GetObjects().size();
    Press(Graph(), QPoint(100, 100));
    EXPECT_EQ(root.GetObjects().size(), before + 1);
    Move(Graph(), QPoint(200, 200));
    Release(Graph(), QPoint(200, 200));
    EXPECT_EQ(root.GetObjects().size(), before);
}

TEST_F(GraphWindow, ABoxScrollsAtTheEdges)
{
    SetPanButton(PanMiddle);
    Press(Graph(), Empty);
    Move(Graph(), QPoint(2, 100));
    EXPECT_GT(Offset()[0], 0.0f);
    EXPECT_EQ(Offset()[1], 0.0f);
    Release(Graph(), QPoint(2, 100));
}

TEST_F(GraphWindow, ARightClickOnANodeOpensItsMenu)
{
    SetPanButton(PanLeft);
    EXPECT_EQ(RightClick(MiddleOf(*Document, First)),
              "Focus Node Group|menu40215\nInsert Node...|menu40217\n");
    EXPECT_EQ(RightClick(Empty), "");
}

TEST_F(GraphWindow, RightClickAfterARightButtonPanOfMoreThanTwoPixelsOpensNoMenu)
{
    SetPanButton(PanRight);
    const QPoint at = MiddleOf(*Document, First);
    EXPECT_EQ(MenuOf([&] { Drag(Graph(), at, at + QPoint(3, 0), Qt::RightButton); }), "");
    EXPECT_EQ(Offset(), TVector2(3, 0));
    // The next click is one again.
    EXPECT_NE(RightClick(MiddleOf(*Document, First)), "");
}

TEST_F(GraphWindow, ARightButtonThatMovedTwoPixelsStillClicks)
{
    SetPanButton(PanRight);
    const QPoint at = MiddleOf(*Document, First);
    EXPECT_NE(MenuOf([&] { Drag(Graph(), at, at + QPoint(2, 0), Qt::RightButton); }), "");
}

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

TEST_F(GraphWindow, EscapeEndsAPanAndABox)
{
    SetPanButton(PanLeft);
    Press(Graph(), Empty);
    Key(Graph(), Qt::Key_Escape);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    Move(Graph(), Empty + QPoint(30, 0));
    EXPECT_EQ(Offset(), TVector2(0, 0));
    Release(Graph(), Empty);
    SetPanButton(PanMiddle);
    Press(Graph(), QPoint(100, 100));
    Move(Graph(), QPoint(500, 500));
    Key(Graph(), Qt::Key_Escape);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    Release(Graph(), QPoint(500, 500));
    EXPECT_EQ(NumSelected(), 0);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
}

TEST_F(GraphWindow, EscapeReleasesTheRenderCapture)
{
    TRenderObject::SetCapture(&WindowsOf(*Document).GetScene().GetCanvas());
    Key(Graph(), Qt::Key_Escape);
    EXPECT_EQ(TRenderObject::GetCapture(), nullptr);
}

TEST_F(GraphWindow, ALeftClickMakesTheViewTheActiveOneAndTheMouseTarget)
{
    TDocument* other = NewDocument();
    EXPECT_EQ(App.Get().GetActiveDocWindow(), &ViewOf(*other));
    View().SetMouseTarget(&View().GetTool());
    Press(Graph(), Empty);
    Release(Graph(), Empty);
    EXPECT_EQ(App.Get().GetActiveDocWindow(), &View());
    EXPECT_EQ(App.Get().GetActiveDocument(), Document);
    EXPECT_EQ(View().GetMouseTarget(), &Graph());
    EXPECT_EQ(TRenderObject::GetFocus(), &WindowsOf(*Document).GetScene().GetRoot());
}

TEST_F(GraphWindow, DeleteAfterABoxDeletesTheSelection)
{
    SetPanButton(PanMiddle);
    Drag(Graph(), QPoint(100, 100), QPoint(500, 550));
    ASSERT_EQ(NumSelected(), 2);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 0);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphWindow, FocusOnASingleSmallNodeZoomsToAtMostThree)
{
    Document->SelectNode(First, true);
    View().FocusSelected(false);
    EXPECT_EQ(Graph().GetView().GetScale(), TVector2(3, 3));
    int width = 0;
    int height = 0;
    Graph().GetSize(width, height);
    const QPoint middle = MiddleOf(*Document, First);
    EXPECT_NEAR(middle.x(), width / 2, 2);
    EXPECT_NEAR(middle.y(), height / 2, 2);
}

TEST_F(GraphWindow, TenIdlePassesFinishAFocus)
{
    View().FocusAll(false);
    const TGraphView expected = Graph().GetView();
    SetView(Graph(), 1000, 1000, 0.3f);
    View().FocusAll(true);
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(Graph().IsFocusing());
        Document->OnIdle();
    }
    EXPECT_FALSE(Graph().IsFocusing());
    EXPECT_FLOAT_EQ(Graph().GetView().GetScale()[0], expected.GetScale()[0]);
    EXPECT_NEAR(Offset()[0], expected.GetOffset()[0], 0.01f);
}

TEST_F(GraphWindow, FocusWithoutNodesIsAnAssertion)
{
    const vector<TToolNode*> none;
    EXPECT_EQ(AssertionOf([&] { Graph().Focus(none, false); }), "!nodes.empty()");
}

TEST_F(GraphWindow, WithNothingSelectedTheShortcutShowsNothingNew)
{
    const TGraphView before = Graph().GetView();
    Key(Graph(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(Graph().GetView(), before);
    Key(Graph(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NE(Graph().GetView().GetScale(), before.GetScale());
    EXPECT_FALSE(Graph().IsFocusing());
}

TEST_F(GraphWindow, ShortcutsUndoAndRedo)
{
    Document->ApplyOperation(new TAddGraphNodeOp(*Document, App.Type("Gravity"), 0, 0));
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
    Key(Graph(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
}

TEST_F(GraphWindow, ShortcutsCopyCutAndPaste)
{
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_C, Qt::ControlModifier);
    Key(Graph(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphWindow, ShortcutsOfFilesActOnThisDocument)
{
    TDocument* other = NewDocument();
    ASSERT_EQ(App.Get().GetActiveDocument(), other);
    Host.Taken();
    Host.Choice = App.Path("shortcut.effect");
    Key(Graph(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Text(Document->GetPath()), Host.Choice);
    EXPECT_EQ(App.Get().GetActiveDocument(), Document);
    Host.Choice = App.Path("as.effect");
    Key(Graph(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Text(Document->GetPath()), Host.Choice);
    Host.Choice = App.Path("shortcut.effect");
    Key(Graph(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 3);
    Key(Graph(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 4);
}

TEST_F(GraphWindow, PrintableKeysLeaveTheGraphAlone)
{
    struct TShortcut
    {
        Qt::KeyboardModifiers With;
        const char* Keys;
    };
    const TShortcut told[] = {{Qt::ControlModifier, "ZYSONCVXF"},
                              {Qt::ControlModifier | Qt::ShiftModifier, "SF"}};
    const Qt::KeyboardModifiers with[] = {Qt::NoModifier,      Qt::ShiftModifier,
                                          Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier,
                                          Qt::KeypadModifier,  Qt::KeypadModifier | Qt::ControlModifier};
    const auto isTold = [&told](int key, Qt::KeyboardModifiers modifiers) {
        modifiers.setFlag(Qt::KeypadModifier, false);
        for (const TShortcut& shortcut : told)
            if (shortcut.With == modifiers && strchr(shortcut.Keys, key) != nullptr)
                return true;
        return false;
    };
    const QPoint at = MiddleOf(*Document, First);
    Press(Graph(), at);
    Release(Graph(), at);
    ASSERT_TRUE(IsSelected(First));
    const int steps = NumUndoSteps();
    Document->SelectNode(First, true);
    TRenderObject::SetFocus(WindowsOf(*Document).GetScene().FindNode(First), &Graph().GetRenderer());
    const TRenderObject* focus = TRenderObject::GetFocus();
    const TGraphView view = Graph().GetView();
    for (int key = Qt::Key_Space; key <= Qt::Key_ydiaeresis; ++key)
        for (const Qt::KeyboardModifiers modifiers : with) {
            if (!QChar::isPrint(static_cast<char32_t>(key)) || isTold(key, modifiers))
                continue;
            Type(Graph(), key, QString(QChar(key)), modifiers);
            ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 2) << key << " " << int(modifiers);
            EXPECT_TRUE(IsSelected(First)) << key << " " << int(modifiers);
            EXPECT_EQ(NumSelected(), 1) << key << " " << int(modifiers);
            EXPECT_EQ(Graph().GetView(), view) << key << " " << int(modifiers);
            EXPECT_EQ(TRenderObject::GetFocus(), focus) << key << " " << int(modifiers);
        }
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    EXPECT_EQ(NumUndoSteps(), steps);
    // It was within the keys' reach all the while.
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
}

TEST_F(GraphWindow, UndoOfTheFocusedNodeLeavesTheKeyboardWhereItWas)
{
    TDocument* other = NewDocument();
    ASSERT_NE(other, nullptr);
    AddNode(*other, "Gravity", 200, 200);
    Frame.BringToTop();
    TToolNode* node = AddNode(*Document, "Gravity", 500, 200);
    const QPoint at = MiddleOf(*Document, node);
    Press(Graph(), at);
    Release(Graph(), at);
    ASSERT_EQ(TRenderObject::GetFocus(), WindowsOf(*Document).GetScene().FindNode(node));
    ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    const auto expectKeysHere = [&](const char* what) {
        Settle();
        EXPECT_TRUE(Graph().HasFocus()) << what;
        EXPECT_FALSE(GraphOf(*other).HasFocus()) << what;
        EXPECT_EQ(App.Get().GetActiveDocument(), Document) << what;
        EXPECT_EQ(other->GetGraph()->GetNumNodes(), 1) << what;
    };
    // The other view hears of the mouse and is painted while the keys go down.
    const auto undo = [&] {
        QWidget* keyboard = QApplication::focusWidget();
        ASSERT_NE(keyboard, nullptr);
        QTest::keyPress(keyboard, Qt::Key_Control);
        for (const TMessageType type : {MT_MOUSEMOVE, MT_PAINT}) {
            TMessage message;
            message.Type = type;
            GraphOf(*other).OnMessage(message);
        }
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Z, Qt::ControlModifier);
        QApplication::sendEvent(keyboard, &press);
        QTest::keyRelease(keyboard, Qt::Key_Control);
    };
    undo();
    undo();
    EXPECT_EQ(WindowsOf(*Document).GetScene().FindNode(node), nullptr);
    expectKeysHere("undo");
    undo();
    EXPECT_NE(Second->GetY(), 400);
    expectKeysHere("another undo");
    // The keys are the graph's again.
    EXPECT_EQ(TRenderObject::GetFocus(), &WindowsOf(*Document).GetScene().GetCanvas());
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    expectKeysHere("delete");
}

namespace {

// An open node with a number in it.
class GraphPanel : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Frame.BringToTop();
        Node = AddNode(*Document, "Age", 500, 200);
        TNodeObj& object = *WindowsOf(*Document).GetScene().FindNode(Node);
        const QPoint button = PixelOf(Graph(), object.GetOrigin() + TVector2(object.GetSize()[0] - 9, 8));
        Press(Graph(), button);
        Release(Graph(), button);
        ASSERT_FALSE(object.IsCollapsed());
        App.Get().OnIdle();
        TNodeExp& panel = object.GetExpanded();
        ASSERT_EQ(panel.GetNumControls(), 2);
        Group = &panel.GetControls(1);
        Parameter = static_cast<TNodeScalarParameter*>(Group->GetParameter());
        Settle();
    }
    QPoint Field() { return PixelOf(Graph(), Group->GetAbsolutePosition() + TVector2(20, 10)); }
    QPoint Label()
    {
        return PixelOf(Graph(), Group->GetAbsolutePosition() + Group->GetLabelRect() + TVector2(3, 6));
    }
    void FocusField()
    {
        Press(Graph(), Field());
        Release(Graph(), Field());
        ASSERT_NE(TTextEdit::GetFocused(), nullptr);
        ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    }
    std::string Shown() { return Text(TTextEdit::GetFocused()->GetText()); }
    void TypeDigit(char digit)
    {
        Type(Graph(), Qt::Key_0 + (digit - '0'), QString(QLatin1Char(digit)), Qt::NoModifier);
    }

    TToolNode* Node = nullptr;
    TNodeParameterControls* Group = nullptr;
    TNodeScalarParameter* Parameter = nullptr;
};

} // namespace

TEST_F(GraphPanel, WhileTextIsTypedTheKeysOfTheClipboardAreTheEdits)
{
    FocusField();
    Document->SelectNode(First, true);
    TString text;
    Key(Graph(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(App.Get().GetClipboard().IsEmpty());
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_EQ(Text(text), "2.0000");
    Key(Graph(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    EXPECT_EQ(Shown(), "");
    TypeDigit('7');
    Key(Graph(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    EXPECT_EQ(Shown(), "72.0000");
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    int first = 0;
    int end = 0;
    TTextEdit::GetFocused()->GetSelection(first, end);
    EXPECT_EQ(end - first, 7);
    // The graph's again.
    TRenderObject::SetFocus(&WindowsOf(*Document).GetScene().GetRoot(), &Graph().GetRenderer());
    Key(Graph(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(App.Get().GetClipboard().IsEmpty());
}

TEST_F(GraphPanel, UndoInAFieldFirstPutsBackWhatWasTyped)
{
    FocusField();
    const int steps = Document->GetOperationStack()->GetNumOperations();
    TypeDigit('7');
    EXPECT_EQ(Shown(), "7");
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Shown(), "2.0000");
    EXPECT_EQ(Parameter->Get(), 2);
    EXPECT_EQ(Node->GetX(), 500);
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(Node->GetX(), 500);
}

TEST_F(GraphPanel, WhatWasTypedIsEnteredBeforeACommand)
{
    FocusField();
    TypeDigit('7');
    App.Get().OnMenu(MI_SAVEAS);
    EXPECT_EQ(Parameter->Get(), 7);
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    TypeDigit('5');
    App.Get().OnMenu(MI_EXIT);
    EXPECT_EQ(Parameter->Get(), 5);
    // Undo takes back what it has just entered.
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    TypeDigit('9');
    App.Get().OnMenu(MI_UNDO);
    EXPECT_NE(Parameter->Get(), 9);
    EXPECT_EQ(TTextEdit::GetFocused()->IsEdited(), false);
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    TypeDigit('3');
    Key(Graph(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Parameter->Get(), 3);
}

TEST_F(GraphPanel, DeleteInAFieldLeavesTheNodesAlone)
{
    FocusField();
    Document->SelectNode(First, true);
    for (const int key : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Delete})
        Key(Graph(), key);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    EXPECT_EQ(Shown(), "");
}

TEST_F(GraphPanel, ADragOfAControlIsTheFrameworksAndEscapeEndsIt)
{
    const int steps = Document->GetOperationStack()->GetNumOperations();
    const auto drag = [&] {
        Press(Graph(), Label());
        ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
        EXPECT_EQ(TWimp::Get().GetMouseDrag()->GetDragWindow(), &Graph());
        EXPECT_EQ(QWidget::mouseGrabber(), Graph().GetHandle());
        Move(Graph(), Label() + QPoint(40, 0));
        EXPECT_NE(Parameter->Get(), 2);
    };
    drag();
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(WindowsOf(*Document).GetScene().FindNode(Node), nullptr);
    EXPECT_NE(TWimp::Get().GetMouseDrag(), nullptr);
    Key(Graph(), Qt::Key_Escape);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(Parameter->Get(), 2);
    Release(Graph(), Label() + QPoint(40, 0));
    drag();
    // As when a dialog opens.
    TWimp::Get().LoseMouseDrag();
    EXPECT_EQ(Parameter->Get(), 2);
    Release(Graph(), Label() + QPoint(40, 0));
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps);
    drag();
    Release(Graph(), Label() + QPoint(40, 0));
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps + 1);
    EXPECT_NE(Parameter->Get(), 2);
}

TEST_F(GraphPanel, ADocumentThatGoesTakesTheDragOfAControlAlong)
{
    Press(Graph(), Label());
    ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
    Document->SetModified(false);
    App.Get().CloseDocument(Document);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
}

TEST_F(GraphPanel, KeysOfAnotherViewAreNotTheFields)
{
    ASSERT_TRUE(WindowsOf(*Document).NewView(*Document));
    FocusField();
    GraphOf(*Document, 1).TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return GraphOf(*Document, 1).HasFocus(); }));
    EXPECT_EQ(TTextEdit::GetFocused(), nullptr);
    EXPECT_EQ(TRenderObject::GetFocusView(), &GraphOf(*Document, 1).GetRenderer());
    TypeDigit('7');
    EXPECT_EQ(Parameter->Get(), 2);
}

TEST_F(GraphPanel, AViewThatGoesTakesWhatWasTypedInItAlong)
{
    ASSERT_TRUE(WindowsOf(*Document).NewView(*Document));
    FocusField();
    TypeDigit('7');
    WindowsOf(*Document).CloseView(&ViewOf(*Document, 0));
    EXPECT_EQ(Parameter->Get(), 2);
    EXPECT_EQ(TTextEdit::GetFocused(), nullptr);
}

TEST_F(GraphPanel, ThePointerTellsWhatAPlaceDoes)
{
    const auto shape = [this] { return Graph().GetHandle()->cursor().shape(); };
    const Qt::CursorShape before = shape();
    Move(Graph(), Field(), Qt::NoButton);
    EXPECT_EQ(shape(), Qt::IBeamCursor);
    Move(Graph(), Label(), Qt::NoButton);
    EXPECT_EQ(shape(), Qt::SizeHorCursor);
    Move(Graph(), Empty, Qt::NoButton);
    EXPECT_EQ(shape(), before);
}

namespace {

class TTicking : public TRenderObject
{
public:
    void Render(TRenderer&) override {}
    void GetBounds(TVector2& min, TVector2& max) override { min = max = TVector2(0, 0); }
    void Tick(TRenderer* renderer) override { Views.push_back(renderer); }
    std::vector<TRenderer*> Views;
};

} // namespace

TEST_F(GraphWindow, AnIdlePassTicksEachObjectOnceWithItsOwnView)
{
    TDocument* other = NewDocument();
    ASSERT_NE(other, nullptr);
    TTicking here;
    TTicking there;
    WindowsOf(*Document).GetScene().GetRoot().AddObject(&here);
    WindowsOf(*other).GetScene().GetRoot().AddObject(&there);
    TRenderObject::AddTick(&here);
    TRenderObject::AddTick(&there);
    App.Get().OnIdle();
    EXPECT_EQ(here.Views, (std::vector<TRenderer*>{&Graph().GetRenderer()}));
    EXPECT_EQ(there.Views, (std::vector<TRenderer*>{&GraphOf(*other).GetRenderer()}));
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

namespace {

class GraphDrop : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Shaper = AddNode(*Document, "Shaper", 500, 300);
        Messages().clear();
        SetMessageForms([](const char* text) { Messages().push_back(text); }, nullptr);
    }
    void TearDown() override { SetMessageForms(nullptr, nullptr); }
    static std::vector<std::string>& Messages()
    {
        static std::vector<std::string> messages;
        return messages;
    }
    void Drop(const QPoint& at, const std::string& path)
    {
        int x = at.x();
        int y = at.y();
        Graph().ClientToScreen(x, y);
        Document->GetHost()->OnDrop(*Document, &Graph(), x, y, path.c_str());
    }
    std::string Animation() { return App.Path("resources/path.vori"); }
    const vector<TRampPoint>& Curve()
    {
        return static_cast<TNodeRampParameter*>(Shaper->GetNodeType()->FindParameter("Value"))->GetCurve(0);
    }
    TToolNode* Shaper = nullptr;
};

} // namespace

TEST_F(GraphDrop, AnAnimationOnAShaperBecomesItsCurve)
{
    const int steps = NumUndoSteps();
    Drop(MiddleOf(*Document, Shaper), Animation());
    EXPECT_TRUE(Messages().empty());
    ASSERT_EQ(Curve().size(), 4);
    EXPECT_FLOAT_EQ(Curve()[0].Y, 0);
    EXPECT_FLOAT_EQ(Curve()[3].Y, 1);
    EXPECT_EQ(NumUndoSteps(), steps + 1);
}

TEST_F(GraphDrop, OnTheControlsOfAnAnimationAFileIsOneThatIsChosen)
{
    TToolNode* node = AddNode(*Document, "Animation Path", 300, 100);
    TNodeObj& object = *WindowsOf(*Document).GetScene().FindNode(node);
    const QPoint button = PixelOf(Graph(), object.GetOrigin() + TVector2(object.GetSize()[0] - 9, 8));
    Press(Graph(), button);
    Release(Graph(), button);
    ASSERT_FALSE(object.IsCollapsed());
    App.Get().OnIdle();
    TNodeExp& panel = object.GetExpanded();
    TNodeParameterControls* group = nullptr;
    for (int i = 0; i < panel.GetNumControls(); ++i)
        if (panel.GetControls(i).GetParameter()->Type == PK_ANIMATION)
            group = &panel.GetControls(i);
    ASSERT_NE(group, nullptr);
    const auto& parameter = *static_cast<TNodeAnimationParameter*>(group->GetParameter());
    const int steps = NumUndoSteps();
    // The button, and the label.
    for (const TVector2& place : {TVector2(15, 10), group->GetLabelRect() + TVector2(3, 6)}) {
        Drop(PixelOf(Graph(), group->GetAbsolutePosition() + place), Animation());
        EXPECT_TRUE(Messages().empty());
        EXPECT_EQ(Text(parameter.GetFileName()), "path.vori");
        EXPECT_EQ(NumUndoSteps(), steps + 1);
        Document->Undo();
        EXPECT_EQ(Text(parameter.GetFileName()), "");
    }
    const std::string bad = App.Path("bad.vori");
    WriteBytes(bad, "no animation");
    Drop(PixelOf(Graph(), group->GetAbsolutePosition() + TVector2(15, 10)), bad);
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Text(parameter.GetFileName()), "");
}

TEST_F(GraphDrop, AnywhereElseTheMessageTellsWhere)
{
    const std::string text = "Drag vori file to shaper node or graph to load animation file";
    Drop(MiddleOf(*Document, First), Animation());
    Drop(Empty, Animation());
    EXPECT_EQ(Messages(), (std::vector<std::string>{text, text}));
}

TEST_F(GraphDrop, AFileThatDoesNotLoadChangesNothing)
{
    const int steps = NumUndoSteps();
    Drop(MiddleOf(*Document, Shaper), App.Path("missing.vori"));
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0].find("Failed to open"), 0u);
    EXPECT_EQ(NumUndoSteps(), steps);
}

TEST_F(GraphDrop, ADropOnAFrameOrOnTheHeaderDoesNothingAndShowsNothing)
{
    for (TWindow* window : {static_cast<TWindow*>(&View()), static_cast<TWindow*>(&View().GetHeader()),
                            static_cast<TWindow*>(&View().GetTool())}) {
        EXPECT_TRUE(Document->GetHost()->OwnsWindow(window));
        Document->GetHost()->OnDrop(*Document, window, 10, 10, Animation().c_str());
    }
    EXPECT_TRUE(Messages().empty());
}
