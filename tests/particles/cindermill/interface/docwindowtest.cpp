#include "docwindowfixture.h"

#include <QtWidgets/QMdiSubWindow>

namespace {

class DocWindow : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
    }
    TDocWindow& View() { return ViewOf(*Document); }
    TDocTool& Tool() { return View().GetTool(); }
    TGraphWindow& Graph() { return GraphOf(*Document); }
    // The middle of a row of the palette, by the name of its type or category.
    QPoint RowOf(const char* name)
    {
        const TNodeTypeLibrary& library = App.Get().GetNodeTypes();
        for (const TPaletteRow& row : Tool().GetPalette().GetRows()) {
            const TString& rowName =
                row.Type != -1 ? library.GetType(row.Type)->Name : library.GetItem(row.Item).Name;
            if (rowName.Compare(name) == 0)
                return QPoint(row.Indent + 40, row.Top - Tool().GetScroll() + TPalette::RowHeight / 2);
        }
        ADD_FAILURE() << "no row " << name;
        return QPoint();
    }
    // What the pixel of the graph is in the palette's pixels, as the mouse is reported during a drag.
    QPoint FromGraph(const QPoint& at) { return InWindow(Graph(), at, Tool()); }

    TDocument* Document = nullptr;
};

} // namespace

TEST_F(DocWindow, ViewsStandInACascade)
{
    const QRect first = View().GetHandle()->parentWidget()->geometry();
    EXPECT_EQ(first.size(), QSize(1050, 750));
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    const QRect second = ViewOf(*Document, 1).GetHandle()->parentWidget()->geometry();
    EXPECT_EQ(second.size(), QSize(1050, 750));
    const int step = second.left() - first.left();
    EXPECT_EQ(second.top() - first.top(), step);
    // After the last place, at 290, the cascade begins again at 50.
    EXPECT_TRUE(step == 16 || (step == -240 && second.left() == 50)) << step;
    EXPECT_GE(first.left(), 50);
    EXPECT_LT(first.left(), 50 + 256);
}

TEST_F(DocWindow, TheGraphHasAllSpaceBelowTheTabs)
{
    int width = 0;
    int height = 0;
    View().GetSize(width, height);
    EXPECT_EQ(Tool().GetHandle()->geometry(), QRect(0, 0, 200, height));
    const int left = 200 + TSplitWindow::Gap;
    EXPECT_EQ(View().GetHeader().GetHandle()->geometry(), QRect(left, 0, width - left, height));
    EXPECT_EQ(Graph().GetHandle()->geometry(), QRect(0, 20, width - left, height - 20));
    EXPECT_EQ(Graph().GetHandle()->parentWidget(), View().GetHeader().GetHandle());
}

TEST_F(DocWindow, WindowsAreFoundByTheirClassNames)
{
    EXPECT_EQ(View().GetHandle()->objectName(), QString("cindermill_docwindow"));
    EXPECT_EQ(Tool().GetHandle()->objectName(), QString("cindermill_doctool"));
    EXPECT_EQ(View().GetHeader().GetHandle()->objectName(), QString("cindermill_docgraphheader"));
    EXPECT_EQ(Graph().GetHandle()->objectName(), QString("cindermill_docwindow"));
}

TEST_F(DocWindow, APartThatCannotBeMadeIsAnAssertion)
{
    TDocWindow window(WindowsOf(*Document));
    EXPECT_EQ(AssertionOf([&] { window.Create(*Document, nullptr); }), "");
    window.Destroy();
    Frame.Destroy();
    TDocWindow none(WindowsOf(*Document));
    EXPECT_EQ(AssertionOf([&] { none.Create(*Document, &Frame); }), "0 : Failed to create document window");
}

TEST_F(DocWindow, ATypeDraggedIntoTheGraphBecomesANodeAroundThePointer)
{
    SetView(Graph(), 0, 0, 2);
    const QPoint at(301, 203);
    Press(Tool(), RowOf("Gravity"));
    EXPECT_TRUE(View().IsTypeDragging());
    EXPECT_EQ(View().GetCursor(), CU_DROP);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), &View());
    Move(Tool(), FromGraph(at));
    EXPECT_TRUE(Graph().IsGhostShown());
    EXPECT_EQ(View().GetCursor(), CU_DROP);
    Release(Tool(), FromGraph(at));
    EXPECT_FALSE(View().IsTypeDragging());
    EXPECT_FALSE(Graph().IsGhostShown());
    EXPECT_EQ(View().GetCursor(), CU_CLASS);
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    const TToolNode* node = static_cast<TToolNode*>(Document->GetGraph()->GetNode(0));
    EXPECT_EQ(Text(node->GetNodeType()->Name), "Gravity");
    int halfWidth = 0;
    int halfHeight = 0;
    Document->GetListener().GetNodeHalfSize(const_cast<TToolNode*>(node), halfWidth, halfHeight);
    EXPECT_EQ(node->GetX(), 150 - halfWidth);
    EXPECT_EQ(node->GetY(), 101 - halfHeight);
    Document->Undo();
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 0);
    EXPECT_FALSE(Document->CanUndo());
}

