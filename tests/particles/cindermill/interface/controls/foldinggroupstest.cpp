#include "groupstest.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/groupparametercontrols.h"
#include "particles/cindermill/interface/controls/polytypeparametercontrols.h"
#include "particles/cindermill/interface/controls/transformparametercontrols.h"

namespace {

class FoldingGroups : public TGroupsTest
{
protected:
    static float HeightOf(const TNodeParameterControls& controls)
    {
        TVector2 size;
        controls.GetSize(size);
        return size[1];
    }
    std::vector<std::string> TypesOf(TNodePolytypeParameterControls& controls)
    {
        std::vector<std::string> result;
        for (int i = 0; i < controls.GetCombo().GetNumStrings(); ++i)
            result.push_back(Text(controls.GetCombo().GetString(i)));
        return result;
    }
    void Choose(TComboBox& combo, int steps)
    {
        Click(MiddleOf(combo));
        for (int i = 0; i < steps; ++i)
            Key(KEY_DOWN);
        Key(KEY_RETURN);
    }
    // Of the graph, as an operation on its edges ends.
    TToolEdge* Wire(TToolNode* source, int output, int input)
    {
        TAddGraphEdgeOp* op = new TAddGraphEdgeOp(Document, source, output, Node, input);
        TToolEdge* edge = op->GetEdge();
        Document.ApplyOperation(op);
        return edge;
    }
};

TEST_F(FoldingGroups, AGroupsBoxOpensItAndItsChildrenStandBelow)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    EXPECT_FALSE(extras.GetTickBox().IsChecked());
    EXPECT_EQ(HeightOf(extras), TNodeParameterControls::RowHeight);
    EXPECT_EQ(extras.GetObjects().size(), 1);
    Click(MiddleOf(extras.GetTickBox()));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TGroupParamOp>());
    EXPECT_TRUE(Param<TNodeGroupParameter>("Extras").Get());
    ASSERT_EQ(extras.GetChildren().size(), 3);
    float top = TNodeParameterControls::RowStep;
    for (TNodeParameterControls* child : extras.GetChildren()) {
        EXPECT_TRUE(extras.HasObject(child));
        EXPECT_EQ(child->GetOrigin(), TVector2(10, top)) << Text(child->GetLabel());
        top += HeightOf(*child) + 4;
    }
    EXPECT_FLOAT_EQ(HeightOf(extras), top - 4);
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 1);
    Document.Undo();
    EXPECT_FALSE(extras.GetTickBox().IsChecked());
    EXPECT_EQ(extras.GetObjects().size(), 1);
    EXPECT_EQ(HeightOf(extras), TNodeParameterControls::RowHeight);
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 2);
    Document.Redo();
    EXPECT_EQ(extras.GetObjects().size(), 4);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(FoldingGroups, AGroupsChildrenAreEditedLikeAllOthers)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    Click(MiddleOf(extras.GetTickBox()));
    auto& speed = static_cast<TNumberParameterControls&>(*extras.GetChildren()[0]);
    Type(speed, 0, "8");
    EXPECT_EQ(NumOps(), 2);
    EXPECT_TRUE(IsLast<TScalarParamOp>());
    EXPECT_EQ(Floats("Extras.Speed"), TFloats{8});
    // Its namesake outside has nothing to do with it.
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    // In a group within.
    auto& deeper = static_cast<TNodeGroupParameterControls&>(*extras.GetChildren()[2]);
    ASSERT_EQ(deeper.GetChildren().size(), 1);
    auto& loop = static_cast<TNodeBoolParameterControls&>(*deeper.GetChildren()[0]);
    Click(MiddleOf(loop.GetTickBox()));
    EXPECT_EQ(NumOps(), 3);
    EXPECT_TRUE(Param<TNodeBoolParameter>("Extras.Deeper.Loop").Get());
}

