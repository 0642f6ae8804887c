#include "groupstest.h"

namespace {

class Scrub : public TGroupsTest
{
protected:
    void DragBy(TNumberParameterControls& controls, int field, std::initializer_list<float> places)
    {
        const TVector2 from = ScrubOf(controls, field);
        Send(MT_MOUSEMOVE, from, 0);
        Press(from);
        float last = 0;
        for (const float x : places) {
            Drag(from + TVector2(x, 0));
            last = x;
        }
        Release(from + TVector2(last, 0));
    }
};

TEST_F(Scrub, ADragOnTheLabelStepsTheNumberForEachTwoUnits)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    DragBy(speed, 0, {10, 20});
    EXPECT_EQ(Shown(speed, 0), "3.5000");
    EXPECT_EQ(NumOps(), 1);
    Document.Undo();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_EQ(Shown(speed, 0), "2.5000");

    TNumberParameterControls& count = MakeNumbers("Count");
    DragBy(count, 0, {-6});
    EXPECT_EQ(Param<TNodeIntParameter>("Count").Get(), 13);
    TNumberParameterControls& area = MakeNumbers("Area");
    DragBy(area, 3, {-20});
    EXPECT_EQ(Floats("Area"), (TFloats{0, 0, 1, 0.9f}));
}

TEST_F(Scrub, TheNumberIsLiveOnTheWay)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    const TVector2 from = ScrubOf(speed, 0);
    Press(from);
    Drag(from + TVector2(10, 0));
    EXPECT_EQ(Floats("Speed"), TFloats{3.0f});
    EXPECT_EQ(Shown(speed, 0), "3.0000");
    EXPECT_EQ(NumOps(), 0);
    Release(from + TVector2(10, 0));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_FALSE(Controls.IsDragging());
}

TEST_F(Scrub, AGestureIsOneUndoStepHoweverLongItTakesAndWhereverItTurns)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    const TVector2 from = ScrubOf(speed, 0);
    Press(from);
    for (const float x : {20.0f, 40.0f, -10.0f, 6.0f, 30.0f}) {
        PassTime(1500);
        Drag(from + TVector2(x, 0));
    }
    Release(from + TVector2(30, 0));
    EXPECT_EQ(Floats("Speed"), TFloats{4.0f});
    EXPECT_EQ(NumOps(), 1);
    Document.Undo();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    Document.Redo();
    EXPECT_EQ(Floats("Speed"), TFloats{4.0f});
}

TEST_F(Scrub, AGestureThatEndsWhereItBeganIsNoOperation)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    DragBy(speed, 0, {20, 0});
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_EQ(NumOps(), 0);
}

TEST_F(Scrub, ShiftMakesStepsCoarseAndCtrlFine)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    KeyFlags = KF_SHIFT;
    // Both the press and the move are routed with the keys held.
    TMessage shift;
    shift.Type = MT_KEYDOWN;
    shift.Key = KEY_SHIFT;
    const TVector2 from = ScrubOf(speed, 0);
    Press(from);
    TRenderObject::Route(Renderer, Root, shift);
    Drag(from + TVector2(4, 0));
    EXPECT_EQ(Floats("Speed"), TFloats{4.5f});
    shift.Type = MT_KEYUP;
    KeyFlags = 0;
    TRenderObject::Route(Renderer, Root, shift);
    TMessage ctrl;
    ctrl.Type = MT_KEYDOWN;
    ctrl.Key = KEY_CTRL;
    TRenderObject::Route(Renderer, Root, ctrl);
    Drag(from + TVector2(10, 0));
    EXPECT_EQ(Floats("Speed"), TFloats{4.53f});
    ctrl.Type = MT_KEYUP;
    TRenderObject::Route(Renderer, Root, ctrl);
    Release(from + TVector2(10, 0));
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(Scrub, WhatIsEnteredByItIsClamped)
{
    TNumberParameterControls& area = MakeNumbers("Area");
    DragBy(area, 2, {4000, 4010});
    EXPECT_EQ(Floats("Area")[2], 2.0f);
    DragBy(area, 2, {-9000});
    EXPECT_EQ(Floats("Area")[2], -1.0f);
}

TEST_F(Scrub, LosingTheMouseRestoresTheNumber)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    const TVector2 from = ScrubOf(speed, 0);
    Press(from);
    Drag(from + TVector2(10, 0));
    Controls.LoseDrag();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_EQ(Shown(speed, 0), "2.5000");
    EXPECT_EQ(NumOps(), 0);
    EXPECT_FALSE(Controls.IsDragging());
}

TEST_F(Scrub, AGroupThatGoesRestoresTheNumber)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    const TVector2 from = ScrubOf(speed, 0);
    Press(from);
    Drag(from + TVector2(10, 0));
    Groups.clear();
    EXPECT_EQ(Floats("Speed"), TFloats{2.5f});
    EXPECT_FALSE(Controls.IsDragging());
}

TEST_F(Scrub, AClickOnTheLabelSelectsTheField)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Click(ScrubOf(speed, 0));
    EXPECT_EQ(TRenderObject::GetFocus(), &speed.GetInput(0).GetEdit());
    Write("8");
    Key(KEY_RETURN);
    EXPECT_EQ(Floats("Speed"), TFloats{8});
}

TEST_F(Scrub, WhatIsBeingTypedElsewhereIsEnteredFirst)
{
    TNumberParameterControls& size = MakeNumbers("Size");
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Click(MiddleOf(size.GetInput(0).GetEdit()));
    Write("6");
    Press(ScrubOf(speed, 0));
    EXPECT_EQ(Floats("Size"), (TFloats{6, 2}));
    Release(ScrubOf(speed, 0));
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(Scrub, ThePlaceOfAVectorsNameIsNoNumbersLabel)
{
    TNumberParameterControls& direction = MakeNumbers("Direction");
    const TVector2 name = direction.GetAbsolutePosition() + direction.GetLabelRect() + TVector2(3, 5);
    EXPECT_FALSE(Press(name));
    EXPECT_FALSE(Controls.IsDragging());
    EXPECT_EQ(Root.Count(RE_LEFTDOWN), 1);
    DragBy(direction, 1, {20});
    EXPECT_EQ(Floats("Direction"), (TFloats{0, 2, 0}));
}

} // namespace
