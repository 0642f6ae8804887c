#include "windowfixture.h"

TEST_F(TWindowClassTest, AWindowBehindOthersIsOutOfSightUntilAPartOfItShows)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child));
    EXPECT_TRUE(WaitFor([&] { return Window.IsInSight() && child.IsInSight(); }));
    TRecordingWindow other;
    ShowTopWindow(other, OtherClass, 400, 300);
    other.MoveTo(0, 0, 400, 300);
    other.BringToTop();
    EXPECT_TRUE(WaitFor([&] { return !Window.IsInSight(); }));
    EXPECT_FALSE(child.IsInSight());
    EXPECT_TRUE(other.IsInSight());
    EXPECT_TRUE(Window.IsShown());
    other.MoveTo(200, 0, 400, 300);
    EXPECT_TRUE(WaitFor([&] { return Window.IsInSight() && child.IsInSight(); }));
    other.MoveTo(0, 0, 400, 300);
    EXPECT_TRUE(WaitFor([&] { return !Window.IsInSight(); }));
    other.Hide();
    EXPECT_TRUE(WaitFor([&] { return Window.IsInSight(); }));
    Window.Hide();
    EXPECT_FALSE(Window.IsInSight());
    EXPECT_FALSE(child.IsInSight());
}
