#include "controltest.h"

#include "particles/cindermill/interface/controls/scrollpane.h"

namespace {

// A pane from (10, 20), 100 by 80, with four objects in it, 100 by 50, one below the other.
class ScrollPane : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        Pane.Build(TVector2(100, 80));
        Pane.SetOrigin(TVector2(10, 20));
        Panel.AddObject(&Pane);
        float y = 0;
        for (TDrawnObject& object : Objects) {
            object.Max = TVector2(100, 50);
            object.SetOrigin(TVector2(0, y));
            Pane.GetContent().AddObject(&object);
            y += 50;
        }
    }
    // Of the bar.
    static constexpr double BarX = 10 + 100 - 4;
    float PipLength() const { return Pane.GetBar().GetPip().GetSize()[1]; }
    float PipTop() const { return Pane.GetBar().GetPip().GetOrigin()[1]; }
    float ContentTop() { return Pane.GetContent().GetOrigin()[1]; }

    TScrollPane Pane{Host};
    TDrawnObject Objects[4];
};

} // namespace

TEST_F(ScrollPane, ThePipIsAsLongAsTheFractionThatIsVisible)
{
    Pane.SetScroll(0);
    EXPECT_FLOAT_EQ(PipLength(), 80.0f * 80 / 200);
    EXPECT_EQ(PipTop(), 0.0f);
    Pane.SetScroll(120);
    EXPECT_FLOAT_EQ(PipTop() + PipLength(), 80.0f);
    Pane.SetScroll(60);
    EXPECT_FLOAT_EQ(PipTop(), 24.0f);
}

TEST_F(ScrollPane, ScrollingMovesTheContentsOriginWithinWhatThereIs)
{
    Pane.SetScroll(30);
    EXPECT_EQ(ContentTop(), -30.0f);
    Pane.SetScroll(500);
    EXPECT_EQ(ContentTop(), -120.0f);
    Pane.SetScroll(-5);
    EXPECT_EQ(ContentTop(), 0.0f);
}

TEST_F(ScrollPane, TheWheelScrollsOnlyWhileThePointerIsInside)
{
    TRenderObject::SetFocus(&Objects[0], &Renderer);
    Objects[0].Consumes = false;
    Mouse(MT_MOUSEMOVE, 50, 50);
    EXPECT_TRUE(Wheel(50, 50, -120));
    EXPECT_EQ(Pane.GetScroll(), TScrollPane::WheelStep);
    EXPECT_TRUE(Wheel(50, 50, 1200));
    EXPECT_EQ(Pane.GetScroll(), 0.0f);
    Mouse(MT_MOUSEMOVE, 200, 50);
    EXPECT_FALSE(Wheel(200, 50, -120));
    EXPECT_EQ(Pane.GetScroll(), 0.0f);
}

TEST_F(ScrollPane, WhereAllHasRoomTheWheelGoesOnAndThereIsNoBar)
{
    Pane.GetContent().RemoveObject(&Objects[3]);
    Pane.GetContent().RemoveObject(&Objects[2]);
    Pane.GetContent().RemoveObject(&Objects[1]);
    TRenderObject::SetFocus(&Objects[0], &Renderer);
    Objects[0].Consumes = false;
    Mouse(MT_MOUSEMOVE, 50, 30);
    EXPECT_FALSE(Wheel(50, 30, -120));
    Mouse(MT_MOUSEMOVE, BarX, 30);
    EXPECT_EQ(TRenderObject::GetHover(), &Objects[0]);
}

TEST_F(ScrollPane, DraggingThePipMovesTheContent)
{
    Press(BarX, 25);
    Move(BarX, 25 + 24);
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 60.0f);
    EXPECT_FLOAT_EQ(ContentTop(), -60.0f);
    // From below the bar the pip waits at its end for the pointer.
    Move(BarX, 500);
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 120.0f);
    Move(BarX, 25 + 24);
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 60.0f);
    Release(BarX, 25 + 24);
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 60.0f);
    EXPECT_FALSE(Host.IsDragging());
}

TEST_F(ScrollPane, ADragThatTheMouseIsTakenFromGoesBack)
{
    Pane.SetScroll(30);
    Press(BarX, 20 + PipTop() + 2);
    Move(BarX, 90);
    EXPECT_GT(Pane.GetScroll(), 60.0f);
    Host.LoseDrag();
    EXPECT_NEAR(Pane.GetScroll(), 30.0f, 0.01f);
}

TEST_F(ScrollPane, APressBesideThePipGoesOnByAPage)
{
    EXPECT_TRUE(Click(BarX, 95));
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 80.0f);
    EXPECT_TRUE(Click(BarX, 95));
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 120.0f);
    EXPECT_TRUE(Click(BarX, 22));
    EXPECT_FLOAT_EQ(Pane.GetScroll(), 40.0f);
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(ScrollPane, WhatIsClippedAwayIsNotHit)
{
    Mouse(MT_MOUSEMOVE, 50, 95);
    EXPECT_EQ(TRenderObject::GetHover(), &Objects[1]);
    Mouse(MT_MOUSEMOVE, 50, 105);
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
    Pane.SetScroll(60);
    Mouse(MT_MOUSEMOVE, 50, 95);
    EXPECT_EQ(TRenderObject::GetHover(), &Objects[2]);
    Mouse(MT_MOUSEMOVE, 50, 15);
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(ScrollPane, ShowScrollsAsLittleAsIsNeeded)
{
    Pane.Show(Objects[1]);
    EXPECT_EQ(Pane.GetScroll(), 20.0f);
    Pane.Show(Objects[3]);
    EXPECT_EQ(Pane.GetScroll(), 120.0f);
    Pane.Show(Objects[2]);
    EXPECT_EQ(Pane.GetScroll(), 100.0f);
    Pane.Show(Objects[3]);
    Pane.Show(Objects[0]);
    EXPECT_EQ(Pane.GetScroll(), 0.0f);
}

TEST_F(ScrollPane, ContentThatShrinksIsBroughtBack)
{
    Pane.SetScroll(120);
    Pane.GetContent().RemoveObject(&Objects[3]);
    Mouse(MT_MOUSEMOVE, 50, 50);
    EXPECT_EQ(Pane.GetScroll(), 70.0f);
    EXPECT_EQ(ContentTop(), -70.0f);
}

TEST_F(TGlTest, AScrolledPaneDrawsNothingOutsideOfItself)
{
    TFakeControlHost host;
    TScrollPane pane(host);
    pane.Build(TVector2(80, 60));
    pane.SetOrigin(TVector2(20, 30));
    const TVector4 red(1, 0, 0, 1);
    TDrawnObject content([&](TRenderer& renderer) {
        renderer.SetColour(red);
        renderer.DrawRectangle(TVector2(-100, -100), TVector2(500, 500));
    });
    content.Max = TVector2(60, 120);
    pane.GetContent().AddObject(&content);
    TRenderObjects root;
    root.AddObject(&pane);
    const TPicture picture = Paint(root);
    const TPixel wanted{255, 0, 0, 255};
    EXPECT_TRUE(IsClose(picture.At(21, 31), wanted));
    EXPECT_TRUE(IsClose(picture.At(21, 88), wanted));
    const int inside =
        picture.Count([&](const TPixel& pixel) { return IsClose(pixel, wanted); }, 20, 30, 80, 60);
    EXPECT_EQ(picture.Count([&](const TPixel& pixel) { return IsClose(pixel, wanted); }), inside);
}
