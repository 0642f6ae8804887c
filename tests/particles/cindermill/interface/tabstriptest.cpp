#include "docwindowfixture.h"

#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/interface/tabstrip.h"
#include "particles/cindermill/main/document.h"

namespace {

vector<TString> MakeLabels(int count)
{
    vector<TString> labels;
    for (int i = 0; i < count; ++i) {
        TString label;
        label.Format("Group %d", i);
        labels.push_back(label);
    }
    return labels;
}

class TabStrip : public DocWindows
{
protected:
    // A burst of groups of one kind: the effect's nodes, copied so many times.
    TDocument* LoadManyGroups(int copies)
    {
        TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
        if (document == nullptr)
            return nullptr;
        for (int i = 0; i < document->GetGraph()->GetNumNodes(); ++i)
            document->SelectNode(static_cast<TToolNode*>(document->GetGraph()->GetNode(i)), false);
        document->CopySelection();
        for (int i = 0; i < copies; ++i)
            document->Paste();
        document->RebuildSchedule(true);
        Settle();
        return document;
    }
};

} // namespace

TEST_F(TabStrip, WithRoomForAllTabsThereAreNoArrows)
{
    TTabStrip strip;
    strip.SetWidth(1000);
    strip.SetLabels(MakeLabels(3));
    EXPECT_FALSE(strip.HasArrows());
    EXPECT_EQ(strip.GetRoom(), 1000);
    EXPECT_EQ(strip.FindArrow(999), 0);
    EXPECT_FALSE(strip.ScrollTab(1));
    EXPECT_FALSE(strip.ScrollBy(50));
}

TEST_F(TabStrip, ArrowsLeadToEveryTab)
{
    TTabStrip strip;
    strip.SetWidth(200);
    strip.SetLabels(MakeLabels(12));
    ASSERT_TRUE(strip.HasArrows());
    EXPECT_FALSE(strip.CanScroll(-1));
    EXPECT_EQ(strip.FindTab(strip.GetRoom()), -1);
    EXPECT_EQ(strip.FindArrow(strip.GetRoom()), -1);
    EXPECT_EQ(strip.FindArrow(199), 1);
    int left = 0;
    int right = 0;
    int steps = 0;
    while (strip.ScrollTab(1) && ++steps < 100) {
        strip.GetEdges(11, left, right);
        EXPECT_GE(right, strip.GetRoom());
    }
    EXPECT_EQ(right, strip.GetRoom());
    EXPECT_EQ(strip.FindTab(strip.GetRoom() - 1), 11);
    EXPECT_FALSE(strip.CanScroll(1));
    while (strip.ScrollTab(-1) && ++steps < 100)
        ;
    EXPECT_LT(steps, 100);
    EXPECT_EQ(strip.FindTab(0), 0);
    strip.GetEdges(0, left, right);
    EXPECT_EQ(left, 0);
}

TEST_F(TabStrip, FewerTabsOrMoreRoomBringItBack)
{
    TTabStrip strip;
    strip.SetWidth(200);
    strip.SetLabels(MakeLabels(12));
    strip.ScrollBy(10000);
    strip.SetWidth(5000);
    EXPECT_EQ(strip.FindTab(0), 0);
    strip.SetWidth(200);
    strip.ScrollBy(10000);
    strip.SetLabels(MakeLabels(2));
    EXPECT_EQ(strip.FindTab(0), 0);
}

TEST_F(TabStrip, TabsOfOneNameTellTheirGroups)
{
    TDocument* document = LoadManyGroups(2);
    ASSERT_NE(document, nullptr);
    const TEffectSchedule& schedule = document->GetSchedule();
    vector<TString> labels;
    GetTabLabels(schedule, labels);
    ASSERT_EQ(labels.size(), 4);
    EXPECT_EQ(Text(labels[0]), "All");
    const std::string name = Text(FindGroupNode(schedule, GetTabGroup(schedule, 1))->GetNodeType()->Name);
    for (int i = 1; i < 4; ++i) {
        EXPECT_EQ(Text(labels[i]), name + " (Group " + std::to_string(GetTabGroup(schedule, i)) + ")");
        for (int k = 1; k < i; ++k)
            EXPECT_NE(Text(labels[i]), Text(labels[k]));
    }
}

// By the mouse, the last group of many is reached and framed.
TEST_F(TabStrip, ATabBeyondTheRightEdgeIsReachedByTheArrowAndByTheWheel)
{
    TDocument* document = LoadManyGroups(14);
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    const int last = header.GetTabLabels().size() - 1;
    int width = 0;
    int height = 0;
    header.GetSize(width, height);
    int left = 0;
    int right = 0;
    header.GetTabEdges(last, left, right);
    ASSERT_GT(left, width);
    const QPoint arrow(width - 10, 10);
    for (int i = 0; i < 40; ++i) {
        Press(header, arrow);
        Release(header, arrow);
    }
    header.GetTabEdges(last, left, right);
    EXPECT_EQ(right, width - 2 * TTabStrip::ArrowWidth);
    TGraphWindow& graph = GraphOf(*document);
    SetView(graph, 50000, 50000, 1);
    Press(header, QPoint(right - 5, 10));
    Release(header, QPoint(right - 5, 10));
    EXPECT_LT(fabs(graph.GetView().GetOffset()[0]), 40000);
    for (int i = 0; i < 80; ++i)
        Wheel(header, QPoint(100, 10), 120);
    header.GetTabEdges(0, left, right);
    EXPECT_EQ(left, 0);
    for (int i = 0; i < 80; ++i)
        Wheel(header, QPoint(100, 10), -120);
    header.GetTabEdges(last, left, right);
    EXPECT_EQ(right, width - 2 * TTabStrip::ArrowWidth);
}
