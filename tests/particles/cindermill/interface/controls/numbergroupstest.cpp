#include "groupstest.h"

#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"

#include <cmath>
#include <limits>

namespace {

class NumberGroups : public TGroupsTest
{
protected:
    template <class TOp>
    void ExpectOneEdit(const char* name, int numFields, int field, const std::string& typed,
                       const TFloats& expected)
    {
        SCOPED_TRACE(name);
        TNumberParameterControls& controls = MakeNumbers(name);
        const TFloats before = Floats(name);
        const int numBefore = NumOps();
        const std::string shown = Shown(controls, field);
        EXPECT_EQ(controls.GetNumFields(), numFields);
        PassTime();
        Type(controls, field, typed);
        EXPECT_EQ(NumOps(), numBefore + 1);
        EXPECT_TRUE(IsLast<TOp>());
        EXPECT_EQ(Floats(name), expected);
        const std::string edited = Shown(controls, field);
        EXPECT_NE(edited, shown);
        Document.Undo();
        EXPECT_EQ(Floats(name), before);
        EXPECT_EQ(Shown(controls, field), shown);
        Document.Redo();
        EXPECT_EQ(Floats(name), expected);
        EXPECT_EQ(Shown(controls, field), edited);
        EXPECT_EQ(NumOps(), numBefore + 1);
    }
};

TEST_F(NumberGroups, EachKindIsEditedByItsOperation)
{
    ExpectOneEdit<TScalarParamOp>("Speed", 1, 0, "4.25", {4.25f});
    ExpectOneEdit<TScaleParamOp>("Size", 2, 1, "-3", {1, -3});
    ExpectOneEdit<TVector3ParamOp>("Direction", 3, 2, "0.5", {0, 1, 0.5f});
    ExpectOneEdit<TQuaternionParamOp>("Turn", 3, 0, "45", {45, 90, 0});
    ExpectOneEdit<TTransformParamOp>("Place", 9, 1, "8", {1, 8, 3, 10, 20, 30});
    ExpectOneEdit<TTexCoordParamOp>("Area", 4, 2, "0.5", {0, 0, 0.5f, 1});
    ExpectOneEdit<TScalarParamOp>("Gain", 1, 0, "9", {9});
}

TEST_F(NumberGroups, AWholeNumberIsEditedByItsOperation)
{
    TNumberParameterControls& controls = MakeNumbers("Count");
    EXPECT_EQ(Shown(controls, 0), "16");
    Type(controls, 0, "40");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TIntParamOp>());
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 40);
    Document.Undo();
    EXPECT_EQ(Shown(controls, 0), "16");
    Document.Redo();
    EXPECT_EQ(Shown(controls, 0), "40");
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(NumberGroups, TypingTheHeldValueAddsNoUndoStep)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Type(speed, 0, "2.5");
    Type(speed, 0, "2.50");
    TNumberParameterControls& count = MakeNumbers("Count");
    Type(count, 0, "16");
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Shown(speed, 0), "2.5000");
    EXPECT_FALSE(Document.CanUndo() && NumOps() > 0);
}

TEST_F(NumberGroups, TheComparisonIsExact)
{
    TNumberParameterControls& controls = MakeNumbers("Speed");
    // Four places are shown, and all that are typed count.
    Type(controls, 0, "2.50001");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Floats("Speed"), TFloats{2.50001f});
    EXPECT_EQ(Shown(controls, 0), "2.5000");
    // A float is no finer than that.
    PassTime();
    Type(controls, 0, "2.500010000000001");
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(NumberGroups, PassingThroughAFieldRoundsNothing)
{
    const float value[] = {0.123456789f, 3e7f, -1.00001f};
    Param<TNodeValueParameter>("Direction").SetValue(value);
    TNumberParameterControls& controls = MakeNumbers("Direction");
    for (int i = 0; i < 3; ++i) {
        Click(MiddleOf(controls.GetInput(i).GetEdit()));
        Key(KEY_RETURN);
    }
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Floats("Direction"), (TFloats{0.123456789f, 3e7f, -1.00001f}));
}

TEST_F(NumberGroups, AnEditTakesOneNumberFromTheFieldAndTheOthersFromTheParameter)
{
    // Neither of the others survives its four places or its range.
    const float value[] = {0, 0.123456789f, 3e7f};
    Param<TNodeValueParameter>("Direction").SetValue(value);
    TNumberParameterControls& controls = MakeNumbers("Direction");
    Type(controls, 0, "1");
    EXPECT_EQ(Floats("Direction"), (TFloats{1, 0.123456789f, 3e7f}));
    // The same number again is the same step, another one is not.
    Type(controls, 0, "2");
    EXPECT_EQ(NumOps(), 1);
    Type(controls, 1, "5");
    EXPECT_EQ(NumOps(), 2);
    EXPECT_EQ(Floats("Direction"), (TFloats{2, 5, 3e7f}));
}

