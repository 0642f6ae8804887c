#include "ramptest.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"

namespace {

constexpr TRampSelection None;

class Ramp : public TRampTest
{
};

// Layout.

TEST_F(Ramp, TheRowBeginsAt25WithAButtonOf30ForEachComponent)
{
    ShowFour();
    TRamp& ramp = TRampTest::Ramp();
    for (int i = 0; i < 4; ++i) {
        TPushButton* button = ramp.GetComponentButton(i);
        ASSERT_NE(button, nullptr);
        TVector2 min;
        TVector2 max;
        button->GetBounds(min, max);
        EXPECT_EQ(button->GetOrigin()[0], 25.0f + 30.0f * static_cast<float>(i));
        EXPECT_EQ(max[0] - min[0], 25);
        EXPECT_EQ(button->GetOrigin()[1] + max[1], TRampLayout::RowLine - 4.5f);
    }
    EXPECT_EQ(ramp.GetLockButton().GetOrigin()[0], 145);
    EXPECT_EQ(ramp.GetLinearButton().GetOrigin()[0], 185);
    EXPECT_EQ(ramp.GetLinearButton().GetOrigin()[1], ramp.GetLockButton().GetOrigin()[1] + 0.5f);
    EXPECT_EQ(ramp.GetTimeInput().GetOrigin()[0], 233);
    EXPECT_EQ(ramp.GetValueInput().GetOrigin()[0], 313);
}

TEST_F(Ramp, OneComponentHasNoButtonsOfItsOwnAndNoLock)
{
    ShowScalar();
    TRamp& ramp = TRampTest::Ramp();
    EXPECT_EQ(ramp.GetComponentButton(0), nullptr);
    EXPECT_FALSE(ramp.HasObject(&ramp.GetLockButton()));
    EXPECT_TRUE(ramp.HasObject(&ramp.GetLinearButton()));
    EXPECT_EQ(ramp.GetLinearButton().GetOrigin()[0], 25);
}

TEST_F(Ramp, TheInputsShowTwoPlacesOfTheSelectedPointOnly)
{
    ShowScalar();
    TRamp& ramp = TRampTest::Ramp();
    EXPECT_TRUE(ramp.GetTimeInput().GetEdit().IsReadOnly());
    Click(PlaceOf(0, 1));
    EXPECT_FALSE(ramp.GetTimeInput().GetEdit().IsReadOnly());
    EXPECT_EQ(Text(ramp.GetTimeInput().GetEdit().GetText()), "0.33");
    EXPECT_EQ(Text(ramp.GetValueInput().GetEdit().GetText()), "0.33");
    EXPECT_EQ(ramp.GetTimeInput().GetMin(), 0);
    EXPECT_EQ(ramp.GetTimeInput().GetMax(), 1);
    EXPECT_EQ(ramp.GetValueInput().GetMin(), -1000000);
    EXPECT_EQ(ramp.GetValueInput().GetMax(), 1000000);
}

TEST_F(Ramp, TheTimeInputReachesToTheLastTimeOfALongRamp)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {1, 0}, {2, 0}, {3, 1}});
    EXPECT_EQ(TRampTest::Ramp().GetTimeInput().GetMax(), 3);
    SetCurve(0, {{0, 0}, {0.1f, 0}, {0.2f, 0}, {0.3f, 1}});
    EXPECT_EQ(TRampTest::Ramp().GetTimeInput().GetMax(), 1);
}

TEST_F(Ramp, ValuesAreTheParametersAtEveryTime)
{
    ShowFour();
    SetCurve(0, Hill());
    Lock(-1, -1, 0, -1);
    for (float time : {-1.0f, 0.0f, 0.13f, 0.5f, 0.77f, 1.0f, 2.0f})
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(TRampTest::Ramp().GetValue(i, time), Parameter().Evaluate(time, i));
}

// Presses.

