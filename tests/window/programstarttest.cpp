#include "window/programfixture.h"

#include <algorithm>

TEST_F(Program, ARecentFileIsOpenedFromTheMenuOfTheNextRun)
{
    TProgramOptions options;
    options.Settings = "RecentFile_0=" + SourcePath("samples/aura.effect") +
                       "\nRecentFile_1=" + SourcePath("samples/fountain.effect") + "\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const TRectangle place = program.GetMainRectangle();
    Screen.Click(place.X + 15, place.Y + 11);
    for (int i = 0; i < FE_RECENT; ++i)
        Screen.Key("Down");
    Screen.Key("Right");
    // The newest stands on top.
    Screen.Key("Down");
    Screen.Key("Return");
    EXPECT_TRUE(WaitForDocument("aura.effect"));
    Exit(program);
}

TEST_F(Program, FilesDroppedFromAnotherProgramAreOpenedInTheirOrder)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const TRectangle main = program.GetMainRectangle();
    const int x = main.X + main.Width / 2;
    const int y = main.Y + main.Height / 2;
    const std::string damaged = program.Path("damaged.effect");
    WriteBytes(damaged, "CHNX");
    Drop({SourcePath("samples/rain.effect"), SourcePath("README.md"), damaged,
          SourcePath("samples/aura.effect")},
         x, y);
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(WaitForDocument("rain.effect"));
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_TRUE(WaitForDocument("aura.effect"));
    // Onto a graph, where no node takes it; then past all documents, where the rest is dropped too.
    const std::string animation = SourcePath("samples/animations/knot.vori");
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    Drop({animation}, x, y);
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    Drop({animation, SourcePath("samples/snow.effect")}, main.X + 20, main.Y + main.Height - 60);
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    ASSERT_NO_FATAL_FAILURE(EndDrop());
    Screen.Settle();
    EXPECT_EQ(Screen.FindWindow("snow.effect"), "");
    Exit(program);
}

TEST_F(Program, AFileOfTheRecentListThatHasGoneIsTold)
{
    TProgramOptions options;
    options.Settings = "RecentFile_0=/no/such/folder/gone.effect\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const TRectangle place = program.GetMainRectangle();
    for (int i = 0; i < 2; ++i) {
        Screen.Click(place.X + 15, place.Y + 11);
        for (int j = 0; j < FE_RECENT; ++j)
            Screen.Key("Down");
        Screen.Key("Right");
        Screen.Key("Return");
        ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return")) << i;
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    EXPECT_EQ(Screen.FindWindow(DisplayTitle), "");
    Open(program, SourcePath("samples/aura.effect"));
    Exit(program);
}

TEST_F(Program, StartedFromAnotherFolderItFindsItsNodeTypesAndItsSamples)
{
    // Programs of a test run in a folder of their own.
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Screen.Key("ctrl+o");
    ASSERT_TRUE(program.AnswerChooser(LoadTitle, "aura.effect"));
    EXPECT_TRUE(WaitForDocument("aura.effect"));
    EXPECT_EQ(Screen.FindWindow(ErrorsTitle), "");
    EXPECT_TRUE(IsMoving(GetPreview()));
    Exit(program);
}

TEST_F(Program, AMissingNodeTypesDirectoryIsAskedForAfterTheMainWindowHasAppeared)
{
    TProgramOptions options;
    options.Settings = "NodeTypesDirectory=/no/such/folder\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return")) << program.GetOutput();
    ASSERT_TRUE(Screen.WaitForWindow("^Select nodes directory$"));
    EXPECT_NE(Screen.FindWindow(MainTitle), "");
    ASSERT_TRUE(program.AnswerDialog("^Select nodes directory$", "Escape"));
    EXPECT_EQ(program.WaitForEnd(), 0);
}

namespace {

// What a driver lacks, and how it is made to.
struct TLack
{
    const char* Name;
    const char* Environment;
};

void PrintTo(const TLack& lack, std::ostream* out)
{
    *out << lack.Environment;
}

class ProgramWithoutGl : public Program, public testing::WithParamInterface<TLack>
{
};

} // namespace

TEST_P(ProgramWithoutGl, OneMessageIsShownAndTheToolEditsSavesAndExports)
{
    // Where the graph stands is the same with OpenGL.
    TRectangle graph;
    {
        TProgram drawn(Screen);
        TWorkshop workshop(Screen, drawn);
        StartWithNewDocument(drawn, workshop);
        ASSERT_FALSE(HasFatalFailure());
        graph = workshop.GetGraph();
        Exit(drawn);
    }
    TProgramOptions options;
    options.Environment = {GetParam().Environment};
    TProgram program(Screen, options);
    TWorkshop workshop(Screen, program);
    workshop.SetGraph(graph);
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return")) << program.GetOutput();
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    DoubleTheFountain(program, workshop);
    EXPECT_EQ(Screen.FindWindow(MessageTitle), "");
    Exit(program);
}

