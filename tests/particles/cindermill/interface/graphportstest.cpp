#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"

#include <QtGui/QAccessible>
#include <QtGui/QImage>

namespace {

// With the keyboard in the graph, as after a click: an emitter and a node that starts particles.
class GraphPorts : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Points = AddNode(*Document, "Point Emitter", 600, 200);
        SetView(Graph(), 0, 0, 1);
        Frame.BringToTop();
        Press(Graph(), Empty);
        Release(Graph(), Empty);
        ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    }
    TGraphScene& Scene() { return WindowsOf(*Document).GetScene(); }
    TPortWalk& Walk() { return Scene().GetPortWalk(); }
    TSearchPopup& Search() { return Graph().GetActions().GetSearch(); }
    void Enter(TToolNode* node)
    {
        Document->SelectNode(node, true);
        TypeP(Graph());
        ASSERT_TRUE(Walk().IsOn());
    }
    static void TypeP(TWindow& window) { Type(window, Qt::Key_P, "p", Qt::NoModifier); }
    void TypeText(const char* text)
    {
        for (; *text != 0; ++text)
            Type(Search(), Qt::Key_unknown, QString(QLatin1Char(*text)), Qt::NoModifier);
    }
    std::string Marked()
    {
        const TPort* port = Walk().GetMarked();
        return port != nullptr
                   ? Text(port->GetNode()->GetToolNode()->GetNodeType()->Name) + ", " + Text(port->GetLabel())
                   : "";
    }
    QAccessibleInterface& Access() { return *QAccessible::queryAccessibleInterface(Graph().GetHandle()); }
    // The item of a port.
    QAccessibleInterface* Find(const char* node, const char* port)
    {
        for (int i = 0; i < Access().childCount(); ++i) {
            QAccessibleInterface* item = Access().child(i);
            for (int n = 0; NameOf(item) == node && n < item->childCount(); ++n)
                if (NameOf(item->child(n)) == port)
                    return item->child(n);
        }
        return nullptr;
    }
    static std::string NameOf(QAccessibleInterface* item)
    {
        return item != nullptr ? item->text(QAccessible::Name).toStdString() : "";
    }
    static std::string DescriptionOf(QAccessibleInterface* item)
    {
        return item != nullptr ? item->text(QAccessible::Description).toStdString() : "";
    }
    static void DoAction(QAccessibleInterface* item, const QString& action)
    {
        ASSERT_NE(item, nullptr);
        item->actionInterface()->doAction(action);
    }
    int NumEdges() const { return Document->GetGraph()->GetNumEdges(); }
    // How many pixels around a place of the graph have the colour of what has the keys.
    int CountRing(const QPoint& at)
    {
        constexpr int Around = 14;
        const QImage picture = Graph().GetHandle()->grab().toImage();
        int count = 0;
        for (int y = at.y() - Around; y <= at.y() + Around; ++y)
            for (int x = at.x() - Around; x <= at.x() + Around; ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                count += pixel.blue() > 180 && pixel.red() < 90 && pixel.green() < 160;
            }
        return count;
    }
    QPoint PlaceOf(TToolNode* node, bool input, int port)
    {
        return PixelOf(Graph(), Scene().FindNode(node)->GetPortPosition(input, port));
    }

    TToolNode* Points = nullptr;
};

} // namespace

TEST_F(GraphPorts, TwoNodesAreWiredWithoutTheMouseInOneStep)
{
    Enter(First);
    EXPECT_EQ(Marked(), "Emitter, Rate");
    for (const int key : {Qt::Key_Right, Qt::Key_Return})
        Key(Graph(), key);
    EXPECT_EQ(Marked(), "Point Emitter, Emission Trigger");
    EXPECT_EQ(NumEdges(), 0);
    Key(Graph(), Qt::Key_Return);
    ASSERT_EQ(NumEdges(), 1);
    const TEffectEdge* edge = Document->GetGraph()->GetEdge(0);
    EXPECT_EQ(edge->GetSrcNode(), First);
    EXPECT_EQ(edge->GetSrcPort(), First->GetNodeType()->FindOutput("Count"));
    EXPECT_EQ(edge->GetDstNode(), Points);
    // Along the wire, off with it, and back.
    Key(Graph(), Qt::Key_Right);
    EXPECT_EQ(Marked(), "Point Emitter, Emission Trigger");
    EXPECT_TRUE(IsSelected(Points));
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(NumEdges(), 0);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(NumEdges(), 1);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(NumEdges(), 0);
    EXPECT_EQ(Marked(), "Point Emitter, Emission Trigger");
    // Escape leads back to the node.
    Key(Graph(), Qt::Key_Escape);
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_TRUE(IsSelected(Points));
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphPorts, AHeldReturnTakesUpOneWireOrWiresOne)
{
    Enter(First);
    Key(Graph(), Qt::Key_Right);
    HoldKey(Graph(), Qt::Key_Return, 4);
    EXPECT_TRUE(Walk().IsWiring());
    EXPECT_EQ(NumEdges(), 0);
    HoldKey(Graph(), Qt::Key_Return, 4);
    EXPECT_FALSE(Walk().IsWiring());
    EXPECT_EQ(NumEdges(), 1);
    // The arrows go on.
    HoldKey(Graph(), Qt::Key_Left, 2);
    EXPECT_EQ(Marked(), "Emitter, Rate");
    HoldKey(Graph(), Qt::Key_Down, 3);
    EXPECT_EQ(Marked(), "Emitter, Start Delay");
}

