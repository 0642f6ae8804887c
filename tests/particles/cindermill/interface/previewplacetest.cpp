#include "particles/cindermill/interface/previewplace.h"

#include <gtest/gtest.h>

namespace {

bool Overlap(const TScreenPlace& a, const TScreenPlace& b)
{
    return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

bool IsInside(const TScreenPlace& a, const TScreenPlace& b)
{
    return a.Left >= b.Left && a.Right <= b.Right && a.Top >= b.Top && a.Bottom <= b.Bottom;
}

bool AreEqual(const TScreenPlace& a, const TScreenPlace& b)
{
    return a.Left == b.Left && a.Top == b.Top && a.Right == b.Right && a.Bottom == b.Bottom;
}

} // namespace

TEST(PreviewPlace, IsBesideTheGraphWhereTheScreenAllows)
{
    const TScreenPlace screen{0, 0, 1600, 1200};
    const TScreenPlace graph{175, 150, 1225, 1000};
    const TScreenPlace place = FindPreviewPlace(screen, graph, 0);
    EXPECT_FALSE(Overlap(place, graph));
    EXPECT_TRUE(IsInside(place, screen));
    // A wide screen gives it all that it wants.
    const TScreenPlace wide{0, 0, 2560, 1440};
    const TScreenPlace large = FindPreviewPlace(wide, graph, 0);
    EXPECT_FALSE(Overlap(large, graph));
    EXPECT_EQ(large.Right - large.Left, 800);
    EXPECT_EQ(large.Bottom - large.Top, 650);
    // At the left, where the graph is far at the right.
    const TScreenPlace right{1300, 100, 2500, 1000};
    const TScreenPlace left = FindPreviewPlace(wide, right, 0);
    EXPECT_FALSE(Overlap(left, right));
    EXPECT_TRUE(IsInside(left, wide));
}

TEST(PreviewPlace, IsSmallInTheCornerOfASmallScreen)
{
    const TScreenPlace screen{0, 0, 1024, 768};
    const TScreenPlace graph{75, 150, 999, 700};
    const TScreenPlace place = FindPreviewPlace(screen, graph, 0);
    EXPECT_TRUE(IsInside(place, screen));
    const int hidden = (graph.Right - place.Left) * (graph.Bottom - place.Top);
    EXPECT_LT(hidden, (graph.Right - graph.Left) * (graph.Bottom - graph.Top) / 4);
    EXPECT_GE(place.Right - place.Left, 340);
}

TEST(PreviewPlace, TheNextOneIsNotExactlyUponIt)
{
    const TScreenPlace screens[] = {{0, 0, 1600, 1200}, {0, 0, 1024, 768}, {0, 27, 1920, 1080}};
    const TScreenPlace graph{75, 150, 999, 700};
    for (const TScreenPlace& screen : screens)
        for (int number = 1; number < 6; ++number) {
            const TScreenPlace place = FindPreviewPlace(screen, graph, number);
            EXPECT_FALSE(AreEqual(place, FindPreviewPlace(screen, graph, number - 1)));
            EXPECT_TRUE(IsInside(place, screen));
        }
}