TEST_F(FoldingGroups, AChildThatGrowsMovesThoseBelowAndIsToldAbove)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    Click(MiddleOf(extras.GetTickBox()));
    auto& offset = static_cast<TNodeTransformParameterControls&>(*extras.GetChildren()[1]);
    const float below = extras.GetChildren()[2]->GetOrigin()[1];
    const float height = HeightOf(extras);
    const int told = Root.Count(RE_RELAYOUT);
    Click(MiddleOf(offset.GetFoldButton()));
    EXPECT_EQ(extras.GetChildren()[2]->GetOrigin()[1], below + TNodeParameterControls::RowStep);
    EXPECT_EQ(HeightOf(extras), height + TNodeParameterControls::RowStep);
    EXPECT_EQ(Root.Count(RE_RELAYOUT), told + 1);
    EXPECT_EQ(NumOps(), 1);
}

// A change of the graph is told to the groups of a panel, and what it changed need not be the group itself.
TEST_F(FoldingGroups, ARefreshedGroupRefreshesWhatIsInIt)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    Click(MiddleOf(extras.GetTickBox()));
    TNodeScalarParameter other;
    const float value = 9;
    other.SetValue(&value);
    // Without a word to the listeners.
    Param("Extras.Speed").CopyValue(other);
    auto& speed = static_cast<TNumberParameterControls&>(*extras.GetChildren()[0]);
    EXPECT_EQ(Shown(speed, 0), "7.0000");
    extras.Refresh();
    EXPECT_EQ(Shown(speed, 0), "9.0000");
}

TEST_F(FoldingGroups, AHiddenFieldHasNoFocus)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    Click(MiddleOf(extras.GetTickBox()));
    auto& speed = static_cast<TNumberParameterControls&>(*extras.GetChildren()[0]);
    Click(MiddleOf(speed.GetInput(0).GetEdit()));
    Param<TNodeGroupParameter>("Extras").SetValue(false);
    EXPECT_EQ(TRenderObject::GetFocus(), &Root);
}

TEST_F(FoldingGroups, ATransformClosedShowsItsPosition)
{
    auto& place = Make<TNodeTransformParameterControls>("Place");
    EXPECT_FALSE(place.IsOpen());
    EXPECT_EQ(HeightOf(place), TNodeParameterControls::RowHeight);
    for (int i = 0; i < place.GetNumFields(); ++i)
        EXPECT_EQ(place.IsFieldVisible(i), i < 3) << i;
    EXPECT_EQ(Shown(place, 0), "1.0000");
    EXPECT_EQ(Shown(place, 2), "3.0000");
}

TEST_F(FoldingGroups, ATransformsTabsAreFoldedAndChosenWithoutAnOperation)
{
    auto& place = Make<TNodeTransformParameterControls>("Place");
    Document.SetModified(false);
    Click(MiddleOf(place.GetFoldButton()));
    EXPECT_TRUE(place.IsOpen());
    EXPECT_EQ(HeightOf(place), TNodeParameterControls::RowStep + TNodeParameterControls::RowHeight);
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 1);
    const char* const expected[][3] = {
        {"1.0000", "2.0000", "3.0000"}, {"10.0000", "20.0000", "30.0000"}, {"1.0000", "1.0000", "1.0000"}};
    for (const int tab : {1, 2, 0}) {
        Click(MiddleOf(place.GetTabButton(tab)));
        EXPECT_EQ(place.GetTab(), tab);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(place.GetTabButton(i).IsPressed(), i == tab);
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ(place.IsFieldVisible(i), i / 3 == tab);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Shown(place, 3 * tab + i), expected[tab][i]);
    }
    // The tab that is shown stays down.
    Click(MiddleOf(place.GetTabButton(0)));
    EXPECT_TRUE(place.GetTabButton(0).IsPressed());
    Click(MiddleOf(place.GetFoldButton()));
    EXPECT_FALSE(place.IsOpen());
    EXPECT_EQ(HeightOf(place), TNodeParameterControls::RowHeight);
    EXPECT_EQ(NumOps(), 0);
    EXPECT_FALSE(Document.IsModified());
}

