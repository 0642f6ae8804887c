#include "window/programgraphfixture.h"

#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/interface/graph/graphedits.h"
#include "particles/cindermill/interface/graph/gridrender.h"
#include "particles/cindermill/interface/graph/wireinsertion.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/cindermill/main/documentstep.h"

#include <algorithm>

namespace {

constexpr uint32_t FrameOnMap = 0x14326E;
constexpr uint32_t ProblemColour = 0xC62828;
constexpr int StatusHeight = 20;
constexpr int StripRow = 20;
constexpr int NumGroups = 5;

// What else a hand does with nodes and wires. Where the operations need the drawing, it is told by the file
// that the program saves.
class ProgramHand : public ProgramGraph
{
protected:
    using ProgramGraph::ProgramGraph;
    using TCondition = std::function<bool(TDocument&)>;

    // Saves, and waits until the file is as it should be.
    bool WaitForFile(TProgram& program, TWorkshop& workshop, const TCondition& condition)
    {
        Screen.Key("ctrl+s");
        return WaitUntil([&] {
            TDocument saved(workshop.GetApp());
            return saved.Load(program.Path("hand.effect").c_str()) && condition(saved);
        });
    }
    static TToolNode* NodeAt(TDocument& document, int i)
    {
        return static_cast<TToolNode*>(document.GetGraph()->GetNode(i));
    }
    static std::string TextOf(TDocument& document)
    {
        TTextBuffer text;
        TEffectText(*document.GetGraph()).Write(text);
        return text.Print();
    }
    static int Count(const TPicture& picture, uint32_t colour)
    {
        return static_cast<int>(std::count(picture.Pixels.begin(), picture.Pixels.end(), colour));
    }
    // Letters that are not grey.
    static int CountInk(const TPicture& picture)
    {
        return static_cast<int>(
            std::count_if(picture.Pixels.begin(), picture.Pixels.end(), [](uint32_t pixel) {
                return (pixel & 0xFF) < 0x40 && (pixel >> 8 & 0xFF) < 0x40 && (pixel >> 16) < 0x40;
            }));
    }
    // By its title, away from box and button.
    void DragNode(const TWorkshop& workshop, const TToolNode* node, int dx, int dy)
    {
        const int x = workshop.ScreenX(node->GetX() + double(MeasureNode(*node->GetNodeType())[0]) * 0.5);
        const int y = workshop.ScreenY(node->GetY() + 7);
        Screen.Drag(x, y, x + dx, y + dy);
    }
    void DragWire(const TWorkshop& workshop, const TToolNode* source, const char* output,
                  const TToolNode* destination, bool isInput, const char* port)
    {
        int fromX = 0;
        int fromY = 0;
        int toX = 0;
        int toY = 0;
        PortAt(workshop, source, false, output, fromX, fromY);
        PortAt(workshop, destination, isInput, port, toX, toY);
        Screen.Drag(fromX, fromY, toX, toY);
    }
    static void ApplyMove(TWorkshop& workshop, int dx, int dy)
    {
        TDocument& document = workshop.GetDocument();
        document.ApplyOperation(new TMoveGraphNodeOp(document.GetSelection(), dx, dy));
    }
    // An effect of five copies of a sample's group, in front.
    void OpenGroups(TProgram& program, TWorkshop& workshop, const std::string& sample)
    {
        TDocument document(workshop.GetApp());
        ASSERT_TRUE(document.Load(sample.c_str()));
        SelectAll(document);
        document.CopySelection();
        for (int i = 1; i < NumGroups; ++i) {
            document.Paste();
            document.ApplyOperation(new TMoveGraphNodeOp(document.GetSelection(), 1200 * i, 0));
        }
        const std::string path = program.Path("groups.effect");
        ASSERT_TRUE(document.SaveAs(path.c_str()));
        Open(program, path);
        ASSERT_FALSE(HasFatalFailure());
        workshop.SetGraph(Shifted(workshop.GetGraph(), 1));
        Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    // Where the middle of the view stands on the map, from the left, in hundredths.
    int FindView(const TRectangle& map) const
    {
        const TPicture picture = Screen.Grab(map);
        int from = picture.Width;
        int to = -1;
        for (int x = 0; x < picture.Width; ++x)
            for (int y = 0; y < picture.Height; ++y)
                if (picture.At(x, y) == FrameOnMap) {
                    from = std::min(from, x);
                    to = std::max(to, x);
                }
        return to < 0 ? -1 : (from + to) * 50 / map.Width;
    }
    TRectangle GetStatusBar(const TProgram& program) const
    {
        const TRectangle main = program.GetMainRectangle();
        return TRectangle{main.X, main.Y + main.Height - StatusHeight, main.Width / 2, StatusHeight};
    }
};

// On a desktop that leaves Alt and a drag to its programs.
class ProgramHandWithAlt : public ProgramHand
{
protected:
    ProgramHandWithAlt() : ProgramHand(AM_PROGRAMS) {}
};

} // namespace

TEST_F(ProgramHand, TheSelectionIsReachedBypassedMovedAndArrangedByKeys)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    TToolNode* effect = workshop.Add("Effect", 120, 60);
    TToolNode* curve = workshop.Add("Scalar Over Life", 330, 160);
    TToolNode* points = workshop.Add("Point Emitter", 560, 430);
    workshop.Connect(effect, "Time", curve, "Time");
    workshop.Connect(curve, "Value", points, "Emission Trigger");

