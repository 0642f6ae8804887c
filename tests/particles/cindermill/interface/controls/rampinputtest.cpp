#include "ramptest.h"

#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"

namespace {

constexpr TRampSelection None;

class RampInput : public TRampTest
{
protected:
    TRampSelection Selected() { return Ramp().GetSelection(); }
};

// The inputs.

TEST_F(RampInput, ATypedTimeOrValueMovesTheSelectedPoint)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    Type(Ramp().GetValueInput(), "0.75");
    EXPECT_EQ(Curve(0)[1], (TRampPoint{1.0f / 3.0f, 0.75f}));
    EXPECT_TRUE(IsLast<TRampMovePointParamOp>());
    EXPECT_EQ(Selected(), (TRampSelection{0, 1}));
    Type(Ramp().GetTimeInput(), "0.5");
    EXPECT_EQ(Curve(0)[1], (TRampPoint{0.5f, 0.75f}));
    EXPECT_EQ(NumEdits(), 2);
    EXPECT_EQ(Selected(), (TRampSelection{0, 1}));
}

TEST_F(RampInput, OneInputLeavesWhatTheOtherRounds)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.123456f, 0.654321f}, {0.7f, 0.7f}, {1, 1}});
    Click(PlaceOf(0, 1));
    Type(Ramp().GetTimeInput(), "0.25");
    EXPECT_EQ(Curve(0)[1], (TRampPoint{0.25f, 0.654321f}));
}

TEST_F(RampInput, PassingThroughAnInputIsNoEdit)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.123456f, 0.654321f}, {0.7f, 0.7f}, {1, 1}});
    Click(PlaceOf(0, 1));
    Click(Middle(Ramp().GetTimeInput().GetEdit()));
    Key(KEY_TAB);
    Key(KEY_RETURN);
    Click(Place(0.1f, 0.9f));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(RampInput, ATypedTimeOfAnEndIsPutBack)
{
    ShowScalar();
    Click(PlaceOf(0, 3));
    Type(Ramp().GetTimeInput(), "0.5");
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(Text(Ramp().GetTimeInput().GetEdit().GetText()), "1.00");
    EXPECT_EQ(Curve(0)[3].X, 1);
}

TEST_F(RampInput, ATypedTimeIsHeldToTheNeighbours)
{
    ShowScalar();
    SetCurve(0, {{0, 0},
                 {0.1f, 0},
                 {0.3f, 1},
                 {0.5f, 1},
                 {0.6f, 1},
                 {0.7f, 0},
                 {0.8f, 0},
                 {0.9f, 0},
                 {0.95f, 0},
                 {1, 0}});
    Click(PlaceOf(0, 3));
    Type(Ramp().GetTimeInput(), "0.9");
    EXPECT_EQ(Curve(0)[3].X, 0.8f);
    EXPECT_EQ(Text(Ramp().GetTimeInput().GetEdit().GetText()), "0.80");
}

TEST_F(RampInput, WhatIsTypedIsTakenForThePointThatWasSelectedThen)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    Click(Middle(Ramp().GetValueInput().GetEdit()));
    Ramp().GetValueInput().GetEdit().SelectAll();
    TMessage message;
    message.Type = MT_CHAR;
    message.Character = '0';
    TRenderObject::Route(Renderer, Root, message);
    Click(PlaceOf(0, 2));
    EXPECT_EQ(Curve(0)[1].Y, 0);
    EXPECT_EQ(Curve(0)[2].Y, Line()[2].Y);
    EXPECT_EQ(Selected(), (TRampSelection{0, 2}));
    EXPECT_EQ(NumEdits(), 1);
}

TEST_F(RampInput, TabGoesFromAPointToItsInputs)
{
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    EXPECT_TRUE(Key(KEY_TAB));
    EXPECT_EQ(TTextEdit::GetFocused(), nullptr);
    Click(PlaceOf(0, 1));
    EXPECT_TRUE(Key(KEY_TAB));
    EXPECT_EQ(TTextEdit::GetFocused(), &Ramp().GetTimeInput().GetEdit());
    EXPECT_EQ(Selected(), (TRampSelection{0, 1}));
    Key(KEY_TAB);
    EXPECT_EQ(TTextEdit::GetFocused(), &Ramp().GetValueInput().GetEdit());
}

// The selection and the focus.

