#include "window/panelhand.h"
#include "window/programfixture.h"

#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/interface/controls/textureparametercontrols.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct TDesk
{
    int Width;
    int Height;
    int Scale;
};

std::string Name(const TDesk& desk)
{
    return std::to_string(desk.Width) + "x" + std::to_string(desk.Height) + "Scale" +
           std::to_string(desk.Scale);
}

void PrintTo(const TDesk& desk, std::ostream* out)
{
    *out << Name(desk);
}

// The installed programs, or those that were built where none are named.
std::string FindProgram(const char* name)
{
    const char* folder = std::getenv("CINDERMILL_INSTALLED");
    const std::filesystem::path built = std::filesystem::path(CINDERMILL_PROGRAM).parent_path();
    return (folder != nullptr ? std::filesystem::path(folder) : built) / name;
}

// The first day of somebody who has just installed the tool.
class FirstEffect : public Program, public testing::WithParamInterface<TDesk>
{
protected:
    FirstEffect() : Program(GetParam().Width, GetParam().Height) {}

    void Show(const char* step)
    {
        Screen.Save(TRectangle{0, 0, GetParam().Width, GetParam().Height},
                    Screenshot("first-effect-" + Name(GetParam()) + "-" + step));
    }
    // The display is in front: all of it is grey, but for a notice and the ground.
    bool IsDisplayInSight() const
    {
        constexpr uint32_t Background = 0xCCCCCC;
        const TPicture picture = Screen.Grab(GetView());
        const auto grey = std::count(picture.Pixels.begin(), picture.Pixels.end(), Background);
        return grey > static_cast<long>(picture.Pixels.size() / 3);
    }
    // What a white glow makes of the grey. The notice at the top is yellowish.
    int CountBright() const
    {
        constexpr int Edge = 8;
        TRectangle inner = GetView();
        inner = TRectangle{inner.X + Edge, inner.Y + Edge, inner.Width - 2 * Edge, inner.Height - 2 * Edge};
        const TPicture picture = Screen.Grab(inner);
        return static_cast<int>(
            std::count_if(picture.Pixels.begin(), picture.Pixels.end(), [](uint32_t colour) {
                return (colour & 255) > 0xE8 && (colour >> 8 & 255) > 0xE8 && (colour >> 16 & 255) > 0xE8;
            }));
    }
    // Of the display, without its controls.
    TRectangle GetView() const
    {
        TRectangle place = Screen.GetPosition(Screen.FindWindow(DisplayTitle));
        place.Height -= TransportHeight * GetParam().Scale;
        return place;
    }
    void BeginFromTheStartPage(TProgram& program, TWorkshop& workshop)
    {
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        const TRectangle main = program.GetMainRectangle();
        Screen.Click(main.X + 95 * GetParam().Scale, main.Y + 90 * GetParam().Scale);
        ASSERT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
        ASSERT_TRUE(workshop.FindGraph());
        ASSERT_TRUE(WaitUntil([&] { return IsDisplayInSight(); }));
        // Nobody clicks first: the graph has the keys.
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
    void ChooseTexture(TProgram& program, TWorkshop& workshop, TToolNode* stage)
    {
        TPanelHand panel(Screen, workshop, stage);
        panel.Click(panel.Find<TNodeTextureParameterControls>("Texture").GetButton());
        // It begins among the textures of the samples.
        ASSERT_TRUE(program.AnswerChooser("^Select texture to load$", "glow.dds"));
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
        panel.Apply(new TTextureParamOp(&panel.Param<TNodeTextureParameter>("Texture"), "glow.dds"));
    }
    void Update()
    {
        const TRectangle view = GetView();
        Screen.Click(view.X + UpdateButton * GetParam().Scale,
                     view.Y + view.Height + TransportHeight / 2 * GetParam().Scale);
    }
};

} // namespace

TEST_P(FirstEffect, IsBuiltSeenSavedAndExportedByTheInstalledProgram)
{
    TProgramOptions options;
    options.Path = FindProgram("cindermill");
    options.Scale = GetParam().Scale;
    TProgram program(Screen, options);
    TWorkshop workshop(Screen, program);
    BeginFromTheStartPage(program, workshop);
    ASSERT_FALSE(HasFatalFailure());

    // Where the smallest screen has the graph free of the display.
    TToolNode* emitter = workshop.Search("emitter", "Emitter", 95, 40);
    TToolNode* point = workshop.Search("point", "Point Emitter", 130, 115);
    TToolNode* cone = workshop.Search("cone", "Velocity Cone", 100, 185);
    TToolNode* integrate = workshop.Search("integ", "Integrate", 250, 250);
    TToolNode* stage = workshop.Search("sprite", "Sprite Render Stage", 262, 50);
    workshop.Connect(emitter, "Count", point, "Emission Trigger");
    workshop.Connect(point, "Start Transform", integrate, "Position");
    workshop.Connect(cone, "Velocity", integrate, "Velocity");
    workshop.Connect(integrate, "Position", stage, "Transform");
    Show("wired");
    EXPECT_EQ(CountBright(), 0);
    // The panels stay open: on the smallest screen their buttons are below the display.
    ChooseTexture(program, workshop, stage);
    ASSERT_FALSE(HasFatalFailure());
    TPanelHand(Screen, workshop, emitter).Enter("Rate", "200");
    Update();
    const int enough = 100 * GetParam().Scale * GetParam().Scale;
    EXPECT_TRUE(WaitUntil([&] { return CountBright() > enough; }));
    EXPECT_TRUE(IsMoving(GetView()));
    Show("running");

    program.ChooseFromFileMenu(FE_SAVE);
    ASSERT_TRUE(program.AnswerChooser(SaveTitle, "first"));
    const std::string saved = program.Path("first.effect");
    ASSERT_TRUE(WaitUntil([&] { return FileExists(saved.c_str()); }));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    ASSERT_TRUE(workshop.GetDocument().SaveAs(program.Path("expected.effect").c_str()));
    EXPECT_TRUE(AreSame(saved, program.Path("expected.effect")));
    // The chooser has the name already.
    program.ChooseFromFileMenu(FE_EXPORT);
    ASSERT_TRUE(program.AnswerDialog(ExportTitle, "Return"));
    const std::string exported = program.Path("first.efx");
    ASSERT_TRUE(WaitUntil([&] { return FileExists(exported.c_str()); }));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    const std::string expected = program.Path("batch.efx");
    const TCommandResult batch = RunCommand({FindProgram("cindermill-batch"), "export", saved, expected},
                                            {"HOME=" + program.Path("")});
    EXPECT_EQ(batch.Status, 0) << batch.Output;
    EXPECT_TRUE(AreSame(exported, expected));
    Show("exported");
    Exit(program);
}

INSTANTIATE_TEST_SUITE_P(OnScreens, FirstEffect,
                         testing::Values(TDesk{1024, 768, 1}, TDesk{1920, 1080, 1}, TDesk{2560, 1440, 1},
                                         TDesk{1920, 1080, 2}, TDesk{2560, 1440, 2}),
                         [](const testing::TestParamInfo<TDesk>& desk) { return Name(desk.param); });
