#include "window/programfixture.h"

#include <sys/stat.h>

TEST_F(Program, AnEffectIsBuiltSavedLoadedAndExportedByHand)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.FoldPalette({"Curves", "Maths", "Motion"});

    // The nodes, column by column.
    TToolNode* effect = workshop.Add("Effect", 110, 60);
    TToolNode* emitter = workshop.Add("Emitter", 110, 180);
    TToolNode* points = workshop.Add("Point Emitter", 380, 60);
    TToolNode* cone = workshop.Add("Velocity Cone", 110, 330);
    TToolNode* gravity = workshop.Add("Gravity", 380, 330);
    TToolNode* integrate = workshop.Add("Integrate", 640, 180);
    TToolNode* age = workshop.Add("Age", 380, 200);
    TToolNode* sprites = workshop.Add("Sprite Render Stage", 640, 330);

    workshop.Connect(emitter, "Count", points, "Emission Trigger");
    workshop.Connect(points, "Start Transform", integrate, "Position");
    workshop.Connect(cone, "Velocity", gravity, "Velocity");
    workshop.Connect(gravity, "Velocity", integrate, "Velocity");
    workshop.Connect(integrate, "Position", sprites, "Transform");
    workshop.Connect(emitter, "Time", age, "Age");
    workshop.Connect(effect, "Time", emitter, "Start Delay");
    workshop.Undo();
    workshop.Undo();
    workshop.Redo();
    workshop.Connect(effect, "Time", emitter, "Start Delay");
    workshop.Disconnect(emitter, "Start Delay");

    workshop.MoveSelection(age, 20, 15);
    workshop.SelectBox({cone, gravity});
    workshop.MoveSelection(gravity, 5, 40);
    workshop.Undo();
    workshop.Redo();
    workshop.Copy();
    workshop.Paste();
    workshop.MoveSelection(workshop.GetLast(), 0, 120);
    workshop.Delete();
    workshop.Bypass(gravity);
    workshop.Bypass(gravity);
    workshop.Bypass(gravity);
    workshop.Undo();
    workshop.Select(effect);
    workshop.Cut();
    workshop.Undo();
    workshop.Redo();
    workshop.Paste();
    Screen.Save(program.GetMainRectangle(), Screenshot("built-by-hand"));

    const std::string saved = program.Path("by-hand.effect");
    const std::string expected = program.Path("expected.effect");
    SaveTo(program, saved);
    ASSERT_TRUE(workshop.GetDocument().SaveAs(expected.c_str()));
    EXPECT_TRUE(AreSame(saved, expected));

    // Saving again asks nothing.
    std::filesystem::remove(saved);
    workshop.MoveSelection(age, 1, 1);
    Screen.Key("ctrl+s");
    ASSERT_TRUE(WaitUntil([&] { return FileExists(saved.c_str()); }));
    ASSERT_TRUE(workshop.GetDocument().SaveAs(expected.c_str()));
    EXPECT_TRUE(AreSame(saved, expected));

    // The stage has no texture: that is told, and the document stays as it is.
    program.ChooseFromFileMenu(FE_EXPORT);
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    EXPECT_FALSE(workshop.GetDocument().EnsureSchedule());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));

    // A stage with a texture comes by the clipboard, out of another file.
    const std::string stageFile = program.Path("stage.effect");
    workshop.WriteStageFile(stageFile, 600, 500);
    Open(program, stageFile);
    ASSERT_FALSE(HasFatalFailure());
    SelectAll(workshop);
    Screen.Key("ctrl+c");
    workshop.CopyFrom(stageFile);
    // The first document lies below, 16 pixels up and to the left.
    Screen.Click(workshop.ScreenX(300), workshop.ScreenY(-38));
    Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
    workshop.GetDocument().ClearSelection();
    workshop.Paste();
    TToolNode* stage = workshop.GetLast();
    workshop.Select(sprites);
    workshop.Delete();
    workshop.Connect(integrate, "Position", stage, "Transform");
    const std::string exported = program.Path("by-hand.efx");
    Export(program, exported);
    ASSERT_FALSE(HasFatalFailure());
    const std::string expectedExport = program.Path("expected.efx");
    ASSERT_TRUE(workshop.GetDocument().EnsureSchedule());
    ASSERT_TRUE(workshop.GetDocument().Export(expectedExport.c_str()));
    EXPECT_TRUE(AreSame(exported, expectedExport));

    // From now on the preview runs, and an edit that breaks it is told at once.
    workshop.Select(points);
    workshop.Delete();
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    workshop.Undo();
    Screen.Key("ctrl+s");
    ASSERT_TRUE(workshop.GetDocument().Save());
    EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, expected); }));

    // What was saved comes back as it was, its history included.
    Open(program, saved);
    const std::string again = program.Path("again.effect");
    SaveAs(program, again);
    EXPECT_TRUE(AreSame(again, saved));
    Exit(program);
}

TEST_F(Program, ASampleIsChangedSavedAndExported)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    DoubleTheFountain(program, workshop);
    Exit(program);
}

