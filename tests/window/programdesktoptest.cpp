#include "window/programfixture.h"

#include "particles/cindermill/main/toolversion.h"

// What makes the tool a program of the desktop: how it begins, comes back, and is worked by keys.

namespace {

class Desktop : public Program
{
protected:
    // Nodes twice, so that there is something to save.
    void Change(TWorkshop& workshop)
    {
        ASSERT_TRUE(workshop.FindGraph());
        SelectAll(workshop);
        Screen.Key("ctrl+c");
        Screen.Key("ctrl+v");
        ASSERT_TRUE(WaitForStar());
    }
    static std::string Sample() { return SourcePath("samples/fountain.effect"); }
};

} // namespace

TEST_F(Desktop, TheStartPageBeginsAnEffectByAClick)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const TRectangle main = program.GetMainRectangle();
    Screen.Save(main, Screenshot("startpage"));
    Screen.Click(main.X + 95, main.Y + 90);
    ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
    Screen.Activate(Screen.FindWindow(MainTitle));
    Exit(program);
}

TEST_F(Desktop, TheFirstSaveOfASampleAsksForAPlaceOfOnesOwn)
{
    const std::string before = ReadBytes(Sample());
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, Sample());
    ASSERT_FALSE(HasFatalFailure());
    Change(workshop);
    ASSERT_FALSE(HasFatalFailure());
    SaveTo(program, program.Path("mine.effect"));
    EXPECT_EQ(ReadBytes(Sample()), before);
    EXPECT_TRUE(WaitForDocument("mine.effect"));
    Exit(program);
}

TEST_F(Desktop, TheDisplayOfASampleOpenedForTheFirstTimeStandsBesideTheGraphAndStaysInFront)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, Sample());
    ASSERT_FALSE(HasFatalFailure());
    const std::string window = Screen.FindWindow(DisplayTitle);
    TRectangle display = Screen.GetPosition(window);
    // A display upon the graph would hide a part of what is looked for here.
    Screen.MoveWindow(window, 2000, 700);
    ASSERT_TRUE(workshop.FindGraph());
    const TRectangle graph = workshop.GetGraph();
    const bool beside = display.X + display.Width <= graph.X || graph.X + graph.Width <= display.X ||
                        display.Y + display.Height <= graph.Y || graph.Y + graph.Height <= display.Y;
    EXPECT_TRUE(beside) << display.X << ", " << display.Y << " by the graph at " << graph.X << ", "
                        << graph.Y;
    // In the midst of the main window.
    Screen.MoveWindow(window, graph.X + graph.Width / 2, graph.Y + graph.Height / 2);
    Screen.Settle();
    display = Screen.GetPosition(window);
    constexpr uint32_t Background = 0xCCCCCC;
    const TRectangle corner = {display.X + 3, display.Y + 3, 1, 1};
    const auto isInFront = [&] { return Screen.Grab(corner).At(0, 0) == Background; };
    ASSERT_TRUE(WaitUntil(isInFront));
    Screen.Click(graph.X + 20, graph.Y + 20);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(TRectangle{graph.X, graph.Y, 100, 100}));
    EXPECT_TRUE(isInFront());
    Exit(program);
    // When it comes back it is no other window.
    TProgramOptions options;
    options.Environment = {"XDG_STATE_HOME=" + program.Path("state")};
    TProgram second(Screen, options);
    ASSERT_TRUE(second.IsUp()) << second.GetOutput();
    // The main window is never still with the effect in front of it.
    Screen.Key("ctrl+o");
    ASSERT_TRUE(second.AnswerChooser(LoadTitle, Sample()));
    ASSERT_TRUE(WaitForDocument("fountain.effect"));
    ASSERT_TRUE(WaitUntil(isInFront));
    Screen.Click(graph.X + 20, graph.Y + 20);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(TRectangle{graph.X, graph.Y, 100, 100}));
    EXPECT_TRUE(isInFront());
    Exit(second);
}

