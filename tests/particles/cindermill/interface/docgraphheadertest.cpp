#include "docwindowfixture.h"

#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

class DocGraphHeader : public DocWindows
{
protected:
    static QPoint TabOf(TDocGraphHeader& header, int tab)
    {
        int left = 0;
        int right = 0;
        header.GetTabEdges(tab, left, right);
        return QPoint((left + right) / 2, 10);
    }
    // Shows the nodes of a group, and nothing but them need be in sight.
    static void ExpectShown(TDocument& document, TGraphWindow& graph, int group)
    {
        int width = 0;
        int height = 0;
        graph.GetSize(width, height);
        const TVector2 min = graph.PixelToWorld(0, 0);
        const TVector2 max = graph.PixelToWorld(width, height);
        const TEffectSchedule& schedule = document.GetSchedule();
        ASSERT_GT(schedule.GetNumTiedNodes(group), 0);
        for (int i = 0; i < schedule.GetNumTiedNodes(group); ++i) {
            const TToolNode* node = static_cast<TToolNode*>(schedule.GetNode(schedule.GetTiedNode(group, i)));
            EXPECT_GT(node->GetX(), min[0]);
            EXPECT_LT(node->GetX(), max[0]);
            EXPECT_GT(node->GetY(), min[1]);
            EXPECT_LT(node->GetY(), max[1]);
        }
    }
    static void Click(TDocGraphHeader& header, const QPoint& at)
    {
        Press(header, at);
        Release(header, at);
    }
};

} // namespace

TEST_F(DocGraphHeader, TabsStandSideBySideAsWideAsTheirTextAndTwelve)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), document->GetSchedule().GetNumGroups());
    EXPECT_EQ(Text(header.GetTabLabels()[0]), "All");
    int expected = 0;
    for (int i = 0; i < header.GetTabLabels().size(); ++i) {
        int left = 0;
        int right = 0;
        int width = 0;
        int height = 0;
        header.GetTabEdges(i, left, right);
        GetTextExtent(TGDIFont(), header.GetTabLabels()[i], width, height);
        EXPECT_EQ(left, expected);
        EXPECT_EQ(right, left + width + 12);
        EXPECT_EQ(header.FindTab(left, 0), i);
        EXPECT_EQ(header.FindTab(right - 1, 19), i);
        EXPECT_EQ(header.FindTab(left, 20), -1);
        expected = right;
    }
    EXPECT_EQ(header.FindTab(expected, 5), -1);
}

TEST_F(DocGraphHeader, TheFirstTabShowsAllNodesAtOnce)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    for (int i = 0; i < 12; ++i)
        document->OnIdle();
    TGraphWindow& graph = GraphOf(*document);
    const TGraphView framed = graph.GetView();
    SetView(graph, 5000, 5000, 1);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    Click(header, TabOf(header, 0));
    EXPECT_FALSE(graph.IsFocusing());
    EXPECT_NEAR(graph.GetView().GetOffset()[0], framed.GetOffset()[0], 0.1);
    EXPECT_FLOAT_EQ(graph.GetView().GetScale()[0], framed.GetScale()[0]);
}

TEST_F(DocGraphHeader, AnotherTabShowsTheNodesOfItsGroup)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    ASSERT_GT(document->GetSchedule().GetNumGroups(), 1);
    TGraphWindow& graph = GraphOf(*document);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    SetView(graph, 5000, 5000, 1);
    Click(header, TabOf(header, 1));
    ExpectShown(*document, graph, 1);
}

TEST_F(DocGraphHeader, TheOnlyGroupKeepsItsTabWhenTheTriggerIsDeleted)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), 2);
    const std::string name = Text(header.GetTabLabels()[1]);
    vector<TToolNode*> triggers;
    for (int i = 0; i < document->GetGraph()->GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(document->GetGraph()->GetNode(i));
        if (node->GetNodeType()->Category == TU_TRIGGER)
            triggers.push_back(node);
    }
    document->ApplyOperation(new TDeleteGraphNodeOp(triggers));
    ASSERT_TRUE(document->GetSchedule().IsCreated());
    ASSERT_FALSE(document->GetSchedule().IsTriggerGroup(0));
    ASSERT_EQ(header.GetTabLabels().size(), 2);
    EXPECT_EQ(Text(header.GetTabLabels()[1]), name);
    TGraphWindow& graph = GraphOf(*document);
    SetView(graph, 5000, 5000, 1);
    Click(header, TabOf(header, 1));
    ExpectShown(*document, graph, 0);
}

TEST_F(DocGraphHeader, TheGroupsHaveTheirTabsThoughATextureIsMissing)
{
    // Nothing is searched for.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    const std::string path = App.Path("missing.effect");
    {
        TDocument whole(App.Get());
        ASSERT_TRUE(whole.BatchLoad(SourcePath("samples/fountain.effect").c_str()));
        for (int i = 0; i < whole.GetGraph()->GetNumNodes(); ++i) {
            auto* texture =
                whole.GetGraph()->GetNode(i)->GetNodeType()->FindParameterOf<TNodeTextureParameter>(
                    "Texture", PK_TEXTURE);
            if (texture != nullptr)
                texture->SetValue("nowhere.dds");
        }
        ASSERT_TRUE(whole.SaveAs(path.c_str()));
    }
    TDocument* document = LoadDocument(path);
    ASSERT_NE(document, nullptr);
    ASSERT_FALSE(document->GetEngine().IsInited());
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), 2);
    TGraphWindow& graph = GraphOf(*document);
    SetView(graph, 5000, 5000, 1);
    Click(header, TabOf(header, 1));
    ExpectShown(*document, graph, 1);
    // Without an engine they go on following the graph.
    vector<TToolNode*> all;
    for (int i = 0; i < document->GetGraph()->GetNumNodes(); ++i)
        all.push_back(static_cast<TToolNode*>(document->GetGraph()->GetNode(i)));
    document->ApplyOperation(new TDeleteGraphNodeOp(all));
    EXPECT_EQ(header.GetTabLabels().size(), 1);
}

TEST_F(DocGraphHeader, ADocumentWithoutAScheduleHasTheTabOfAllNodes)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), 1);
    // With no node there is nothing to show.
    const TGraphView before = GraphOf(*document).GetView();
    Click(header, TabOf(header, 0));
    EXPECT_EQ(GraphOf(*document).GetView(), before);
}

TEST_F(DocGraphHeader, TabsFollowTheSchedule)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    ASSERT_GT(header.GetTabLabels().size(), 1);
    vector<TToolNode*> all;
    for (int i = 0; i < document->GetGraph()->GetNumNodes(); ++i)
        all.push_back(static_cast<TToolNode*>(document->GetGraph()->GetNode(i)));
    const QPoint second = TabOf(header, 1);
    document->ApplyOperation(new TDeleteGraphNodeOp(all));
    EXPECT_EQ(header.GetTabLabels().size(), 1);
    // A place where a tab was.
    Click(header, second);
    document->Undo();
    document->RebuildSchedule(true);
    EXPECT_GT(header.GetTabLabels().size(), 1);
}

TEST_F(DocGraphHeader, AHeldSpacePressesTheMarkedTabOnce)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    TGraphWindow& graph = GraphOf(*document);
    Frame.BringToTop();
    header.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return header.HasFocus(); }));
    Key(header, Qt::Key_Right);
    Space(false);
    ExpectShown(*document, graph, 1);
    SetView(graph, 5000, 5000, 1);
    const TGraphView moved = graph.GetView();
    Space(true);
    EXPECT_EQ(graph.GetView(), moved);
}