TEST_F(Program, ASampleIsShownAndLookedAtFromNearAndFar)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/campfire.effect"));
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(workshop.FindGraph());
    const TRectangle& graph = workshop.GetGraph();
    const TRectangle main = program.GetMainRectangle();
    const TRectangle preview = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
    Screen.Save(main, Screenshot("main-window"));
    Screen.Save(
        TRectangle{preview.X, preview.Y, main.X + main.Width - preview.X, main.Y + main.Height - preview.Y},
        Screenshot("main-window-and-preview"));
    const int x = graph.X + graph.Width / 2;
    const int y = graph.Y + graph.Height / 2;
    const auto frame = [&] {
        Screen.Click(graph.X + 30, graph.Y + graph.Height - 30);
        Screen.Key("ctrl+shift+f");
        Screen.MoveTo(main.X + 5, main.Y + main.Height - 5);
        EXPECT_TRUE(Screen.WaitUntilStill(graph));
    };
    frame();
    const TPicture framed = Screen.Grab(graph);
    Screen.Save(graph, Screenshot("graph-framed"));
    Screen.Wheel(x, y, 8);
    ASSERT_TRUE(Screen.WaitUntilStill(graph));
    EXPECT_GT(CountDifferences(Screen.Grab(graph), framed), 10000);
    Screen.Save(graph, Screenshot("graph-near"));
    Screen.Wheel(x, y, -20);
    ASSERT_TRUE(Screen.WaitUntilStill(graph));
    Screen.Save(graph, Screenshot("graph-far"));
    // Panned away and framed again, it is the picture of before, and nothing has changed that is saved.
    Screen.Drag(x, graph.Y + 30, x - 100, graph.Y + 80);
    frame();
    // Curves may keep the finer steps that they were drawn with from near.
    EXPECT_LT(CountDifferences(Screen.Grab(graph), framed), 1000);
    SaveAs(program, program.Path("again.effect"));
    EXPECT_TRUE(AreSame(program.Path("again.effect"), SourcePath("samples/campfire.effect")));
    Exit(program);
}

TEST_F(Program, ClosingWithUnsavedWorkAsks)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(WaitForStar());
    // Cancel.
    Screen.CloseWindow(Screen.FindWindow(MainTitle));
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Escape"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    // Yes, and Cancel in the chooser.
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerDialog(SaveTitle, "Escape"));
    EXPECT_TRUE(program.IsRunning());
    // Yes, and a name.
    Screen.WaitUntilActive(MainTitle);
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, program.Path("last")));
    EXPECT_EQ(program.WaitForEnd(), 0);
    ASSERT_TRUE(workshop.GetDocument().SaveAs(program.Path("expected.effect").c_str()));
    EXPECT_TRUE(AreSame(program.Path("last.effect"), program.Path("expected.effect")));
}

TEST_F(Program, UnsavedWorkCanBeLeftBehind)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(WaitForStar());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(Screen.WaitUntilActive(ModifiedTitle));
    Screen.Key("Tab");
    Screen.Key("Tab");
    Screen.Key("space");
    EXPECT_EQ(program.WaitForEnd(), 0) << program.GetOutput();
}

TEST_F(Program, ALockedFileIsUnlockedOnDemand)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const std::string path = program.Path("locked.effect");
    SaveTo(program, path);
    const std::string before = ReadBytes(path);
    workshop.Add("Effect", 110, 60);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    Screen.Key("ctrl+s");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Escape"));
    EXPECT_EQ(ReadBytes(path), before);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Screen.Key("ctrl+s");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadBytes(path) != before; }));
    Exit(program);
}

TEST_F(Program, AFileThatAnotherProgramChangedIsAskedAbout)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const std::string path = program.Path("shared.effect");
    SaveTo(program, path);
    workshop.Add("Effect", 110, 60);
    WriteBytes(path, "theirs");
    Screen.Key("ctrl+s");
    ASSERT_TRUE(Screen.WaitUntilActive(MessageTitle));
    Screen.Save(program.GetMainRectangle(), Screenshot("changed-by-another"));
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Escape"));
    EXPECT_EQ(ReadBytes(path), "theirs");
    EXPECT_TRUE(WaitForStar());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Screen.Key("ctrl+s");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_TRUE(WaitUntil([&] { return ReadBytes(path) != "theirs"; }));
    Exit(program);
}

TEST_F(Program, AFullDiscLosesNothing)
{
    TProgramOptions options;
    options.FileSizeLimit = 3000;
    // Where a graphics card draws, the toolkit has programs of OpenGL to keep.
    options.Environment = {"QT_WIDGETS_RHI=1"};
    TProgram program(Screen, options);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const std::string path = program.Path("small.effect");
    SaveTo(program, path);
    const std::string before = ReadBytes(path);
    ASSERT_FALSE(before.empty());
    // More than there is room for.
    workshop.FoldPalette({"Curves", "Maths", "Motion"});
    workshop.Add("Sprite Render Stage", 400, 200);
    ASSERT_TRUE(WaitForStar());
    Screen.Key("ctrl+s");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_TRUE(WaitForStar());
    // Closing with Yes fails alike, and the work stays.
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    EXPECT_TRUE(program.IsRunning());
    workshop.Undo();
    Exit(program);
    // The toolkit believes its kept programs of OpenGL whatever their length: one that is cut off may end
    // every start from then on.
    EXPECT_EQ(CountEntries(program.Path("cache"), "qtshadercache"), 0);
}

