#include "window/programfixture.h"

#include "particles/cindermill/graph/text/effecttext.h"

namespace {

// Two programs on one screen, one after the other in front: the first copies all of a sample and goes to the
// background, and the second has an empty document.
class ProgramClipboard : public Program
{
protected:
    // What is copied, done without windows too.
    static constexpr const char* Sample = "samples/fountain.effect";

    static std::string TextOf(TDocument& document)
    {
        TTextBuffer text;
        TEffectText(*document.GetGraph()).Write(text);
        return text.Print();
    }
    void CopyInFirst(TProgram& program)
    {
        {
            TWorkshop workshop(Screen, program);
            StartWithNewDocument(program, workshop);
            ASSERT_FALSE(HasFatalFailure());
            Open(program, SourcePath(Sample));
            ASSERT_FALSE(HasFatalFailure());
            SelectAll(workshop);
            Screen.Key("ctrl+c");
        }
        HideAll();
    }
    // The windows of a program that still runs are out of the way, as on another desk.
    void HideAll()
    {
        for (const char* title : {DisplayTitle, MainTitle})
            EXPECT_TRUE(WaitUntil([&] {
                const std::string window = Screen.FindWindow(title);
                if (!window.empty())
                    RunCommand({"xdotool", "windowminimize", window}, {"DISPLAY=" + Screen.GetDisplay()});
                return window.empty();
            })) << title;
    }
    // What the second program saves after so many pastes is what one program alone would have.
    void ExpectPasted(TProgram& program, TWorkshop& workshop, int pastes, const std::string& name)
    {
        const std::string saved = program.Path(name + ".effect");
        SaveAs(program, saved);
        ASSERT_FALSE(HasFatalFailure());
        TDocument sample(workshop.GetApp());
        ASSERT_TRUE(sample.Load(SourcePath(Sample).c_str()));
        SelectAll(sample);
        sample.CopySelection();
        TDocument expected(workshop.GetApp());
        ASSERT_TRUE(expected.New());
        for (int i = 0; i < pastes; ++i)
            expected.Paste();
        TDocument found(workshop.GetApp());
        ASSERT_TRUE(found.Load(saved.c_str()));
        EXPECT_EQ(TextOf(found), TextOf(expected));
        EXPECT_GT(found.GetGraph()->GetNumNodes(), 0);
        ASSERT_TRUE(expected.EnsureSchedule());
        const std::string exported = program.Path(name + ".efx");
        Export(program, exported);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(expected.Export(program.Path("expected.efx").c_str()));
        EXPECT_TRUE(AreSame(exported, program.Path("expected.efx")));
    }
};

} // namespace

TEST_F(ProgramClipboard, NodesCopiedInOneProgramArePastedInAnother)
{
    TProgram first(Screen);
    CopyInFirst(first);
    ASSERT_FALSE(HasFatalFailure());
    TProgram second(Screen);
    TWorkshop workshop(Screen, second);
    StartWithNewDocument(second, workshop);
    ASSERT_FALSE(HasFatalFailure());
    Screen.Key("ctrl+v");
    ASSERT_TRUE(WaitForStar());
    ExpectPasted(second, workshop, 1, "pasted");
    ASSERT_FALSE(HasFatalFailure());
    // The clipboard of X ends with its program. What was pasted once stays at hand.
    first.Send(SIGKILL);
    EXPECT_NE(first.WaitForEnd(), 0);
    Screen.Click(workshop.ScreenX(20), workshop.ScreenY(20));
    Screen.Key("ctrl+v");
    ASSERT_TRUE(WaitForStar());
    ExpectPasted(second, workshop, 2, "again");
}

// Who has the clipboard and gives no answer holds nobody up for longer than the window system waits.
TEST_F(ProgramClipboard, AProgramThatHangsKeepsNobodyFromWorking)
{
    TProgram first(Screen);
    CopyInFirst(first);
    ASSERT_FALSE(HasFatalFailure());
    TProgram second(Screen);
    TWorkshop workshop(Screen, second);
    StartWithNewDocument(second, workshop);
    ASSERT_FALSE(HasFatalFailure());
    first.Send(SIGSTOP);
    Screen.Key("ctrl+v");
    TToolNode* node = workshop.Add("Gravity", 300, 300);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(WaitForStar());
    const std::string saved = second.Path("alone.effect");
    SaveAs(second, saved);
    first.Send(SIGCONT);
    TDocument found(workshop.GetApp());
    ASSERT_TRUE(found.Load(saved.c_str()));
    EXPECT_EQ(found.GetGraph()->GetNumNodes(), 1);
}
