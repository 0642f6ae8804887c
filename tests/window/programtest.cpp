#include "window/workshop.h"

#include "library/system/file.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const char* const SaveTitle = "^Select save path$";
const char* const LoadTitle = "^Select load path$";
const char* const ExportTitle = "^Select export path$";
const char* const ModifiedTitle = "^Modified Files$";
const char* const ErrorsTitle = "^Schedule errors$";
const char* const MessageTitle = "^Message$";
const char* const DisplayTitle = "^Effect Display";
const char* const FindTitle = "^Find resource drop.dds$";

// The effect's display has its controls at the bottom.
constexpr int TransportHeight = 32;
constexpr int UpdateButton = 44;
constexpr int StepButton = 234;
constexpr int PauseButton = 264;
constexpr int PlayButton = 294;

// Pictures for people to look at.
std::string Screenshot(const std::string& name)
{
    std::filesystem::create_directories(CINDERMILL_SCREENSHOTS);
    return std::string(CINDERMILL_SCREENSHOTS) + "/" + name + ".png";
}

int CountDifferences(const TPicture& first, const TPicture& second)
{
    int count = 0;
    for (size_t i = 0; i < first.Pixels.size() && i < second.Pixels.size(); ++i)
        count += first.Pixels[i] != second.Pixels[i];
    return count;
}

bool AreSame(const std::string& first, const std::string& second)
{
    return FileExists(first.c_str()) && ReadBytes(first) == ReadBytes(second);
}

