#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"

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
