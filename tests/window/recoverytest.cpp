#include "window/programfixture.h"

#include <algorithm>

namespace {

const char* const RecoveryTitle = "^Recovery$";
const char* const FountainTitle = "^Effect Display - \\[.*fountain.effect\\*\\]$";
const char* const UnsavedTitle = "^Effect Display - \\[doc\\*\\]$";

} // namespace

// Programs that share the place for what they keep between their runs.
class Recovery : public Program
{
protected:
    TProgramOptions Options() const
    {
        TProgramOptions options;
        options.Environment = {"XDG_STATE_HOME=" + Shared.Path("state")};
        return options;
    }
    // The recovery files, by the names of their leaves.
    std::vector<std::string> Files() const
    {
        std::vector<std::string> result;
        std::error_code error;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(Shared.Path("state/cindermill/recovery"), error))
            if (entry.path().extension() == ".effect")
                result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }
    bool IsNothingLeft() const
    {
        const std::filesystem::path folder = Shared.Path("state/cindermill/recovery");
        return !std::filesystem::exists(folder) || std::filesystem::is_empty(folder);
    }
    std::string CopySample(const std::string& leaf)
    {
        const std::string path = Shared.Path(leaf);
        std::filesystem::copy_file(SourcePath("samples/" + leaf), path);
        return path;
    }
    // Two documents, one of them never saved, both with changes.
    void Edit(TProgram& program, TWorkshop& workshop, const std::string& path)
    {
        StartWithNewDocument(program, workshop);
        if (HasFatalFailure())
            return;
        Open(program, path);
        SelectAll(workshop);
        Screen.Key("ctrl+c");
        Screen.Key("ctrl+v");
        ASSERT_TRUE(Screen.WaitForWindow(FountainTitle));
        program.ChooseFromFileMenu(FE_NEW);
        const TRectangle graph = Shifted(workshop.GetGraph(), 2);
        ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
        Screen.Click(graph.X + 20, graph.Y + 20);
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
        Screen.Key("ctrl+v");
        ASSERT_TRUE(Screen.WaitForWindow(UnsavedTitle));
    }
    bool WaitForFiles(size_t count) const
    {
        return WaitUntil([&] { return Files().size() == count; });
    }
    void WaitForBoth()
    {
        EXPECT_TRUE(Screen.WaitForWindow(UnsavedTitle));
        EXPECT_TRUE(Screen.WaitForWindow(FountainTitle));
    }

    TTempFolder Shared;
};