TEST_F(Ramp, APointWithin5PixelsOfTheScreenIsTaken)
{
    ShowScalar();
    Click(PlaceOf(0, 1) + TVector2(0, -4.5f));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 1}));
    Click(PlaceOf(0, 1) + TVector2(0, -9));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    Renderer.SetScale(TVector2(2, 2));
    Click(PlaceOf(0, 1) + TVector2(0, -4.5f));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    Click(PlaceOf(0, 1) + TVector2(0, -2.4f));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 1}));
    Renderer.SetScale(TVector2(0.5f, 0.5f));
    Click(PlaceOf(0, 2) + TVector2(0, -9));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 2}));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, AnchorsAreTakenBeforeHandles)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.49f, 0.5f}, {0.4f, 0.5f}, {0.5f, 0.5f}, {0.6f, 0.5f}, {0.9f, 1}, {1, 1}});
    Click(PlaceOf(0, 1));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
}

TEST_F(Ramp, TheSelectedComponentsPointsAreTakenFirst)
{
    ShowFour();
    SetCurve(0, Line());
    SetCurve(1, Line());
    SetCurve(2, {{0, 1}, {0.3f, 0.7f}, {0.7f, 0.3f}, {1, 0}});
    Click(PlaceOf(0, 3));
    ASSERT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
    // Component 1 alone, so that it is the selected one when the other comes back.
    Click(Middle(*TRampTest::Ramp().GetComponentButton(0)));
    Click(PlaceOf(1, 3));
    ASSERT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{1, 3}));
    Click(Middle(*TRampTest::Ramp().GetComponentButton(0)));
    Click(PlaceOf(0, 3));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{1, 3}));
}

TEST_F(Ramp, ThePointThatCanBeRemovedIsTakenBeforeTheEndItLiesOn)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.3f, 0}, {0.7f, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}});
    Click(PlaceOf(0, 6));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
}

TEST_F(Ramp, APressOnNothingTakesTheFocusAndDropsTheSelection)
{
    ShowScalar();
    Click(PlaceOf(0, 3));
    ASSERT_NE(TRampTest::Ramp().GetSelection(), None);
    EXPECT_TRUE(Press(Place(0.2f, 0.9f)));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    EXPECT_EQ(TRenderObject::GetFocus(), &TRampTest::Ramp());
    EXPECT_FALSE(TRampTest::Ramp().IsDragging());
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, HiddenComponentsTakeNoHits)
{
    ShowFour();
    Click(Middle(*TRampTest::Ramp().GetComponentButton(2)));
    EXPECT_FALSE(TRampTest::Ramp().GetModel().IsVisible(2));
    Click(Place(1, 2));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    Click(Place(0.5f, 2));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, HandlesOfALinearRampTakeNoHits)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.3f, 1}, {0.6f, 1}, {1, 1}});
    Parameter().SetLinear(true);
    Click(Place(0.3f, 1));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    EXPECT_EQ(NumEdits(), 0);
    Parameter().SetLinear(false);
    Click(Place(0.3f, 1));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 1}));
}

TEST_F(Ramp, ACurveWithoutPointsIsShownEmptyAndTakesNoHits)
{
    ShowFour();
    SetCurve(1, {});
    for (float value : {0.0f, 1.0f, 2.0f})
        Click(Place(0.5f, value) + TVector2(0, 9));
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(TRampTest::Ramp().GetValue(1, 0.5f), 0);
}

TEST_F(Ramp, PointsBehindTheLastSegmentTakeNoHitsAndStay)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.3f, 0}, {0.4f, 0}, {0.5f, 1}, {0.7f, 0.5f}});
    Click(Place(0.7f, 0.5f));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    DragTo(PlaceOf(0, 3), PlaceOf(0, 3) + TVector2(0, 20));
    EXPECT_EQ(NumEdits(), 1);
    ASSERT_EQ(Curve(0).size(), 5u);
    EXPECT_EQ(Curve(0)[4], (TRampPoint{0.7f, 0.5f}));
}

// Drags and their operations.