// The program on a screen of its own.
class Program : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(Screen.IsRunning()) << "no X server"; }
    // A new document, found on the screen.
    void StartWithNewDocument(TProgram& program, TWorkshop& workshop)
    {
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Screen.Key("ctrl+n");
        ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
        ASSERT_TRUE(workshop.FindGraph()) << program.GetOutput();
        // The effect's display came up in front; a click into the graph is harmless.
        Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    // Doubles the effect of the fountain, saves and exports it, and compares with the same done without
    // windows.
    void DoubleTheFountain(TProgram& program, TWorkshop& workshop)
    {
        const std::string sample = SourcePath("samples/fountain.effect");
        Open(program, sample);
        if (HasFatalFailure())
            return;
        SelectAll(workshop);
        Screen.Key("ctrl+c");
        Screen.Key("ctrl+v");
        ASSERT_TRUE(WaitForStar());
        SaveAs(program, program.Path("double.effect"));
        Export(program, program.Path("double.efx"));
        if (HasFatalFailure())
            return;
        TDocument document(workshop.GetApp());
        ASSERT_TRUE(document.Load(sample.c_str()));
        SelectAll(document);
        document.CopySelection();
        document.Paste();
        ASSERT_TRUE(document.SaveAs(program.Path("expected.effect").c_str()));
        ASSERT_TRUE(document.EnsureSchedule());
        ASSERT_TRUE(document.Export(program.Path("expected.efx").c_str()));
        EXPECT_TRUE(AreSame(program.Path("double.effect"), program.Path("expected.effect")));
        EXPECT_TRUE(AreSame(program.Path("double.efx"), program.Path("expected.efx")));
    }
    // Saves by the keys, the first time.
    void SaveTo(TProgram& program, const std::string& path)
    {
        Screen.Key("ctrl+s");
        ASSERT_TRUE(program.AnswerChooser(SaveTitle, path));
        ASSERT_TRUE(WaitUntil([&] { return FileExists(path.c_str()); })) << path;
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    // Opens a file by the keys; a document's display tells that it is there.
    void Open(TProgram& program, const std::string& path)
    {
        Screen.Key("ctrl+o");
        ASSERT_TRUE(program.AnswerChooser(LoadTitle, path));
        ASSERT_TRUE(WaitForDocument(std::filesystem::path(path).filename().string()));
        // The view glides to its nodes.
        ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainPlace()));
    }
    bool WaitForDocument(const std::string& name)
    {
        return Screen.WaitForWindow("^Effect Display - \\[.*" + name + "\\*?\\]$");
    }
    bool WaitForStar() { return Screen.WaitForWindow("^Effect Display - \\[.*\\*\\]$"); }
    // A box over all of the graph in front.
    void SelectAll(const TWorkshop& workshop)
    {
        const TRectangle& graph = workshop.GetGraph();
        Screen.Click(graph.X + 20, graph.Y + 20);
        EXPECT_TRUE(Screen.WaitUntilActive(MainTitle));
        Screen.HoldKey("ctrl");
        Screen.Drag(graph.X + 20, graph.Y + 20, graph.X + graph.Width - 40, graph.Y + graph.Height - 40);
        Screen.LetKey("ctrl");
    }
    static void SelectAll(TDocument& document)
    {
        document.ClearSelection();
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
            document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(i)), false);
    }
    void SaveAs(TProgram& program, const std::string& path)
    {
        program.ChooseFromFileMenu(FE_SAVEAS);
        ASSERT_TRUE(program.AnswerChooser(SaveTitle, path));
        ASSERT_TRUE(WaitUntil([&] { return FileExists(path.c_str()); })) << path;
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    void Export(TProgram& program, const std::string& path)
    {
        program.ChooseFromFileMenu(FE_EXPORT);
        ASSERT_TRUE(program.AnswerChooser(ExportTitle, path)) << program.GetOutput();
        ASSERT_TRUE(WaitUntil([&] { return FileExists(path.c_str()); })) << path;
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    // An entry of the Tools menu, counted from 1.
    void ChooseFromToolsMenu(TProgram& program, int number)
    {
        const TRectangle main = program.GetMainPlace();
        Screen.Click(main.X + 90, main.Y + 11);
        for (int i = 0; i < number; ++i)
            Screen.Key("Down");
        Screen.Key("Return");
        EXPECT_TRUE(Screen.WaitUntilStill(main));
    }
    // The close box of a document's frame. The frames lie one behind the other, 16 pixels apart; what is seen
    // of the hinder ones is enough to reach their boxes.
    void CloseFrame(const TRectangle& graph, int frame)
    {
        Screen.Click(graph.X + graph.Width - 11 + 16 * frame, graph.Y - 38 + 16 * frame);
    }
    // The graph of a frame further on in the cascade.
    static TRectangle Shifted(const TRectangle& graph, int frames)
    {
        return TRectangle{graph.X + 16 * frames, graph.Y + 16 * frames, graph.Width, graph.Height};
    }
    // Where the effect is seen in its display, the controls below it left out.
    TRectangle GetPreview() const
    {
        TRectangle place = Screen.GetPlace(Screen.FindWindow(DisplayTitle));
        place.Height -= TransportHeight;
        return place;
    }
    void ClickTransport(int x)
    {
        const TRectangle preview = GetPreview();
        Screen.Click(preview.X + x, preview.Y + preview.Height + TransportHeight / 2);
    }
    // Drags files out of a window of another program.
    void Drop(const std::vector<std::string>& files, int x, int y)
    {
        constexpr int Steps = 10;
        const char* const title = "^dragsource$";
        ASSERT_NO_FATAL_FAILURE(EndDrop());
        std::vector<std::string> command = {CINDERMILL_DRAGSOURCE};
        command.insert(command.end(), files.begin(), files.end());
        Source = StartCommand(
            command, {"DISPLAY=" + Screen.GetDisplay(), "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}, "/dev/null");
        ASSERT_TRUE(Screen.WaitForWindow(title));
        Screen.MoveWindow(Screen.FindWindow(title), 2600, 900);
        const TRectangle place = Screen.GetPlace(Screen.FindWindow(title));
        const int fromX = place.X + place.Width / 2;
        const int fromY = place.Y + place.Height / 2;
        Screen.MoveTo(fromX, fromY);
        Screen.Press();
        for (int i = 1; i <= Steps; ++i)
            Screen.MoveTo(fromX + (x - fromX) * i / Steps, fromY + (y - fromY) * i / Steps);
        ASSERT_TRUE(Screen.WaitForWindow("^dragsource: taken$"));
        Screen.Release();
    }
    // Every printable key, also on the keypad, by itself, with Ctrl, and with Ctrl and Shift; without those
    // that are shortcuts, and without "r", the camera's.
    void PressPrintableKeys()
    {
        struct TVariant
        {
            const char* Prefix;
            const char* Told;
        };
        const TVariant variants[] = {
            {"", "rR"}, {"ctrl+", "szyoncvxfrSZYONCVXFR"}, {"ctrl+shift+", "sfrSFR"}};
        for (const TVariant& variant : variants) {
            std::vector<std::string> keys;
            for (char key = ' '; key <= '~'; ++key)
                if (strchr(variant.Told, key) == nullptr)
                    keys.push_back(variant.Prefix + KeyName(key));
            Screen.Keys(keys);
        }
        // With the lock the keypad types.
        const std::vector<std::string> keypad = {"KP_Home",   "KP_Up",    "KP_Prior", "KP_Left",
                                                 "KP_Begin",  "KP_Down",  "KP_Next",  "KP_End",
                                                 "KP_Delete", "KP_Right", "KP_Add",   "KP_Subtract"};
        Screen.Key("Num_Lock");
        Screen.Keys(keypad);
        for (const std::string& key : keypad)
            Screen.Key("ctrl+" + key);
        Screen.Key("Num_Lock");
    }
    static std::string KeyName(char key)
    {
        char name[8];
        snprintf(name, sizeof(name), "U%04X", static_cast<unsigned>(key));
        return name;
    }
    // Waits until the program has done all that it does with what was dropped.
    void EndDrop()
    {
        if (Source <= 0)
            return;
        ASSERT_TRUE(Screen.WaitForWindow("^dragsource: done$"));
        EndSource();
        ASSERT_TRUE(Screen.WaitUntilGone("^dragsource"));
    }
    void EndSource()
    {
        kill(Source, SIGTERM);
        waitpid(Source, nullptr, 0);
        Source = -1;
    }
    bool IsChanged(const TRectangle& part, const TPicture& from, int pixels) const
    {
        return WaitUntil([&] { return CountDifferences(Screen.Grab(part), from) >= pixels; });
    }
    bool IsMoving(const TRectangle& part) const { return IsChanged(part, Screen.Grab(part), 1); }
    void Exit(TProgram& program, const char* answer = nullptr)
    {
        program.ChooseFromFileMenu(FE_EXIT);
        if (answer != nullptr) {
            ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, answer));
        }
        EXPECT_EQ(program.WaitForEnd(), 0) << program.GetOutput();
    }

    void TearDown() override
    {
        if (Source > 0)
            EndSource();
    }

    TScreen Screen;
    pid_t Source = -1;
};

} // namespace

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
    Screen.Save(program.GetMainPlace(), Screenshot("built-by-hand"));

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
    const TRectangle main = program.GetMainPlace();
    const TRectangle preview = Screen.GetPlace(Screen.FindWindow(DisplayTitle));
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

