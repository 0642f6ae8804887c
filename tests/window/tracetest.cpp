#include "window/programfixture.h"

#include "particles/cindermill/interface/graph/nodelayout.h"
#include "particles/cindermill/interface/graphview.h"

// The attribute trace, used by mouse and keys beside a running effect.

namespace {

const char* const TraceTitle = "^Integrate : Output Trace$";

// Parts of a trace window at its first size, as it stands beside the other windows.
constexpr int TraceX = 2100;
constexpr int TraceY = 60;
constexpr int ParticleX = 85;
constexpr int ParticleY = 45;
constexpr int FirstBoxX = 412;
constexpr int FirstBoxY = 16;
constexpr int RowsX = 150;
constexpr int RowsY = 200;
// The colour of the first component.
constexpr uint32_t Red = 0x800000;

class ProgramTrace : public Program
{
protected:
    // Opens the campfire, and finds its nodes on the screen: the view has come to rest where it shows all.
    void OpenCampfire(TProgram& program, TWorkshop& workshop)
    {
        const std::string path = SourcePath("samples/campfire.effect");
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Open(program, path);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(workshop.FindGraph());
        Graph = workshop.GetGraph();
        Shown = std::make_unique<TDocument>(workshop.GetApp());
        ASSERT_TRUE(Shown->Load(path.c_str()));
        TVector2 min(1e30f, 1e30f);
        TVector2 max(-1e30f, -1e30f);
        for (int i = 0; i < Shown->GetGraph()->GetNumNodes(); ++i) {
            const TToolNode& node = *static_cast<TToolNode*>(Shown->GetGraph()->GetNode(i));
            const TVector2 size = MeasureNode(*node.GetNodeType());
            const float place[] = {static_cast<float>(node.GetX()), static_cast<float>(node.GetY())};
            for (int c = 0; c < 2; ++c) {
                min[c] = std::min(min[c], place[c]);
                max[c] = std::max(max[c], place[c] + size[c]);
            }
        }
        View.Frame(min, max, Graph.Width, Graph.Height);
    }
    // In the title of the nth node of a type.
    void ClickNode(const char* type, int n, int button = 1)
    {
        for (int i = 0; i < Shown->GetGraph()->GetNumNodes(); ++i) {
            const TToolNode& node = *static_cast<TToolNode*>(Shown->GetGraph()->GetNode(i));
            if (node.GetNodeType()->Name.Compare(type) != 0 || n-- != 0)
                continue;
            const double x = node.GetX() + static_cast<double>(MeasureNode(*node.GetNodeType())[0]) * 0.5;
            const double y = node.GetY() + static_cast<double>(NodeTitleHeight) * 0.5;
            Screen.Click(Graph.X + static_cast<int>((x + View.GetOffset()[0]) * View.GetScale()[0]),
                         Graph.Y + static_cast<int>((y + View.GetOffset()[1]) * View.GetScale()[1]), button);
            return;
        }
        FAIL() << type;
    }
    // The second entry of the node's menu that can be chosen.
    void OpenTrace(const char* type, int n)
    {
        ClickNode(type, n, 3);
        Screen.Keys({"Down", "Down", "Return"});
    }
    // Moves the window away from the others.
    void PlaceTrace()
    {
        ASSERT_TRUE(Screen.WaitForWindow(TraceTitle));
        Screen.MoveWindow(Screen.FindWindow(TraceTitle), TraceX, TraceY);
        ASSERT_TRUE(Screen.WaitUntilActive(TraceTitle));
    }
    TRectangle GetTrace() const { return Screen.GetPosition(Screen.FindWindow(TraceTitle)); }
    void ClickTrace(int x, int y, int button = 1)
    {
        Screen.Click(GetTrace().X + x, GetTrace().Y + y, button);
    }
    // In the graph, below the strip with the check boxes.
    int CountInGraph(uint32_t colour) const
    {
        constexpr int graphLeft = 380;
        constexpr int graphTop = 40;
        const TPicture picture = Screen.Grab(GetTrace());
        int count = 0;
        for (int y = graphTop; y < picture.Height; ++y)
            for (int x = graphLeft; x < picture.Width; ++x)
                count += picture.At(x, y) == colour;
        return count;
    }
    bool WaitForCurve() const
    {
        return WaitUntil([this] { return CountInGraph(Red) > 30; });
    }