TEST_F(Ramp, ADragIsOneOperationAtItsEnd)
{
    ShowScalar();
    Press(PlaceOf(0, 1));
    const TVector2 to = Place(0.5f, 0.9f);
    Drag(to);
    EXPECT_EQ(NumEdits(), 0);
    ExpectPoints(Parameter().GetCurve(0), Line());
    EXPECT_NEAR(Shown(0)[1].X, 0.5f, 1e-4f);
    EXPECT_NEAR(Shown(0)[1].Y, 0.9f, 1e-4f);
    EXPECT_EQ(Text(TRampTest::Ramp().GetTimeInput().GetEdit().GetText()), "0.50");
    EXPECT_EQ(Text(TRampTest::Ramp().GetValueInput().GetEdit().GetText()), "0.90");
    Release(to);
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampMovePointParamOp>());
    ExpectPoints(Parameter().GetCurve(0), {{0, 0}, {0.5f, 0.9f}, {2.0f / 3.0f, 2.0f / 3.0f}, {1, 1}}, 1e-4f);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 1}));
    Document.Undo();
    ExpectPoints(Parameter().GetCurve(0), Line());
    ExpectPoints(ToVector(Shown(0)), Line());
}

TEST_F(Ramp, TheStripFollowsADrag)
{
    ShowFour();
    Press(PlaceOf(0, 3));
    Drag(PlaceOf(0, 3) + TVector2(0, 10));
    EXPECT_LT(TRampTest::Ramp().GetValue(0, 1), -0.1f);
    EXPECT_EQ(Parameter().Evaluate(1, 0), 0);
}

TEST_F(Ramp, DragsInSuccessionStaySeparate)
{
    ShowScalar();
    for (int i = 0; i < 3; ++i)
        DragTo(PlaceOf(0, 1), PlaceOf(0, 1) + TVector2(4, 3));
    EXPECT_EQ(NumEdits(), 3);
}

TEST_F(Ramp, AnAnchorTakesItsHandlesAlongInOneOperation)
{
    ShowScalar();
    SetCurve(0, Hill());
    DragTo(PlaceOf(0, 3), Place(0.6f, 0.5f));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampChangePointsOp>());
    ExpectPoints(Parameter().GetCurve(0),
                 {{0, 0}, {0.1f, 0.6f}, {0.4f, 0.5f}, {0.6f, 0.5f}, {0.8f, 0.5f}, {0.9f, 0.6f}, {1, 0}},
                 1e-4f);
}

TEST_F(Ramp, ADragThatChangesNothingIsNoOperation)
{
    ShowScalar();
    Click(PlaceOf(0, 1) + TVector2(2.3f, 1.7f));
    EXPECT_EQ(NumEdits(), 0);
    Press(PlaceOf(0, 1));
    const TVector2 from = PlaceOf(0, 1);
    Drag(from + TVector2(20, 20));
    Drag(from);
    Release(from);
    EXPECT_EQ(NumEdits(), 0);
    ExpectPoints(ToVector(Shown(0)), Line(), 0);
}

// A file may hold points that no drag would leave so.
TEST_F(Ramp, APressWithoutAMoveLeavesPointsOutOfOrder)
{
    ShowScalar();
    const TPoints odd = {{0, 0},       {0.8f, 0.3f},  {0.6f, 1},    {0.4f, 1},    {0.2f, 1},
                         {0.9f, 0.6f}, {0.35f, 0.5f}, {0.5f, 0.2f}, {0.8f, 0.1f}, {1, 0}};
    SetCurve(0, odd);
    for (const int point : {1, 3, 6}) {
        Click(PlaceOf(0, point));
        ASSERT_EQ(TRampTest::Ramp().GetSelection().Point, point);
        EXPECT_EQ(NumEdits(), 0) << point;
    }
    ExpectPoints(ToVector(Shown(0)), odd, 0);
    ExpectPoints(Parameter().GetCurve(0), odd, 0);
}

