#include "scenetest.h"

#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/interface/controls/textedit.h"

namespace {

// The open panel of a node, and the button that opens it.
class TOpenPanelTest : public TSceneTest
{
};

TEST_F(TOpenPanelTest, ANodeWithAnEmptyPanelWarnsAndStaysClosed)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* age = Add("Age", 400, 100);
    EXPECT_TRUE(Object(age).CanOpen());
    Connect(effect, "Time", age, "Age");
    EXPECT_TRUE(Object(age).CanOpen());
    Connect(effect, "Time", age, "Max Age");
    EXPECT_FALSE(Object(age).CanOpen());
    Click(ButtonOf(age));
    EXPECT_EQ(Host.NumWarnings, 1);
    EXPECT_TRUE(Object(age).IsCollapsed());
    EXPECT_FALSE(Object(age).HasPanel());
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST_F(TOpenPanelTest, TheButtonOpensAndClosesANodeWithControls)
{
    TToolNode* node = Add("Noise", 100, 100);
    const TVector2 closed = Object(node).GetSize();
    Click(ButtonOf(node));
    EXPECT_FALSE(Object(node).IsCollapsed());
    EXPECT_TRUE(TRenderObject::HasTicks());
    TRenderObject::RunTicks(&Renderer);
    EXPECT_FALSE(TRenderObject::HasTicks());
    EXPECT_GT(Object(node).GetSize()[0], closed[0]);
    EXPECT_GT(Object(node).GetSize()[1], closed[1] + 3 * 20);
    Click(ButtonOf(node));
    EXPECT_TRUE(Object(node).IsCollapsed());
    EXPECT_EQ(Object(node).GetSize(), closed);
    EXPECT_EQ(Host.NumWarnings, 0);
    TRenderObject::RunTicks(&Renderer);
}

TEST_F(TOpenPanelTest, ThePanelIsMadeWhenItIsFirstOpened)
{
    TToolNode* node = Add("Grid", 100, 100);
    EXPECT_TRUE(Object(node).CanOpen());
    Object(node).Relayout();
    EXPECT_FALSE(Object(node).HasPanel());
    EXPECT_EQ(Object(node).GetExpanded().GetNumControls(), 0);
    Open(node);
    const TNodeParameterControls* group = &Group(node, "Size");
    Open(node);
    Open(node);
    EXPECT_EQ(&Group(node, "Size"), group);
}

TEST_F(TOpenPanelTest, TheParametersStandFirstThenTheInputsWithTheirLabelsInALine)
{
    TToolNode* node = Add("Grid", 100, 100);
    Open(node);
    const char* names[] = {"Particle Count",   "X Divisions", "Y Divisions", "Emit Type",
                           "Emission Trigger", "Transform",   "Size"};
    TNodeExp& panel = Object(node).GetExpanded();
    ASSERT_EQ(panel.GetNumControls(), 7);
    float below = 0;
    const float left = panel.GetControls(0).GetOrigin()[0];
    float widest = 0;
    for (int i = 0; i < 7; ++i) {
        TNodeParameterControls& group = panel.GetControls(i);
        EXPECT_EQ(Text(group.GetParameter()->Name), names[i]);
        EXPECT_EQ(panel.GetControlsPort(i), i < 4 ? -1 : i - 4);
        EXPECT_EQ(group.GetOrigin()[0], left) << names[i];
        EXPECT_GE(group.GetOrigin()[1], below) << names[i];
        TVector2 size;
        group.GetSize(size);
        below = group.GetOrigin()[1] + size[1];
        widest = std::max(widest, group.GetLabelWidth());
    }
    // The longest label still stands in the panel.
    EXPECT_GT(left, widest + 10);
    EXPECT_LT(below, Object(node).GetSize()[1]);
}

TEST_F(TOpenPanelTest, TheEdgesOfAnOpenedNodeFollowItsPortsInTheIdlePass)
{
    TToolNode* noise = Add("Noise", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 700, 100);
    TToolEdge* edge = Connect(noise, "Value", curve, "Time");
    const TVector2 before = Output(noise, "Value");
    Open(noise);
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[0], Output(noise, "Value"));
    EXPECT_GT(Output(noise, "Value")[0], before[0]);
}