TEST_F(RampInput, LosingTheFocusDropsTheSelection)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    TDrawnObject other;
    TRenderObject::SetFocus(&other, &Renderer);
    EXPECT_EQ(Selected(), None);
}

TEST_F(RampInput, LosingTheFocusFromAnInputDropsTheSelection)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    Click(Middle(Ramp().GetTimeInput().GetEdit()));
    TRenderObject::RunTicks(&Renderer);
    EXPECT_EQ(Selected(), (TRampSelection{0, 1}));
    TDrawnObject other;
    TRenderObject::SetFocus(&other, &Renderer);
    TRenderObject::RunTicks(&Renderer);
    EXPECT_EQ(Selected(), None);
}

TEST_F(RampInput, LosingTheFocusInADragRestoresThePoints)
{
    ShowScalar();
    Press(PlaceOf(0, 1));
    Drag(PlaceOf(0, 1) + TVector2(20, 20));
    TRenderObject::SetFocus(nullptr);
    EXPECT_FALSE(Ramp().IsDragging());
    ExpectPoints(ToVector(Shown(0)), Line(), 0);
    EXPECT_EQ(Selected(), None);
}

TEST_F(RampInput, ARefreshKeepsTheSelectionIfThePointIsStillThere)
{
    ShowScalar();
    SetCurve(0, Hill());
    Click(PlaceOf(0, 3));
    TPoints moved = Hill();
    moved[3].Y = 0.5f;
    SetCurve(0, moved);
    EXPECT_EQ(Selected(), (TRampSelection{0, 3}));
    // The same point, one anchor later.
    TPoints longer = moved;
    longer.insert(longer.begin() + 2, {{0.2f, 0}, {0.25f, 0}, {0.28f, 0}});
    SetCurve(0, longer);
    EXPECT_EQ(Selected(), (TRampSelection{0, 6}));
    SetCurve(0, Line());
    EXPECT_EQ(Selected(), None);
}

TEST_F(RampInput, HidingASelectedPointsComponentDropsTheSelection)
{
    ShowFour();
    Click(PlaceOf(2, 3));
    ASSERT_EQ(Selected(), (TRampSelection{2, 3}));
    Click(Middle(*Ramp().GetComponentButton(1)));
    EXPECT_EQ(Selected(), (TRampSelection{2, 3}));
    Click(Middle(*Ramp().GetComponentButton(2)));
    EXPECT_EQ(Selected(), None);
    EXPECT_EQ(NumEdits(), 0);
}

// Keys.

TEST_F(RampInput, ArrowsMoveTheSelectedPointByAHundredthAndFinelyWithShift)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_NEAR(Curve(0)[1].X, 1.0f / 3.0f + 0.01f, 1e-6f);
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_NEAR(Curve(0)[1].Y, 1.0f / 3.0f + 0.01f, 1e-6f);
    KeyFlags = KF_SHIFT;
    Key(KEY_LEFT);
    Key(KEY_DOWN);
    EXPECT_NEAR(Curve(0)[1].X, 1.0f / 3.0f + 0.009f, 1e-6f);
    EXPECT_NEAR(Curve(0)[1].Y, 1.0f / 3.0f + 0.009f, 1e-6f);
    EXPECT_EQ(NumEdits(), 4);
    EXPECT_EQ(Selected(), (TRampSelection{0, 1}));
}

TEST_F(RampInput, PageKeysWalkThePointsOfAllComponentsThatAreShown)
{
    ShowFour();
    Ramp().TakeKeys(&Renderer);
    EXPECT_EQ(Selected(), (TRampSelection{0, 0}));
    // Nothing stands before the first.
    EXPECT_TRUE(Key(KEY_PAGEUP));
    EXPECT_EQ(Selected(), (TRampSelection{0, 0}));
    std::vector<TRampSelection> walked;
    for (int i = 0; i < 15; ++i) {
        walked.push_back(Selected());
        EXPECT_TRUE(Key(KEY_PAGEDOWN));
    }
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(walked[static_cast<size_t>(i)], (TRampSelection{i / 4, i % 4}));
    // Nor behind the last.
    EXPECT_EQ(Selected(), (TRampSelection{3, 3}));
    EXPECT_TRUE(Key(KEY_PAGEDOWN));
    EXPECT_EQ(Selected(), (TRampSelection{3, 3}));
    for (int i = 14; i >= 0; --i) {
        EXPECT_TRUE(Key(KEY_PAGEUP));
        EXPECT_EQ(Selected(), walked[static_cast<size_t>(i)]);
    }
    EXPECT_EQ(NumEdits(), 0);
    // Components that are hidden are passed over, and so are handles of straight lines.
    Click(Middle(*Ramp().GetComponentButton(1)));
    Click(PlaceOf(0, 3));
    Key(KEY_PAGEDOWN);
    EXPECT_EQ(Selected(), (TRampSelection{2, 0}));
}