TEST_F(Ramp, APointTakenBesideItsMiddleDoesNotJump)
{
    ShowScalar();
    const TVector2 grip = PlaceOf(0, 1) + TVector2(3, 2);
    DragTo(grip, grip + TVector2(31.65f, 0));
    EXPECT_NEAR(Curve(0)[1].X, 1.0f / 3.0f + 0.1f, 1e-4f);
    EXPECT_NEAR(Curve(0)[1].Y, 1.0f / 3.0f, 1e-5f);
}

TEST_F(Ramp, GoingTooFarAndBackLosesNothing)
{
    ShowScalar();
    SetCurve(0, Hill());
    const TVector2 from = PlaceOf(0, 3);
    Press(from);
    Drag(from + TVector2(500, 0));
    EXPECT_EQ(Shown(0)[3].X, 1);
    Drag(from + TVector2(0, 10));
    ExpectPoints(ToVector(Shown(0)),
                 {{0, 0}, {0.1f, 0.6f}, {0.3f, 0.9f}, {0.5f, 0.9f}, {0.7f, 0.9f}, {0.9f, 0.6f}, {1, 0}},
                 1e-4f);
    Release(from + TVector2(0, 10));
}

TEST_F(Ramp, TheViewStandsStillUnderADrag)
{
    ShowScalar();
    const TVector2 before = Place(0, 0);
    Press(PlaceOf(0, 3));
    Drag(PlaceOf(0, 3) + TVector2(0, -60));
    EXPECT_EQ(Place(0, 0), before);
    EXPECT_EQ(TRampTest::Ramp().GetView().GetValuePixels(), 100);
    Release(Place(1, 1) + TVector2(0, -60));
    EXPECT_NEAR(TRampTest::Ramp().GetView().GetValuePixels(), 100 / 1.6, 0.01);
}

TEST_F(Ramp, EscapeEndsADragAndRestoresThePoints)
{
    ShowScalar();
    Press(PlaceOf(0, 1));
    Drag(PlaceOf(0, 1) + TVector2(30, -30));
    EXPECT_NE(Shown(0)[1].X, Line()[1].X);
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_FALSE(TRampTest::Ramp().IsDragging());
    ExpectPoints(ToVector(Shown(0)), Line(), 0);
    Release(Place(0.5f, 0.5f));
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 1}));
}

TEST_F(Ramp, LosingTheMouseRestoresThePoints)
{
    ShowScalar();
    Press(PlaceOf(0, 1));
    Drag(PlaceOf(0, 1) + TVector2(30, -30));
    Host.LoseDrag();
    ExpectPoints(ToVector(Shown(0)), Line(), 0);
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, AChangeFromOutsideEndsADrag)
{
    ShowScalar();
    Press(PlaceOf(0, 1));
    Drag(PlaceOf(0, 1) + TVector2(30, -30));
    SetCurve(0, Hill());
    EXPECT_FALSE(TRampTest::Ramp().IsDragging());
    ExpectPoints(ToVector(Shown(0)), Hill());
    EXPECT_EQ(NumEdits(), 0);
}

// Inserting and removing.

TEST_F(Ramp, APressOnACurveInsertsAnAnchorThatIsDraggedAtOnceInOneOperation)
{
    ShowScalar();
    Press(Place(0.5f, 0.5f) + TVector2(0, 3));
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
    ASSERT_EQ(Shown(0).size(), 7u);
    EXPECT_NEAR(Shown(0)[3].Y, 0.47f, 1e-4f);
    Drag(Place(0.6f, 0.8f) + TVector2(0, 3));
    Release(Place(0.6f, 0.8f) + TVector2(0, 3));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampChangePointsOp>());
    ASSERT_EQ(Curve(0).size(), 7u);
    EXPECT_NEAR(Curve(0)[3].X, 0.6f, 1e-4f);
    EXPECT_NEAR(Curve(0)[3].Y, 0.77f, 1e-4f);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
    Document.Undo();
    ExpectPoints(Parameter().GetCurve(0), Line());
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
}

