#include "window/previewfixture.h"

#include "library/containers/image/image.h"

#include <filesystem>

// What is seen of an effect and round it, by menu and keys.

namespace {

const char* const ColourTitle = "^Background colour$";
const char* const PictureTitle = "^Select background picture$";
const char* const SavePictureTitle = "^Save picture$";
constexpr uint32_t OwnColour = 0x336699;
constexpr int ColourEntry = 7;
constexpr int CheckerEntry = 8;
constexpr int PictureEntry = 9;

class PreviewLooks : public ProgramPreview
{
protected:
    // A picture of one colour; the rest of what its size promises is a hole.
    static void WriteTexture(const std::string& path, int size, bool whole)
    {
        TImage image;
        image.Create(8, 8);
        for (int i = 0; i < 64; ++i)
            image.GetPixel(i % 8, i / 8)[0] = 0x60;
        ASSERT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
        if (whole)
            return;
        std::string bytes = ReadBytes(path);
        for (const size_t at : {12u, 16u}) {
            bytes[at] = static_cast<char>(size & 0xFF);
            bytes[at + 1] = static_cast<char>(size >> 8);
        }
        WriteBytes(path, bytes);
        std::filesystem::resize_file(path, 128 + uint64_t{4} * size * size);
    }
    // The ready-made ones, and the checker.
    void ExpectBackgrounds()
    {
        const uint32_t colours[] = {0xCCCCCC, 0x333333, 0x000000, 0xFFFFFF, 0x0D1433, 0x00B040};
        for (int i = 5; i >= 0; --i) {
            Choose({Background, i + 1});
            EXPECT_TRUE(WaitForCorner(colours[i])) << i;
        }
        Choose({Background, CheckerEntry});
        EXPECT_TRUE(WaitUntil([&] {
            const TPicture view = Screen.Grab(GetView());
            return view.At(3, 3) == 0xBFBFBF && view.At(27, 3) == 0x999999;
        }));
    }
    // Seen while it is typed, and gone again if it is given up.
    void ExpectOwnColour(TProgram& program)
    {
        for (const char* answer : {"Escape", "Return"}) {
            Choose({Background, ColourEntry});
            ASSERT_TRUE(Screen.WaitForWindow(ColourTitle));
            ASSERT_TRUE(Screen.WaitUntilActive(ColourTitle));
            // Beside the effect that it is about.
            const TRectangle chooser = Screen.GetPosition(Screen.FindWindow(ColourTitle));
            const TRectangle display = GetDisplay();
            EXPECT_TRUE(chooser.X + chooser.Width <= display.X || chooser.X >= display.X + display.Width);
            Screen.Keys({"alt+h", "ctrl+a"});
            Screen.Type("#336699");
            EXPECT_TRUE(WaitForCorner(OwnColour)) << "while it is tried";
            ASSERT_TRUE(program.AnswerDialog(ColourTitle, answer));
            ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
            const bool isKept = std::string(answer) == "Return";
            EXPECT_TRUE(WaitForCorner(isKept ? OwnColour : 0xBFBFBF)) << answer;
        }
    }
    void ChoosePicture(TProgram& program, const std::string& path)
    {
        Choose({Background, PictureEntry});
        ASSERT_TRUE(program.AnswerChooser(PictureTitle, path));
    }
    void ExpectPictures(TProgram& program)
    {
        const std::string wall = program.Path("wall.dds");
        WriteTexture(wall, 16384, false);
        ChoosePicture(program, wall);
        ASSERT_TRUE(program.AnswerDialog(MessageTitle, "Return")) << "too large to be read";
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
        EXPECT_EQ(GetCorner(), OwnColour);
        WriteTexture(program.Path("dusk.dds"), 8, true);
        ChoosePicture(program, program.Path("dusk.dds"));
        EXPECT_TRUE(WaitForCorner(0x600000));
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    }
    // What comes with the key and goes with it again.
    void ExpectMark(const char* key, uint32_t colour, int least)
    {
        constexpr int near = 40;
        const TPicture without = GrabStill();
        Screen.Key(key);
        const TPicture with = GrabStill();
        EXPECT_GT(CountColour(with, colour, near), CountColour(without, colour, near) + least) << key;
        Screen.Key(key);
        EXPECT_EQ(CountDifferences(GrabStill(), without), 0) << key;
    }
    void ExpectCameras()
    {
        const TPicture start = GrabStill();
        Screen.Key("F9");
        EXPECT_EQ(CountDifferences(GrabStill(), start), 0) << "none is kept yet";
        const TRectangle view = GetView();
        Screen.Drag(view.X + 300, view.Y + 300, view.X + 420, view.Y + 340);
        const TPicture turned = GrabStill();
        EXPECT_GT(CountDifferences(turned, start), 1000);
        Screen.Keys({"shift+F10", "F2", "shift+F9", "r"});
        EXPECT_EQ(CountDifferences(GrabStill(), start), 0);
        Screen.Key("F10");
        EXPECT_EQ(CountDifferences(GrabStill(), turned), 0);
        Screen.Key("F9");
        EXPECT_GT(CountDifferences(GrabStill(), turned), 1000);
        Screen.Key("r");
    }
    // Its pixels, as another program reads them.
    static TPicture ReadPng(const std::string& path)
    {
        const TCommandResult result = RunCommand({"convert", path, "-depth", "8", "ppm:-"}, {});
        TPicture picture;
        int used = 0;
        if (sscanf(result.Output.c_str(), "P6 %d %d 255%n", &picture.Width, &picture.Height, &used) != 2)
            return picture;
        const size_t begin = static_cast<size_t>(used) + 1;
        for (size_t at = begin; at + 2 < result.Output.size(); at += 3)
            picture.Pixels.push_back(static_cast<uint32_t>(static_cast<uint8_t>(result.Output[at]) << 16 |
                                                           static_cast<uint8_t>(result.Output[at + 1]) << 8 |
                                                           static_cast<uint8_t>(result.Output[at + 2])));
        return picture;
    }
    // Under a name that is shorter than what is put behind it.
    void ExpectSavedPicture(TProgram& program)
    {
        const TPicture shown = GrabStill();
        Choose({SavePicture});
        ASSERT_TRUE(program.AnswerChooser(SavePictureTitle, "ab"));
        const std::string path = program.Path("ab.png");
        ASSERT_TRUE(WaitUntil([&] { return FileExists(path.c_str()); }));
        const TPicture saved = ReadPng(path);
        ASSERT_EQ(saved.Width, shown.Width);
        ASSERT_EQ(saved.Height, shown.Height);
        EXPECT_EQ(CountDifferences(saved, shown), 0);
        EXPECT_EQ(CountEntries(program.Path(""), "ab"), 1);
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    }
};

} // namespace

