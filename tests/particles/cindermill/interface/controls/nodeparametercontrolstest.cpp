#include "groupstest.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/boolparametercontrols.h"
#include "particles/cindermill/interface/controls/enumparametercontrols.h"

namespace {

class ParameterControls : public TGroupsTest
{
};

TEST_F(ParameterControls, TheNameStandsLeftOfTheControls)
{
    const TNumberParameterControls& speed = MakeNumbers("Speed");
    EXPECT_EQ(Text(speed.GetLabel()), "Speed:");
    EXPECT_FLOAT_EQ(speed.GetLabelRect()[0], -speed.GetLabelWidth() - 10);
    TFontInstance font;
    font.Create("Arial (TrueType)", 10);
    TVector2 text;
    font.GetTextSize("Speed:", text);
    EXPECT_EQ(speed.GetLabelWidth(), text[0]);
    TVector2 size;
    speed.GetSize(size);
    EXPECT_FLOAT_EQ(speed.GetLabelRect()[1], (size[1] - text[1]) / 2);
    EXPECT_EQ(size, TVector2(100, TNodeParameterControls::RowHeight));
}

TEST_F(ParameterControls, TheTopIsSetAndTheLeftStays)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    speed.SetTop(77);
    EXPECT_EQ(speed.GetOrigin(), TVector2(200, 77));
}

TEST_F(ParameterControls, ChildrenAreHitFirstAndThenTheOwnRectangleWithTheLabel)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    EXPECT_EQ(Root.HitTest(MiddleOf(speed.GetInput(0).GetEdit())), &speed.GetInput(0).GetEdit());
    const TVector2 place = speed.GetOrigin();
    EXPECT_EQ(Root.HitTest(place + speed.GetLabelRect() + TVector2(2, 2)), &speed);
    EXPECT_EQ(Root.HitTest(place + TVector2(-5, 10)), &speed);
    EXPECT_EQ(Root.HitTest(place + TVector2(101, 10)), nullptr);
    EXPECT_EQ(Root.HitTest(place + TVector2(50, 21)), nullptr);
    EXPECT_EQ(Root.HitTest(place + speed.GetLabelRect() - TVector2(2, 0)), nullptr);
}

TEST_F(ParameterControls, AChangeOfTheParameterIsShownAndIsNoOperation)
{
    TNumberParameterControls& size = MakeNumbers("Size");
    auto& loop = Make<TNodeBoolParameterControls>("Loop");
    auto& blend = Make<TNodeEnumParameterControls>("Blend");
    const float value[] = {8, 9};
    Param<TNodeValueParameter>("Size").SetValue(value);
    Param<TNodeBoolParameter>("Loop").SetValue(false);
    Param<TNodeEnumParameter>("Blend").SetValue(2);
    EXPECT_EQ(Shown(size, 0), "8.0000");
    EXPECT_EQ(Shown(size, 1), "9.0000");
    EXPECT_FALSE(loop.GetTickBox().IsChecked());
    EXPECT_EQ(blend.GetCombo().GetSelection(), 2);
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Root.Count(RE_VALUECHANGED), 0);
}

TEST_F(ParameterControls, TwoViewsOfAParameterShowTheSame)
{
    TNumberParameterControls& one = MakeNumbers("Speed");
    TNumberParameterControls& other = MakeNumbers("Speed");
    Type(one, 0, "6");
    EXPECT_EQ(Shown(other, 0), "6.0000");
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ParameterControls, GoneTheyHearOfTheParameterNoMore)
{
    MakeNumbers("Speed");
    Make("Loop");
    Groups.clear();
    const float value = 4;
    Param<TNodeValueParameter>("Speed").SetValue(&value);
    Param<TNodeBoolParameter>("Loop").SetValue(false);
    EXPECT_TRUE(Root.GetObjects().empty());
}

TEST_F(ParameterControls, EditsWithinTwoSecondsAreOneStepAndLaterOnesAnother)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Type(speed, 0, "3");
    PassTime(1999);
    Type(speed, 0, "4");
    EXPECT_EQ(NumOps(), 1);
    PassTime(2000);
    Type(speed, 0, "5");
    EXPECT_EQ(NumOps(), 2);
    Document.Undo();
    EXPECT_EQ(Shown(speed, 0), "4.0000");
    Document.Undo();
    EXPECT_EQ(Shown(speed, 0), "2.5000");
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(ParameterControls, AnEditIsTheDocumentsAndMarksItModified)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Document.SetModified(false);
    Type(speed, 0, "3");
    EXPECT_TRUE(Document.IsModified());
    // The values of a running effect are read where they are: no schedule is made for one.
    const int schedules = Host.Schedules;
    PassTime();
    Type(speed, 0, "4");
    EXPECT_EQ(Host.Schedules, schedules);
}

