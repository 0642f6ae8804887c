#include "windowfixture.h"

#include <QtWidgets/QScrollBar>

namespace {

class TScrollTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        TWindowParams params;
        params.Class = &Class;
        params.Kind = WK_TOP;
        params.Width = 200;
        params.Height = 100;
        params.VerticalScroll = true;
        ASSERT_TRUE(Window.Create(params));
        Window.Show();
        Settle();
        Bar = Window.GetHandle()->findChild<QScrollBar*>();
        ASSERT_NE(Bar, nullptr);
    }
    int Width()
    {
        int width = 0;
        int height = 0;
        Window.GetSize(width, height);
        return width;
    }

    TWindowClass Class{"test_scroll"};
    TRecordingWindow Window;
    QScrollBar* Bar = nullptr;
};

} // namespace

TEST_F(TScrollTest, APageOfTheWholeHidesTheBar)
{
    Window.SetScrollRange(100, 100, 10);
    EXPECT_FALSE(Bar->isVisible());
    EXPECT_EQ(Width(), 200);
    Window.Forget();
    Window.SetScrollRange(101, 100, 10);
    EXPECT_TRUE(Bar->isVisible());
    EXPECT_EQ(Width(), 200 - Bar->width());
    EXPECT_EQ(Window.Last(MT_SIZE).X, 200 - Bar->width());
}

TEST_F(TScrollTest, APersonsScrollingIsToldAndTheProgramsOwnIsNot)
{
    Window.SetScrollRange(500, 100, 10);
    Window.Forget();
    Window.SetScrollPosition(30);
    EXPECT_EQ(Window.GetScrollPosition(), 30);
    EXPECT_EQ(Window.Count(MT_SCROLL), 0);
    Bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(Window.Last(MT_SCROLL).X, 40);
    Bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Window.Last(MT_SCROLL).X, 140);
}

TEST_F(TScrollTest, TheLastPositionShowsTheLastPage)
{
    Window.SetScrollRange(500, 100, 10);
    Window.SetScrollPosition(1000);
    EXPECT_EQ(Window.GetScrollPosition(), 400);
    Window.SetScrollRange(300, 100, 10);
    EXPECT_EQ(Window.GetScrollPosition(), 200);
}