TEST_F(PreviewLooks, BackgroundsMarksAndViewsAreChosenAndThePictureIsSaved)
{
    TProgram program(Screen);
    std::filesystem::copy_file(SourcePath("samples/campfire.effect"), program.Path("fire.effect"));
    OpenPaused(program, program.Path("fire.effect"));
    ASSERT_FALSE(HasFatalFailure());
    Screen.Keys({"s", "Home"});
    const TPicture fire = SeekPicture("2.00");
    ExpectMark("F6", 0x1A9933, 400);
    ExpectMark("F7", 0xF27300, 20);
    ExpectMark("F8", 0x8C1ABF, 100);
    ExpectCameras();
    // With births as on the console it begins anew, and other values come of the same draws.
    Choose({Births - 1});
    EXPECT_TRUE(WaitUntil([&] { return CopyTime() == "0.00"; }));
    EXPECT_GT(CountDifferences(SeekPicture("2.00"), fire), 200);
    ExpectBackgrounds();
    ASSERT_NO_FATAL_FAILURE(ExpectOwnColour(program));
    Screen.Save(GetDisplay(), Screenshot("preview-colour"));
    ASSERT_NO_FATAL_FAILURE(ExpectPictures(program));
    // The ground goes from the picture.
    const TPicture ground = GrabStill();
    Choose({Show, 1});
    EXPECT_GT(CountDifferences(GrabStill(), ground), 1000);
    Screen.Save(GetDisplay(), Screenshot("preview-picture"));
    ASSERT_NO_FATAL_FAILURE(ExpectSavedPicture(program));
    Exit(program);
}

