#include "window/previewfixture.h"

#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/usage.h"

// The preview under mouse and keys, on a screen.

TEST_F(Program, ThePreviewIsPausedSteppedRestartedAndSoughtByKeysAndMouse)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle preview = GetPreview();
    Screen.Click(preview.X + preview.Width / 2, preview.Y + preview.Height / 2);
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    ASSERT_TRUE(IsMoving(preview));
    Screen.Key("space");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture paused = Screen.Grab(preview);
    Screen.Key("period");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_NE(Screen.Grab(preview).Pixels, paused.Pixels);
    Screen.Key("Home");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture beginning = Screen.Grab(preview);
    EXPECT_GT(CountDifferences(beginning, paused), 1000);
    // A time is typed over the one that is shown.
    constexpr int timeField = 170;
    ClickTransport(timeField);
    Screen.Key("ctrl+a");
    Screen.Type("2");
    Screen.Key("Return");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_GT(CountDifferences(Screen.Grab(preview), beginning), 1000);
    // From above, from where it was, and all of it.
    const TPicture sought = Screen.Grab(preview);
    for (const char* key : {"F4", "F3", "F2", "F5"}) {
        const TPicture before = Screen.Grab(preview);
        Screen.Key(key);
        ASSERT_TRUE(Screen.WaitUntilStill(preview)) << key;
        EXPECT_GT(CountDifferences(Screen.Grab(preview), before), 1000) << key;
    }
    Screen.Key("r");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_EQ(Screen.Grab(preview).Pixels, sought.Pixels);
    Screen.Key("F6");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_GT(CountDifferences(Screen.Grab(preview), sought), 200);
    Screen.Save(Screen.GetPosition(Screen.FindWindow(DisplayTitle)), Screenshot("preview-keys"));
    Screen.Key("space");
    EXPECT_TRUE(IsMoving(preview));
    Exit(program);
}

namespace {

class PreviewTime : public ProgramPreview
{
protected:
    // Whatever the machine has to do, the time goes no faster than that.
    void ExpectNoFasterThan(double factor)
    {
        constexpr double shown = 0.02;
        const auto start = std::chrono::steady_clock::now();
        const double from = ReadTime();
        double to = from;
        EXPECT_TRUE(WaitUntil([&] {
            to = ReadTime();
            return to > from + 0.1;
        }));
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        EXPECT_LE(to - from, taken.count() * factor + shown);
    }
    // Seconds of the effect in one of the clock.
    double MeasureRate()
    {
        constexpr double second = 1;
        const double from = ReadTime();
        const auto start = std::chrono::steady_clock::now();
        double to = from;
        std::chrono::duration<double> taken{0};
        while (taken.count() < second) {
            to = ReadTime();
            taken = std::chrono::steady_clock::now() - start;
        }
        return (to - from) / taken.count();
    }
    // Than at the normal speed, on this machine: where it draws slowly, all speeds are slower. Once, as a
    // machine that is busy elsewhere holds it up at other times.
    void ExpectFasterAfter(const std::vector<std::string>& faster, const std::vector<std::string>& slower,
                           double factor)
    {
        EXPECT_TRUE(WaitUntil([&] {
            const double normal = MeasureRate();
            Screen.Keys(faster);
            const double fast = MeasureRate();
            Screen.Keys(slower);
            return normal > 0 && fast > normal * factor;
        }));
    }
    // Each has a label of its own, and the ends are ends.
    void ExpectSpeeds()
    {
        constexpr int Slowest = 0;
        constexpr int Normal = 3;
        constexpr int Fastest = 5;
        std::vector<TPicture> labels;
        Screen.Keys({"minus", "minus", "minus"});
        for (int speed = Slowest; speed <= Fastest; ++speed) {
            labels.push_back(GrabSpeed());
            for (int other = 0; other < speed; ++other)
                EXPECT_NE(labels[speed].Pixels, labels[other].Pixels) << speed << " " << other;
            if (speed == Slowest)
                ExpectNoFasterThan(0.125);
            Screen.Key("plus");
        }
        EXPECT_EQ(GrabSpeed().Pixels, labels[Fastest].Pixels);
        Screen.Keys({"minus", "minus"});
        ExpectFasterAfter({"plus", "plus"}, {"minus", "minus"}, 2);
        ClickTransport(GetSpeedLeft() + SpeedWidth / 2);
        Screen.Keys({"Down", "Return"});
        // Without the pointer on it, and without the keys.
        ClickView();
        EXPECT_TRUE(WaitUntil([&] { return GrabSpeed().Pixels == labels[Slowest].Pixels; }));
        Screen.Key("minus");
        EXPECT_EQ(GrabSpeed().Pixels, labels[Slowest].Pixels);
        Choose({Speed, Normal + 1});
        EXPECT_TRUE(WaitUntil([&] { return GrabSpeed().Pixels == labels[Normal].Pixels; }));
    }
};

} // namespace