TEST_F(FoldingGroups, ATransformsRotationIsEditedAndItsScaleIsNot)
{
    auto& place = Make<TNodeTransformParameterControls>("Place");
    Click(MiddleOf(place.GetFoldButton()));
    Click(MiddleOf(place.GetTabButton(1)));
    Type(place, 4, "25");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TTransformParamOp>());
    EXPECT_EQ(Floats("Place"), (TFloats{1, 2, 3, 10, 25, 30}));
    // Folded, a rotation keeps being what it is.
    EXPECT_TRUE(place.IsOpen());
    Click(MiddleOf(place.GetTabButton(2)));
    for (int i = 6; i < 9; ++i) {
        Type(place, i, "4");
        const TVector2 from = ScrubOf(place, i);
        Press(from);
        EXPECT_FALSE(Controls.IsDragging());
        Release(from);
        EXPECT_EQ(Shown(place, i), "1.0000");
    }
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Floats("Place"), (TFloats{1, 2, 3, 10, 25, 30}));
}

TEST_F(FoldingGroups, APolytypeListsTheTypesThatAreValidAndAllowed)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    EXPECT_EQ(TypesOf(any), (std::vector<std::string>{"Scalar", "Vector3", "Transform"}));
    EXPECT_EQ(any.GetCombo().GetSelection(), 0);
    EXPECT_TRUE(any.HasChoice());
    ASSERT_NE(any.GetValueControls(), nullptr);
    EXPECT_EQ(any.GetValueControls()->GetParameter(),
              Param<TNodePolytypeParameter>("Any").GetValueParameter(TY_SCALAR));
    Param<TNodePolytypeParameter>("Any").SetAllowedTypes(1u << TY_VECTOR3 | 1u << TY_TRANSFORM |
                                                         1u << TY_COLOUR);
    EXPECT_EQ(TypesOf(any), (std::vector<std::string>{"Vector3", "Transform"}));
}

TEST_F(FoldingGroups, ChoosingAPolytypesTypeIsAnOperationAndShowsItsValue)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    auto& parameter = Param<TNodePolytypeParameter>("Any");
    Choose(any.GetCombo(), 1);
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TPolytypeUserTypeOp>());
    EXPECT_EQ(parameter.GetCurrentType(), TY_VECTOR3);
    EXPECT_EQ(any.GetCombo().GetSelection(), 1);
    EXPECT_EQ(any.GetValueControls()->GetParameter(), parameter.GetValueParameter(TY_VECTOR3));
    Document.Undo();
    EXPECT_EQ(parameter.GetCurrentType(), TY_SCALAR);
    EXPECT_EQ(any.GetCombo().GetSelection(), 0);
    EXPECT_EQ(any.GetValueControls()->GetParameter(), parameter.GetValueParameter(TY_SCALAR));
    Document.Redo();
    EXPECT_EQ(any.GetCombo().GetSelection(), 1);
    EXPECT_EQ(NumOps(), 1);
    // The current one again.
    Choose(any.GetCombo(), 0);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(FoldingGroups, APolytypesValueIsEditedByTheOperationOfItsType)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    auto& parameter = Param<TNodePolytypeParameter>("Any");
    Type(static_cast<TNumberParameterControls&>(*any.GetValueControls()), 0, "8");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TScalarParamOp>());
    EXPECT_EQ(parameter.GetValueParameter(TY_SCALAR)->GetFloats()[0], 8.0f);
    PassTime();
    Choose(any.GetCombo(), 1);
    Type(static_cast<TNumberParameterControls&>(*any.GetValueControls()), 2, "9");
    EXPECT_EQ(NumOps(), 3);
    EXPECT_TRUE(IsLast<TVector3ParamOp>());
    EXPECT_EQ(parameter.GetValueParameter(TY_VECTOR3)->GetFloats()[2], 9.0f);
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 1);
}