namespace {

class PreviewNotes : public ProgramPreview
{
protected:
    static constexpr uint32_t NoticeColour = 0xFFF8DC;
    // The text's place, and nothing where there is none.
    TPicture GrabNotice() const
    {
        constexpr int many = 2000;
        constexpr int noticeHeight = 80;
        TRectangle view = GetView();
        view.Height = noticeHeight;
        const TPicture picture = Screen.Grab(view);
        return CountColour(picture, NoticeColour) > many ? picture : TPicture();
    }
    bool WaitForNotice(bool there) const
    {
        return WaitUntil([&] { return GrabNotice().Pixels.empty() != there; });
    }
    // Of the processor, for so many turns of the message loop.
    double MeasureTurns(TProgram& program)
    {
        constexpr int turns = 60;
        const double before = program.GetProcessorSeconds();
        EXPECT_TRUE(Screen.AwaitTurns(turns));
        return program.GetProcessorSeconds() - before;
    }
};

} // namespace

TEST_F(PreviewNotes, TellWhyNothingIsSeenAndAPausedEffectTakesLittle)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(WaitForNotice(true)) << "an empty graph";
    const TPicture empty = GrabNotice();
    workshop.Add("Effect", 110, 60);
    EXPECT_TRUE(WaitUntil([&] {
        const TPicture now = GrabNotice();
        return !now.Pixels.empty() && now.Pixels != empty.Pixels;
    })) << "an effect that does not run";
    Screen.Save(GetDisplay(), Screenshot("preview-notice"));
    Screen.CloseWindow(Screen.FindWindow(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilGone(DisplayTitle));
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Open(program, SourcePath("samples/campfire.effect"));
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(WaitForNotice(false));
    workshop.SetGraph(Shifted(workshop.GetGraph(), 1));
    SelectAll(workshop);
    Screen.Key("ctrl+b");
    EXPECT_TRUE(WaitForNotice(true)) << "all is bypassed";
    Screen.Key("ctrl+z");
    EXPECT_TRUE(WaitForNotice(false));
    // Running, and paused.
    ClickView();
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    const double running = MeasureTurns(program);
    Screen.Key("space");
    ASSERT_TRUE(Screen.WaitUntilStill(GetView()));
    EXPECT_LT(MeasureTurns(program), running / 3);
}

TEST_F(ProgramPreview, ReloadedNodeTypesRefreshTheEffectOnceThatIsAllowed)
{
    TTempFolder types;
    std::filesystem::copy(SourcePath("NodeTypes"), types.Path("NodeTypes"),
                          std::filesystem::copy_options::recursive);
    TProgramOptions options;
    options.Settings = "NodeTypesDirectory=" + types.Path("NodeTypes") + "\n";
    TProgram program(Screen, options);
    const std::string effect = program.Path("spring.effect");
    std::filesystem::copy_file(SourcePath("samples/fountain.effect"), effect);
    OpenPaused(program, effect);
    ASSERT_FALSE(HasFatalFailure());
    Choose({ReloadTypes});
    ASSERT_TRUE(Screen.WaitUntilStill(GetView()));
    EXPECT_FALSE(program.HasMessage(MessageTitle)) << "nothing has changed";
    const std::string gravity = types.Path("NodeTypes/Forces/Gravity.xml");
    std::string text = ReadBytes(gravity);
    const std::string end = "</inputs>";
    text.insert(text.find(end), "<Scalar><name>Haste</name><Description>More of it.</Description>"
                                "<defaultvalue>1</defaultvalue></Scalar>");
    WriteBytes(gravity, text);
    for (const char* answer : {"Escape", "Return"}) {
        Choose({ReloadTypes});
        ASSERT_TRUE(Screen.WaitForWindow(MessageTitle));
        Screen.Save(program.GetMainRectangle(), Screenshot("reload-question"));
        ASSERT_TRUE(program.AnswerDialog(MessageTitle, answer));
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
        if (answer == std::string("Escape")) {
            EXPECT_EQ(Screen.FindWindow("spring.effect\\*\\]$"), "");
        }
    }
    ASSERT_TRUE(WaitForStar());
    const auto isRefreshed = [&] { return ReadBytes(effect).find("Haste") != std::string::npos; };
    ASSERT_FALSE(isRefreshed());
    Screen.Key("ctrl+s");
    EXPECT_TRUE(WaitUntil(isRefreshed));
    Exit(program);
}