TEST_F(GraphPorts, TheKeyLeadsOutAgainAndNeedsANodeWithPorts)
{
    TypeP(Graph());
    EXPECT_FALSE(Walk().IsOn());
    Enter(Second);
    TypeP(Graph());
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_TRUE(IsSelected(Second));
}

TEST_F(GraphPorts, TheLetterIsForAFieldThatIsTypedIn)
{
    TNodeObj* object = Scene().FindNode(First);
    object->ToggleOpen();
    TRenderObject* field = FindNextField(object->GetExpanded(), false);
    while (field != nullptr && TTextEdit::GetFocused() == nullptr) {
        field->TakeKeys(&Graph().GetRenderer());
        field = FindNextField(*field, false);
    }
    TTextEdit* edit = TTextEdit::GetFocused();
    ASSERT_NE(edit, nullptr);
    Document->SelectNode(First, true);
    TypeP(Graph());
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_EQ(TTextEdit::GetFocused(), edit);
    // Nor is it for the graph what is typed beside it.
    View().GetTool().TakeFocus();
    TypeP(View().GetTool());
    EXPECT_FALSE(Walk().IsOn());
}

TEST_F(GraphPorts, TabSearchesForWhatCanBeWiredAndEscapeComesBackToThePort)
{
    Enter(First);
    Key(Graph(), Qt::Key_Right);
    Key(Graph(), Qt::Key_Tab);
    ASSERT_TRUE(Search().IsOpen());
    EXPECT_LT(Search().GetList().GetNumMatches(), App.Get().GetNodeTypes().GetNumTypes());
    Key(Search(), Qt::Key_Escape);
    EXPECT_EQ(Marked(), "Emitter, Count");
    Type(Graph(), Qt::Key_Space, " ", Qt::NoModifier);
    ASSERT_TRUE(Search().IsOpen());
    TypeText("grid");
    const int steps = NumUndoSteps();
    Key(Search(), Qt::Key_Return);
    ASSERT_EQ(NumEdges(), 1);
    const TEffectEdge* edge = Document->GetGraph()->GetEdge(0);
    EXPECT_EQ(edge->GetSrcNode(), First);
    EXPECT_EQ(Text(edge->GetDstNode()->GetNodeType()->Name), "Grid");
    EXPECT_TRUE(IsSelected(static_cast<TToolNode*>(edge->GetDstNode())));
    EXPECT_EQ(NumUndoSteps(), steps + 1);
    EXPECT_FALSE(Walk().IsOn());
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(NumEdges(), 0);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
}

TEST_F(GraphPorts, DeleteOfTheEditMenuTakesTheWireOff)
{
    Enter(First);
    for (const int key : {Qt::Key_Right, Qt::Key_Return, Qt::Key_Return, Qt::Key_Right})
        Key(Graph(), key);
    ASSERT_EQ(NumEdges(), 1);
    EXPECT_TRUE(Graph().TakesDelete());
    Graph().PressDelete();
    EXPECT_EQ(NumEdges(), 0);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_Escape);
    EXPECT_FALSE(Graph().TakesDelete());
}

TEST_F(GraphPorts, AKeyForTheSelectionIsStillForTheSelection)
{
    Enter(First);
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_EQ(NumSelected(), 3);
    Enter(First);
    Key(Graph(), Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_TRUE(IsSelected(Second));
    Enter(First);
    Key(Graph(), Qt::Key_Right);
    Key(Graph(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(Marked(), "Emitter, Count");
    Key(Graph(), Qt::Key_B, Qt::ControlModifier);
    Key(Graph(), Qt::Key_D, Qt::ControlModifier);
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 4);
}

TEST_F(GraphPorts, TheMarkedPortIsSeenInTheViewThatHasTheKeysHoweverSmall)
{
    ASSERT_TRUE(WindowsOf(*Document).NewView(*Document));
    TGraphWindow& other = GraphOf(*Document, 1);
    SetView(other, 0, 0, 1);
    Graph().TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    Document->SelectNode(First, true);
    Settle();
    const QImage before = other.GetHandle()->grab().toImage();
    for (const float zoom : {1.0f, 0.4f}) {
        SetView(Graph(), 0, 0, zoom);
        const QPoint at = PlaceOf(First, false, 0);
        EXPECT_EQ(CountRing(at), 0) << zoom;
        Enter(First);
        Key(Graph(), Qt::Key_Right);
        EXPECT_GT(CountRing(at), 30) << zoom;
        Key(Graph(), Qt::Key_Escape);
        EXPECT_EQ(CountRing(at), 0) << zoom;
    }
    Enter(First);
    Settle();
    EXPECT_EQ(other.GetHandle()->grab().toImage(), before);
}

TEST_F(GraphPorts, APortOutOfSightComesIntoSight)
{
    Points->SetPosition(5000, 3000);
    Enter(First);
    for (const int key : {Qt::Key_Right, Qt::Key_Return})
        Key(Graph(), key);
    EXPECT_EQ(Marked(), "Point Emitter, Emission Trigger");
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(PlaceOf(Points, true, 0)));
    Key(Graph(), Qt::Key_Escape);
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(PlaceOf(First, false, 0)));
}

