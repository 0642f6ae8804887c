#include "scenetest.h"

namespace {

// In a view of 800 pixels.
class WidePanel : public TSceneTest
{
};

TEST_F(WidePanel, TheCloseButtonStaysInAViewThatThePanelReachesOutOf)
{
    TToolNode* node = Add("Scalar Over Life", 500, 100);
    Open(node);
    const float width = Object(node).GetSize()[0];
    ASSERT_GT(500 + width, 800);
    // The button's place is 8 pixels from the panel's end, which here is that of the view.
    const TVector2 inView(800 - 8, 108);
    Press(inView);
    EXPECT_FALSE(Object(node).IsCollapsed());
    EXPECT_TRUE(Canvas().IsDragging());
    Release(inView);
    EXPECT_TRUE(Object(node).IsCollapsed());
    // With all of the panel in sight it stands at the panel's end.
    TToolNode* whole = Add("Scalar Over Life", 100, 300);
    Open(whole);
    Click(TVector2(100 + width - 30, 308));
    EXPECT_FALSE(Object(whole).IsCollapsed());
    Click(TVector2(100 + width - 8, 308));
    EXPECT_TRUE(Object(whole).IsCollapsed());
    // A view that shows little of the panel has it no further left than the bypass box.
    TToolNode* left = Add("Scalar Over Life", 780, 500);
    Open(left);
    Click(TVector2(780 + 30, 508));
    EXPECT_TRUE(Object(left).IsCollapsed());
}

// What the button covers there is the panel's again when the view moves.
TEST_F(WidePanel, TheCloseButtonGoesBackToThePanelsEndWithTheView)
{
    TToolNode* node = Add("Scalar Over Life", 500, 100);
    Open(node);
    const float width = Object(node).GetSize()[0];
    constexpr float pan = 300;
    Renderer.SetOffset(TVector2(-pan, 0));
    Click(TVector2(800 - 8 - pan, 108));
    EXPECT_FALSE(Object(node).IsCollapsed());
    Click(TVector2(500 + width - 8 - pan, 108));
    EXPECT_TRUE(Object(node).IsCollapsed());
}

} // namespace