TEST_F(Desktop, WindowsComeBackWhereTheyStood)
{
    TProgram first(Screen);
    ASSERT_TRUE(first.IsUp()) << first.GetOutput();
    Open(first, Sample());
    ASSERT_FALSE(HasFatalFailure());
    Screen.MoveWindow(Screen.FindWindow(MainTitle), 210, 130);
    Screen.MoveWindow(Screen.FindWindow(DisplayTitle), 1700, 260);
    Screen.Settle();
    const TRectangle main = first.GetMainRectangle();
    const TRectangle display = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
    Screen.Activate(Screen.FindWindow(MainTitle));
    Exit(first);
    TProgramOptions options;
    options.Environment = {"XDG_STATE_HOME=" + first.Path("state")};
    TProgram second(Screen, options);
    ASSERT_TRUE(second.IsUp()) << second.GetOutput();
    Open(second, Sample());
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle mainAgain = second.GetMainRectangle();
    const TRectangle displayAgain = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
    EXPECT_EQ(mainAgain.X, main.X);
    EXPECT_EQ(mainAgain.Y, main.Y);
    EXPECT_EQ(mainAgain.Width, main.Width);
    EXPECT_EQ(mainAgain.Height, main.Height);
    EXPECT_EQ(displayAgain.X, display.X);
    EXPECT_EQ(displayAgain.Y, display.Y);
    EXPECT_EQ(displayAgain.Width, display.Width);
    EXPECT_EQ(displayAgain.Height, display.Height);
    Screen.Activate(Screen.FindWindow(MainTitle));
    Exit(second);
}

TEST_F(Desktop, MenusOpenByF10ByAltAndByTheirLetters)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Screen.Key("F10");
    Screen.Key("n");
    ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
    Screen.Activate(Screen.FindWindow(MainTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    // With the keys in the graph.
    Screen.Key("alt+t");
    Screen.Key("o");
    ASSERT_TRUE(Screen.WaitForWindow("^Options$"));
    Screen.Key("Escape");
    ASSERT_TRUE(Screen.WaitUntilGone("^Options$"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    // Alt by itself goes to the menus, from which the arrows lead on.
    Screen.Key("alt");
    Screen.Keys({"Right", "Right", "Down", "Up", "Return"});
    ASSERT_TRUE(Screen.WaitForWindow("^Options$"));
    Screen.Key("Escape");
    ASSERT_TRUE(Screen.WaitUntilGone("^Options$"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Screen.Key("alt+f");
    Screen.Key("x");
    EXPECT_EQ(program.WaitForEnd(), 0) << program.GetOutput();
}

TEST_F(Desktop, WhatIsLoggedGoesToTheTerminalOnlyIfAskedFor)
{
    for (const bool asked : {false, true}) {
        TProgramOptions options;
        if (asked)
            options.Environment = {"CINDERMILL_LOG=stderr"};
        TProgram program(Screen, options);
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Open(program, Sample());
        ASSERT_FALSE(HasFatalFailure());
        Screen.Activate(Screen.FindWindow(MainTitle));
        Exit(program);
        const std::string logged = FileExists(program.Path("state/cindermill/log").c_str())
                                       ? ReadBytes(program.Path("state/cindermill/log"))
                                       : std::string();
        EXPECT_EQ(program.GetOutput().find("Tied nodes") != std::string::npos, asked);
        EXPECT_EQ(logged.find("Tied nodes") != std::string::npos, !asked);
        // So that whoever gets the file knows whose it is.
        EXPECT_EQ(logged.rfind("Cindermill " + std::string(GetToolVersion()) + "\n", 0) == 0, !asked);
    }
}

// The settings that the desktop's other programs read. Paper and ink of the palette change places; the graph
// keeps its colours.
TEST_F(Desktop, ADarkDesktopHasADarkPaletteAndTheGraphItsOwnColours)
{
    auto sum = [](uint32_t colour) { return (colour >> 16 & 255) + (colour >> 8 & 255) + (colour & 255); };
    for (const char* theme : {"Adwaita", "Adwaita:dark"}) {
        TProgramOptions options;
        options.Environment = {std::string("GTK_THEME=") + theme};
        TProgram program(Screen, options);
        TWorkshop workshop(Screen, program);
        StartWithNewDocument(program, workshop);
        ASSERT_FALSE(HasFatalFailure());
        const bool dark = strcmp(theme, "Adwaita") != 0;
        Screen.Save(program.GetMainRectangle(), Screenshot(dark ? "dark" : "light"));
        const TRectangle palette = workshop.GetPalette();
        const TPicture paper = Screen.Grab(TRectangle{palette.X + 2, palette.Y + 2, 1, 1});
        EXPECT_EQ(sum(paper.At(0, 0)) < 200, dark);
        const TPicture graph = Screen.Grab(TRectangle{workshop.ScreenX(30), workshop.ScreenY(30), 1, 1});
        EXPECT_GT(sum(graph.At(0, 0)), 600u);
        Exit(program);
    }
}
