#include "graphwindowfixture.h"

#include "library/system/message.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

class GraphDrop : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Shaper = AddNode(*Document, "Shaper", 500, 300);
        Messages().clear();
        SetMessageForms([](const char* text) { Messages().push_back(text); }, nullptr);
    }
    void TearDown() override { SetMessageForms(nullptr, nullptr); }
    static std::vector<std::string>& Messages()
    {
        static std::vector<std::string> messages;
        return messages;
    }
    void Drop(const QPoint& at, const std::string& path)
    {
        int x = at.x();
        int y = at.y();
        Graph().ClientToScreen(x, y);
        Document->GetHost()->OnDrop(*Document, &Graph(), x, y, path.c_str());
    }
    std::string Animation() { return App.Path("resources/path.vori"); }
    const vector<TRampPoint>& Curve()
    {
        return static_cast<TNodeRampParameter*>(Shaper->GetNodeType()->FindParameter("Value"))->GetCurve(0);
    }
    TToolNode* Shaper = nullptr;
};

} // namespace

TEST_F(GraphDrop, AnAnimationOnAShaperBecomesItsCurve)
{
    const int steps = NumUndoSteps();
    Drop(MiddleOf(*Document, Shaper), Animation());
    EXPECT_TRUE(Messages().empty());
    ASSERT_EQ(Curve().size(), 4);
    EXPECT_FLOAT_EQ(Curve()[0].Y, 0);
    EXPECT_FLOAT_EQ(Curve()[3].Y, 1);
    EXPECT_EQ(NumUndoSteps(), steps + 1);
}

TEST_F(GraphDrop, AnywhereElseTheMessageTellsWhere)
{
    const std::string text = "Drag vori file to shaper node or graph to load animation file";
    Drop(MiddleOf(*Document, First), Animation());
    Drop(Empty, Animation());
    EXPECT_EQ(Messages(), (std::vector<std::string>{text, text}));
}

TEST_F(GraphDrop, AFileThatDoesNotLoadChangesNothing)
{
    const int steps = NumUndoSteps();
    Drop(MiddleOf(*Document, Shaper), App.Path("missing.vori"));
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0].find("Failed to open"), 0u);
    EXPECT_EQ(NumUndoSteps(), steps);
}

TEST_F(GraphDrop, ADropOnAFrameOrOnTheHeaderDoesNothingAndShowsNothing)
{
    for (TWindow* window : {static_cast<TWindow*>(&View()), static_cast<TWindow*>(&View().GetHeader()),
                            static_cast<TWindow*>(&View().GetTool())}) {
        EXPECT_TRUE(Document->GetHost()->OwnsWindow(window));
        Document->GetHost()->OnDrop(*Document, window, 10, 10, Animation().c_str());
    }
    EXPECT_TRUE(Messages().empty());
}

// What stands there in the graph is hidden by them.
TEST_F(GraphDrop, OnWhatStandsOverOrBelowTheGraphTheMessageTellsWhere)
{
    Graph().GetMinimap().Toggle(View());
    Document->RebuildSchedule(false);
    Settle();
    ASSERT_TRUE(Graph().GetMinimap().IsShown());
    ASSERT_TRUE(View().GetProblems().IsShown());
    const int steps = NumUndoSteps();
    for (TWindow* window :
         {static_cast<TWindow*>(&Graph().GetMinimap()), static_cast<TWindow*>(&View().GetProblems())}) {
        Messages().clear();
        int x = 10;
        int y = 10;
        window->ClientToScreen(x, y);
        // A shaper below them is none that anybody means.
        const QPoint at = InWindow(*window, QPoint(10, 10), Graph());
        SetView(Graph(), 0, 0, 1);
        const QPoint middle = MiddleOf(*Document, Shaper);
        SetView(Graph(), static_cast<float>(at.x() - middle.x()), static_cast<float>(at.y() - middle.y()), 1);
        ASSERT_TRUE(Document->GetHost()->OwnsWindow(window));
        Document->GetHost()->OnDrop(*Document, window, x, y, Animation().c_str());
        EXPECT_EQ(Messages(),
                  std::vector<std::string>{"Drag vori file to shaper node or graph to load animation file"});
    }
    EXPECT_EQ(NumUndoSteps(), steps);
}

TEST_F(GraphDrop, OnTheControlsOfAnAnimationAFileIsOneThatIsChosen)
{
    TToolNode* node = AddNode(*Document, "Animation Path", 300, 100);
    TNodeObj& object = *WindowsOf(*Document).GetScene().FindNode(node);
    const QPoint button = PixelOf(Graph(), object.GetOrigin() + TVector2(object.GetSize()[0] - 9, 8));
    Press(Graph(), button);
    Release(Graph(), button);
    ASSERT_FALSE(object.IsCollapsed());
    App.Get().OnIdle();
    TNodeExp& panel = object.GetExpanded();
    TNodeParameterControls* group = nullptr;
    for (int i = 0; i < panel.GetNumControls(); ++i)
        if (panel.GetControls(i).GetParameter()->Type == PK_ANIMATION)
            group = &panel.GetControls(i);
    ASSERT_NE(group, nullptr);
    const auto& parameter = *static_cast<TNodeAnimationParameter*>(group->GetParameter());
    const int steps = NumUndoSteps();
    // The button, and the label.
    for (const TVector2& place : {TVector2(15, 10), group->GetLabelRect() + TVector2(3, 6)}) {
        Drop(PixelOf(Graph(), group->GetAbsolutePosition() + place), Animation());
        EXPECT_TRUE(Messages().empty());
        EXPECT_EQ(Text(parameter.GetFileName()), "path.vori");
        EXPECT_EQ(NumUndoSteps(), steps + 1);
        Document->Undo();
        EXPECT_EQ(Text(parameter.GetFileName()), "");
    }
    const std::string bad = App.Path("bad.vori");
    WriteBytes(bad, "no animation");
    Drop(PixelOf(Graph(), group->GetAbsolutePosition() + TVector2(15, 10)), bad);
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Text(parameter.GetFileName()), "");
}