    workshop.Select(curve);
    Screen.Key("ctrl+Left");
    SelectReached(document, WD_UPSTREAM);
    ASSERT_EQ(document.GetSelection().size(), 2);
    Screen.Keys({"ctrl+Right", "ctrl+b"});
    SelectReached(document, WD_DOWNSTREAM);
    EXPECT_TRUE(BypassSelection(document));
    EXPECT_TRUE(points->GetNodeType()->IsBypassed());
    CheckFile(program, workshop, true);

    // However many keys, one step back.
    const int step = TGridRender::Step;
    const int moves[][2] = {{step, 0}, {step, 0}, {0, step}, {0, -1}};
    Screen.Keys({"Right", "Right", "Down", "shift+Up"});
    for (const auto& move : moves)
        ApplyMove(workshop, move[0], move[1]);
    CheckFile(program, workshop, false);
    Screen.Key("ctrl+z");
    for (int i = 0; i < 4; ++i)
        document.Undo();
    CheckFile(program, workshop, false);
    if (HasFailure())
        return;

    const auto x = [](TDocument& saved, int i) { return NodeAt(saved, i)->GetX(); };
    const auto y = [](TDocument& saved, int i) { return NodeAt(saved, i)->GetY(); };
    const auto width = [](TDocument& saved, int i) {
        return static_cast<int>(MeasureNode(*NodeAt(saved, i)->GetNodeType())[0]);
    };
    const auto bottom = [](TDocument& saved, int i) {
        const TToolNode* node = NodeAt(saved, i);
        return node->GetY() + static_cast<int>(MeasureNode(*node->GetNodeType())[1]);
    };
    const int left = effect->GetX();
    Screen.Key("ctrl+shift+Left");
    EXPECT_TRUE(WaitForFile(program, workshop, [&](TDocument& saved) {
        return x(saved, 0) == left && x(saved, 1) == left && x(saved, 2) == left;
    }));
    Screen.Key("ctrl+shift+d");
    EXPECT_TRUE(WaitForFile(program, workshop, [&](TDocument& saved) {
        return std::abs(y(saved, 1) - bottom(saved, 0) - (y(saved, 2) - bottom(saved, 1))) <= 2 &&
               y(saved, 0) == effect->GetY() && y(saved, 2) == points->GetY() && y(saved, 1) != curve->GetY();
    }));
    Screen.Key("ctrl+t");
    EXPECT_TRUE(WaitForFile(program, workshop, [&](TDocument& saved) {
        return x(saved, 0) + width(saved, 0) < x(saved, 1) && x(saved, 1) + width(saved, 1) < x(saved, 2);
    }));
    Screen.Save(program.GetMainRectangle(), Screenshot("hand-arranged"));
    Screen.Keys({"ctrl+z", "ctrl+z", "ctrl+z"});
    EXPECT_TRUE(
        WaitForFile(program, workshop, [&](TDocument& saved) { return TextOf(saved) == TextOf(document); }));
    Exit(program);
}

