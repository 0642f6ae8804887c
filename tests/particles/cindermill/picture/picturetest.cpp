#include "particles/cindermill/batch/batchfixture.h"

#include <QImage>

#include <csignal>
#include <cstdlib>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Gap = 10;
constexpr int LabelHeight = 22;

// Pictures that the batch program has drawn.
class Pictures : public TBatch
{
protected:
    // The driver is unloaded before its leaks are looked for, and so they have no name to be let pass by.
    Pictures() { setenv("ASAN_OPTIONS", "detect_leaks=0", 1); }
    std::string Out(const std::string& leaf) { return Folder.Path(leaf); }
    // Runs `picture`, which must succeed in silence.
    QImage Draw(const std::string& sample, const std::string& options, const std::string& leaf = "a.png")
    {
        const TOutcome outcome =
            Run(Resources() + "picture " + Sample(sample) + " '" + Out(leaf) + "' " + options);
        EXPECT_EQ(0, outcome.Status) << outcome.Err;
        EXPECT_EQ("", outcome.Out + outcome.Err);
        return Load(leaf);
    }
    QImage Load(const std::string& leaf)
    {
        const QImage image(QString::fromStdString(Out(leaf)));
        EXPECT_FALSE(image.isNull()) << leaf;
        return image.convertToFormat(QImage::Format_RGB888);
    }
    void CopySample(const std::string& name, const std::string& leaf)
    {
        std::filesystem::create_directories(std::filesystem::path(Out(leaf)).parent_path());
        std::filesystem::copy(SourcePath("samples/" + name + ".effect"), Out(leaf));
    }
};

int CountOther(const QImage& image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) != colour ? 1 : 0;
    return count;
}

// The cell of a sheet, without its label, and the label alone.
QImage Cell(const QImage& sheet, int columns, int index, int width, int height)
{
    return sheet.copy(Gap + index % columns * (width + Gap),
                      Gap + index / columns * (height + LabelHeight + Gap), width, height);
}

QImage Label(const QImage& sheet, int columns, int index, int width, int height)
{
    return sheet.copy(Gap + index % columns * (width + Gap),
                      Gap + index / columns * (height + LabelHeight + Gap) + height, width, LabelHeight);
}

} // namespace

TEST_F(Pictures, BehindTwoDashesAnyWordIsAFile)
{
    CopySample("campfire", "--campfire.effect");
    Program = "cd '" + Folder.GetFolder() + "' && " + Program;
    const TOutcome refused = Run(Resources() + "picture --campfire.effect a.png");
    EXPECT_EQ(2, refused.Status);
    EXPECT_EQ(0u, refused.Err.find("picture takes a file and the picture to write\n"));
    const TOutcome picture = Run(Resources() + "picture -- --campfire.effect --a.png --size 32x24");
    EXPECT_EQ(0, picture.Status) << picture.Err;
    EXPECT_EQ(QSize(32, 24), Load("--a.png").size());
    const TOutcome sheet = Run(Resources() + "sheet -- . --b.png --size 32x24");
    EXPECT_EQ(0, sheet.Status) << sheet.Err;
    EXPECT_EQ(QSize(32 + 2 * Gap, 24 + LabelHeight + 2 * Gap), Load("--b.png").size());
}

TEST_F(Pictures, APictureIsThePreviewsViewOfTheEffect)
{
    const QImage image = Draw("campfire", "");
    EXPECT_EQ(QSize(800, 568), image.size());
    EXPECT_EQ(qRgb(204, 204, 204), image.pixel(0, 0));
    // Fire over the middle of the ground, smoke above it, and lines.
    const QColor fire(image.pixel(396, 322));
    EXPECT_GT(fire.red(), fire.blue() + 60) << fire.name().toStdString();
    const QColor smoke(image.pixel(427, 175));
    EXPECT_LT(smoke.red(), 150);
    const QImage plain = Draw("campfire", "--plain");
    EXPECT_LT(CountOther(plain, qRgb(204, 204, 204)), CountOther(image, qRgb(204, 204, 204)) - 1000);
}

TEST_F(Pictures, NoEffectIsWrittenOver)
{
    CopySample("burst", "art/burst.effect");
    const std::string before = ReadBytes(Out("art/burst.effect"));
    for (const std::string& command : {"picture '" + Out("art/burst.effect"), "sheet '" + Out("art")})
        EXPECT_EQ(1, Run(Resources() + command + "' '" + Out("art/burst.effect") + "'").Status) << command;
    EXPECT_EQ(before, ReadBytes(Out("art/burst.effect")));
}

