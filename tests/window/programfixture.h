#pragma once

#include "window/workshop.h"

#include "library/system/file.h"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <sys/wait.h>

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
inline std::string Screenshot(const std::string& name)
{
    std::filesystem::create_directories(CINDERMILL_SCREENSHOTS);
    return std::string(CINDERMILL_SCREENSHOTS) + "/" + name + ".png";
}

// -1 for what cannot be compared: a picture that could not be taken has no pixels.
inline int CountDifferences(const TPicture& first, const TPicture& second)
{
    if (first.Pixels.empty() || first.Width != second.Width || first.Height != second.Height)
        return -1;
    int count = 0;
    for (size_t i = 0; i < first.Pixels.size(); ++i)
        count += first.Pixels[i] != second.Pixels[i];
    return count;
}

inline bool AreSame(const std::string& first, const std::string& second)
{
    return FileExists(first.c_str()) && ReadBytes(first) == ReadBytes(second);
}

// Files and folders below a folder whose names begin so.
inline int CountEntries(const std::string& folder, const std::string& start)
{
    int count = 0;
    std::error_code fault;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, fault))
        count += entry.path().filename().string().rfind(start, 0) == 0 ? 1 : 0;
    return count;
}

// The program on a screen of its own.
class Program : public testing::Test
{
protected:
    explicit Program(TAltMouse altMouse = AM_MANAGERS) : Screen(3000, 1200, 24, altMouse) {}
    Program(int width, int height) : Screen(width, height) {}
    void SetUp() override { ASSERT_TRUE(Screen.IsRunning()) << "no X server"; }
    // A new document, found on the screen.
    void StartWithNewDocument(TProgram& program, TWorkshop& workshop)
    {
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Screen.Key("ctrl+n");
        ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
        ASSERT_TRUE(workshop.FindGraph()) << program.GetOutput();
        // The graph has the keys, once the display stands beside it; a click into it is harmless.
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
        ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
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
        const TRectangle main = program.GetMainRectangle();
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
        TRectangle place = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
        place.Height -= TransportHeight;
        return place;
    }
    void ClickTransport(int x)
    {
        const TRectangle preview = GetPreview();
        Screen.Click(preview.X + x, preview.Y + preview.Height + TransportHeight / 2);
    }
    // A window of another program, which has the files.
    void StartSource(const std::vector<std::string>& files)
    {
        const char* const title = "^dragsource$";
        std::vector<std::string> command = {CINDERMILL_DRAGSOURCE};
        command.insert(command.end(), files.begin(), files.end());
        Source = StartCommand(
            command, {"DISPLAY=" + Screen.GetDisplay(), "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}, "/dev/null");
        ASSERT_TRUE(Screen.WaitForWindow(title));
        Screen.MoveWindow(Screen.FindWindow(title), 2600, 900);
    }
    // Copies the text of a file in it, which stays on the clipboard as long as it runs.
    void CopyTextElsewhere(const std::string& file)
    {
        ASSERT_NO_FATAL_FAILURE(StartSource({file}));
        Screen.Activate(Screen.FindWindow("^dragsource$"));
        ASSERT_TRUE(Screen.WaitUntilActive("^dragsource$"));
        Screen.Key("ctrl+c");
        ASSERT_TRUE(Screen.WaitForWindow("^dragsource: copied$"));
    }
    // Drags files out of a window of another program.
    void Drop(const std::vector<std::string>& files, int x, int y)
    {
        constexpr int Steps = 10;
        ASSERT_NO_FATAL_FAILURE(EndDrop());
        ASSERT_NO_FATAL_FAILURE(StartSource(files));
        const TRectangle place = Screen.GetPosition(Screen.FindWindow("^dragsource$"));
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
            {"", " prR"}, {"ctrl+", "szyoncvxfrgdbetmSZYONCVXFRGDBETM"}, {"ctrl+shift+", "sfradSFRAD"}};
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