TEST_F(ParameterControls, ABoolIsSwitchedByItsBox)
{
    auto& loop = Make<TNodeBoolParameterControls>("Loop");
    EXPECT_TRUE(loop.GetTickBox().IsChecked());
    Click(MiddleOf(loop.GetTickBox()));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TBoolParamOp>());
    EXPECT_FALSE(Param<TNodeBoolParameter>("Loop").Get());
    Document.Undo();
    EXPECT_TRUE(loop.GetTickBox().IsChecked());
    EXPECT_TRUE(Param<TNodeBoolParameter>("Loop").Get());
    Document.Redo();
    EXPECT_FALSE(loop.GetTickBox().IsChecked());
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ParameterControls, AnEnumIsChosenFromItsNames)
{
    auto& blend = Make<TNodeEnumParameterControls>("Blend");
    TComboBox& combo = blend.GetCombo();
    ASSERT_EQ(combo.GetNumStrings(), 3);
    EXPECT_EQ(Text(combo.GetString(0)), "Add");
    EXPECT_EQ(Text(combo.GetString(2)), "Replace");
    EXPECT_EQ(combo.GetSelection(), 1);
    Click(MiddleOf(combo));
    Key(KEY_DOWN);
    Key(KEY_RETURN);
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TEnumParamOp>());
    EXPECT_EQ(Param<TNodeEnumParameter>("Blend").GetNumber(), 9);
    Document.Undo();
    EXPECT_EQ(combo.GetSelection(), 1);
    Document.Redo();
    EXPECT_EQ(combo.GetSelection(), 2);
    // What is chosen already.
    Click(MiddleOf(combo));
    Key(KEY_RETURN);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ParameterControls, TheHelpOfTheNodeTypeIsShownAtThePointer)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    TString help;
    EXPECT_TRUE(speed.GetHelpText(help));
    EXPECT_EQ(Text(help), "How fast it goes.");
    auto hover = [this](const TVector2& place) {
        Send(MT_MOUSEMOVE, place, 0);
        TMessage message;
        message.Type = MT_TIMER;
        message.Timer = 1;
        TRenderObject::Route(Renderer, Root, message);
    };
    const TVector2 field = MiddleOf(speed.GetInput(0).GetEdit());
    hover(field);
    const TVector2 label = ScrubOf(speed, 0);
    hover(label);
    ASSERT_EQ(Controls.Help.size(), 2u);
    EXPECT_EQ(Controls.Help[0], "How fast it goes.");
    EXPECT_EQ(Controls.HelpPoints[0], field);
    EXPECT_EQ(Controls.HelpPoints[1], label);

    TNumberParameterControls& size = MakeNumbers("Size");
    EXPECT_FALSE(size.GetHelpText(help));
    const int before = Root.Count(RE_HOVER);
    hover(MiddleOf(size.GetInput(0).GetEdit()));
    EXPECT_EQ(Controls.Help.size(), 2u);
    EXPECT_EQ(Root.Count(RE_HOVER), before + 1);
}

TEST_F(ParameterControls, AKindWithoutControlsHasNone)
{
    TNodeScalarParameter parameter;
    parameter.Type = PK_NUMKINDS;
    EXPECT_EQ(CreateParameterControls(Document, *Node, parameter, Controls), nullptr);
}

TEST_F(ParameterControls, ThoseBesideTheDefaultAreToldAndReset)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    TNumberParameterControls& gain = MakeNumbers("Gain");
    TNumberParameterControls& count = MakeNumbers("Count");
    TNodeParameterControls& loop = Make("Loop");
    TNodeParameterControls& blend = Make("Blend");
    TNodeParameterControls& inGroup = Make("Extras.Speed");
    TNodeParameterControls* const all[] = {&speed, &gain, &count, &loop, &blend, &inGroup};
    for (const TNodeParameterControls* controls : all)
        EXPECT_TRUE(controls->IsDefault()) << Text(controls->GetLabel());
    speed.ResetValue();
    EXPECT_EQ(NumOps(), 0);

    Type(speed, 0, "3");
    Type(gain, 0, "3");
    Type(count, 0, "3");
    EXPECT_TRUE(loop.PasteValue("false"));
    EXPECT_TRUE(blend.PasteValue("Add"));
    EXPECT_TRUE(inGroup.PasteValue("2.5"));
    EXPECT_EQ(NumOps(), 6);
    for (TNodeParameterControls* controls : all) {
        EXPECT_FALSE(controls->IsDefault()) << Text(controls->GetLabel());
        PassTime();
        controls->ResetValue();
        EXPECT_TRUE(controls->IsDefault()) << Text(controls->GetLabel());
    }
    EXPECT_EQ(NumOps(), 12);
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_EQ(Floats("Gain"), TFloats{1});
    EXPECT_EQ(Floats("Extras.Speed"), TFloats{7});
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 16);
    EXPECT_TRUE(Param<TNodeBoolParameter>("Loop").Get());
    EXPECT_EQ(Param<TNodeEnumParameter>("Blend").GetNumber(), 7);
}

