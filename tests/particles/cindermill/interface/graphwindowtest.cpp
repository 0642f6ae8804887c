#include "graphwindowfixture.h"

#include "particles/cindermill/interface/trace/attributetracewindow.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>

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
    const auto shape = [this] { return Graph().GetHandle()->cursor().shape(); };
    const Qt::CursorShape before = shape();
    Press(Graph(), Empty);
    EXPECT_EQ(shape(), Qt::ClosedHandCursor);
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_PANNING);
    Move(Graph(), Empty + QPoint(30, -20));
    EXPECT_EQ(Offset(), TVector2(30, -20));
    Release(Graph(), Empty + QPoint(30, -20));
    EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    EXPECT_EQ(shape(), before);
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
    // Each box reaches over the left edge of the first node, which is 200.
    SetView(Graph(), -195, -195, 7);
    const QPoint beside(32, 70);
    ASSERT_LT(Graph().PixelToWorld(beside.x(), beside.y())[0], 200);
    for (const QPoint& small : {QPoint(36, 70), QPoint(37, 74)}) {
        ASSERT_GT(Graph().PixelToWorld(small.x(), small.y())[0], 200);
        Drag(Graph(), beside, small);
        EXPECT_EQ(NumSelected(), 0) << small.x() << " " << small.y();
        EXPECT_EQ(Graph().GetState(), TGraphWindow::GS_IDLE);
    }
    // A diagonal of 1.
    Drag(Graph(), beside, QPoint(39, 70));
    EXPECT_TRUE(IsSelected(First));
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

TEST_F(GraphWindow, AtAnEdgeADragScrollsOnWhileTheMouseRests)
{
    const QPoint from = MiddleOf(*Document, First);
    const QPoint edge(Graph().GetHandle()->width() - 4, from.y());
    Press(Graph(), from);
    Move(Graph(), from + QPoint(20, 0));
    for (int i = 0; i < 10; ++i) {
        Pass(100);
    }
    // In the middle nothing scrolls.
    EXPECT_EQ(Offset(), TVector2(0, 0));
    Move(Graph(), edge);
    const float atOnce = Offset()[0];
    EXPECT_LT(atOnce, 0.0f);
    Pass(100);
    EXPECT_EQ(Offset()[0], atOnce);
    float before = atOnce;
    float first = 0;
    float last = 0;
    for (int i = 0; i < 30; ++i) {
        Pass(100);
        last = before - Offset()[0];
        first = i == 2 ? last : first;
        before = Offset()[0];
    }
    EXPECT_GT(first, 0.0f);
    // The longer, the faster.
    EXPECT_GT(last, first * 1.5f);
    // The node stays under the mouse.
    const TNodeObj* object = WindowsOf(*Document).GetScene().FindNode(First);
    EXPECT_GT(object->GetOrigin()[0], 200 - before);
    EXPECT_LT((MiddleOf(*Document, First) - edge).manhattanLength(), 3);
    Release(Graph(), edge);
    const float released = Offset()[0];
    Pass(1000);
    EXPECT_EQ(Offset()[0], released);
    EXPECT_GT(First->GetX(), 1000);
    Document->Undo();
    EXPECT_EQ(First->GetX(), 200);
}

TEST_F(GraphWindow, TheFurtherBeyondTheEdgeTheFasterItScrollsAndEscapeStopsIt)
{
    SetPanButton(PanMiddle);
    const auto scrolled = [&](int beyond) {
        SetView(Graph(), 0, 0, 1);
        Press(Graph(), Empty);
        Move(Graph(), QPoint(Empty.x(), -beyond));
        Pass(200);
        const float before = Offset()[1];
        Pass(100);
        const float moved = Offset()[1] - before;
        Key(Graph(), Qt::Key_Escape);
        const float given = Offset()[1];
        Pass(500);
        EXPECT_EQ(Offset()[1], given);
        Release(Graph(), Empty);
        return moved;
    };
    const float near = scrolled(0);
    EXPECT_GT(near, 0.0f);
    EXPECT_GT(scrolled(60), near * 3);
}

TEST_F(GraphWindow, ADragThatBeganAtAnEdgeScrollsOnlyOnceItHasMoved)
{
    SetView(Graph(), 0, -195, 1);
    const QPoint from = MiddleOf(*Document, First);
    const QPoint title(from.x(), 8);
    Press(Graph(), title);
    Pass(1000);
    Release(Graph(), title);
    EXPECT_EQ(Offset(), TVector2(0, -195));
    EXPECT_EQ(First->GetY(), 200);
}

TEST_F(GraphWindow, ARightClickOnANodeOpensItsMenu)
{
    SetPanButton(PanLeft);
    // What else there is stands behind these.
    EXPECT_EQ(RightClick(MiddleOf(*Document, First))
                  .find("Focus Node Group|menu40215\nInsert Node...|menu40217\nNode Properties...|menu40216\n"
                        "Node Output Trace...|menu40218\n"),
              0u);
    EXPECT_EQ(RightClick(Empty), "");
}