    TRectangle Graph;
    TGraphView View{TVector2(0, 0), TVector2(1, 1)};
    std::unique_ptr<TDocument> Shown;
};

} // namespace

TEST_F(ProgramTrace, IsOpenedReadAndClosedBesideARunningEffect)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    OpenCampfire(program, workshop);
    ASSERT_FALSE(HasFatalFailure());
    OpenTrace("Integrate", 0);
    ASSERT_NO_FATAL_FAILURE(PlaceTrace());
    // It moves with the effect.
    EXPECT_TRUE(WaitForCurve());
    EXPECT_TRUE(IsMoving(GetTrace()));
    Screen.Save(GetTrace(), Screenshot("trace-running"));
    ClickTransport(PauseButton);
    ASSERT_TRUE(Screen.WaitUntilStill(GetTrace()));

    // Another particle has another history, and the first one's is kept.
    const auto type = [&](const char* number) {
        ClickTrace(ParticleX, ParticleY);
        Screen.Key("ctrl+a");
        Screen.Type(number);
        Screen.Key("Return");
        ClickTrace(RowsX, RowsY);
        ASSERT_TRUE(Screen.WaitUntilStill(GetTrace()));
    };
    type("0");
    const TPicture zero = Screen.Grab(GetTrace());
    type("7");
    EXPECT_GT(CountDifferences(Screen.Grab(GetTrace()), zero), 500);
    type("0");
    EXPECT_EQ(CountDifferences(Screen.Grab(GetTrace()), zero), 0);
    // The rows are walked through while it stands still.
    Screen.Key("Home");
    ASSERT_TRUE(Screen.WaitUntilStill(GetTrace()));
    const TPicture top = Screen.Grab(GetTrace());
    Screen.Key("Next");
    EXPECT_TRUE(IsChanged(GetTrace(), top, 500));
    Screen.Key("Home");
    EXPECT_TRUE(WaitUntil([&] { return CountDifferences(Screen.Grab(GetTrace()), top) == 0; }));

    // A component goes and comes back.
    ASSERT_GT(CountInGraph(Red), 30);
    ClickTrace(FirstBoxX, FirstBoxY);
    EXPECT_TRUE(WaitUntil([&] { return CountInGraph(Red) == 0; }));
    ClickTransport(PlayButton);
    EXPECT_TRUE(IsMoving(GetTrace()));
    EXPECT_EQ(CountInGraph(Red), 0);

    // An edit begins the trace anew with all components, and so does its undo.
    ClickNode("Scale Over Life", 0);
    Screen.Key("Delete");
    ASSERT_TRUE(WaitForStar());
    EXPECT_TRUE(WaitForCurve());
    ClickTrace(FirstBoxX, FirstBoxY);
    EXPECT_TRUE(WaitUntil([&] { return CountInGraph(Red) == 0; }));
    Screen.Key("ctrl+z");
    EXPECT_TRUE(WaitForCurve());
    EXPECT_TRUE(IsMoving(GetTrace()));

    // Its node takes it along, for good.
    ClickNode("Integrate", 0);
    Screen.Key("Delete");
    EXPECT_TRUE(Screen.WaitUntilGone(TraceTitle));
    Screen.Key("ctrl+z");
    Screen.Settle();
    EXPECT_TRUE(Screen.FindWindow(TraceTitle).empty());

    // Opened again, and closed.
    OpenTrace("Integrate", 0);
    ASSERT_NO_FATAL_FAILURE(PlaceTrace());
    EXPECT_TRUE(WaitForCurve());
    Screen.CloseWindow(Screen.FindWindow(TraceTitle));
    EXPECT_TRUE(Screen.WaitUntilGone(TraceTitle));
    // The program may end with one open.
    OpenTrace("Integrate", 1);
    ASSERT_NO_FATAL_FAILURE(PlaceTrace());
    Exit(program);
}
