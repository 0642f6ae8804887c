#include "window/programfixture.h"

namespace {

const char* const PropertiesTitle = "^File Properties$";
constexpr int StripRow = 20;
// The paper of what differs for a known reason, and of what agrees.
constexpr uint32_t ToldPaper = 0xE8EEF5;
constexpr uint32_t AgreesPaper = 0xE9F3E7;

class ProgramAgreement : public Program
{
protected:
    // A copy of the sample, in front, with its graph found.
    void OpenCopy(TProgram& program, TWorkshop& workshop, const std::string& sample)
    {
        StartWithNewDocument(program, workshop);
        if (HasFatalFailure())
            return;
        File = program.Path(sample + ".effect");
        std::filesystem::copy(SourcePath("samples/" + sample + ".effect"), File);
        Open(program, File);
        Graph = Shifted(workshop.GetGraph(), 1);
        Screen.Click(Graph.X + 10, Graph.Y + 10);
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    // The left end of a row of the strip, counted from below.
    uint32_t GetPaper(int row)
    {
        const TRectangle place{Graph.X + 3, Graph.Y + Graph.Height - row * StripRow - StripRow / 2, 1, 1};
        const TPicture picture = Screen.Grab(place);
        return picture.Pixels.empty() ? 0 : picture.Pixels[0];
    }
    void ClickStrip(int row)
    {
        Screen.Click(Graph.X + 200, Graph.Y + Graph.Height - row * StripRow - StripRow / 2);
        ASSERT_TRUE(Screen.WaitUntilStill(Graph));
    }
    int CountNodes(TWorkshop& workshop, const char* name)
    {
        TDocument document(workshop.GetApp());
        EXPECT_TRUE(document.BatchLoad(File.c_str()));
        int count = 0;
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
            count += document.GetGraph()->GetNode(i)->GetNodeType()->Name.Compare(name) == 0 ? 1 : 0;
        return count;
    }
    void DeleteAndSave(TWorkshop& workshop, const char* name)
    {
        ASSERT_EQ(CountNodes(workshop, name), 1);
        Screen.Key("Delete");
        ASSERT_TRUE(WaitForStar());
        Screen.Key("ctrl+s");
        EXPECT_TRUE(WaitUntil([&] { return CountNodes(workshop, name) == 0; }));
    }

    std::string File;
    TRectangle Graph;
};

} // namespace

TEST_F(ProgramAgreement, TheStripLeadsFromAnExportToTheNodeThatDiffers)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    OpenCopy(program, workshop, "fireflies");
    ASSERT_FALSE(HasFatalFailure());
    const TPicture before = Screen.Grab(Graph);
    EXPECT_NE(GetPaper(0), ToldPaper);
    Export(program, program.Path("fireflies.efx"));
    ASSERT_FALSE(HasFatalFailure());
    // What it comes to, and the reason.
    ASSERT_TRUE(WaitUntil([&] { return GetPaper(0) == ToldPaper && GetPaper(1) == ToldPaper; }));
    EXPECT_NE(GetPaper(2), ToldPaper);
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
    Screen.Save(program.GetMainRectangle(), Screenshot("export-differs"));
    ASSERT_NO_FATAL_FAILURE(ClickStrip(1));
    Screen.Save(program.GetMainRectangle(), Screenshot("export-differs-node"));
    EXPECT_GT(CountDifferences(before, Screen.Grab(Graph)), 10000);
    ASSERT_NO_FATAL_FAILURE(DeleteAndSave(workshop, "Noise"));
    // The edit has made the verdict one of another effect.
    EXPECT_TRUE(WaitUntil([&] { return GetPaper(0) != ToldPaper; }));
    // Without the noise nothing differs.
    Export(program, program.Path("still.efx"));
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(WaitUntil([&] { return GetPaper(0) == AgreesPaper; }));
    EXPECT_NE(GetPaper(1), AgreesPaper);
    Screen.Save(program.GetMainRectangle(), Screenshot("export-agrees"));
    Exit(program);
}

TEST_F(ProgramAgreement, FilePropertiesLeadToTheNodeThatDiffers)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    OpenCopy(program, workshop, "fireflies");
    ASSERT_FALSE(HasFatalFailure());
    program.ChooseFromFileMenu(FE_PROPERTIES);
    ASSERT_TRUE(Screen.WaitForWindow(PropertiesTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(PropertiesTitle));
    const TRectangle dialog = Screen.GetPosition(Screen.FindWindow(PropertiesTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(dialog));
    Screen.Save(dialog, Screenshot("file-properties"));
    // Until the comparison is over there is no button to click.
    const auto click = [&] {
        Screen.Click(dialog.X + 50, dialog.Y + dialog.Height - 22);
        return Screen.FindWindow(PropertiesTitle).empty();
    };
    ASSERT_TRUE(WaitUntil(click));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(Graph));
    ASSERT_NO_FATAL_FAILURE(DeleteAndSave(workshop, "Noise"));
    Exit(program);
}

TEST_F(ProgramAgreement, FilePropertiesAreWholeOnAScaledScreen)
{
    TProgramOptions options;
    options.Environment = {"QT_SCALE_FACTOR=2"};
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Screen.Key("ctrl+o");
    ASSERT_TRUE(program.AnswerChooser(LoadTitle, SourcePath("samples/fireflies.effect")));
    ASSERT_TRUE(WaitForDocument("fireflies.effect"));
    ASSERT_TRUE(WaitUntil([&] {
        Screen.Activate(Screen.FindWindow(MainTitle));
        Screen.Settle();
        return Screen.IsActive(MainTitle);
    }));
    Screen.Key("alt+f");
    Screen.Key("f");
    ASSERT_TRUE(Screen.WaitForWindow(PropertiesTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(PropertiesTitle));
    const TRectangle dialog = Screen.GetPosition(Screen.FindWindow(PropertiesTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(dialog));
    Screen.Save(dialog, Screenshot("file-properties-scale2"));
    EXPECT_LE(dialog.Y + dialog.Height, 1200);
    EXPECT_GE(dialog.Width, 1120);
    ASSERT_TRUE(WaitUntil([&] {
        Screen.Click(dialog.X + 100, dialog.Y + dialog.Height - 44);
        return Screen.FindWindow(PropertiesTitle).empty();
    }));
    program.Send(SIGTERM);
    program.WaitForEnd();
}
