#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/effectgraph/simpleparameters.h"

#include <QtGui/QImage>

#include <filesystem>

namespace {

// Emitters that nothing triggers, and a stage that draws nothing.
class ProblemStrip : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Points = AddNode(*Document, "Point Emitter", 400, 200);
        Stage = AddNode(*Document, "Quad Render Stage", 4000, 3000);
    }
    TProblemStrip& Strip() { return View().GetProblems(); }
    TNodeObj& Object(TToolNode* node) { return *WindowsOf(*Document).GetScene().FindNode(node); }
    int FindEntry(const TToolNode* node)
    {
        const TDocumentProblems& problems = Document->GetProblems();
        for (int i = 0; i < problems.size(); ++i)
            if (problems[i].Node == node)
                return i;
        return -1;
    }
    // As it is drawn, in the corner of the tab.
    static bool HasBadge(const TDocGraphHeader& header, int tab)
    {
        int left = 0;
        int right = 0;
        header.GetTabEdges(tab, left, right);
        const QImage picture = header.GetHandle()->grab().toImage();
        return (picture.pixel(right - 4, 4) & 0xFFFFFF) == 0xC62828;
    }
    void Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        Document->ApplyOperation(new TAddGraphEdgeOp(*Document, source,
                                                     source->GetNodeType()->FindOutput(output), destination,
                                                     destination->GetNodeType()->FindInput(input)));
    }

    TToolNode* Points = nullptr;
    TToolNode* Stage = nullptr;
};

} // namespace

TEST_F(ProblemStrip, StandsBelowTheGraphAsLongAsThereAreProblems)
{
    const int height = Graph().GetHandle()->height();
    EXPECT_FALSE(Strip().IsShown());
    Document->RebuildSchedule(false);
    ASSERT_GE(Strip().GetNumEntries(), 3);
    EXPECT_TRUE(Strip().IsShown());
    EXPECT_EQ(Graph().GetHandle()->height(), height - Strip().GetWantedHeight());
    EXPECT_EQ(Strip().GetHandle()->height(), Strip().GetWantedHeight());
    EXPECT_TRUE(View().GetHeader().HasProblem(0));
    Connect(First, "Count", Points, "Emission Trigger");
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_FALSE(Strip().IsShown());
    EXPECT_EQ(Graph().GetHandle()->height(), height);
    EXPECT_FALSE(View().GetHeader().HasProblem(0));
}

TEST_F(ProblemStrip, TheTabOfTheNodesGroupHasABadgeAndNoOtherGroups)
{
    // Nothing is searched for.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    std::filesystem::copy(SourcePath("samples/textures"), App.Path("resources"),
                          std::filesystem::copy_options::overwrite_existing);
    TDocument* effect = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(effect, nullptr);
    TEffectGraph& graph = *effect->GetGraph();
    const int count = graph.GetNumNodes();
    for (int i = 0; i < count; ++i)
        effect->SelectNode(static_cast<TToolNode*>(graph.GetNode(i)), false);
    effect->CopySelection();
    effect->Paste();
    Settle();
    TDocGraphHeader& header = ViewOf(*effect).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), 3);
    for (int broken = 1; broken <= 2; ++broken) {
        const TEffectSchedule& schedule = effect->GetSchedule();
        const int group = GetTabGroup(schedule, broken);
        TNodeTextureParameter* texture = nullptr;
        for (int i = 0; i < schedule.GetNumTiedNodes(group) && texture == nullptr; ++i)
            texture = schedule.GetNode(schedule.GetTiedNode(group, i))
                          ->GetNodeType()
                          ->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE);
        ASSERT_NE(texture, nullptr);
        const std::string whole = Text(texture->GetFileName());
        texture->SetValue("nowhere.dds");
        effect->RebuildSchedule(true);
        EXPECT_TRUE(HasBadge(header, 0)) << broken;
        EXPECT_EQ(HasBadge(header, 1), broken == 1);
        EXPECT_EQ(HasBadge(header, 2), broken == 2);
        texture->SetValue(whole.c_str());
        effect->RebuildSchedule(true);
        EXPECT_FALSE(HasBadge(header, 0) || HasBadge(header, 1) || HasBadge(header, 2));
    }
}

TEST_F(ProblemStrip, AClickShowsTheNode)
{
    Document->RebuildSchedule(false);
    const int entry = FindEntry(Stage);
    ASSERT_NE(entry, -1);
    EXPECT_FALSE(Graph().GetHandle()->rect().contains(MiddleOf(*Document, Stage)));
    const QPoint at(100, entry * TProblemStrip::RowHeight + 10);
    Press(Strip(), at);
    Release(Strip(), at);
    while (Graph().IsFocusing())
        Graph().OnIdle();
    EXPECT_TRUE(IsSelected(Stage));
    EXPECT_EQ(NumSelected(), 1);
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(MiddleOf(*Document, Stage)));
}

TEST_F(ProblemStrip, ItsNodesAreMarkedUntilTheyAreMended)
{
    Document->RebuildSchedule(false);
    EXPECT_FALSE(Object(Points).GetProblem().IsEmpty());
    EXPECT_FALSE(Object(Stage).GetProblem().IsEmpty());
    EXPECT_TRUE(Object(First).GetProblem().IsEmpty());
    Connect(First, "Count", Points, "Emission Trigger");
    EXPECT_TRUE(Object(Points).GetProblem().IsEmpty());
    EXPECT_FALSE(Object(Stage).GetProblem().IsEmpty());
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_TRUE(Object(Stage).GetProblem().IsEmpty());
}

TEST_F(ProblemStrip, AFurtherViewHasItToo)
{
    Document->RebuildSchedule(false);
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    EXPECT_TRUE(ViewOf(*Document, 1).GetProblems().IsShown());
    EXPECT_GT(ViewOf(*Document, 1).GetProblems().GetHandle()->height(), 0);
}

TEST_F(ProblemStrip, ANodeThatWentLeadsNowhere)
{
    Document->RebuildSchedule(false);
    const int entry = FindEntry(Points);
    // The addition of a node is taken back without a change of the graph.
    Document->Undo();
    Document->Undo();
    Document->Undo();
    Document->Undo();
    const QPoint at(100, entry * TProblemStrip::RowHeight + 10);
    Press(Strip(), at);
    Release(Strip(), at);
    EXPECT_EQ(NumSelected(), 0);
}
