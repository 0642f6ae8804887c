#include "window/programfixture.h"

TEST_F(Program, WindowsCloseInAnyOrder)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle main = program.GetMainRectangle();
    ChooseFromToolsMenu(program, 1);
    const auto close = [&](int frame) {
        CloseFrame(workshop.GetGraph(), frame);
        EXPECT_TRUE(Screen.WaitUntilStill(main));
    };
    const TPicture all = Screen.Grab(main);
    close(1);
    EXPECT_NE(Screen.Grab(main).Pixels, all.Pixels);
    EXPECT_TRUE(WaitForDocument("fountain.effect"));
    close(0);
    EXPECT_TRUE(Screen.WaitUntilGone("^Effect Display - \\[doc\\]$"));
    EXPECT_TRUE(WaitForDocument("fountain.effect"));
    close(2);
    EXPECT_TRUE(Screen.WaitUntilGone(DisplayTitle));
    EXPECT_TRUE(program.IsRunning()) << program.GetOutput();
    Screen.WaitUntilActive(MainTitle);
    Screen.Key("ctrl+n");
    EXPECT_TRUE(Screen.WaitForWindow(DisplayTitle));
    // A new graph has the keys.
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Exit(program);
}

TEST_F(Program, TheEffectsDisplayComesBackAfterItWasClosed)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    Screen.CloseWindow(Screen.FindWindow(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilGone(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    ChooseFromToolsMenu(program, 2);
    EXPECT_TRUE(Screen.WaitForWindow(DisplayTitle));
    EXPECT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    Exit(program);
}

TEST_F(Program, TheViewsOfADocumentCloseInAnyOrderAndTheLastOneAsks)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const TRectangle main = program.GetMainRectangle();
    const TRectangle first = workshop.GetGraph();
    ChooseFromToolsMenu(program, 1);
    ChooseFromToolsMenu(program, 1);
    // An edit in the front view is seen in all of them.
    workshop.SetGraph(Shifted(first, 2));
    TToolNode* effect = workshop.Add("Effect", 200, 200);
    Screen.Save(main, Screenshot("three-views"));
    ASSERT_TRUE(WaitForStar());
    CloseFrame(first, 1);
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    CloseFrame(first, 2);
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    EXPECT_EQ(Screen.FindWindow(ModifiedTitle), "");
    workshop.SetGraph(first);
    workshop.MoveSelection(effect, 30, 40);
    CloseFrame(first, 0);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Escape"));
    EXPECT_TRUE(WaitForStar());
    const std::string path = program.Path("views.effect");
    CloseFrame(first, 0);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, path));
    EXPECT_TRUE(Screen.WaitUntilGone(DisplayTitle));
    const std::string expected = program.Path("expected.effect");
    ASSERT_TRUE(workshop.GetDocument().SaveAs(expected.c_str()));
    EXPECT_TRUE(AreSame(path, expected));
    EXPECT_TRUE(program.IsRunning());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Exit(program);
}

TEST_F(Program, TheEffectIsPausedSteppedRestartedAndPlayedByMouse)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle preview = GetPreview();
    EXPECT_TRUE(IsMoving(preview));
    ClickTransport(PauseButton);
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture paused = Screen.Grab(preview);
    // A restart while paused is the empty beginning.
    ClickTransport(UpdateButton);
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture beginning = Screen.Grab(preview);
    EXPECT_GT(CountDifferences(paused, beginning), 1000);
    // Each step brings more of the effect, and it stays paused.
    TPicture last = beginning;
    for (int i = 0; i < 5; ++i) {
        ClickTransport(StepButton);
        ASSERT_TRUE(Screen.WaitUntilStill(preview));
        TPicture next = Screen.Grab(preview);
        EXPECT_NE(next.Pixels, last.Pixels) << i;
        last.Pixels.swap(next.Pixels);
    }
    Screen.Save(Screen.GetPosition(Screen.FindWindow(DisplayTitle)), Screenshot("five-steps"));
    ClickTransport(PlayButton);
    EXPECT_TRUE(IsMoving(preview));
    // The pause button is a switch.
    ClickTransport(PauseButton);
    EXPECT_TRUE(Screen.WaitUntilStill(preview));
    ClickTransport(PauseButton);
    EXPECT_TRUE(IsMoving(preview));
    ClickTransport(PauseButton);
    ClickTransport(UpdateButton);
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_EQ(Screen.Grab(preview).Pixels, beginning.Pixels);
    Exit(program);
}

namespace {

// By the settings' number.
class ProgramCamera : public Program, public testing::WithParamInterface<int>
{
};

} // namespace