TEST_F(NumberGroups, WhatIsTypedIsClampedAndWhatIsHeldIsShownAsItIs)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    const float huge = 3e7f;
    Param<TNodeValueParameter>("Speed").SetValue(&huge);
    EXPECT_EQ(Shown(speed, 0), "30000000.0000");
    Type(speed, 0, "5000000");
    EXPECT_EQ(Floats("Speed"), TFloats{1000000});
    Type(speed, 0, "-5000000");
    EXPECT_EQ(Floats("Speed"), TFloats{-1000000});

    TNumberParameterControls& area = MakeNumbers("Area");
    Type(area, 0, "-7");
    Type(area, 3, "7");
    EXPECT_EQ(Floats("Area"), (TFloats{-1, 0, 1, 2}));

    TNumberParameterControls& count = MakeNumbers("Count");
    Type(count, 0, "2147483647");
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 2147483647);
    Type(count, 0, "2147483646");
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 2147483646);
    Type(count, 0, "-99999999999");
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), std::numeric_limits<int>::min());
}

TEST_F(NumberGroups, WhatIsNoNumberPutsTheShownValueBack)
{
    TNumberParameterControls& controls = MakeNumbers("Speed");
    for (const char* text : {"-", ".", "1-2"}) {
        Type(controls, 0, text);
        EXPECT_EQ(Shown(controls, 0), "2.5000");
    }
    EXPECT_EQ(NumOps(), 0);
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    Param<TNodeValueParameter>("Speed").SetValue(&nothing);
    EXPECT_NE(Shown(controls, 0).find("nan"), std::string::npos);
    Type(controls, 0, "3");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Floats("Speed"), TFloats{3});
}

TEST_F(NumberGroups, TextureCoordinatesStandTwoByTwo)
{
    TNumberParameterControls& controls = MakeNumbers("Area");
    // Left, top, right, bottom: down the first column, then down the second.
    const TVector2 first = controls.GetInput(0).GetOrigin();
    EXPECT_EQ(first, TVector2(30, 0));
    EXPECT_EQ(controls.GetInput(1).GetOrigin(), TVector2(30, 28));
    EXPECT_EQ(controls.GetInput(2).GetOrigin(), TVector2(170, 0));
    EXPECT_EQ(controls.GetInput(3).GetOrigin(), TVector2(170, 28));
    for (int i = 0; i < 4; ++i) {
        Type(controls, i, "0." + std::to_string(i + 1));
        PassTime();
    }
    const auto& area = Param<TNodeTexCoordParameter>("Area");
    EXPECT_EQ(area.GetMin()[0], 0.1f);
    EXPECT_EQ(area.GetMin()[1], 0.2f);
    EXPECT_EQ(area.GetMax()[0], 0.3f);
    EXPECT_EQ(area.GetMax()[1], 0.4f);
}

TEST_F(NumberGroups, TheArrowsStepByWhatTheKindTells)
{
    auto step = [this](TNumberParameterControls& controls, int field) {
        Click(MiddleOf(controls.GetInput(field).GetEdit()));
        PassTime();
        Key(KEY_UP);
    };
    step(MakeNumbers("Speed"), 0);
    EXPECT_EQ(Floats("Speed"), TFloats{2.6f});
    step(MakeNumbers("Area"), 0);
    EXPECT_EQ(Floats("Area"), (TFloats{0.01f, 0, 1, 1}));
    step(MakeNumbers("Count"), 0);
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 17);
    EXPECT_EQ(NumOps(), 3);
}

TEST_F(NumberGroups, ADragOnTheArrowsIsOneUndoStep)
{
    TNumberParameterControls& controls = MakeNumbers("Speed");
    TNumberInput& input = controls.GetInput(0);
    const TVector2 arrow =
        input.GetAbsolutePosition() + TVector2(TNumberParameterControls::FieldWidth - 7, 5);
    Send(MT_MOUSEMOVE, arrow, 0);
    Press(arrow);
    for (int i = 1; i <= 10; ++i) {
        PassTime(150);
        Drag(arrow - TVector2(0, static_cast<float>(2 * i)));
    }
    Release(arrow - TVector2(0, 20));
    EXPECT_GT(Floats("Speed")[0], 3.0f);
    EXPECT_EQ(NumOps(), 1);
    Document.Undo();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_EQ(Shown(controls, 0), "2.5000");
    EXPECT_EQ(NumOps(), 1);
}

} // namespace