TEST_F(Ramp, APressOnACurveThatIsLetGoInPlaceInserts)
{
    ShowScalar();
    Click(Place(0.25f, 0.25f));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_TRUE(IsLast<TRampChangePointsOp>());
    ExpectPoints(Parameter().GetCurve(0),
                 {{0, 0},
                  {0.25f, 1.0f / 3.0f},
                  {0.25f * 2 / 3, 0.25f * 2 / 3},
                  {0.25f, 0.25f},
                  {0.5f, 0.5f},
                  {2.0f / 3.0f, 2.0f / 3.0f},
                  {1, 1}},
                 1e-3f);
}

TEST_F(Ramp, EscapeTakesAnInsertedAnchorBack)
{
    ShowScalar();
    Press(Place(0.5f, 0.5f));
    Drag(Place(0.6f, 0.9f));
    Key(KEY_ESCAPE);
    ExpectPoints(ToVector(Shown(0)), Line(), 0);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, APressBesideEveryCurveInsertsNothing)
{
    ShowScalar();
    Click(Place(0.5f, 0.5f) + TVector2(0, 12));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, DeleteAndBackspaceRemoveTheSelectedInnerAnchor)
{
    for (int key : {KEY_DELETE, KEY_BACKSPACE}) {
        Show("Scalar Over Life");
        SetCurve(0, Hill());
        Click(PlaceOf(0, 3));
        EXPECT_TRUE(Key(key));
        EXPECT_EQ(NumEdits(), 1);
        EXPECT_TRUE(IsLast<TRampChangePointsOp>());
        // Both handles are twice as long.
        ExpectPoints(Parameter().GetCurve(0), {{0, 0}, {0.2f, 1.2f}, {0.8f, 1.2f}, {1, 0}});
        EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    }
}

TEST_F(Ramp, OtherPointsAreNotRemovedAndTheKeyIsConsumedAllTheSame)
{
    ShowScalar();
    SetCurve(0, Hill());
    for (int point : {0, 1, 2, 6}) {
        Click(PlaceOf(0, point));
        ASSERT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, point}));
        EXPECT_TRUE(Key(KEY_DELETE));
        EXPECT_TRUE(Key(KEY_BACKSPACE));
    }
    Click(Place(0.2f, 0.1f));
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, RemovingTheFirstOrLastAnchorIsAnAssertion)
{
    ShowScalar();
    SetCurve(0, Hill());
    const char* text = "(point % 3) == 0 && point != 0 && point != ControlPoints[comp].size()-1";
    EXPECT_EQ(AssertionOf([&] { TRampTest::Ramp().RemovePoint(0, 0); }), text);
    EXPECT_EQ(AssertionOf([&] { TRampTest::Ramp().RemovePoint(0, 6); }), text);
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, NothingIsRemovedDuringADrag)
{
    ShowScalar();
    SetCurve(0, Hill());
    Press(PlaceOf(0, 3));
    EXPECT_TRUE(Key(KEY_DELETE));
    Release(PlaceOf(0, 3));
    EXPECT_EQ(NumEdits(), 0);
    EXPECT_EQ(Curve(0).size(), 7u);
}

// Linear.

TEST_F(Ramp, TheLinearButtonSwitchesStraightness)
{
    ShowScalar();
    Click(Middle(TRampTest::Ramp().GetLinearButton()));
    EXPECT_TRUE(Parameter().IsLinear());
    EXPECT_TRUE(TRampTest::Ramp().GetLinearButton().IsPressed());
    EXPECT_TRUE(IsLast<TRampLinearOp>());
    EXPECT_EQ(NumEdits(), 1);
    Document.Undo();
    EXPECT_FALSE(Parameter().IsLinear());
    EXPECT_FALSE(TRampTest::Ramp().GetLinearButton().IsPressed());
    EXPECT_EQ(NumOperations(), Start + 1);
}