TEST_F(DocWindow, TheGhostIsCentredOnThePointer)
{
    SetView(Graph(), 0, 0, 1);
    Press(Tool(), RowOf("Gravity"));
    Move(Tool(), FromGraph(QPoint(300, 200)));
    TToolNode probe;
    probe.Create(nullptr, App.Type("Gravity"), 0, 0, false);
    int halfWidth = 0;
    int halfHeight = 0;
    Document->GetListener().GetNodeHalfSize(&probe, halfWidth, halfHeight);
    EXPECT_NEAR(Graph().GetGhostPosition()[0], 300 - halfWidth, 1.0f);
    EXPECT_NEAR(Graph().GetGhostPosition()[1], 200 - halfHeight, 1.0f);
    View().CancelDrag();
}

TEST_F(DocWindow, ATypeDragReleasedOutsideTheViewAddsNoNodeAndNoUndoStep)
{
    Press(Tool(), RowOf("Gravity"));
    Move(Tool(), FromGraph(QPoint(300, 200)));
    EXPECT_TRUE(Graph().IsGhostShown());
    // Over the tabs.
    Move(Tool(), FromGraph(QPoint(300, -5)));
    EXPECT_EQ(View().GetCursor(), CU_DRAG);
    EXPECT_FALSE(Graph().IsGhostShown());
    Release(Tool(), FromGraph(QPoint(300, -5)));
    // Back over the palette.
    Press(Tool(), RowOf("Gravity"));
    Release(Tool(), RowOf("Gravity"));
    // Right of all windows.
    Press(Tool(), RowOf("Gravity"));
    Release(Tool(), FromGraph(QPoint(5000, 200)));
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 0);
    EXPECT_FALSE(Document->CanUndo());
    EXPECT_FALSE(Document->IsModified());
    EXPECT_FALSE(View().IsTypeDragging());
    EXPECT_EQ(View().GetCursor(), CU_CLASS);
}

TEST_F(DocWindow, EscapeCancelsATypeDrag)
{
    Press(Tool(), RowOf("Gravity"));
    Move(Tool(), FromGraph(QPoint(300, 200)));
    Key(Tool(), Qt::Key_Escape);
    EXPECT_FALSE(View().IsTypeDragging());
    EXPECT_FALSE(Graph().IsGhostShown());
    Release(Tool(), FromGraph(QPoint(300, 200)));
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 0);
    Press(Tool(), RowOf("Gravity"));
    Key(Graph(), Qt::Key_Escape);
    EXPECT_FALSE(View().IsTypeDragging());
    Release(Tool(), RowOf("Gravity"));
}

// It began with the left button and ends with it, wherever that is.
TEST_F(DocWindow, OtherButtonsLeaveATypeDragRunning)
{
    Press(Tool(), RowOf("Gravity"));
    Move(Tool(), FromGraph(QPoint(300, 200)));
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        Press(Tool(), FromGraph(QPoint(300, 200)), button, Qt::NoModifier, Qt::LeftButton);
        Release(Tool(), FromGraph(QPoint(300, 200)), button, Qt::NoModifier, Qt::LeftButton);
        EXPECT_TRUE(View().IsTypeDragging());
        EXPECT_TRUE(Graph().IsGhostShown());
    }
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 0);
    Release(Tool(), FromGraph(QPoint(300, 200)));
    EXPECT_FALSE(View().IsTypeDragging());
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
}

TEST_F(DocWindow, ATypeDragScrollsTheGraphAtItsEdges)
{
    SetView(Graph(), 0, 0, 1);
    Press(Tool(), RowOf("Gravity"));
    Move(Tool(), FromGraph(QPoint(300, 3)));
    EXPECT_GT(Graph().GetView().GetOffset()[1], 0.0f);
    View().CancelDrag();
    Release(Tool(), RowOf("Gravity"));
}