TEST_P(ProgramCamera, IsMovedByMouseAndKeysAndComesBack)
{
    TProgramOptions options;
    options.Settings = "CameraMode=" + std::to_string(GetParam()) + "\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/campfire.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle preview = GetPreview();
    // There is something to see of the fire.
    constexpr int Visible = 1000;
    ASSERT_TRUE(IsChanged(preview, Screen.Grab(preview), Visible));
    ClickTransport(PauseButton);
    const int x = preview.X + preview.Width / 2;
    const int y = preview.Y + preview.Height / 2;
    Screen.Click(x, y);
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture start = Screen.Grab(preview);
    const auto expectMoved = [&](const char* what) {
        ASSERT_TRUE(Screen.WaitUntilStill(preview)) << what;
        EXPECT_GT(CountDifferences(Screen.Grab(preview), start), 1000) << what;
        Screen.Key("r");
        ASSERT_TRUE(Screen.WaitUntilStill(preview)) << what;
        EXPECT_EQ(Screen.Grab(preview).Pixels, start.Pixels) << what;
    };
    Screen.Drag(x, y, x + 120, y + 40);
    expectMoved("left button");
    Screen.Drag(x, y, x - 80, y + 60, 2);
    expectMoved("middle button");
    Screen.Drag(x, y, x + 60, y - 50, 3);
    expectMoved("right button");
    Screen.Wheel(x, y, 3);
    expectMoved("wheel");
    for (const char* key : {"Left", "Prior"}) {
        Screen.HoldKey(key);
        EXPECT_TRUE(IsChanged(preview, start, 5000)) << key;
        Screen.LetKey(key);
        expectMoved(key);
    }
    Screen.Click(program.GetMainRectangle().X + 600, program.GetMainRectangle().Y + 11);
    Exit(program);
}

INSTANTIATE_TEST_SUITE_P(Modes, ProgramCamera, testing::Values(0, 1),
                         [](const testing::TestParamInfo<int>& mode) {
                             return std::string(mode.param == 0 ? "Maya" : "Quake");
                         });

TEST_F(Program, ATextureMayVanishWhileTheEffectRuns)
{
    TTempFolder textures;
    std::filesystem::copy_file(SourcePath("samples/textures/drop.dds"), textures.Path("drop.dds"));
    TProgramOptions options;
    options.Settings = "AutoCheckUpdate=2\nResourceMode=1\nResourcePath=" + textures.GetFolder() + "\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle preview = GetPreview();
    ASSERT_TRUE(IsMoving(preview));
    std::filesystem::remove(textures.Path("drop.dds"));
    // Files are looked at ten times a second, by the clock: a step of the effect that is seen after twice
    // that has met the change.
    constexpr auto Look = std::chrono::milliseconds(200);
    const auto removed = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < removed + Look)
        ASSERT_TRUE(IsMoving(preview));
    EXPECT_TRUE(IsMoving(preview));
    EXPECT_EQ(Screen.FindWindow(ErrorsTitle), "");
    // A restart needs it, and asks for it.
    ClickTransport(UpdateButton);
    ASSERT_TRUE(program.AnswerDialog(FindTitle, "Escape"));
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    std::filesystem::copy_file(SourcePath("samples/textures/drop.dds"), textures.Path("drop.dds"));
    ClickTransport(UpdateButton);
    EXPECT_TRUE(IsMoving(preview));
    EXPECT_EQ(Screen.FindWindow(ErrorsTitle), "");
    Exit(program);
}

TEST_F(Program, TheMenusShortcutsWorkInTheEffectsDisplay)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(WaitForStar());
    const TRectangle display = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
    Screen.Click(display.X + display.Width / 2, display.Y + display.Height / 2);
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    Screen.Key("ctrl+z");
    EXPECT_TRUE(Screen.WaitForWindow("^Effect Display - \\[doc\\]$"));
    Screen.Key("ctrl+y");
    EXPECT_TRUE(WaitForStar());
    const std::string saved = program.Path("from-the-display.effect");
    Screen.Key("ctrl+s");
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, saved));
    ASSERT_TRUE(WaitForDocument("from-the-display.effect"));
    ASSERT_TRUE(workshop.GetDocument().SaveAs(program.Path("expected.effect").c_str()));
    EXPECT_TRUE(AreSame(saved, program.Path("expected.effect")));
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    Screen.Key("ctrl+o");
    ASSERT_TRUE(program.AnswerChooser(LoadTitle, SourcePath("samples/fountain.effect")));
    ASSERT_TRUE(WaitForDocument("fountain.effect"));
    Exit(program);
}