TEST_F(TOpenPanelTest, APressThatNoControlTakesIsOneOnTheNode)
{
    TToolNode* node = Add("Grid", 100, 100);
    Open(node);
    const int steps = NumOperations();
    // On the label of a group that is not dragged, and between two groups.
    TNodeParameterControls& group = Group(node, "Emit Type");
    const TVector2 label = group.GetAbsolutePosition() + group.GetLabelRect() + TVector2(2, 5);
    const TVector2 between = group.GetAbsolutePosition() - TVector2(3, 2);
    for (const TVector2& at : {label, between}) {
        Document.ClearSelection();
        EXPECT_TRUE(Press(at));
        EXPECT_EQ(Document.GetSelection().size(), 1);
        EXPECT_TRUE(Canvas().IsDragging());
        EXPECT_TRUE(TRenderObject::GetFocus() == &Object(node));
        Release(at);
    }
    EXPECT_EQ(NumOperations(), steps);
    // It is dragged by it too.
    DragTo(label, label + TVector2(30, 20));
    EXPECT_EQ(node->GetX(), 130);
    EXPECT_EQ(node->GetY(), 120);
}

TEST_F(TOpenPanelTest, AControlTakesItsOwnPress)
{
    TToolNode* node = Add("Gravity", 100, 100);
    Open(node);
    Document.ClearSelection();
    EXPECT_TRUE(Press(Group(node, "Acceleration").GetAbsolutePosition() + TVector2(20, 10)));
    Release(Group(node, "Acceleration").GetAbsolutePosition() + TVector2(20, 10));
    EXPECT_NE(TTextEdit::GetFocused(), nullptr);
    EXPECT_TRUE(Document.GetSelection().empty());
}

TEST_F(TOpenPanelTest, AGroupThatBecomesHigherLaysThePanelOutAnew)
{
    TToolNode* node = Add("Noise", 100, 100);
    Open(node);
    const TVector2 before = Object(node).GetSize();
    const float top = Group(node, "Position").GetOrigin()[1];
    TNodeGroupParameter* group = static_cast<TNodeGroupParameter*>(node->GetNodeType()->GetParameter(0));
    Document.ApplyOperation(new TGroupParamOp(group, true));
    EXPECT_GE(Object(node).GetSize()[1], before[1] + 20);
    EXPECT_GE(Group(node, "Position").GetOrigin()[1], top + 20);
    Document.Undo();
    EXPECT_EQ(Object(node).GetSize(), before);
    EXPECT_EQ(Group(node, "Position").GetOrigin()[1], top);
}

TEST_F(TOpenPanelTest, KeysThatAControlDoesNotUseDeleteNothing)
{
    TToolNode* node = Add("Grid", 100, 100);
    Open(node);
    Document.SelectNode(node, true);
    for (const char* name : {"Emit Type", "Size", "Emission Trigger"}) {
        TRenderObject::SetFocus(&Group(node, name), &Renderer);
        EXPECT_FALSE(Key(KEY_DELETE)) << name;
        EXPECT_FALSE(Key(KEY_BACKSPACE)) << name;
        EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 1);
    }
    TRenderObject::SetFocus(&Object(node), &Renderer);
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(TOpenPanelTest, AnInputWhosePortGetsConnectedHidesItsParameterControls)
{
    TToolNode* effect = Add("Effect", 100, 300);
    TToolNode* curve = Add("Scalar Over Life", 400, 300);
    TNodeObj& object = Object(curve);
    Open(curve);
    const TVector2 before = object.GetSize();
    TNodeScalarParameter* life = static_cast<TNodeScalarParameter*>(curve->GetNodeType()->GetInput(1));
    const float value = life->Get() + 0.25f;
    life->SetValue(&value);
    Connect(effect, "Time", curve, "Life");
    EXPECT_NE(Group(curve, "Time").GetParent(), nullptr);
    EXPECT_EQ(Group(curve, "Life").GetParent(), nullptr);
    EXPECT_LT(object.GetSize()[1], before[1]);
    EXPECT_FALSE(object.IsCollapsed());
    Document.Undo();
    EXPECT_NE(Group(curve, "Life").GetParent(), nullptr);
    EXPECT_EQ(object.GetSize(), before);
    EXPECT_EQ(life->Get(), value);
    TRenderObject::RunTicks(&Renderer);
}

