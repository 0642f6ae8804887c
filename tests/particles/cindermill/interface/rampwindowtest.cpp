#include "docwindowfixture.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/rampparametercontrols.h"

#include <memory>

namespace {

// The controls of a ramp in a graph view, beside a selected node.
class RampWindow : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
        Frame.BringToTop();
        Node = AddNode(*Document, "Scalar Over Life", 100, 300);
        Parameter = static_cast<TNodeRampParameter*>(Node->GetNodeType()->FindParameter("Value"));
        Group.reset(CreateParameterControls(*Document, *Node, *Parameter, WindowsOf(*Document)));
        ASSERT_NE(Group, nullptr);
        Group->SetOrigin(TVector2(120, 60));
        WindowsOf(*Document).GetScene().GetRoot().AddObject(Group.get());
        Document->SelectNode(Node, true);
        SetView(GraphOf(*Document), 0, 0, 1);
        Settle();
    }
    void TearDown() override
    {
        Group.reset();
        DocWindows::TearDown();
    }
    TRamp& Ramp() { return static_cast<TNodeRampParameterControls&>(*Group).GetRamp(); }
    TRampPoint PointAt(int i) const { return Parameter->GetCurve(0)[i]; }
    // A press on a point of the curve.
    void ClickPoint(int i)
    {
        const TVector2 place = Ramp().GetAbsolutePosition() + Ramp().GetView().ToPosition(PointAt(i));
        const QPoint at(static_cast<int>(place[0]), static_cast<int>(place[1]));
        Press(GraphOf(*Document), at);
        Release(GraphOf(*Document), at);
        ASSERT_EQ(TRamp::GetFocused(), &Ramp());
        ASSERT_TRUE(WaitFor([&] { return GraphOf(*Document).HasFocus(); }));
    }

    TDocument* Document = nullptr;
    TToolNode* Node = nullptr;
    TNodeRampParameter* Parameter = nullptr;
    std::unique_ptr<TNodeParameterControls> Group;
};

} // namespace

TEST_F(RampWindow, WhileARampHasTheFocusTheKeysOfTheClipboardAreItsPoints)
{
    TGraphWindow& graph = GraphOf(*Document);
    const int steps = Document->GetOperationStack()->GetNumOperations();
    const std::vector<TRampPoint> before(Parameter->GetCurve(0).begin(), Parameter->GetCurve(0).end());
    EXPECT_FALSE(graph.TakesDelete());
    ClickPoint(3);
    EXPECT_TRUE(graph.TakesDelete());
    Key(graph, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(App.Get().GetClipboard().IsEmpty());
    TString text;
    ASSERT_TRUE(GetClipboardText(text));
    EXPECT_EQ(Text(text).substr(0, 5), "{0,0}");
    Key(graph, Qt::Key_Delete);
    EXPECT_EQ(Parameter->GetCurve(0).size(), 4);
    ClickPoint(3);
    Key(graph, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(std::vector<TRampPoint>(Parameter->GetCurve(0).begin(), Parameter->GetCurve(0).end()), before);
    Key(graph, Qt::Key_X, Qt::ControlModifier);
    Key(graph, Qt::Key_Backspace);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps + 2);
}