TEST_F(ProgramHandWithAlt, AWireIsReplacedOrRefusedAndADraggedNodeLeavesItsWiresOrSnaps)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    TToolNode* effect = workshop.Add("Effect", 120, 60);
    TToolNode* random = workshop.Add("Random Value", 120, 200);
    TToolNode* curve = workshop.Add("Scalar Over Life", 560, 120);
    workshop.Connect(effect, "Time", curve, "Time");

    // Upon the wire that is there.
    DragWire(workshop, random, "Value", curve, true, "Time");
    const auto wire = [&](TToolNode* source, const char* output, TToolNode* destination, const char* input) {
        Wire(document, source, source->GetNodeType()->FindOutput(output), destination,
             destination->GetNodeType()->FindInput(input));
    };
    wire(random, "Value", curve, "Time");
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 1);
    CheckFile(program, workshop, true);

    // Each refusal has its own words.
    const TRectangle status = GetStatusBar(program);
    const TPicture saved = Screen.Grab(status);
    DragWire(workshop, curve, "Value", curve, true, "Life");
    ASSERT_TRUE(IsChanged(status, saved, 100));
    const TPicture itself = Screen.Grab(status);
    DragWire(workshop, curve, "Value", effect, false, "Time");
    ASSERT_TRUE(IsChanged(status, itself, 100));
    Screen.Save(program.GetMainRectangle(), Screenshot("hand-refused"));
    DragWire(workshop, curve, "Value", curve, true, "Life");
    EXPECT_TRUE(WaitUntil([&] { return CountDifferences(Screen.Grab(status), itself) == 0; }));
    CheckFile(program, workshop, false);

    // Between the two, and out again.
    TToolNode* add = workshop.Add("Add", 330, 380);
    workshop.Connect(random, "Value", add, "A");
    DragWire(workshop, add, "Sum", curve, true, "Time");
    wire(add, "Sum", curve, "Time");
    CheckFile(program, workshop, false);
    Screen.HoldKey("alt");
    DragNode(workshop, add, 60, 90);
    Screen.LetKey("alt");
    {
        const TDocumentStep step(document);
        TakeOutOfWires(document, add);
        document.SelectNode(add, true);
        ApplyMove(workshop, 60, 90);
    }
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 1);
    Screen.Save(program.GetMainRectangle(), Screenshot("hand-taken-out"));
    CheckFile(program, workshop, false);

    Screen.HoldKey("ctrl");
    DragNode(workshop, add, 37, -50);
    Screen.LetKey("ctrl");
    const auto snapped = [](int place) {
        return (place + TGridRender::Step / 2) / TGridRender::Step * TGridRender::Step;
    };
    ApplyMove(workshop, snapped(add->GetX() + 37) - add->GetX(), snapped(add->GetY() - 50) - add->GetY());
    CheckFile(program, workshop, false);
    Exit(program);
}