TEST_F(RampInput, PageKeysPassOverTheHandlesOfStraightLines)
{
    ShowScalar();
    SetCurve(0, Hill());
    Click(Middle(Ramp().GetLinearButton()));
    ASSERT_TRUE(Ramp().GetModel().IsLinear());
    Ramp().TakeKeys(&Renderer);
    for (int point = 0; point <= 6; point += 3) {
        EXPECT_EQ(Selected(), (TRampSelection{0, point}));
        Key(KEY_PAGEDOWN);
    }
    EXPECT_EQ(Selected(), (TRampSelection{0, 6}));
}

TEST_F(RampInput, ArrowsWithoutASelectionAreNotTaken)
{
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    EXPECT_FALSE(Key(KEY_RIGHT));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(RampInput, AnArrowThatCannotMoveThePointIsNoOperation)
{
    ShowScalar();
    Click(PlaceOf(0, 3));
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_EQ(NumEdits(), 0);
}

// The view.

TEST_F(RampInput, TheWheelZoomsAboutThePointerInsideOnly)
{
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    const TVector2 at = Place(0.5f, 0.5f);
    EXPECT_TRUE(Wheel(at, 120));
    EXPECT_NEAR(Ramp().GetView().GetViewScale()[0], 1.06f, 1e-5f);
    EXPECT_NEAR(Place(0.5f, 0.5f)[0], at[0], 0.001f);
    EXPECT_NEAR(Place(0.5f, 0.5f)[1], at[1], 0.001f);
    EXPECT_FALSE(Wheel(World(TVector2(100, 170)), 120));
    EXPECT_NEAR(Ramp().GetView().GetViewScale()[0], 1.06f, 1e-5f);
}

TEST_F(RampInput, AZoomedViewStaysWhereItIsWhenPointsMove)
{
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    Wheel(Place(0.5f, 0.5f), 360);
    const TVector2 before = Place(0, 0);
    DragTo(PlaceOf(0, 2), PlaceOf(0, 2) + TVector2(0, -90));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_EQ(Place(0, 0), before);
}

TEST_F(RampInput, ADragOnTheAxesPansTheView)
{
    ShowScalar();
    const TVector2 before = Place(0.5f, 0.5f);
    DragTo(Axis(), Axis() + TVector2(15, -10));
    EXPECT_EQ(Place(0.5f, 0.5f), before + TVector2(15, -10));
    DragTo(World(TVector2(150, 146)), World(TVector2(140, 146)));
    EXPECT_EQ(Place(0.5f, 0.5f), before + TVector2(5, -10));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(RampInput, EscapeRestoresThePannedView)
{
    ShowScalar();
    const TVector2 before = Place(0.5f, 0.5f);
    Press(Axis());
    Drag(Axis() + TVector2(15, -10));
    EXPECT_NE(Place(0.5f, 0.5f), before);
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_EQ(Place(0.5f, 0.5f), before);
    EXPECT_TRUE(Ramp().GetView().IsFit());
}

TEST_F(RampInput, ADoubleClickOnTheAxesFits)
{
    TFakeClock clock(1000);
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    Wheel(Place(0.5f, 0.5f), 600);
    ASSERT_FALSE(Ramp().GetView().IsFit());
    Click(Axis());
    clock.Set(1600);
    Click(Axis());
    EXPECT_FALSE(Ramp().GetView().IsFit());
    clock.Set(1900);
    Click(Axis());
    EXPECT_TRUE(Ramp().GetView().IsFit());
    EXPECT_EQ(Ramp().GetView().GetViewScale(), TVector2(1, 1));
}

TEST_F(RampInput, TwoClicksApartOnTheAxesDoNotFit)
{
    TFakeClock clock(1000);
    ShowScalar();
    Click(Place(0.1f, 0.9f));
    Wheel(Place(0.5f, 0.5f), 600);
    Click(Axis());
    Click(Axis() + TVector2(0, 20));
    EXPECT_FALSE(Ramp().GetView().IsFit());
}

TEST_F(RampInput, AComponentsButtonChangesWhatTheFitShows)
{
    ShowFour();
    EXPECT_NEAR(Ramp().GetView().GetValuePixels(), 100.0 / 3, 0.001);
    Click(Middle(*Ramp().GetComponentButton(3)));
    EXPECT_NEAR(Ramp().GetView().GetValuePixels(), 50, 0.001);
    EXPECT_FALSE(Ramp().GetComponentButton(3)->IsPressed());
    Click(Middle(*Ramp().GetComponentButton(3)));
    EXPECT_NEAR(Ramp().GetView().GetValuePixels(), 100.0 / 3, 0.001);
    EXPECT_EQ(NumEdits(), 0);
}

// Between the ramp and its buttons only: outside, the code is a node's refresh.
TEST_F(RampInput, TheCodeOfTheButtonsDoesNotLeaveTheRamp)
{
    ShowFour();
    std::vector<int> seen;
    struct TParent : public TRenderObjects
    {
        explicit TParent(std::vector<int>& codes) : Codes(codes) {}
        bool Event(const TRenderEvent& event) override
        {
            Codes.push_back(event.Code);
            return false;
        }
        std::vector<int>& Codes;
    } parent(seen);
    Root.RemoveObject(Controls.get());
    parent.AddObject(Controls.get());
    Root.AddObject(&parent);
    Click(Middle(*Ramp().GetComponentButton(3)));
    Click(Middle(Ramp().GetLockButton()));
    Click(Middle(Ramp().GetLinearButton()));
    EXPECT_EQ(NumEdits(), 2);
    for (int code : seen) {
        EXPECT_NE(code, RE_NODEREFRESH);
        EXPECT_NE(code, RE_VALUECHANGED);
    }
    parent.RemoveObject(Controls.get());
    Root.RemoveObject(&parent);
}

// Operations that nobody takes do not happen, and the points are those of the parameter again.
TEST_F(RampInput, WhatTheParentDoesNotTakeIsPutBack)
{
    ShowScalar();
    TRamp lonely(Host);
    const vector<TRampPoint> line = ToVector(Line());
    lonely.SetParameter(&Parameter());
    lonely.Build(TVector2(350, 150), 1, false, false, &line);
    lonely.SetOrigin(TVector2(30, 300));
    Root.AddObject(&lonely);
    const TVector2 point = lonely.GetAbsolutePosition() + lonely.GetView().ToPosition(Line()[1]);
    DragTo(point, point + TVector2(30, 30));
    ExpectPoints(lonely.GetModel().GetCurve(0).GetPoints(), Line(), 0);
    EXPECT_EQ(NumEdits(), 0);
    Root.RemoveObject(&lonely);
}

TEST_F(RampInput, ThePointerOverThePlotIsFollowed)
{
    ShowScalar();
    Move(Place(0.5f, 0.2f));
    int before = Host.NumRedraws;
    Move(Place(0.6f, 0.2f));
    EXPECT_GT(Host.NumRedraws, before);
    Move(World(TVector2(100, 170)));
    before = Host.NumRedraws;
    Move(World(TVector2(120, 175)));
    EXPECT_EQ(Host.NumRedraws, before);
}

TEST_F(RampInput, TheFocusedRampIsTheOneWhoseInputsAreNotTypedInto)
{
    ShowScalar();
    EXPECT_EQ(TRamp::GetFocused(), nullptr);
    Click(PlaceOf(0, 1));
    EXPECT_EQ(TRamp::GetFocused(), &Ramp());
    Key(KEY_TAB);
    EXPECT_EQ(TRamp::GetFocused(), nullptr);
}

TEST_F(RampInput, ThePointersShapeTellsWhatAPressTakes)
{
    ShowScalar();
    auto shapeAt = [&](const TVector2& place) {
        Move(place);
        return Host.Pointer;
    };
    EXPECT_EQ(shapeAt(Place(0.2f, 0.9f)), PS_NORMAL);
    EXPECT_EQ(shapeAt(PlaceOf(0, 1)), PS_HAND);
    EXPECT_EQ(shapeAt(Place(0.5f, 0.5f)), PS_HAND);
    EXPECT_EQ(shapeAt(Place(0.5f, 0.7f)), PS_NORMAL);
    EXPECT_EQ(shapeAt(Axis()), PS_NORMAL);
}

} // namespace