INSTANTIATE_TEST_SUITE_P(
    Drivers, ProgramWithoutGl,
    testing::Values(TLack{"NoContext", "QT_XCB_GL_INTEGRATION=none"},
                    TLack{"NoPrograms",
                          "MESA_EXTENSION_OVERRIDE=-GL_ARB_vertex_program -GL_ARB_fragment_program"},
                    TLack{"NoFrameBuffers", "MESA_EXTENSION_OVERRIDE=-GL_EXT_framebuffer_object"},
                    TLack{"NoDriver", "LIBGL_DRIVERS_PATH=/no/such/folder"}),
    [](const testing::TestParamInfo<TLack>& driver) { return std::string(driver.param.Name); });

TEST_F(Program, OnASystemWithoutFontsTheToolWorksAllTheSame)
{
    TTempFolder fonts;
    WriteBytes(fonts.Path("fonts.conf"), "<?xml version=\"1.0\"?><fontconfig><dir>" + fonts.GetFolder() +
                                             "</dir><cachedir>" + fonts.GetFolder() +
                                             "</cachedir></fontconfig>");
    TProgramOptions options;
    options.Environment = {"FONTCONFIG_FILE=" + fonts.Path("fonts.conf")};
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const std::string sample = SourcePath("samples/fountain.effect");
    Open(program, sample);
    ASSERT_FALSE(HasFatalFailure());
    Screen.Save(program.GetMainRectangle(), Screenshot("without-fonts"));
    SaveAs(program, program.Path("again.effect"));
    EXPECT_TRUE(AreSame(program.Path("again.effect"), sample));
    Exit(program);
}

TEST(ProgramWithoutDisplay, EndsWithALineAndStatusOne)
{
    for (const char* display : {"DISPLAY", "DISPLAY=:65000"}) {
        const TCommandResult result =
            RunCommand({CINDERMILL_PROGRAM}, {display, "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"});
        EXPECT_EQ(result.Status, 1) << display;
        EXPECT_NE(result.Output.find("isplay"), std::string::npos) << result.Output;
        EXPECT_LE(std::count(result.Output.begin(), result.Output.end(), '\n'), 2) << result.Output;
    }
}

TEST(ProgramOnFewColours, EndsWithALineAndStatusOne)
{
    TScreen screen(800, 600, 8);
    ASSERT_TRUE(screen.IsRunning()) << "no X server";
    TProgram program(screen);
    EXPECT_EQ(program.WaitForEnd(), 1) << program.GetOutput();
    // The driver may have had its say before.
    const std::string line =
        "The display \"" + screen.GetDisplay() + "\" has 8 bits of colour; windows need 15 or more.\n";
    EXPECT_TRUE(program.GetOutput().ends_with(line)) << program.GetOutput();
}

TEST_F(Program, OnAScaledScreenGraphAndPreviewFillTheirWindows)
{
    for (const char* scale : {"1", "1.5", "2"}) {
        TProgramOptions options;
        options.Environment = {std::string("QT_SCALE_FACTOR=") + scale};
        TProgram program(Screen, options);
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Screen.Key("ctrl+o");
        ASSERT_TRUE(program.AnswerChooser(LoadTitle, SourcePath("samples/fountain.effect")));
        ASSERT_TRUE(WaitForDocument("fountain.effect"));
        // The two windows may lie on each other, and what is in front is up to the window manager: for the
        // picture of the one, the other is all but off the screen.
        const TRectangle main = program.GetMainRectangle();
        ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle));
        const std::string display = Screen.FindWindow(DisplayTitle);
        Screen.MoveWindow(display, 2980, 1180);
        TPicture picture;
        ASSERT_TRUE(WaitUntil([&] {
            Screen.Activate(Screen.FindWindow(MainTitle));
            Screen.Settle();
            picture = Screen.Grab(main);
            Screen.Settle();
            return picture.Pixels == Screen.Grab(main).Pixels;
        }));
        Screen.Save(main, Screenshot(std::string("graph-at-scale-") + scale));
        // Where nothing has been drawn the screen is black; texts and outlines are thin.
        const size_t black = std::count(picture.Pixels.begin(), picture.Pixels.end(), 0u);
        EXPECT_LT(black, picture.Pixels.size() / 50) << scale;
        Screen.MoveWindow(display, 100, 100);
        Screen.Activate(display);
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
        TRectangle place = Screen.GetPosition(display);
        place.Height -= static_cast<int>(TransportHeight * std::atof(scale) + 1);
        constexpr uint32_t Background = 0xCCCCCC;
        EXPECT_TRUE(WaitUntil([&] {
            const TPicture preview = Screen.Grab(place);
            int others = 0;
            for (int x = 0; x < preview.Width; ++x)
                others += preview.At(x, 0) != Background || preview.At(x, preview.Height - 1) != Background;
            for (int y = 0; y < preview.Height; ++y)
                others += preview.At(0, y) != Background || preview.At(preview.Width - 1, y) != Background;
            return others == 0;
        })) << scale;
        Screen.Save(Screen.GetPosition(display), Screenshot(std::string("preview-at-scale-") + scale));
    }
}