TEST_F(ProgramHand, WhatIsPastedIsInSightAndTheEditMenuShowsWhatThereIsToDo)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    const TRectangle main = program.GetMainRectangle();
    const TRectangle graph = workshop.GetGraph();
    // The letters of its entries, left of their keys.
    const auto readMenu = [&] {
        const TRectangle menu{main.X + 60, main.Y + 24, 140, 150};
        const TPicture before = Screen.Grab(menu);
        Screen.Key("alt+e");
        EXPECT_TRUE(IsChanged(menu, before, 1000));
        EXPECT_TRUE(Screen.WaitUntilStill(menu));
        const int ink = CountInk(Screen.Grab(menu));
        Screen.Save(main, Screenshot("hand-edit-menu-" + std::to_string(document.GetGraph()->GetNumNodes())));
        Screen.Keys({"Escape", "Escape"});
        return ink;
    };
    const int nothing = readMenu();
    workshop.Add("Gravity", 200, 100);
    workshop.Add("Damping", 200, 240);
    SelectAll(workshop);
    SelectAll(document);
    workshop.Copy();
    const int something = readMenu();
    EXPECT_LT(nothing * 2, something);

    // All of the graph is out of sight, until it is there a second time.
    for (int i = 0; i < 3; ++i)
        Screen.Drag(graph.X + graph.Width - 60, graph.Y + 500, graph.X + 60, graph.Y + 500);
    ASSERT_TRUE(Screen.WaitUntilStill(graph));
    const TPicture away = Screen.Grab(graph);
    Screen.Key("ctrl+v");
    document.Paste();
    EXPECT_TRUE(IsChanged(graph, away, 2000));
    Screen.Save(main, Screenshot("hand-pasted"));
    CheckFile(program, workshop, true);
    Screen.Keys({"alt+e", "d"});
    workshop.GetDocument().ApplyOperation(new TDeleteGraphNodeOp(document.GetSelection()));
    ASSERT_EQ(document.GetGraph()->GetNumNodes(), 2);
    CheckFile(program, workshop, false);

    // As text out of another program.
    SelectAll(document);
    WriteBytes(program.Path("copied.txt"), "See\n" + TextOf(document) + "\nyours");
    ASSERT_NO_FATAL_FAILURE(CopyTextElsewhere(program.Path("copied.txt")));
    Screen.Click(graph.X + 20, graph.Y + 20);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Screen.Key("ctrl+v");
    EXPECT_TRUE(WaitForFile(program, workshop, [&](TDocument& found) {
        return found.GetGraph()->GetNumNodes() == 4 &&
               NodeAt(found, 3)->GetNodeType()->Name.Compare("Damping") == 0;
    }));
    Exit(program);
}

// Groups of one name, far apart.
TEST_F(ProgramHand, TabsTheMapNamesAndProblemsLeadToTheirNodes)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const std::string sample = SourcePath("samples/fountain.effect");
    ASSERT_NO_FATAL_FAILURE(OpenGroups(program, workshop, sample));
    TRectangle graph = workshop.GetGraph();
    const TRectangle main = program.GetMainRectangle();
    Screen.Keys({"ctrl+m", "ctrl+shift+f"});
    const TRectangle map{graph.X + graph.Width - 210, graph.Y + graph.Height - 150, 200, 140};
    EXPECT_TRUE(WaitUntil([&] { return std::abs(FindView(map) - 50) < 5; })) << FindView(map);
    Screen.Save(main, Screenshot("hand-map"));

    // The right one of the two arrows brings the last tab, one by one of those that stand beyond.
    const int tabs = graph.Y - 10;
    const TRectangle header{graph.X, graph.Y - 20, graph.Width - 40, 20};
    const TPicture firstTabs = Screen.Grab(header);
    for (int i = 0; i < 3; ++i)
        Screen.Click(graph.X + graph.Width - 8, tabs);
    EXPECT_TRUE(IsChanged(header, firstTabs, 100));
    Screen.Click(graph.X + graph.Width - 60, tabs);
    EXPECT_TRUE(WaitUntil([&] { return FindView(map) > 80; })) << FindView(map);
    Screen.Save(main, Screenshot("hand-last-tab"));
    // The wheel leads back to the first, and a press in the map to the left of the graph.
    Screen.Wheel(graph.X + 200, tabs, 20);
    EXPECT_TRUE(WaitUntil([&] { return CountDifferences(Screen.Grab(header), firstTabs) == 0; }));
    Screen.Click(map.X + 20, map.Y + map.Height / 2);
    EXPECT_TRUE(WaitUntil([&] { return FindView(map) < 20; })) << FindView(map);
    // The last of the emitters by its name.
    Screen.MoveTo(graph.X + 300, graph.Y + 200);
    Screen.Key("ctrl+g");
    Screen.Type("emitter");
    Screen.Keys(std::vector<std::string>(NumGroups - 1, "Down"));
    Screen.Key("Return");
    EXPECT_TRUE(WaitUntil([&] { return FindView(map) > 80; })) << FindView(map);
    Screen.Save(main, Screenshot("hand-found"));

    // An effect of one group, which moves no particles to its stage without this node.
    Open(program, sample);
    ASSERT_FALSE(HasFatalFailure());
    graph = Shifted(graph, 1);
    const TRectangle badges{graph.X, graph.Y - 20, graph.Width, 20};
    const TRectangle strip{graph.X, graph.Y + graph.Height - StripRow, graph.Width, StripRow};
    Screen.Click(graph.X + 20, graph.Y + 20);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    const auto countMarks = [&](const TRectangle& part) { return Count(Screen.Grab(part), ProblemColour); };
    ASSERT_EQ(countMarks(badges) + countMarks(strip), 0);
    Screen.Key("ctrl+g");
    Screen.Type("integrate");
    Screen.Keys({"Return", "Delete"});
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    EXPECT_TRUE(WaitUntil([&] { return countMarks(badges) > 0 && countMarks(strip) > 0; }));
    Screen.Key("ctrl+shift+f");
    ASSERT_TRUE(Screen.WaitUntilStill(graph));
    Screen.Save(main, Screenshot("hand-problems"));
    // The last line leads to its node, which fills the view then.
    const TPicture whole = Screen.Grab(graph);
    Screen.Click(strip.X + 100, strip.Y + 10);
    EXPECT_TRUE(IsChanged(graph, whole, 20000));
    ASSERT_TRUE(Screen.WaitUntilStill(graph));
    Screen.Save(main, Screenshot("hand-problem-node"));
    Screen.Key("ctrl+z");
    EXPECT_TRUE(WaitUntil([&] { return countMarks(badges) + countMarks(strip) == 0; }));
    Exit(program);
}