TEST_F(Program, PrintableKeysChangeNeitherGraphNorCamera)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TToolNode* effect = workshop.Add("Effect", 110, 60);
    SaveTo(program, program.Path("keys.effect"));
    ASSERT_FALSE(HasFatalFailure());
    workshop.Select(effect);
    Screen.MoveTo(workshop.ScreenX(400), workshop.ScreenY(300));
    TRectangle main = program.GetMainRectangle();
    // What the status bar tells of the save goes after a while.
    constexpr int StatusBar = 30;
    main.Height -= StatusBar;
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    const TPicture graph = Screen.Grab(main);
    PressPrintableKeys();
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    EXPECT_EQ(CountDifferences(Screen.Grab(main), graph), 0);
    EXPECT_EQ(Screen.FindWindow("\\*\\]$"), "");
    Screen.Save(main, Screenshot("printable-keys"));
    ASSERT_NE(Screen.FindWindow(DisplayTitle), "") << "the document has been closed";

    ClickTransport(PauseButton);
    const TRectangle preview = GetPreview();
    const int x = preview.X + preview.Width / 2;
    const int y = preview.Y + preview.Height / 2;
    Screen.Drag(x, y, x + 120, y + 40);
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture before = Screen.Grab(preview);
    PressPrintableKeys();
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_EQ(CountDifferences(Screen.Grab(preview), before), 0);
    // Named keys are heard on the keypad too.
    Screen.HoldKey("KP_Left");
    EXPECT_TRUE(IsChanged(preview, before, 1000));
    Screen.LetKey("KP_Left");
    EXPECT_EQ(Screen.FindWindow("\\*\\]$"), "");
    workshop.Select(effect);
    Screen.Key("KP_Delete");
    EXPECT_TRUE(WaitForStar());
    Screen.Key("ctrl+z");
    EXPECT_TRUE(Screen.WaitUntilGone("\\*\\]$"));
    Exit(program);
}

TEST_F(Program, UndoStaysInItsDocument)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const TRectangle first = workshop.GetGraph();
    const TRectangle second = Shifted(first, 1);
    SaveTo(program, program.Path("first.effect"));
    ASSERT_FALSE(HasFatalFailure());
    workshop.Add("Effect", 110, 60);
    TToolNode* grid = workshop.Add("Grid", 110, 180);
    ASSERT_TRUE(Screen.WaitForWindow("first.effect\\*\\]$"));
    Screen.Key("ctrl+n");
    ASSERT_TRUE(Screen.WaitForWindow("\\[doc\\]$"));
    workshop.SetGraph(second);
    // The display comes to the front when it will.
    ASSERT_TRUE(WaitUntil([&] {
        Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
        return Screen.IsActive(MainTitle);
    }));
    SaveTo(program, program.Path("second.effect"));
    ASSERT_FALSE(HasFatalFailure());
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(Screen.WaitForWindow("second.effect\\*\\]$"));
    // Back in the first, by its title bar. The second can still be seen on its right, and the mouse lies
    // there.
    Screen.Click(first.X + 100, first.Y - 38);
    workshop.SetGraph(first);
    workshop.Select(grid);
    Screen.HoldKey("ctrl");
    Screen.MoveTo(second.X + second.Width - 8, second.Y + 300);
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
    Screen.Save(program.GetMainRectangle(), Screenshot("undo-in-its-document"));
    Screen.Key("z");
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
    EXPECT_NE(Screen.FindWindow("first.effect\\*\\]$"), "");
    Screen.Key("z");
    Screen.LetKey("ctrl");
    EXPECT_TRUE(Screen.WaitForWindow("first.effect\\]$"));
    EXPECT_NE(Screen.FindWindow("second.effect\\*\\]$"), "");
}

TEST_F(Program, TheEffectsDisplayIsClosedAndShownAgainManyTimes)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle place = program.GetMainRectangle();
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle)) << program.GetOutput();
        Screen.Key("alt+F4");
        ASSERT_TRUE(Screen.WaitUntilGone(DisplayTitle));
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
        ASSERT_TRUE(program.IsRunning()) << program.GetOutput();
        Screen.Click(place.X + 90, place.Y + 11);
        Screen.Key("Down");
        Screen.Key("Down");
        Screen.Key("Return");
        ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle));
    }
    Exit(program);
}

TEST_F(Program, ADocumentIsClosedWhileItsDisplayIsHidden)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    Screen.CloseWindow(Screen.FindWindow(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilGone(DisplayTitle));
    const TRectangle& graph = workshop.GetGraph();
    const TRectangle main = program.GetMainRectangle();
    const TPicture shown = Screen.Grab(main);
    Screen.Click(graph.X + graph.Width - 11, graph.Y - 38);
    EXPECT_TRUE(Screen.WaitUntilStill(main));
    EXPECT_NE(Screen.Grab(main).Pixels, shown.Pixels);
    EXPECT_TRUE(program.IsRunning()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    Exit(program);
}