TEST_F(DocWindow, AClickOnACategorysBoxClosesAndOpensIt)
{
    const int height = Tool().GetPalette().GetHeight();
    const QPoint row = RowOf("Forces");
    const TPaletteRow& entry =
        Tool().GetPalette().GetRows()[Tool().GetPalette().FindRow(row.y() + Tool().GetScroll())];
    const int item = entry.Item;
    const int indent = entry.Indent;
    // At indent + 9 it is no longer the box.
    Press(Tool(), QPoint(indent + 9, row.y()));
    Release(Tool(), QPoint(indent + 9, row.y()));
    EXPECT_TRUE(Tool().GetPalette().IsExpanded(item));
    Press(Tool(), QPoint(indent + 8, row.y()));
    Release(Tool(), QPoint(indent + 8, row.y()));
    EXPECT_FALSE(Tool().GetPalette().IsExpanded(item));
    EXPECT_LT(Tool().GetPalette().GetHeight(), height);
    Press(Tool(), QPoint(indent + 8, row.y()));
    Release(Tool(), QPoint(indent + 8, row.y()));
    EXPECT_EQ(Tool().GetPalette().GetHeight(), height);
    EXPECT_FALSE(View().IsTypeDragging());
}

TEST_F(DocWindow, ThePaletteScrollsByTheWheelAndStopsAtItsEnds)
{
    int width = 0;
    int height = 0;
    Tool().GetSize(width, height);
    // The field of the filter stands below the list.
    const int end = Tool().GetPalette().GetHeight() - (height - TFilterField::Height);
    ASSERT_GT(end, 18);
    Wheel(Tool(), QPoint(20, 20), -120);
    EXPECT_EQ(Tool().GetScroll(), 18);
    Wheel(Tool(), QPoint(20, 20), 120);
    EXPECT_EQ(Tool().GetScroll(), 0);
    // A touchpad tells of a notch in many parts.
    for (int i = 0; i < 24; ++i)
        Wheel(Tool(), QPoint(20, 20), -5);
    EXPECT_EQ(Tool().GetScroll(), 18);
    for (int i = 0; i < 24; ++i)
        Wheel(Tool(), QPoint(20, 20), 5);
    EXPECT_EQ(Tool().GetScroll(), 0);
    Wheel(Tool(), QPoint(20, 20), 120);
    EXPECT_EQ(Tool().GetScroll(), 0);
    for (int i = 0; i < 1000; ++i)
        Wheel(Tool(), QPoint(20, 20), -120);
    EXPECT_EQ(Tool().GetScroll(), end);
    EXPECT_EQ(Tool().GetScrollPosition(), end);
}

TEST_F(DocWindow, AResizeThatLeavesTheScrollPastTheEndMovesItBack)
{
    int width = 0;
    int height = 0;
    Tool().GetSize(width, height);
    // The field of the filter stands below the list.
    const int end = Tool().GetPalette().GetHeight() - (height - TFilterField::Height);
    for (int i = 0; i < 1000; ++i)
        Wheel(Tool(), QPoint(20, 20), -120);
    ASSERT_EQ(Tool().GetScroll(), end);
    QWidget* frame = View().GetHandle()->parentWidget();
    frame->resize(frame->width(), frame->height() + 10);
    Settle();
    EXPECT_EQ(Tool().GetScroll(), end > 10 ? end - 10 : 0);
}

TEST_F(DocWindow, ThePaletteMakesItselfTheMouseTarget)
{
    EXPECT_EQ(View().GetMouseTarget(), &Graph());
    Press(Tool(), RowOf("Forces"));
    Release(Tool(), RowOf("Forces"));
    EXPECT_EQ(View().GetMouseTarget(), &Tool());
    // The window's own area hands the wheel on.
    Wheel(View(), QPoint(202, 300), -120);
    EXPECT_EQ(Tool().GetScroll(), 18);
    View().SetMouseTarget(&Graph());
    Wheel(View(), QPoint(202, 300), -120);
    EXPECT_EQ(Tool().GetScroll(), 18);
    EXPECT_FLOAT_EQ(Graph().GetView().GetScale()[0], 0.94f);
}

TEST_F(DocWindow, AfterADropTheKeysAndTheWheelAreTheGraphs)
{
    Press(Tool(), RowOf("Gravity"));
    Release(Tool(), FromGraph(QPoint(300, 200)));
    EXPECT_EQ(View().GetMouseTarget(), &Graph());
    EXPECT_EQ(Graph().GetHandle()->window()->focusWidget(), Graph().GetHandle());
}

TEST_F(DocWindow, AnIdleWindowIsNotPainted)
{
    AddNode(*Document, "Gravity", 100, 100);
    Settle();
    struct TCounter : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            Paints += event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest ? 1 : 0;
            return false;
        }
        int Paints = 0;
    } counter;
    for (QWidget* widget : {Graph().GetHandle(), Tool().GetHandle(), View().GetHeader().GetHandle()})
        widget->installEventFilter(&counter);
    for (int i = 0; i < 20; ++i) {
        Document->OnIdle();
        TWimp::Get().Step();
    }
    EXPECT_EQ(counter.Paints, 0);
    Wheel(Graph(), QPoint(10, 10), 120);
    Settle();
    EXPECT_EQ(counter.Paints, 1);
}