TEST_F(ProgramHand, AnEffectIsBegunAndItsPaletteFilteredByKeys)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    // The first entry of the start page.
    Screen.Keys({"Down", "Up", "Return"});
    ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
    ASSERT_TRUE(workshop.FindGraph());
    Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    TDocument& document = workshop.GetDocument();
    const TRectangle palette = workshop.GetPalette();
    // Below the first one, which is marked as long as the keys are here.
    const TRectangle rows{palette.X, palette.Y + 24, palette.Width - 20, 200};
    ASSERT_TRUE(Screen.WaitUntilStill(rows));
    const TPicture all = Screen.Grab(rows);

    // What is found stands below its category at the top.
    const int found = palette.Y + 30;
    Screen.Click(palette.X + 60, palette.Y + palette.Height - 12);
    Screen.Type("velcone");
    ASSERT_TRUE(IsChanged(rows, all, 2000));
    // Its help comes up beside the pointer at rest.
    const TRectangle beside{palette.X + palette.Width + 10, found - 20, 200, 120};
    const TPicture before = Screen.Grab(beside);
    Screen.MoveTo(palette.X + 100, found);
    EXPECT_TRUE(IsChanged(beside, before, 1000));
    Screen.Save(program.GetMainRectangle(), Screenshot("hand-palette-help"));
    {
        const THandFlow flow(Screen);
        Screen.Press();
        Screen.MoveTo(workshop.ScreenX(280), workshop.ScreenY(180));
        Screen.MoveTo(workshop.ScreenX(300), workshop.ScreenY(200));
        Screen.Release();
    }
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *workshop.GetApp().GetNodeTypes().FindType("Velocity Cone"), 300, 200));
    CheckFile(program, workshop, true);
    // Escape brings the rest back.
    Screen.Click(palette.X + 60, palette.Y + palette.Height - 12);
    Screen.Key("Escape");
    Screen.Save(program.GetMainRectangle(), Screenshot("hand-palette-whole"));
    EXPECT_TRUE(WaitUntil([&] { return CountDifferences(Screen.Grab(rows), all) == 0; }));
    Exit(program);
}