// Whoever ends the batch program ends the drawing too, and nothing is written afterwards.
TEST_F(Pictures, TheDrawingIsTheProcessThatWasStarted)
{
    const std::string effect = SourcePath("samples/fountain.effect");
    const std::string out = Out("never.png");
    const pid_t process = fork();
    if (process == 0) {
        execl(CINDERMILL_BATCH, CINDERMILL_BATCH, "picture", effect.c_str(), out.c_str(), "--frame",
              "1000000000", nullptr);
        _exit(127);
    }
    const std::string program = "/proc/" + std::to_string(process) + "/exe";
    std::error_code error;
    EXPECT_TRUE(WaitFor(
        [&] { return std::filesystem::read_symlink(program, error).filename() == "cindermill-picture"; },
        [] { usleep(10000); }));
    EXPECT_EQ(0, kill(process, SIGTERM));
    int status = 0;
    ASSERT_EQ(process, waitpid(process, &status, 0));
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(Pictures, AFrameIsToldOnce)
{
    const std::string start = Resources() + "picture " + Sample("fountain") + " '" + Out("a.png") + "' ";
    EXPECT_EQ(2, Run(start + "--frame 3 --frames 1-3").Status);
    EXPECT_EQ(2, Run(start + "--frame 3 --frame 4").Status);
    EXPECT_FALSE(std::filesystem::exists(Out("a.png")));
}

TEST_F(Pictures, WhatIsHiddenIsInNoSheet)
{
    CopySample("fountain", "art/deep/a.effect");
    const std::string start = Resources() + "sheet '" + Out("art");
    EXPECT_EQ(0, Run(start + "' '" + Out("plain.png") + "'").Status);
    CopySample("fountain", "art/.hidden.effect");
    CopySample("fountain", "art/.git/b.effect");
    EXPECT_EQ(0, Run(start + "/' '" + Out("hidden.png") + "'").Status);
    EXPECT_TRUE(ReadBytes(Out("plain.png")) == ReadBytes(Out("hidden.png")));
}

TEST_F(Pictures, TheFrameIsThatOfARun)
{
    EXPECT_EQ(0, CountOther(Draw("campfire", "--plain --frame 0"), qRgb(204, 204, 204)));
    const QImage early = Draw("campfire", "--frame 20 --size 200x150");
    const QImage late = Draw("campfire", "--frame 120 --size 200x150");
    EXPECT_EQ(QSize(200, 150), early.size());
    EXPECT_NE(early, late);
    // Without one it is the hundredth.
    EXPECT_EQ(Draw("campfire", "--size 200x150"), Draw("campfire", "--frame 100 --size 200x150"));
}

TEST_F(Pictures, TwoRunsGiveTheSameBytes)
{
    for (const char* sample : {"campfire", "aura", "vortex", "sparks"}) {
        Draw(sample, "", "a.png");
        Draw(sample, "", "b.png");
        EXPECT_EQ(ReadBytes(Out("a.png")), ReadBytes(Out("b.png"))) << sample;
    }
    Draw("sparks", "--seed 5", "a.png");
    EXPECT_NE(ReadBytes(Out("a.png")), ReadBytes(Out("b.png")));
    Draw("sparks", "--seed 5", "b.png");
    EXPECT_EQ(ReadBytes(Out("a.png")), ReadBytes(Out("b.png")));
}

TEST_F(Pictures, TheBackgroundIsTheOneAskedFor)
{
    EXPECT_EQ(qRgb(32, 48, 64), Draw("fountain", "--background '#203040' --size 64x48").pixel(0, 0));
    EXPECT_EQ(qRgb(1, 2, 255), Draw("fountain", "--background 1,2,255 --size 64x48").pixel(0, 0));
}

TEST_F(Pictures, TheCameraLooksWhereItIsTold)
{
    const QRgb grey = qRgb(204, 204, 204);
    EXPECT_GT(CountOther(Draw("fountain", "--plain --camera 0,0.6,5.6,0,0.6,0 --size 200x150"), grey), 100);
    EXPECT_EQ(0, CountOther(Draw("fountain", "--plain --camera 0,0.6,5.6,0,0.6,9 --size 200x150"), grey));
    // From twice as far the ground is half as wide; from straight above it is square and upright.
    const auto width = [&](const QImage& image) {
        int left = image.width();
        int right = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixel(x, y) != grey) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
        return right - left;
    };
    const int near = width(Draw("fountain", "--frame 0 --camera 0,8,0,0,0,0 --size 400x400"));
    const int far = width(Draw("fountain", "--frame 0 --camera 0,16,0,0,0,0 --size 400x400"));
    EXPECT_NEAR(near, 2 * far, 3);
    // tan(0.3) times 8 is half of the height that 400 pixels show.
    EXPECT_NEAR(2 / (2 * 8 * 0.30934) * 400, near, 3);
}

