#include "ramptest.h"

#include "particles/cindermill/graph/operations/rampchangepointsop.h"

namespace {

class RampControls : public TRampTest
{
protected:
    std::string Copied()
    {
        TString text;
        Group().CopyValue(text);
        return Text(text);
    }
    int NumComponents() { return Ramp().GetModel().GetComponentCount(); }
    bool HasButton(int component, const char* label)
    {
        TPushButton* button = Ramp().GetComponentButton(component);
        return button != nullptr && Text(button->GetText()) == label;
    }
    TVector2 Size()
    {
        TVector2 size;
        Group().GetSize(size);
        return size;
    }
    // The node's output that the ramp follows, as resolving leaves it.
    void Resolve(int type)
    {
        TNodeType& nodeType = *Node->GetNodeType();
        nodeType.Outputs[nodeType.FindOutput("Value")].ResolvedType = type;
        Group().Refresh();
    }
};

TEST_F(RampControls, EachKindOfRampHasItsGroup)
{
    Show("Scalar Over Life");
    EXPECT_NE(dynamic_cast<TNodeRampParameterControls*>(Controls.get()), nullptr);
    EXPECT_EQ(dynamic_cast<TNodePolyRampParameterControls*>(Controls.get()), nullptr);
    EXPECT_EQ(NumComponents(), 1);
    EXPECT_EQ(Size(), TVector2(350, 150));
    Show("Vector Over Life");
    EXPECT_EQ(NumComponents(), 3);
    EXPECT_TRUE(HasButton(0, "X"));
    EXPECT_TRUE(HasButton(2, "Z"));
    Show("Colour Over Life");
    EXPECT_EQ(NumComponents(), 4);
    EXPECT_TRUE(HasButton(0, "R"));
    EXPECT_TRUE(HasButton(3, "A"));
    Show("Shaper");
    EXPECT_NE(dynamic_cast<TNodePolyRampParameterControls*>(Controls.get()), nullptr);
}

TEST_F(RampControls, APolyRampHasTheComponentsOfItsOutput)
{
    Show("Shaper");
    const std::pair<int, int> wanted[] = {{TY_SCALAR, 1},     {TY_SCALE, 2},  {TY_VECTOR3, 3},
                                          {TY_QUATERNION, 3}, {TY_COLOUR, 4}, {TY_TRANSFORM, 4},
                                          {TY_TEXCOORDS, 4}};
    for (const auto& [type, components] : wanted) {
        Resolve(type);
        EXPECT_EQ(NumComponents(), components) << type;
        if (components == 4) {
            EXPECT_TRUE(HasButton(0, type == TY_COLOUR ? "R" : "X")) << type;
        }
    }
    Resolve(TY_SCALAR);
    EXPECT_EQ(NumComponents(), 1);
    EXPECT_EQ(Ramp().GetComponentButton(0), nullptr);
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(RampControls, CurvesThatAPolyRampDoesNotShowStayAsTheyAre)
{
    Show("Shaper");
    for (int i = 0; i < 4; ++i)
        SetCurve(i, Flat(static_cast<float>(i)));
    Resolve(TY_SCALE);
    DragTo(PlaceOf(0, 3), PlaceOf(0, 3) + TVector2(0, 20));
    Click(Middle(Ramp().GetLockButton()));
    EXPECT_EQ(NumEdits(), 2);
    EXPECT_EQ(Curve(2), Flat(2));
    EXPECT_EQ(Curve(3), Flat(3));
    EXPECT_EQ(std::vector<int>(Parameter().GetLocks(), Parameter().GetLocks() + 4),
              (std::vector<int>{-1, 0, -1, -1}));
}

TEST_F(RampControls, TheParentHearsOfAnotherSize)
{
    Show("Shaper");
    TDrawnObject parent;
    Root.RemoveObject(Controls.get());
    Controls->SetParent(&parent);
    Resolve(TY_SCALAR);
    const int before = static_cast<int>(parent.Events.size());
    Resolve(TY_COLOUR);
    ASSERT_EQ(static_cast<int>(parent.Events.size()), before + 1);
    EXPECT_EQ(parent.Events.back().Code, RE_RELAYOUT);
    EXPECT_GE(Size()[0], 350);
    Controls->SetParent(nullptr);
}

TEST_F(RampControls, ARefreshMakesNoOperation)
{
    ShowScalar();
    SetCurve(0, Hill());
    Parameter().SetLinear(true);
    Lock(-1, -1, -1, -1);
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(Shown(0), Hill());
    EXPECT_TRUE(Ramp().GetModel().IsLinear());
}

TEST_F(RampControls, UndoAndRedoAreShown)
{
    ShowScalar();
    DragTo(PlaceOf(0, 1), Place(0.5f, 0.9f));
    const TPoints after = Shown(0);
    Document.Undo();
    EXPECT_EQ(Shown(0), Line());
    Document.Redo();
    EXPECT_EQ(Shown(0), after);
    EXPECT_EQ(NumEdits(), 1);
}

TEST_F(RampControls, CopiedPointsArePastedIntoAnotherRamp)
{
    ShowFour();
    SetCurve(1, Hill());
    const std::string text = Copied();
    Show("Colour Over Life");
    EXPECT_TRUE(Group().PasteValue(text.c_str()));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampChangeAllPointsOp>());
    EXPECT_EQ(Curve(0), Flat(0));
    EXPECT_EQ(Curve(1), Hill());
    EXPECT_EQ(Curve(3), Flat(3));
    EXPECT_EQ(Copied(), text);
    EXPECT_TRUE(Group().PasteValue(text.c_str()));
    EXPECT_EQ(NumEdits(), 1);
}

TEST_F(RampControls, OneCurveIsPastedIntoTheSelectedComponent)
{
    ShowFour();
    const char* text = "{0,5}, {0.2,5}, {0.8,6}, {1,6}";
    EXPECT_FALSE(Group().PasteValue(text));
    Click(PlaceOf(2, 0));
    EXPECT_TRUE(Group().PasteValue(text));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampChangePointsOp>());
    EXPECT_EQ(Curve(2), (TPoints{{0, 5}, {0.2f, 5}, {0.8f, 6}, {1, 6}}));
    EXPECT_EQ(Curve(1), Flat(1));
}