TEST_F(Program, WindowsCloseInAnyOrder)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle main = program.GetMainPlace();
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
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
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

TEST_F(Program, AFullDiscLosesNothing)
{
    TProgramOptions options;
    options.FileSizeLimit = 3000;
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
    const TRectangle main = program.GetMainPlace();
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
    const TRectangle main = program.GetMainPlace();
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
    Screen.Save(Screen.GetPlace(Screen.FindWindow(DisplayTitle)), Screenshot("five-steps"));
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
    Screen.Click(program.GetMainPlace().X + 600, program.GetMainPlace().Y + 11);
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
    Screen.Save(Screen.GetPlace(Screen.FindWindow(ModifiedTitle)), Screenshot("modified-files"));
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

TEST_F(Program, TheMenusShortcutsWorkInTheEffectsDisplay)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.Add("Effect", 110, 60);
    ASSERT_TRUE(WaitForStar());
    const TRectangle display = Screen.GetPlace(Screen.FindWindow(DisplayTitle));
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
    const TRectangle main = program.GetMainPlace();
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
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainPlace()));
    Screen.Save(program.GetMainPlace(), Screenshot("undo-in-its-document"));
    Screen.Key("z");
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainPlace()));
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
    const TRectangle place = program.GetMainPlace();
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
    const TRectangle main = program.GetMainPlace();
    const TPicture shown = Screen.Grab(main);
    Screen.Click(graph.X + graph.Width - 11, graph.Y - 38);
    EXPECT_TRUE(Screen.WaitUntilStill(main));
    EXPECT_NE(Screen.Grab(main).Pixels, shown.Pixels);
    EXPECT_TRUE(program.IsRunning()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    Exit(program);
}

TEST_F(Program, ARecentFileIsOpenedFromTheMenuOfTheNextRun)
{
    TProgramOptions options;
    options.Settings = "RecentFile_0=" + SourcePath("samples/aura.effect") +
                       "\nRecentFile_1=" + SourcePath("samples/fountain.effect") + "\n";
    TProgram program(Screen, options);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const TRectangle place = program.GetMainPlace();
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
    const TRectangle main = program.GetMainPlace();
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
    const TRectangle place = program.GetMainPlace();
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
    Screen.Save(program.GetMainPlace(), Screenshot("without-fonts"));
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
        // The two windows lie on each other, and when the display comes up in front is up to the window
        // manager.
        const TRectangle main = program.GetMainPlace();
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
        const std::string display = Screen.FindWindow(DisplayTitle);
        Screen.Activate(display);
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
        TRectangle place = Screen.GetPlace(display);
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
        Screen.Save(Screen.GetPlace(display), Screenshot(std::string("preview-at-scale-") + scale));
    }
}