TEST_F(Pictures, FramesStandSideBySideAndAreThoseOfSinglePictures)
{
    const QImage sheet = Draw("fountain", "--frames 18-22 --sheet 3 --size 120x90", "sheet.png");
    EXPECT_EQ(QSize(Gap + 3 * 130, Gap + 2 * (90 + LabelHeight + Gap)), sheet.size());
    std::set<std::string> labels;
    for (int i = 0; i < 5; ++i) {
        const QImage alone = Draw("fountain", "--frame " + std::to_string(18 + i) + " --size 120x90");
        EXPECT_EQ(alone, Cell(sheet, 3, i, 120, 90)) << i;
        const QImage label = Label(sheet, 3, i, 120, 90);
        labels.insert(std::string(reinterpret_cast<const char*>(label.constBits()),
                                  static_cast<size_t>(label.sizeInBytes())));
    }
    EXPECT_EQ(5u, labels.size());
    // The place that is left is paper.
    EXPECT_EQ(0, CountOther(Cell(sheet, 3, 5, 120, 90), sheet.pixel(0, 0)));
}

TEST_F(Pictures, ATurntableGoesRoundTheTarget)
{
    const QImage sheet = Draw("flipbook", "--turntable 4 --size 120x90", "sheet.png");
    EXPECT_EQ(QSize(Gap + 2 * 130, Gap + 2 * (90 + LabelHeight + Gap)), sheet.size());
    EXPECT_EQ(Draw("flipbook", "--size 120x90"), Cell(sheet, 2, 0, 120, 90));
    for (int i = 1; i < 4; ++i) {
        EXPECT_NE(Cell(sheet, 2, 0, 120, 90), Cell(sheet, 2, i, 120, 90));
        EXPECT_GT(CountOther(Cell(sheet, 2, i, 120, 90), qRgb(204, 204, 204)), 100);
    }
    const QImage row = Draw("flipbook", "--turntable 4 --sheet 4 --size 120x90", "row.png");
    EXPECT_EQ(QSize(Gap + 4 * 130, Gap + 90 + LabelHeight + Gap), row.size());
}

TEST_F(Pictures, ASheetShowsAllEffectsBelowAFolderByName)
{
    CopySample("fountain", "effects/b.effect");
    CopySample("campfire", "effects/deep/er/A.Effect");
    CopySample("rain", "effects/c.effect");
    WriteBytes(Out("effects/notes.txt"), "no effect");
    WriteBytes(Out("effects/effect"), "no effect");
    const TOutcome outcome =
        Run(Resources() + "sheet '" + Out("effects") + "' '" + Out("sheet.png") + "' --size 160x120");
    EXPECT_EQ(0, outcome.Status) << outcome.Err;
    EXPECT_EQ("", outcome.Out + outcome.Err);
    const QImage sheet = Load("sheet.png");
    EXPECT_EQ(QSize(Gap + 2 * 170, Gap + 2 * (120 + LabelHeight + Gap)), sheet.size());
    // In the order of names, with what is in folders where the folder stands; each as it is alone.
    const char* samples[] = {"fountain", "rain", "campfire"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Draw(samples[i], "--size 160x120"), Cell(sheet, 2, i, 160, 120)) << samples[i];
        EXPECT_GT(CountOther(Label(sheet, 2, i, 160, 120), sheet.pixel(0, 0)), 20) << samples[i];
    }
}

TEST_F(Pictures, WhatDoesNotRunIsToldAndLeavesItsPlaceEmpty)
{
    CopySample("fountain", "effects/a.effect");
    WriteBytes(Out("effects/b.effect"), "CHNK");
    CopySample("campfire", "effects/c.effect");
    const TOutcome outcome =
        Run(Resources() + "sheet '" + Out("effects") + "' '" + Out("sheet.png") + "' --size 160x120");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(1u, Lines(outcome.Err).size()) << outcome.Err;
    EXPECT_EQ(0u, outcome.Err.find(Out("effects/b.effect") + ": "));
    const QImage sheet = Load("sheet.png");
    EXPECT_EQ(0, CountOther(Cell(sheet, 2, 1, 160, 120), qRgb(204, 204, 204)));
    EXPECT_EQ(Draw("campfire", "--size 160x120"), Cell(sheet, 2, 2, 160, 120));
    // Of one effect there is no picture at all.
    const std::string empty = Out("empty");
    std::filesystem::create_directory(empty);
    const TOutcome missing = Run("--resources '" + empty + "' picture '" + Out("effects/b.effect") + "' '" +
                                 Out("none.png") + "'");
    EXPECT_EQ(1, missing.Status);
    EXPECT_FALSE(std::filesystem::exists(Out("none.png")));
    const TOutcome none = Run("sheet '" + empty + "' '" + Out("none.png") + "'");
    EXPECT_EQ(1, none.Status);
    EXPECT_EQ(empty + ": There are no effects below this folder\n", none.Err);
    EXPECT_EQ(1, Run("sheet '" + Out("nowhere") + "' '" + Out("none.png") + "'").Status);
    EXPECT_FALSE(std::filesystem::exists(Out("none.png")));
}