TEST_F(PreviewTime, IsTypedDraggedRepeatedLoopedAndHastened)
{
    TProgram program(Screen);
    OpenPaused(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    // The same draws again, others, and without a seed others each time.
    Screen.Keys({"s", "Home"});
    const TPicture first = SeekPicture("1.00");
    Screen.Key("Home");
    EXPECT_EQ(CountDifferences(SeekPicture("1.00"), first), 0);
    Choose({AnotherSeed});
    EXPECT_GT(CountDifferences(SeekPicture("1.00"), first), 500);
    Screen.Key("s");
    const TPicture unseeded = SeekPicture("1.00");
    Screen.Key("Home");
    EXPECT_GT(CountDifferences(SeekPicture("1.00"), unseeded), 500);
    // What is given up, and what is no time, changes nothing.
    const TPicture before = GrabStill();
    TypeTime("3", "Escape");
    EXPECT_EQ(CopyTime(), "1.00");
    TypeTime("soon");
    EXPECT_EQ(CopyTime(), "1.00");
    EXPECT_EQ(CountDifferences(GrabStill(), before), 0);
    // The bar goes up to five seconds.
    const TRectangle preview = GetPreview();
    const int barY = preview.Y + preview.Height + TransportHeight / 2;
    Screen.Drag(preview.X + GetSeekX(1, 5), barY, preview.X + GetSeekX(2.5, 5), barY);
    EXPECT_TRUE(WaitUntil([&] { return std::abs(ReadTime() - 2.5) < 0.05; })) << CopyTime();
    EXPECT_GT(CountDifferences(GrabStill(), before), 500);
    // A loop up to the time that is shown begins again and again, until it is switched off.
    SeekPicture("0.50");
    Choose({Loop, -1});
    Screen.Key("space");
    double last = ReadTime();
    int falls = 0;
    EXPECT_TRUE(WaitUntil([&] {
        const double now = ReadTime();
        EXPECT_LT(now, 0.56);
        falls += now < last ? 1 : 0;
        last = now;
        return falls == 2;
    }));
    Screen.Key("l");
    EXPECT_TRUE(WaitUntil([&] { return ReadTime() > 0.7; }));
    ExpectSpeeds();
    Exit(program);
}

namespace {

// On a desktop that leaves Alt and clicks to its programs.
class PreviewGroups : public ProgramPreview
{
protected:
    static constexpr uint32_t FullColour = 0xE08078;
    static constexpr uint32_t OnlyColour = 0xDCE8F8;
    // Of the campfire's budget: its titles, two groups, what runs once, and all in all.
    static constexpr int CampfireRows = 5;
    // Above the graph, each in a group's tab.
    static constexpr int TabX[] = {100, 300};
    static constexpr int TabAbove = 10;

    PreviewGroups() : ProgramPreview(AM_PROGRAMS) {}
    // A group is full with so few particles.
    static void WriteFullCampfire(TWorkshop& workshop, const std::string& path)
    {
        constexpr int few = 3;
        TDocument document(workshop.GetApp());
        ASSERT_TRUE(document.Load(SourcePath("samples/campfire.effect").c_str()));
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
            const TNodeType& type = *document.GetGraph()->GetNode(i)->GetNodeType();
            if (type.IsOfClass("TPointEmitter"))
                type.FindParameterOf<TNodeIntParameter>("Particle Count", PK_INT)->SetValue(few);
        }
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    TRectangle GetBudgetLine(int line) const
    {
        const TRectangle view = GetView();
        return TRectangle{view.X, view.Y + view.Height + (line + 1) * BudgetRow, view.Width, BudgetRow};
    }
    bool WaitForLine(int line, uint32_t colour, bool there = true) const
    {
        constexpr int many = 300;
        return WaitUntil(
            [&] { return (CountColour(Screen.Grab(GetBudgetLine(line)), colour) > many) == there; });
    }
    void ClickLine(int line)
    {
        const TRectangle place = GetBudgetLine(line);
        Screen.Click(place.X + 40, place.Y + BudgetRow / 2);
    }
    // As far as its frame shows at the line that is marked.
    void WalkToBudget()
    {
        ClickView();
        const TPicture before = Screen.Grab(GetBudgetLine(0));
        EXPECT_TRUE(WaitUntil([&] {
            Screen.Key("Tab");
            return CountDifferences(Screen.Grab(GetBudgetLine(0)), before) > 300;
        }));
    }
    void ClickTab(int tab) { Screen.Click(Graph.X + TabX[tab], Graph.Y - TabAbove); }
    // Without what tells that it has the keys.
    TPicture GrabGraph() const
    {
        constexpr int frame = 30;
        return Screen.Grab(
            TRectangle{Graph.X + frame, Graph.Y + frame, Graph.Width - 2 * frame, Graph.Height - 2 * frame});
    }
    TPicture GrabFramed(int tab)
    {
        ClickTab(tab);
        EXPECT_TRUE(Screen.WaitUntilStill(Graph));
        return GrabGraph();
    }
    bool WaitForGraph(const TPicture& framed) const
    {
        return WaitUntil([&] { return CountDifferences(GrabGraph(), framed) == 0; });
    }

    TRectangle Graph;
};

} // namespace

TEST_F(PreviewGroups, TheBudgetTellsOfThemLeadsToThemAndShowsThemAlone)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    const std::string path = program.Path("full.effect");
    WriteFullCampfire(workshop, path);
    OpenPaused(program, path);
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(workshop.FindGraph());
    Graph = workshop.GetGraph();
    SeekPicture("2.00");
    Choose({Budget});
    BudgetRows = CampfireRows;
    // One that dies leaves its place for a moment.
    Screen.Key("space");
    EXPECT_TRUE(WaitForLine(0, FullColour)) << "at its cap";
    EXPECT_TRUE(WaitForLine(1, FullColour, false)) << "with room left";
    Screen.Key("space");
    Screen.Save(GetDisplay(), Screenshot("preview-budget"));
    // Alone: by the keys of the budget, by the menu, by the mouse on its line and on its tab.
    const TPicture all = GrabStill();
    WalkToBudget();
    Screen.Key("alt+Return");
    EXPECT_TRUE(WaitForLine(0, OnlyColour));
    const TPicture alone = GrabStill();
    EXPECT_GT(CountDifferences(alone, all), 500);
    Screen.Key("Escape");
    EXPECT_TRUE(WaitForLine(0, OnlyColour, false));
    EXPECT_EQ(CountDifferences(GrabStill(), all), 0);
    Choose({OnlyGroup, 2});
    EXPECT_TRUE(WaitForLine(0, OnlyColour));
    EXPECT_EQ(CountDifferences(GrabStill(), alone), 0);
    Screen.HoldKey("alt");
    ClickLine(1);
    Screen.LetKey("alt");
    EXPECT_TRUE(WaitForLine(1, OnlyColour));
    EXPECT_GT(CountDifferences(GrabStill(), alone), 500);
    Screen.HoldKey("alt");
    ClickTab(0);
    Screen.LetKey("alt");
    EXPECT_TRUE(WaitForLine(0, OnlyColour));
    EXPECT_EQ(CountDifferences(GrabStill(), alone), 0);
    // From the graph to the tabs, of which the first is that of all.
    Screen.Keys({"shift+F6", "Right", "alt+Return"});
    EXPECT_TRUE(WaitForLine(0, OnlyColour, false));
    EXPECT_EQ(CountDifferences(GrabStill(), all), 0);
    // Framed as by their tabs, also where the graph of another effect is in front.
    const TPicture framed[] = {GrabFramed(0), GrabFramed(1)};
    EXPECT_GT(CountDifferences(framed[0], framed[1]), 1000);
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    Screen.CloseWindow(Screen.FindWindow("fountain.effect\\]$"));
    ASSERT_TRUE(Screen.WaitUntilGone("fountain.effect\\]$"));
    Screen.Activate(Screen.FindWindow(DisplayTitle));
    ClickLine(0);
    EXPECT_TRUE(WaitForGraph(framed[0]));
    WalkToBudget();
    Screen.Keys({"Down", "Return"});
    EXPECT_TRUE(WaitForGraph(framed[1]));
    Exit(program);
}