TEST_F(GraphPorts, WhatIsAddedToAPortAtTheEdgeIsInSight)
{
    const QRect view = Graph().GetHandle()->rect();
    const QPoint port = PlaceOf(First, false, 0);
    SetView(Graph(), static_cast<float>(view.width() - 20 - port.x()), 0, 1);
    Enter(First);
    Key(Graph(), Qt::Key_Right);
    Key(Graph(), Qt::Key_Tab);
    TypeText("grid");
    Key(Search(), Qt::Key_Return);
    ASSERT_EQ(NumEdges(), 1);
    TNodeObj* added =
        Scene().FindNode(static_cast<TToolNode*>(Document->GetGraph()->GetEdge(0)->GetDstNode()));
    ASSERT_NE(added, nullptr);
    EXPECT_TRUE(
        added->OverlapsBox(Graph().PixelToWorld(0, 0), Graph().PixelToWorld(view.width(), view.height())));
}

TEST_F(GraphPorts, AssistiveToolsFindThePortUnderTheKeysAndWhatItIs)
{
    Enter(First);
    EXPECT_EQ(NameOf(Access().focusChild()), "Input Rate");
    EXPECT_EQ(DescriptionOf(Access().focusChild()).rfind("Scalar, not wired. Particles per second", 0), 0u);
    EXPECT_TRUE(Access().focusChild()->state().focused);
    Key(Graph(), Qt::Key_Right);
    EXPECT_EQ(NameOf(Access().focusChild()), "Output Count");
    Key(Graph(), Qt::Key_Return);
    EXPECT_EQ(Access().focusChild(), Find("Point Emitter", "Input Emission Trigger"));
    EXPECT_EQ(DescriptionOf(Access().focusChild())
                  .rfind("Return wires it with Emitter, Count. Scalar, not wired. ", 0),
              0u);
    Key(Graph(), Qt::Key_Return);
    EXPECT_EQ(NameOf(Access().focusChild()), "Output Count");
    EXPECT_EQ(
        DescriptionOf(Access().focusChild()).rfind("Scalar, wired to Point Emitter, Emission Trigger. ", 0),
        0u);
    Key(Graph(), Qt::Key_Escape);
    EXPECT_EQ(NameOf(Access().focusChild()), "Emitter");
}

TEST_F(GraphPorts, AssistiveToolsWireByPressingTwoPorts)
{
    DoAction(Find("Emitter", "Output Count"), QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(Marked(), "Emitter, Count");
    EXPECT_TRUE(IsSelected(First));
    DoAction(Find("Emitter", "Output Time"), QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(Walk().IsWiring());
    // One that refuses it changes nothing.
    DoAction(Find("Point Emitter", "Input Transform"), QAccessibleActionInterface::pressAction());
    EXPECT_EQ(NumEdges(), 0);
    EXPECT_TRUE(Walk().IsWiring());
    DoAction(Find("Point Emitter", "Input Emission Trigger"), QAccessibleActionInterface::pressAction());
    ASSERT_EQ(NumEdges(), 1);
    EXPECT_EQ(Document->GetGraph()->GetEdge(0)->GetSrcPort(), First->GetNodeType()->FindOutput("Time"));
    EXPECT_FALSE(Walk().IsWiring());
}

TEST_F(GraphPorts, AViewThatClosesLeavesNoWireInTheOthers)
{
    ASSERT_TRUE(WindowsOf(*Document).NewView(*Document));
    TGraphWindow& other = GraphOf(*Document, 1);
    other.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return other.HasFocus(); }));
    Document->SelectNode(First, true);
    TypeP(other);
    Key(other, Qt::Key_Right);
    Key(other, Qt::Key_Return);
    ASSERT_TRUE(Walk().IsWiring());
    WindowsOf(*Document).CloseView(&ViewOf(*Document, 1));
    EXPECT_FALSE(Walk().IsOn());
    EXPECT_FALSE(Scene().GetCanvas().HasRubber());
    EXPECT_FALSE(Scene().FindNode(Points)->GetPort(true, 0).IsMarked());
    // And the document may go in the middle of one.
    Graph().TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    Enter(First);
    Key(Graph(), Qt::Key_Right);
    Key(Graph(), Qt::Key_Return);
    ASSERT_TRUE(Walk().IsWiring());
}