TEST_F(Recovery, WhatTheSystemEndsComesBackWithItsHistory)
{
    const std::string path = CopySample("fountain.effect");
    const std::string before = ReadBytes(path);
    {
        TProgram program(Screen, Options());
        TWorkshop workshop(Screen, program);
        ASSERT_NO_FATAL_FAILURE(Edit(program, workshop, path));
        program.Send(SIGTERM);
        EXPECT_EQ(program.WaitForEnd(), 128 + SIGTERM) << program.GetOutput();
    }
    EXPECT_EQ(Files(), (std::vector<std::string>{"fountain-1.effect", "unsaved-2.effect"}));
    EXPECT_TRUE(ReadBytes(path) == before);
    TProgram program(Screen, Options());
    ASSERT_TRUE(Screen.WaitForWindow(RecoveryTitle)) << program.GetOutput();
    ASSERT_TRUE(Screen.WaitUntilActive(RecoveryTitle));
    Screen.Save(program.GetMainRectangle(), Screenshot("recovery"));
    ASSERT_TRUE(program.AnswerDialog(RecoveryTitle, "Return"));
    WaitForBoth();
    // The newest is in front: back to before the paste, of which nothing can run, and the star stays.
    ASSERT_TRUE(Screen.WaitUntilStill(program.GetMainRectangle()));
    const TRectangle main = program.GetMainRectangle();
    Screen.Click(main.X + main.Width / 2, main.Y + 300);
    Screen.Key("ctrl+z");
    ASSERT_TRUE(program.AnswerDialog(ErrorsTitle, "Return"));
    EXPECT_NE(Screen.FindWindow(UnsavedTitle), "");
    Screen.Save(program.GetMainRectangle(), Screenshot("recovered"));
    EXPECT_EQ(Files().size(), 2u);
    program.ChooseFromFileMenu(FE_EXIT);
    ASSERT_TRUE(Screen.WaitForWindow(ModifiedTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(ModifiedTitle));
    // To "No".
    Screen.Keys({"Tab", "Tab"});
    ASSERT_TRUE(program.AnswerDialog(ModifiedTitle, "space"));
    EXPECT_EQ(program.WaitForEnd(), 0) << program.GetOutput();
    EXPECT_TRUE(IsNothingLeft());
    EXPECT_TRUE(ReadBytes(path) == before);
}

TEST_F(Recovery, ADisplayThatGoesTakesNoWorkAlong)
{
    const std::string path = CopySample("fountain.effect");
    TProgram program(Screen, Options());
    TWorkshop workshop(Screen, program);
    ASSERT_NO_FATAL_FAILURE(Edit(program, workshop, path));
    EXPECT_TRUE(Files().empty());
    Screen.Kill();
    EXPECT_NE(program.WaitForEnd(), -1);
    EXPECT_EQ(Files(), (std::vector<std::string>{"fountain-1.effect", "unsaved-2.effect"}));
}

TEST_F(Recovery, AKilledProgramHasWhatItExportedLast)
{
    const std::string path = CopySample("fountain.effect");
    {
        TProgram program(Screen, Options());
        TWorkshop workshop(Screen, program);
        ASSERT_NO_FATAL_FAILURE(Edit(program, workshop, path));
        Export(program, Shared.Path("fountain.efx"));
        EXPECT_TRUE(WaitForFiles(2));
        program.Send(SIGKILL);
        EXPECT_EQ(program.WaitForEnd(), 128 + SIGKILL);
    }
    // Put off, and off once more with a kill.
    for (const char* key : {"Escape", "alt+F4"}) {
        TProgram program(Screen, Options());
        ASSERT_TRUE(program.AnswerDialog(RecoveryTitle, key)) << program.GetOutput();
        ASSERT_TRUE(program.IsUp());
        EXPECT_EQ(Screen.FindWindow(DisplayTitle), "");
        EXPECT_EQ(Files().size(), 2u);
        program.Send(SIGKILL);
        program.WaitForEnd();
    }
    {
        TProgram program(Screen, Options());
        ASSERT_TRUE(program.AnswerDialog(RecoveryTitle, "Return")) << program.GetOutput();
        WaitForBoth();
        program.Send(SIGKILL);
        program.WaitForEnd();
    }
    EXPECT_EQ(Files().size(), 2u);
    // The second button.
    TProgram program(Screen, Options());
    ASSERT_TRUE(Screen.WaitForWindow(RecoveryTitle)) << program.GetOutput();
    ASSERT_TRUE(Screen.WaitUntilActive(RecoveryTitle));
    Screen.Keys({"Tab", "Tab"});
    Screen.Save(program.GetMainRectangle(), Screenshot("recovery-discard"));
    ASSERT_TRUE(program.AnswerDialog(RecoveryTitle, "space"));
    EXPECT_TRUE(WaitForFiles(0));
    EXPECT_TRUE(IsNothingLeft());
    ASSERT_TRUE(program.IsUp());
    EXPECT_EQ(Screen.FindWindow(DisplayTitle), "");
    Exit(program);
}

// What was in the middle of something comes to its end as by Cancel.
TEST_F(Recovery, TheSystemEndsItUnderDialogsAndSearchesToo)
{
    const std::string path = CopySample("fountain.effect");
    TTempFolder textures;
    std::filesystem::copy_file(SourcePath("samples/textures/drop.dds"), textures.Path("drop.dds"));
    const std::vector<std::function<void(TProgram&)>> waits = {
        [&](TProgram&) {
            Screen.Key("ctrl+o");
            EXPECT_TRUE(Screen.WaitForWindow(LoadTitle));
        },
        [&](TProgram& program) {
            program.ChooseFromFileMenu(FE_EXIT);
            EXPECT_TRUE(Screen.WaitForWindow(ModifiedTitle));
        },
        [&](TProgram& program) {
            const TRectangle main = program.GetMainRectangle();
            Screen.Click(main.X + 15, main.Y + 11);
        },
        // A chooser for a texture, in the middle of a load.
        [&](TProgram& program) {
            std::filesystem::remove(textures.Path("drop.dds"));
            Screen.Key("ctrl+o");
            EXPECT_TRUE(program.AnswerChooser(LoadTitle, SourcePath("samples/rain.effect")));
            EXPECT_TRUE(Screen.WaitForWindow("^Find resource"));
        }};
    const int signals[] = {SIGTERM, SIGHUP, SIGINT, SIGTERM};
    TProgramOptions options = Options();
    options.Settings = "ResourceMode=1\nResourcePath=" + textures.GetFolder() + "\n";
    for (size_t i = 0; i < waits.size(); ++i) {
        SCOPED_TRACE("wait " + std::to_string(i));
        std::filesystem::remove_all(Shared.Path("state"));
        TProgram program(Screen, options);
        TWorkshop workshop(Screen, program);
        ASSERT_NO_FATAL_FAILURE(Edit(program, workshop, path));
        waits[i](program);
        Screen.Settle();
        program.Send(signals[i]);
        EXPECT_EQ(program.WaitForEnd(), 128 + signals[i]) << program.GetOutput();
        EXPECT_EQ(Files().size(), 2u);
    }
}