TEST_F(ParameterControls, ARenamedNodeKeepsItsDefaults)
{
    Node->GetNodeType()->Name = "Vectors";
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Type(speed, 0, "9");
    EXPECT_FALSE(speed.IsDefault());
    PassTime();
    speed.ResetValue();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
}

TEST_F(ParameterControls, WhatTheLibraryDoesNotKnowHasNoDefault)
{
    Param("Speed").Name = "Elsewhere";
    TNumberParameterControls& other = MakeNumbers("Elsewhere");
    EXPECT_TRUE(other.IsDefault());
    Type(other, 0, "9");
    EXPECT_TRUE(other.IsDefault());
    other.ResetValue();
    EXPECT_EQ(Floats("Elsewhere"), TFloats{9});
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ParameterControls, ValuesAreCopiedAndPastedAsText)
{
    TNumberParameterControls& direction = MakeNumbers("Direction");
    TNumberParameterControls& turn = MakeNumbers("Turn");
    TNumberParameterControls& count = MakeNumbers("Count");
    TNodeParameterControls& loop = Make("Loop");
    TNodeParameterControls& blend = Make("Blend");
    EXPECT_EQ(Copied(direction), "0, 1, 0");
    EXPECT_EQ(Copied(count), "16");
    EXPECT_EQ(Copied(loop), "true");
    EXPECT_EQ(Copied(blend), "Multiply");

    EXPECT_TRUE(direction.PasteValue("1, 2, 3"));
    EXPECT_EQ(Floats("Direction"), (TFloats{1, 2, 3}));
    EXPECT_TRUE(turn.PasteValue(Copied(direction).c_str()));
    EXPECT_EQ(Floats("Turn"), (TFloats{1, 2, 3}));
    EXPECT_TRUE(count.PasteValue(" -7 "));
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), -7);
    EXPECT_TRUE(loop.PasteValue("0"));
    EXPECT_FALSE(Param<TNodeBoolParameter>("Loop").Get());
    EXPECT_TRUE(blend.PasteValue("replace"));
    EXPECT_EQ(Param<TNodeEnumParameter>("Blend").GetIndex(), 2);
    EXPECT_EQ(NumOps(), 5);
    // Once more the same: a value, but no change.
    EXPECT_TRUE(direction.PasteValue("1 2 3"));
    EXPECT_TRUE(loop.PasteValue("false"));
    EXPECT_EQ(NumOps(), 5);

    for (const char* text : {"", "1, 2", "1, 2, 3, 4", "one, two, three", "1, 2, nan", "1,, 2"})
        EXPECT_FALSE(direction.PasteValue(text)) << text;
    for (const char* text : {"", "1.5", "1, 2", "many"})
        EXPECT_FALSE(count.PasteValue(text)) << text;
    EXPECT_FALSE(loop.PasteValue("perhaps"));
    EXPECT_FALSE(blend.PasteValue("Divide"));
    EXPECT_EQ(NumOps(), 5);
}

TEST_F(ParameterControls, ACopiedValueComesBackExactly)
{
    const float value[] = {0.1f, 1.0f / 3, -12345.678f};
    Param<TNodeValueParameter>("Direction").SetValue(value);
    TNumberParameterControls& direction = MakeNumbers("Direction");
    TNumberParameterControls& turn = MakeNumbers("Turn");
    EXPECT_TRUE(turn.PasteValue(Copied(direction).c_str()));
    EXPECT_EQ(Floats("Turn"), (TFloats{0.1f, 1.0f / 3, -12345.678f}));
}

TEST_F(ParameterControls, WhatIsPastedIsClamped)
{
    EXPECT_TRUE(MakeNumbers("Area").PasteValue("-5, 0.5, 5, 1"));
    EXPECT_EQ(Floats("Area"), (TFloats{-1, 0.5f, 2, 1}));
    EXPECT_TRUE(MakeNumbers("Speed").PasteValue("1e9"));
    EXPECT_EQ(Floats("Speed"), TFloats{1000000});
    EXPECT_TRUE(MakeNumbers("Count").PasteValue("5000000000"));
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 2147483647);
}

} // namespace