TEST_F(Pictures, AMissingTextureIsNamed)
{
    std::string effect = ReadBytes(SourcePath("samples/fountain.effect"));
    const size_t at = effect.find(".dds");
    ASSERT_NE(std::string::npos, at);
    effect.replace(at, 4, ".ddx");
    WriteBytes(Out("a.effect"), effect);
    const TOutcome outcome = Run(Resources() + "picture '" + Out("a.effect") + "' '" + Out("a.png") + "'");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(0u, outcome.Err.find(Out("a.effect") + ": Could not resolve path for texture ")) << outcome.Err;
    EXPECT_FALSE(std::filesystem::exists(Out("a.png")));
}

TEST_F(Pictures, ADriverThatIsNotThereIsTold)
{
    WriteBytes(Out("a.png"), "old");
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", Out("none.json").c_str(), 1);
    const TOutcome outcome = Run(Resources() + "picture " + Sample("fountain") + " '" + Out("a.png") + "'");
    unsetenv("__EGL_VENDOR_LIBRARY_FILENAMES");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ("Pictures cannot be drawn here: There is no OpenGL driver.\n", outcome.Err);
    EXPECT_EQ("old", ReadBytes(Out("a.png")));
}

TEST_F(Pictures, ADriverWithoutTheProgramsIsTold)
{
    setenv("MESA_EXTENSION_OVERRIDE", "-GL_ARB_fragment_program", 1);
    const TOutcome outcome = Run(Resources() + "picture " + Sample("fountain") + " '" + Out("a.png") + "'");
    unsetenv("MESA_EXTENSION_OVERRIDE");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ("Pictures cannot be drawn here: The OpenGL driver lacks GL_ARB_fragment_program.\n",
              outcome.Err);
}

TEST_F(Pictures, TheProgramThatDrawsIsLookedForBesideTheOther)
{
    std::filesystem::create_directory(Out("bin"));
    std::filesystem::copy(CINDERMILL_BATCH, Out("bin/cindermill-batch"));
    const std::string command = "'" + Out("bin/cindermill-batch") + "' " + Resources() + "picture " +
                                Sample("fountain") + " '" + Out("a.png") + "' 2>'" + Out("err") + "'";
    EXPECT_EQ(1, WEXITSTATUS(std::system(command.c_str())));
    EXPECT_EQ("Pictures are drawn by the program cindermill-picture, which is not in " + Out("bin") + "\n",
              ReadBytes(Out("err")));
    std::filesystem::copy(std::filesystem::path(CINDERMILL_BATCH).parent_path() / "cindermill-picture",
                          Out("bin/cindermill-picture"));
    EXPECT_EQ(0, WEXITSTATUS(std::system(command.c_str()))) << ReadBytes(Out("err"));
    EXPECT_TRUE(std::filesystem::exists(Out("a.png")));
}

TEST_F(Pictures, AFileThatCannotBeWrittenIsToldAndTheEffectIsNotReplaced)
{
    const TOutcome outcome =
        Run(Resources() + "picture " + Sample("fountain") + " '" + Out("nowhere/a.png") + "' --size 40x30");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(0u, outcome.Err.find(Out("nowhere/a.png") + ": The file cannot be written: ")) << outcome.Err;
    CopySample("fountain", "own.effect");
    const TOutcome own = Run("picture '" + Out("own.effect") + "' '" + Out("own.effect") + "'");
    EXPECT_EQ(1, own.Status);
    EXPECT_EQ(ReadBytes(SourcePath("samples/fountain.effect")), ReadBytes(Out("own.effect")));
}

TEST_F(Pictures, WrongCommandLinesAreUsageErrors)
{
    for (const char* line : {"picture",
                             "picture a",
                             "sheet",
                             "sheet a",
                             "picture a b --frame",
                             "picture a b --frame -1",
                             "picture a b --frames 5",
                             "picture a b --frames 5-4",
                             "picture a b --frames 0-4096",
                             "picture a b --sheet 0",
                             "picture a b --seed x",
                             "picture a b --camera 1,2,3",
                             "picture a b --camera 1,2,3,1,2,3",
                             "picture a b --size 64",
                             "picture a b --size 0x4",
                             "picture a b --size 16385x4",
                             "picture a b --background red",
                             "picture a b --background '#12345'",
                             "picture a b --background 1,2,256",
                             "picture a b --turntable 0",
                             "picture a b --other",
                             "sheet a b --frames 1-2",
                             "sheet a b --turntable 3"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
}
