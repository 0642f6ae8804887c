#include "graphwindowfixture.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/effectgraph/valueparameters.h"

#include <QtGui/QKeyEvent>

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

// A field keeps the focus of the graph's own objects while the keys are elsewhere.
TEST_F(GraphPanel, KeysBesideTheGraphAreNotForAFieldInIt)
{
    FocusField();
    const std::string before = Shown();
    for (TWindow* pane :
         {static_cast<TWindow*>(&View().GetTool()), static_cast<TWindow*>(&View().GetHeader())}) {
        Document->ClearSelection();
        Document->SelectNode(First, true);
        pane->TakeFocus();
        ASSERT_TRUE(WaitFor([&] { return pane->HasFocus(); }));
        ASSERT_NE(TTextEdit::GetFocused(), nullptr);
        Key(*pane, Qt::Key_X, Qt::ControlModifier);
        EXPECT_EQ(Shown(), before);
        EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
        Key(*pane, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    }
}

TEST_F(GraphPanel, APanelThatAKeyOpensBeyondTheEdgeGlidesIntoSight)
{
    int width = 0;
    int height = 0;
    Graph().GetSize(width, height);
    TToolNode* node = AddNode(*Document, "Sprite Render Stage", width - 60, height - 30);
    TNodeObj& object = *WindowsOf(*Document).GetScene().FindNode(node);
    object.SetOrigin(TVector2(static_cast<float>(width - 120), static_cast<float>(height - 30)));
    const auto isInSight = [&] {
        const TVector2 from = Graph().PixelToWorld(0, 0);
        const TVector2 to = Graph().PixelToWorld(width, height);
        TVector2 min;
        TVector2 max;
        object.GetRectangle(min, max);
        return min[0] > from[0] && min[1] > from[1] && max[0] < to[0] && max[1] < to[1];
    };
    // Under the mouse that opens one nothing moves.
    const TGraphView before = Graph().GetView();
    const QPoint button = PixelOf(Graph(), object.GetOrigin() + TVector2(object.GetSize()[0] - 9, 8));
    Press(Graph(), button);
    Release(Graph(), button);
    ASSERT_FALSE(object.IsCollapsed());
    EXPECT_FALSE(isInSight());
    EXPECT_FALSE(Graph().IsFocusing());
    EXPECT_EQ(Graph().GetView(), before);
    object.ToggleOpen();
    ASSERT_TRUE(object.IsCollapsed());

    Document->SelectNode(node, true);
    Key(Graph(), Qt::Key_Return);
    ASSERT_FALSE(object.IsCollapsed());
    EXPECT_TRUE(WaitFor([&] {
        App.Get().OnIdle();
        return !Graph().IsFocusing();
    }));
    EXPECT_TRUE(isInSight());
    EXPECT_EQ(Graph().GetView().GetScale(), TVector2(1, 1));
}

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
    EXPECT_FALSE(Graph().TakesDelete());
    FocusField();
    EXPECT_TRUE(Graph().TakesDelete());
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

// Otherwise the file would hold a value that no step of the history leads to.
TEST_F(GraphPanel, ACommandGivesUpADragThatHasNotComeToAnEnd)
{
    const float before = Parameter->Get();
    Press(Graph(), Label());
    Move(Graph(), Label() + QPoint(40, 0));
    ASSERT_NE(Parameter->Get(), before);
    App.Get().OnMenu(MI_SAVEAS);
    EXPECT_EQ(Parameter->Get(), before);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    Release(Graph(), Label() + QPoint(40, 0));
    EXPECT_EQ(Parameter->Get(), before);
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