TEST_F(TOpenPanelTest, AnOpenNodeWhoseLastControlsHideClosesItselfAndTicks)
{
    TToolNode* effect = Add("Effect", 100, 300);
    TToolNode* age = Add("Age", 400, 300);
    Open(age);
    Connect(effect, "Time", age, "Age");
    EXPECT_FALSE(Object(age).IsCollapsed());
    Connect(effect, "Time", age, "Max Age");
    EXPECT_TRUE(Object(age).IsCollapsed());
    EXPECT_TRUE(TRenderObject::HasTicks());
    TRenderObject::RunTicks(&Renderer);
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST_F(TOpenPanelTest, OpenPanelsAndOpenGroupsSurviveUndoAndRedoOfTheNode)
{
    TToolNode* node = Add("Noise", 100, 100);
    TNodeObj& object = Object(node);
    Open(node);
    TNodeGroupParameter* group = static_cast<TNodeGroupParameter*>(node->GetNodeType()->GetParameter(0));
    Document.ApplyOperation(new TGroupParamOp(group, true));
    const TVector2 size = object.GetSize();
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    Document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    Document.Undo();
    EXPECT_FALSE(object.IsCollapsed());
    EXPECT_EQ(object.GetSize(), size);
    // Until the addition itself is undone, and redone.
    Document.Undo();
    Document.Undo();
    EXPECT_EQ(Scene().FindNode(node), nullptr);
    Document.Redo();
    EXPECT_FALSE(Object(node).IsCollapsed());
    Document.Redo();
    EXPECT_EQ(object.GetSize(), size);
}

TEST_F(TOpenPanelTest, TheControlsShowTheTypesThatAChangeOfTheGraphBrings)
{
    TToolNode* add = Add("Add", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 600, 100);
    Open(add);
    TNodeParameterControls& group = Group(add, "A");
    TNodePolytypeParameter* input = static_cast<TNodePolytypeParameter*>(group.GetParameter());
    Document.ApplyOperation(new TPolytypeUserTypeOp(add, input, TY_VECTOR3));
    TVector2 three;
    group.GetSize(three);
    const TVector2 panel = Object(add).GetSize();
    // What takes the sum takes a scalar only.
    Connect(add, "Sum", curve, "Time");
    EXPECT_EQ(input->GetCurrentType(), TY_SCALAR);
    TVector2 one;
    group.GetSize(one);
    EXPECT_LT(one[0] * one[1], three[0] * three[1]);
    EXPECT_NE(Object(add).GetSize(), panel);
    Document.Undo();
    EXPECT_EQ(input->GetCurrentType(), TY_VECTOR3);
    group.GetSize(one);
    EXPECT_EQ(one, three);
    EXPECT_EQ(Object(add).GetSize(), panel);
}

TEST_F(TOpenPanelTest, ADragOfAControlEndsWithoutEffectWhenItsNodeGoes)
{
    TToolNode* node = Add("Age", 100, 100);
    Open(node);
    TNodeParameterControls& group = Group(node, "Age");
    TNodeScalarParameter* age = static_cast<TNodeScalarParameter*>(group.GetParameter());
    const float before = age->Get();
    const TVector2 label = group.GetAbsolutePosition() + group.GetLabelRect() + TVector2(2, 5);
    Press(label);
    ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_FALSE(Canvas().IsDragging());
    Drag(label + TVector2(40, 0));
    EXPECT_NE(age->Get(), before);
    const int steps = NumOperations();
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    Document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
    EXPECT_EQ(age->Get(), before);
    EXPECT_EQ(NumOperations(), steps + 1);
}

TEST_F(TOpenPanelTest, AControlShowsItsHelpAndTheNextPressHidesIt)
{
    TToolNode* node = Add("Age", 100, 100);
    Open(node);
    TNodeParameterControls& group = Group(node, "Max Age");
    TString help;
    ASSERT_TRUE(group.GetHelpText(help));
    const TVector2 label = group.GetAbsolutePosition() + group.GetLabelRect() + TVector2(2, 5);
    EXPECT_EQ(HoverAt(label), Text(help));
    Move(label + TVector2(1, 0));
    EXPECT_FALSE(Scene().GetHelp().IsShown());
}

} // namespace
