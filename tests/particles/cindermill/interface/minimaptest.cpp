#include "graphwindowfixture.h"

namespace {

class Minimap : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Frame.BringToTop();
        Press(Graph(), Empty);
        Release(Graph(), Empty);
        ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    }
    TMinimap& Map() { return Graph().GetMinimap(); }
    TVector2 Centre()
    {
        const QSize size = Graph().GetHandle()->size();
        return Graph().GetView().GetCentre(size.width(), size.height());
    }
};

} // namespace

TEST_F(Minimap, CtrlMShowsAndHidesItInACornerOfTheView)
{
    EXPECT_FALSE(Map().IsShown());
    Key(Graph(), Qt::Key_M, Qt::ControlModifier);
    ASSERT_TRUE(Map().IsShown());
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(Map().GetHandle()->geometry()));
    EXPECT_TRUE(Graph().HasFocus());
    Key(Graph(), Qt::Key_M, Qt::ControlModifier);
    EXPECT_FALSE(Map().IsShown());
}

TEST_F(Minimap, APressMovesTheViewThereAndADragTakesItAlong)
{
    AddNode(*Document, "Gravity", 4000, 200);
    Key(Graph(), Qt::Key_M, Qt::ControlModifier);
    Settle();
    const float zoom = Graph().GetView().GetScale()[0];
    const int nodes = Document->GetGraph()->GetNumNodes();
    const QSize size = Map().GetHandle()->size();
    const TVector2 before = Centre();
    // The far node stands at the right end.
    const QPoint right(size.width() - 12, size.height() / 2);
    Press(Map(), right);
    EXPECT_GT(Centre()[0], before[0] + 2000);
    const TVector2 far = Centre();
    Move(Map(), QPoint(size.width() / 2, size.height() / 2));
    const TVector2 middle = Centre();
    EXPECT_LT(middle[0], far[0]);
    EXPECT_GT(middle[0], before[0]);
    Release(Map(), QPoint(size.width() / 2, size.height() / 2));
    Move(Map(), right, Qt::NoButton);
    EXPECT_EQ(Centre(), middle);
    EXPECT_EQ(Graph().GetView().GetScale()[0], zoom);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), nodes);
    EXPECT_EQ(NumSelected(), 0);
}

TEST_F(Minimap, TheFrameStandsOutFromEveryNodeThatItLiesOn)
{
    // One node alone fills the map, and the view lies in its middle.
    Document->Undo();
    Document->Undo();
    ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    WindowsOf(*Document).GetScene().FindNode(First)->SetWishedSize(TVector2(600, 500));
    SetView(Graph(), -440, -400, 7);
    Key(Graph(), Qt::Key_M, Qt::ControlModifier);
    constexpr int NumColours = 8;
    constexpr int Inside = 14;
    constexpr int LeastContrast = 60;
    for (int colour = 0; colour < 2 * NumColours; ++colour) {
        First->GetNodeType()->Colour = colour % NumColours;
        Document->ClearSelection();
        if (colour >= NumColours)
            Document->SelectNode(First, true);
        const QImage picture = Map().GetHandle()->grab().toImage();
        const int row = picture.height() / 2;
        const int fill = qGray(picture.pixel(Inside, row));
        int lighter = 0;
        int darker = 0;
        for (int x = Inside; x < picture.width() - Inside; ++x) {
            lighter = std::max(lighter, qGray(picture.pixel(x, row)) - fill);
            darker = std::max(darker, fill - qGray(picture.pixel(x, row)));
        }
        EXPECT_GT(std::max(lighter, darker), LeastContrast) << colour;
    }
}

TEST_F(Minimap, FollowsTheSizeOfItsView)
{
    Key(Graph(), Qt::Key_M, Qt::ControlModifier);
    View().MoveTo(10, 10, 700, 500);
    Settle();
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(Map().GetHandle()->geometry()));
}