TEST_F(RampControls, WhatIsShownIsCopiedAndLockedComponentsKeepTheirOwn)
{
    ShowFour();
    Lock(-1, 0, -1, -1);
    const std::string text = Copied();
    EXPECT_EQ(text.substr(0, text.find(';')), text.substr(text.find(';') + 2, text.find(';')));
    SetCurve(0, Line());
    EXPECT_TRUE(Group().PasteValue(text.c_str()));
    EXPECT_EQ(Curve(0), Flat(0));
    EXPECT_EQ(Curve(1), Flat(1));
    EXPECT_EQ(NumEdits(), 1);
}

TEST_F(RampControls, PastedPointsAreBroughtInOrder)
{
    ShowScalar();
    EXPECT_TRUE(Group().PasteValue("{0,0}, {5,1}, {-3,1}, {1,0}"));
    EXPECT_EQ(Curve(0), (TPoints{{0, 0}, {1, 1}, {0, 1}, {1, 0}}));
}

TEST_F(RampControls, AWrongTextChangesNothing)
{
    ShowFour();
    for (const char* text : {"", "1, 2", "{0,0}, {1,1}", "{0,0}; {0,0}", "{0,0}; {0,0}; {0,0}; {0,0}; {0,0}"})
        EXPECT_FALSE(Group().PasteValue(text)) << text;
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(RampControls, ResettingGivesTheTypesCurvesLocksAndStraightness)
{
    Show("Colour Over Life");
    EXPECT_TRUE(Group().IsDefault());
    Group().ResetValue();
    EXPECT_EQ(NumEdits(), 0);
    const TPoints before = Curve(3);
    SetCurve(3, Flat(5));
    EXPECT_FALSE(Group().IsDefault());
    Group().ResetValue();
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_EQ(Curve(3), before);
    EXPECT_TRUE(Group().IsDefault());
    Lock(-1, 0, 0, -1);
    EXPECT_FALSE(Group().IsDefault());
    Parameter().SetLinear(true);
    SetCurve(3, Flat(5));
    Group().ResetValue();
    EXPECT_EQ(NumEdits(), 4);
    EXPECT_TRUE(Group().IsDefault());
    EXPECT_FALSE(Parameter().IsLinear());
    EXPECT_EQ(Parameter().GetLocks()[1], -1);
    EXPECT_EQ(Curve(3), before);
    // All of it is one step.
    Document.Undo();
    EXPECT_TRUE(Parameter().IsLinear());
    EXPECT_EQ(Parameter().GetLocks()[1], 0);
    EXPECT_EQ(Curve(3), Flat(5));
    Document.Redo();
    EXPECT_TRUE(Group().IsDefault());
    Document.Undo();
    Document.Undo();
    EXPECT_EQ(Document.GetOperationStack()->GetPosition(), Start);
}

} // namespace
