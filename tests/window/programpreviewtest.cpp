#include "window/programfixture.h"

// The preview under mouse and keys, on a screen.

TEST_F(Program, ThePreviewIsPausedSteppedRestartedAndSoughtByKeysAndMouse)
{
    TProgram program(Screen);
    ASSERT_TRUE(program.IsUp()) << program.GetOutput();
    Open(program, SourcePath("samples/fountain.effect"));
    ASSERT_FALSE(HasFatalFailure());
    const TRectangle preview = GetPreview();
    Screen.Click(preview.X + preview.Width / 2, preview.Y + preview.Height / 2);
    ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
    ASSERT_TRUE(IsMoving(preview));
    Screen.Key("space");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture paused = Screen.Grab(preview);
    Screen.Key("period");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_NE(Screen.Grab(preview).Pixels, paused.Pixels);
    Screen.Key("Home");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    const TPicture beginning = Screen.Grab(preview);
    EXPECT_GT(CountDifferences(beginning, paused), 1000);
    // A time is typed over the one that is shown.
    constexpr int timeField = 170;
    ClickTransport(timeField);
    Screen.Key("ctrl+a");
    Screen.Type("2");
    Screen.Key("Return");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_GT(CountDifferences(Screen.Grab(preview), beginning), 1000);
    // From above, from where it was, and all of it.
    const TPicture sought = Screen.Grab(preview);
    for (const char* key : {"F4", "F3", "F2", "F5"}) {
        const TPicture before = Screen.Grab(preview);
        Screen.Key(key);
        ASSERT_TRUE(Screen.WaitUntilStill(preview)) << key;
        EXPECT_GT(CountDifferences(Screen.Grab(preview), before), 1000) << key;
    }
    Screen.Key("r");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_EQ(Screen.Grab(preview).Pixels, sought.Pixels);
    Screen.Key("F6");
    ASSERT_TRUE(Screen.WaitUntilStill(preview));
    EXPECT_GT(CountDifferences(Screen.Grab(preview), sought), 200);
    Screen.Save(Screen.GetPosition(Screen.FindWindow(DisplayTitle)), Screenshot("preview-keys"));
    Screen.Key("space");
    EXPECT_TRUE(IsMoving(preview));
    Exit(program);
}