TEST_F(Ramp, ALinearRampDropsASelectedHandleAndKeepsASelectedAnchor)
{
    ShowScalar();
    Click(PlaceOf(0, 1));
    Parameter().SetLinear(true);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    Click(PlaceOf(0, 3));
    Parameter().SetLinear(false);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{0, 3}));
}

TEST_F(Ramp, HandlesOfALinearRampMoveWithTheirAnchors)
{
    ShowScalar();
    SetCurve(0, Hill());
    Parameter().SetLinear(true);
    DragTo(PlaceOf(0, 3), Place(0.5f, 0.5f));
    ExpectPoints(Parameter().GetCurve(0),
                 {{0, 0}, {0.1f, 0.6f}, {0.3f, 0.5f}, {0.5f, 0.5f}, {0.7f, 0.5f}, {0.9f, 0.6f}, {1, 0}},
                 1e-4f);
}

// Locks.

TEST_F(Ramp, TheLockButtonLocksAndFrees)
{
    ShowFour();
    Click(Middle(TRampTest::Ramp().GetLockButton()));
    EXPECT_TRUE(IsLast<TRampLockOp>());
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_EQ(std::vector<int>(Parameter().GetLocks(), Parameter().GetLocks() + 4),
              (std::vector<int>{-1, 0, 0, 0}));
    EXPECT_TRUE(TRampTest::Ramp().GetLockButton().IsPressed());
    Click(Middle(TRampTest::Ramp().GetLockButton()));
    EXPECT_EQ(NumEdits(), 2);
    EXPECT_EQ(std::vector<int>(Parameter().GetLocks(), Parameter().GetLocks() + 4),
              (std::vector<int>{-1, -1, -1, -1}));
    EXPECT_FALSE(TRampTest::Ramp().GetLockButton().IsPressed());
}

TEST_F(Ramp, WithOneVisibleComponentLockTakesNoPress)
{
    ShowFour();
    for (int i : {0, 1, 3})
        Click(Middle(*TRampTest::Ramp().GetComponentButton(i)));
    EXPECT_FALSE(TRampTest::Ramp().GetLockButton().IsEnabled());
    Click(Middle(TRampTest::Ramp().GetLockButton()));
    EXPECT_EQ(NumEdits(), 0);
}

TEST_F(Ramp, AnEditOfALockedComponentEditsTheOneItFollows)
{
    ShowFour();
    Lock(-1, -1, 1, -1);
    Click(Place(1, 2));
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), None);
    // Seen through the follower alone.
    Click(Middle(*TRampTest::Ramp().GetComponentButton(1)));
    DragTo(Place(1, 1), Place(1, 1) + TVector2(0, -20));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_GT(Curve(1)[3].Y, 1.1f);
    ExpectPoints(Parameter().GetCurve(2), Flat(2), 0);
    EXPECT_EQ(TRampTest::Ramp().GetSelection(), (TRampSelection{1, 3}));
    EXPECT_EQ(TRampTest::Ramp().GetValue(2, 1), Curve(1)[3].Y);
    Lock(-1, -1, -1, -1);
    EXPECT_EQ(TRampTest::Ramp().GetValue(2, 1), 2);
}

// The lists of the two have different lengths.
TEST_F(Ramp, AFollowersOwnListMayBeShorter)
{
    ShowFour();
    SetCurve(0, {{0, 0}, {0.1f, 0.6f}, {0.3f, 1}, {0.5f, 1}, {0.7f, 1}, {0.9f, 0.6f}, {1, 0}});
    SetCurve(1, {{0, 2}});
    Lock(-1, 0, -1, -1);
    DragTo(PlaceOf(0, 6), PlaceOf(0, 6) + TVector2(0, 10));
    EXPECT_EQ(NumEdits(), 1);
    EXPECT_LT(Curve(0)[6].Y, -0.1f);
    EXPECT_EQ(Curve(1).size(), 1u);
}

} // namespace