TEST_F(FoldingGroups, WithOneTypeLeftThereIsNoChoice)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    auto& parameter = Param<TNodePolytypeParameter>("Any");
    Wire(Add("Vectors"), 0, Node->GetNodeType()->FindInput("Any"));
    const int before = NumOps();
    EXPECT_EQ(TypesOf(any), std::vector<std::string>{"Vector3"});
    EXPECT_FALSE(any.HasChoice());
    EXPECT_FALSE(any.GetCombo().IsEnabled());
    EXPECT_EQ(any.GetValueControls()->GetParameter(), parameter.GetValueParameter(TY_VECTOR3));
    Choose(any.GetCombo(), 1);
    EXPECT_FALSE(any.GetCombo().IsOpen());
    EXPECT_EQ(NumOps(), before);
    Document.Undo();
    EXPECT_TRUE(any.HasChoice());
    EXPECT_TRUE(any.GetCombo().IsEnabled());
    EXPECT_EQ(any.GetValueControls()->GetParameter(), parameter.GetValueParameter(TY_SCALAR));
}

TEST_F(FoldingGroups, APolytypeThatIsNoInputHasNoChoice)
{
    auto& loose = Make<TNodePolytypeParameterControls>("Loose");
    EXPECT_FALSE(loose.HasChoice());
    Choose(loose.GetCombo(), 1);
    EXPECT_FALSE(loose.PasteValue("Vector3"));
    EXPECT_EQ(NumOps(), 0);
    Type(static_cast<TNumberParameterControls&>(*loose.GetValueControls()), 0, "8");
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(FoldingGroups, ThePartsOfAPolytypeNeverHaveOneLabel)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    EXPECT_EQ(Text(any.GetLabel()), "Any:");
    EXPECT_EQ(Text(any.GetValueControls()->GetLabel()), "Value:");
    Node = Add("Constant");
    NumBefore = Stack().GetNumOperations();
    auto& value = Make<TNodePolytypeParameterControls>("Value");
    EXPECT_EQ(Text(value.GetLabel()), "Value:");
    EXPECT_EQ(Text(value.GetValueControls()->GetLabel()), "Scalar:");
    Choose(value.GetCombo(), 1);
    EXPECT_EQ(Text(value.GetValueControls()->GetLabel()), "Vector3:");
}

TEST_F(FoldingGroups, APolytypesTypeAndValueAreCopiedAndResetEachByItself)
{
    auto& any = Make<TNodePolytypeParameterControls>("Any");
    EXPECT_EQ(Copied(any), "Scalar");
    EXPECT_EQ(Copied(*any.GetValueControls()), "3");
    EXPECT_TRUE(any.IsDefault());
    EXPECT_TRUE(any.PasteValue("vector3"));
    EXPECT_FALSE(any.PasteValue("Colour"));
    EXPECT_EQ(Copied(*any.GetValueControls()), "4, 5, 6");
    EXPECT_FALSE(any.IsDefault());
    EXPECT_TRUE(any.GetValueControls()->IsDefault());
    EXPECT_TRUE(any.GetValueControls()->PasteValue("1, 2, 3"));
    EXPECT_FALSE(any.GetValueControls()->IsDefault());
    PassTime();
    any.GetValueControls()->ResetValue();
    EXPECT_EQ(Copied(*any.GetValueControls()), "4, 5, 6");
    any.ResetValue();
    EXPECT_EQ(Copied(any), "Scalar");
    EXPECT_EQ(NumOps(), 4);
}

TEST_F(FoldingGroups, AGroupIsCopiedPastedAndResetAsASwitch)
{
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    EXPECT_EQ(Copied(extras), "false");
    EXPECT_TRUE(extras.IsDefault());
    EXPECT_TRUE(extras.PasteValue("true"));
    EXPECT_TRUE(Param<TNodeGroupParameter>("Extras").Get());
    EXPECT_FALSE(extras.IsDefault());
    extras.ResetValue();
    EXPECT_FALSE(Param<TNodeGroupParameter>("Extras").Get());
    EXPECT_EQ(NumOps(), 2);
}

} // namespace
