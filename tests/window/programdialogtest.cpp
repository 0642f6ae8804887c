#include "window/programfixture.h"

#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/settingsstore.h"

namespace {

const char* const OptionsTitle = "^Options$";
// An entry of the Tools menu.
constexpr int OptionsEntry = 3;

// Places in the dialog's first page, and its button.
struct TPlace
{
    int X;
    int Y;
};
constexpr TPlace RecentFiles = {345, 33};
constexpr TPlace CameraMode = {345, 61};
constexpr TPlace OkButton = {412, 301};

} // namespace

TEST_F(Program, ANumberAndAComboOfTheOptionsAreChangedByHandAndKept)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    const auto open = [&](TRectangle& dialog) {
        ChooseFromToolsMenu(program, OptionsEntry);
        ASSERT_TRUE(Screen.WaitForWindow(OptionsTitle));
        ASSERT_TRUE(Screen.WaitUntilActive(OptionsTitle));
        dialog = Screen.GetPosition(Screen.FindWindow(OptionsTitle));
        ASSERT_TRUE(Screen.WaitUntilStill(dialog));
    };
    TRectangle dialog;
    const auto click = [&](const TPlace& place) { Screen.Click(dialog.X + place.X, dialog.Y + place.Y); };
    const auto change = [&] {
        click(RecentFiles);
        Screen.Key("ctrl+a");
        Screen.Type("12");
        click(CameraMode);
        Screen.Key("Down");
        Screen.Key("Return");
    };
    const std::string path = program.Path("config/TolvTools/VORCindermill.conf");
    const auto isKept = [&] {
        std::unique_ptr<TSettingsStore> store(OpenSettingsFile(path.c_str()));
        TSettings settings(store.get());
        settings.Load();
        return settings.GetMaxRecentFiles() == 12 && settings.GetCameraMode() == 1;
    };

    // Discarded after a question, it is not kept.
    open(dialog);
    ASSERT_FALSE(HasFatalFailure());
    change();
    Screen.Save(dialog, Screenshot("options-by-hand"));
    Screen.Key("Escape");
    ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return"));
    ASSERT_TRUE(Screen.WaitUntilGone(OptionsTitle));
    EXPECT_FALSE(isKept());

    open(dialog);
    ASSERT_FALSE(HasFatalFailure());
    change();
    click(OkButton);
    ASSERT_TRUE(Screen.WaitUntilGone(OptionsTitle));
    EXPECT_TRUE(WaitUntil(isKept)) << ReadBytes(path);
    Exit(program);
}

TEST_F(Program, ANodeIsRenamedByHandAndTheFileSaysSo)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TToolNode* effect = workshop.Add("Effect", 110, 60);
    workshop.Add("Grid", 110, 180);
    workshop.Rename(effect, "Blaze");
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Screen.Save(program.GetMainRectangle(), Screenshot("renamed-by-hand"));
    const std::string saved = program.Path("renamed.effect");
    SaveTo(program, saved);
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(workshop.GetDocument().SaveAs(program.Path("expected.effect").c_str()));
    EXPECT_TRUE(AreSame(saved, program.Path("expected.effect")));
    TDocument document(workshop.GetApp());
    ASSERT_TRUE(document.Load(saved.c_str()));
    EXPECT_EQ(Text(document.GetGraph()->GetNode(0)->GetNodeType()->Name), "Blaze");
    EXPECT_EQ(Text(document.GetGraph()->GetNode(1)->GetNodeType()->Name), "Grid");
    // One step of undo.
    workshop.Undo();
    Screen.Key("ctrl+s");
    ASSERT_TRUE(workshop.GetDocument().SaveAs(program.Path("expected.effect").c_str()));
    EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, program.Path("expected.effect")); }));
    Exit(program);
}
