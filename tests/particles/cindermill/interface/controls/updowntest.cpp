#include "controltest.h"

#include "particles/cindermill/interface/controls/updown.h"

namespace {

// From (20, 100), 14 by 18.
class UpDown : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        Arrows.Build(TVector2(14, 18));
        Arrows.SetOrigin(TVector2(20, 100));
        Panel.AddObject(&Arrows);
    }
    // What was stepped since the last call.
    std::vector<int> Steps()
    {
        std::vector<int> steps;
        for (const TRenderEvent& event : Panel.Events)
            if (event.Code == RE_VALUECHANGED && event.Source == &Arrows)
                steps.push_back(event.Detail);
        Panel.Events.clear();
        return steps;
    }

    TUpDown Arrows{Host};
};

} // namespace

TEST_F(UpDown, APressIsOneStep)
{
    EXPECT_TRUE(Press(25, 104));
    EXPECT_EQ(Steps(), (std::vector<int>{1}));
    Release(25, 104);
    EXPECT_TRUE(Press(25, 114));
    Release(25, 114);
    EXPECT_EQ(Steps(), (std::vector<int>{-1}));
    Wait(2000);
    EXPECT_TRUE(Steps().empty());
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST_F(UpDown, HeldItRepeatsAfterHalfASecondEvery50Milliseconds)
{
    Press(25, 114);
    EXPECT_EQ(Steps().size(), 1u);
    Wait(490);
    EXPECT_EQ(Steps().size(), 0u);
    Wait(10);
    EXPECT_EQ(Steps(), (std::vector<int>{-1}));
    Wait(500);
    EXPECT_EQ(Steps().size(), 10u);
    Release(25, 114);
    Wait(500);
    EXPECT_EQ(Steps().size(), 0u);
}

TEST_F(UpDown, WhatAPauseOfTheProgramMissedIsNotMadeUpFor)
{
    Press(25, 104);
    Steps();
    Clock.Set(Now + 30000);
    TRenderObject::RunTicks(&Renderer);
    TRenderObject::RunTicks(&Renderer);
    EXPECT_EQ(Steps().size(), 1u);
    Release(25, 104);
}

TEST_F(UpDown, DraggedItStepsOnceForEach2Pixels)
{
    Press(25, 104);
    Steps();
    Move(25, 103);
    EXPECT_TRUE(Steps().empty());
    Move(25, 102);
    EXPECT_EQ(Steps(), (std::vector<int>{1}));
    Move(25, 94);
    EXPECT_EQ(Steps(), (std::vector<int>{1, 1, 1, 1}));
    Move(25, 108);
    EXPECT_EQ(Steps(), (std::vector<int>(7, -1)));
    // The clock does not step any more.
    Wait(2000);
    EXPECT_TRUE(Steps().empty());
    Release(25, 108);
    EXPECT_FALSE(Host.IsDragging());
}

TEST_F(UpDown, PixelsAreThoseOfTheView)
{
    Renderer.SetScale(TVector2(2, 2));
    Press(50, 208);
    Steps();
    Move(50, 198);
    EXPECT_EQ(Steps().size(), 5u);
    Release(50, 198);
}

TEST_F(UpDown, ItStopsWhenTheMouseIsTakenAway)
{
    Press(25, 104);
    Host.LoseDrag();
    Steps();
    Wait(2000);
    EXPECT_TRUE(Steps().empty());
}

TEST_F(UpDown, DisabledItTakesNoPresses)
{
    Arrows.SetEnabled(false);
    EXPECT_FALSE(Press(25, 104));
    EXPECT_TRUE(Steps().empty());
    EXPECT_FALSE(Host.IsDragging());
}