TEST_F(Program, ADamagedFileIsToldAndNotOpened)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const std::string whole = ReadBytes(SourcePath("samples/fountain.effect"));
    WriteBytes(program.Path("damaged.effect"), whole.substr(0, whole.size() / 2));
    Screen.Key("ctrl+o");
    ASSERT_TRUE(program.AnswerChooser(LoadTitle, program.Path("damaged.effect")));
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    EXPECT_EQ(Screen.FindWindow(DisplayTitle), "");
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Open(program, SourcePath("samples/fountain.effect"));
    Exit(program);
}

TEST_F(Program, AVanishedTextureIsToldWhenItIsNeededAndMayComeBack)
{
    TTempFolder textures;
    TProgramOptions options;
    options.Settings = "ResourceMode=1\nResourcePath=" + textures.GetFolder() + "\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    // Whoever opens it can point at the file, or leave it at that.
    Screen.Key("ctrl+o");
    ASSERT_TRUE(program.AnswerChooser(LoadTitle, SourcePath("samples/fountain.effect")));
    ASSERT_TRUE(program.AnswerDialog(FindTitle, "Escape"));
    ASSERT_TRUE(WaitForDocument("fountain.effect"));
    EXPECT_EQ(Screen.FindWindow(ErrorsTitle), "");
    const TRectangle main = program.GetMainRectangle();
    ASSERT_TRUE(Screen.WaitUntilStill(main));
    Screen.Click(main.X + main.Width / 2, main.Y + main.Height / 2);
    program.ChooseFromFileMenu(FE_EXPORT);
    ASSERT_TRUE(program.AnswerDialog(FindTitle, "Escape"));
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    std::filesystem::copy_file(SourcePath("samples/textures/drop.dds"), textures.Path("drop.dds"));
    Export(program, program.Path("fountain.efx"));
    Exit(program);
}

TEST_F(Program, ExitWithManyDocumentsAsksOnceAndSavesThemInTheirOrder)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    const TRectangle first = workshop.GetGraph();
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(WaitForStar());
    // A second one without a path, which must not be taken for the first.
    Screen.Key("ctrl+n");
    ASSERT_TRUE(Screen.WaitForWindow("^Effect Display - \\[doc\\]$"));
    workshop.SetGraph(Shifted(first, 1));
    Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    workshop.FoldPalette({"Curves", "Maths", "Motion"});
    workshop.Add("Age", 110, 60);
    ASSERT_TRUE(Screen.WaitUntilGone("^Effect Display - \\[doc\\]$"));
    // One that has a path, and one that nothing was changed in.
    const std::string third = program.Path("third.effect");
    workshop.WriteStageFile(third, 300, 300);
    const std::string before = ReadBytes(third);
    Open(program, third);
    ASSERT_FALSE(HasFatalFailure());
    workshop.SetGraph(Shifted(first, 2));
    SelectAll(workshop);
    Screen.Key("ctrl+c");
    Screen.Key("ctrl+v");
    ASSERT_TRUE(Screen.WaitForWindow("third.effect\\*\\]$"));
    Open(program, SourcePath("samples/aura.effect"));
    ASSERT_FALSE(HasFatalFailure());
    // The second is not saved: the exit stops there.
    const std::string one = program.Path("one.effect");
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(Screen.WaitUntilActive(ModifiedTitle));
    Screen.Save(Screen.GetPosition(Screen.FindWindow(ModifiedTitle)), Screenshot("modified-files"));
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, one));
    ASSERT_TRUE(WaitUntil([&] { return FileExists(one.c_str()); }));
    ASSERT_TRUE(program.AnswerDialog(SaveTitle, "Escape"));
    EXPECT_TRUE(WaitForDocument("one.effect"));
    EXPECT_EQ(ReadBytes(third), before);
    EXPECT_TRUE(program.IsRunning());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    const std::string two = program.Path("two.effect");
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "Return"));
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, two));
    EXPECT_EQ(program.WaitForEnd(), 0) << program.GetOutput();
    EXPECT_NE(ReadBytes(third), before);
    // Each file holds its own document.
    for (const auto& [path, type] : {std::pair(one, "Effect"), std::pair(two, "Age")}) {
        TDocument document(workshop.GetApp());
        ASSERT_TRUE(document.Load(path.c_str())) << path;
        ASSERT_EQ(document.GetGraph()->GetNumNodes(), 1) << path;
        EXPECT_EQ(Text(document.GetGraph()->GetNode(0)->GetNodeType()->Name), type);
    }
}