TEST_F(GraphWindow, EntriesOfTheNodesMenuThatDoNothingAreGrey)
{
    const QPoint at = MiddleOf(*Document, First);
    bool met = false;
    MeetMenu([&](QMenu& menu) {
        met = true;
        for (const QAction* action : menu.actions())
            if (action->objectName() == "menu40215" || action->objectName() == "menu40217") {
                EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
            }
        menu.close();
    });
    Press(Graph(), at, Qt::RightButton);
    Release(Graph(), at, Qt::RightButton);
    EXPECT_TRUE(met);
}

TEST_F(GraphWindow, TheNodeOfAMenuIsForgottenWhenItIsClosedWithoutAChoice)
{
    const QPoint at = MiddleOf(*Document, First);
    bool met = false;
    MeetMenu([&](QMenu& menu) {
        met = true;
        menu.close();
    });
    Press(Graph(), at, Qt::RightButton);
    Release(Graph(), at, Qt::RightButton);
    EXPECT_TRUE(met);
    constexpr int NodeTrace = 40218;
    Graph().OnCommand(nullptr, NodeTrace, CC_MENU);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Document), 0);
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
    EXPECT_EQ(MenuOf([&] { Drag(Graph(), at, at + QPoint(3, 0), Qt::RightButton); }), "");
}

// How far is counted across.
TEST_F(GraphWindow, ARightButtonThatMovedStraightDownStillClicks)
{
    SetPanButton(PanRight);
    const QPoint at = MiddleOf(*Document, First);
    EXPECT_NE(MenuOf([&] { Drag(Graph(), at, at + QPoint(0, 30), Qt::RightButton); }), "");
}

TEST_F(GraphWindow, TheHelpGoesWithTheWheelWithKeysAndWithFraming)
{
    TVector2 min;
    TVector2 max;
    WindowsOf(*Document).GetScene().FindNode(Second)->GetRectangle(min, max);
    const TVector2 button(max[0] - 9, min[1] + 8);
    const THelp& help = WindowsOf(*Document).GetScene().GetHelp();
    TMessage hover;
    hover.Type = MT_TIMER;
    hover.Timer = 1;
    const QPoint at = PixelOf(Graph(), button);
    Document->SelectNode(First, true);
    const std::function<void()> ends[] = {
        [&] { Wheel(Graph(), at, 120); },
        // A wheel that leads no further.
        [&] { Wheel(Graph(), at, 120); },
        [&] { Key(Graph(), Qt::Key_Home); },
        [&] { View().FocusSelected(false); },
        // Framed already.
        [&] { View().FocusSelected(false); },
        [&] { Press(Graph(), at, Qt::MiddleButton); },
    };
    for (int i = 0; i < 6; ++i) {
        if (i == 1)
            SetView(Graph(), 10 - button[0], 10 - button[1], 7);
        else if (i != 4)
            SetView(Graph(), 0, 0, 1);
        const QPoint place = PixelOf(Graph(), button);
        Move(Graph(), place + QPoint(0, 1), Qt::NoButton);
        Move(Graph(), place, Qt::NoButton);
        Graph().OnMessage(hover);
        ASSERT_TRUE(help.IsShown()) << i;
        ends[i]();
        EXPECT_FALSE(help.IsShown()) << i;
    }
    Release(Graph(), at, Qt::MiddleButton);
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

// The new name, typed and entered, stands in the node's object.
TEST_F(GraphWindow, TheMenuOfANodeRenamesIt)
{
    const auto widthOf = [this] {
        TVector2 min;
        TVector2 max;
        WindowsOf(*Document).GetScene().FindNode(Second)->GetRectangle(min, max);
        return max[0] - min[0];
    };
    const float before = widthOf();
    MeetMenu([](QMenu& menu) {
        for (QAction* action : menu.actions())
            if (action->objectName() == "menu40216") {
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
                return;
            }
        menu.close();
    });
    bool met = false;
    Meet("dialog120", [&met](QDialog& dialog) {
        met = true;
        QLineEdit* name = dialog.findChild<QLineEdit*>("control1002");
        EXPECT_EQ(name->text(), QString("Gravity"));
        QTest::keyClicks(name, "The pull of the earth on all that was thrown into the air");
        QTest::keyClick(name, Qt::Key_Return);
    });
    const QPoint at = MiddleOf(*Document, Second);
    Press(Graph(), at, Qt::RightButton);
    Release(Graph(), at, Qt::RightButton);
    EXPECT_TRUE(met);
    EXPECT_EQ(Text(Second->GetNodeType()->Name), "The pull of the earth on all that was thrown into the air");
    EXPECT_GT(widthOf(), before);
    Document->Undo();
    EXPECT_EQ(widthOf(), before);
}
