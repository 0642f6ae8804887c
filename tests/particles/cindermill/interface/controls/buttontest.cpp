#include "controltest.h"

#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/static.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/controls/tickbox.h"

#include <memory>

namespace {

// A button from (10, 10), 60 by 18; a check box from (10, 50).
class Buttons : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        Button.Build("Lock", TVector2(60, 18));
        Button.SetOrigin(TVector2(10, 10));
        Tick.Build("Position");
        Tick.SetOrigin(TVector2(10, 50));
        Panel.AddObject(&Button);
        Panel.AddObject(&Tick);
    }

    TPushButton Button{Host};
    TTickBox Tick{Host};
};

} // namespace

TEST_F(Buttons, AButtonSendsWhenItIsLetGoOverIt)
{
    EXPECT_TRUE(Press(20, 20));
    EXPECT_EQ(CountChanges(Button), 0);
    Release(20, 20);
    EXPECT_EQ(CountChanges(Button), 1);
    EXPECT_FALSE(Button.IsPressed());
}

TEST_F(Buttons, APressThatSlidesOffDoesNothingUnlessItComesBack)
{
    Press(20, 20);
    Move(200, 200);
    Release(200, 200);
    EXPECT_EQ(CountChanges(Button), 0);
    Press(20, 20);
    Move(200, 200);
    Move(30, 20);
    Release(30, 20);
    EXPECT_EQ(CountChanges(Button), 1);
}

TEST_F(Buttons, APressThatTheMouseIsTakenFromDoesNothing)
{
    Press(20, 20);
    Host.LoseDrag();
    EXPECT_FALSE(Host.IsDragging());
    Click(20, 20);
    EXPECT_EQ(CountChanges(Button), 1);
}

TEST_F(Buttons, AToggleChangesItsStateBeforeItSends)
{
    Button.SetToggle(true);
    bool seen = false;
    Panel.OnChange = [&] { seen = Button.IsPressed(); };
    Click(20, 20);
    EXPECT_TRUE(seen);
    Click(20, 20);
    EXPECT_FALSE(Button.IsPressed());
    Button.SetPressed(true);
    EXPECT_TRUE(Button.IsPressed());
    EXPECT_EQ(CountChanges(Button), 2);
}

TEST_F(Buttons, TheCodeThatAButtonSendsCanBeAnother)
{
    Button.SetCode(RE_NODEREFRESH);
    Click(20, 20);
    EXPECT_EQ(CountEvents(RE_NODEREFRESH), 1);
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(Buttons, DisabledTheyTakeNoPresses)
{
    Button.SetEnabled(false);
    Tick.SetEnabled(false);
    EXPECT_FALSE(Click(20, 20));
    EXPECT_FALSE(Click(15, 55));
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
    EXPECT_EQ(CountEvents(RE_LEFTDOWN), 2);
    EXPECT_EQ(TRenderObject::GetFocus(), nullptr);
}

TEST_F(Buttons, AButtonThatIsDisabledWhileItIsHeldDoesNothing)
{
    Press(20, 20);
    Button.SetEnabled(false);
    EXPECT_FALSE(Host.IsDragging());
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(Buttons, AClickOnACheckBoxOrItsTextChangesIt)
{
    EXPECT_TRUE(Click(15, 56));
    EXPECT_TRUE(Tick.IsChecked());
    EXPECT_TRUE(Click(10 + Tick.GetSize()[0] - 2, 56));
    EXPECT_FALSE(Tick.IsChecked());
    EXPECT_EQ(CountChanges(Tick), 2);
    Tick.SetChecked(true);
    EXPECT_TRUE(Tick.IsChecked());
    EXPECT_EQ(CountChanges(Tick), 2);
    EXPECT_FALSE(Click(10 + Tick.GetSize()[0] + 2, 56));
}

TEST_F(Buttons, TheSpaceKeyClicksWhatHasTheFocus)
{
    Click(15, 56);
    ASSERT_TRUE(Tick.IsChecked());
    EXPECT_TRUE(Type(" "));
    EXPECT_FALSE(Tick.IsChecked());
    EXPECT_EQ(CountChanges(Tick), 2);
    EXPECT_FALSE(Type("x"));
    // Held, it is one click.
    TMessage message;
    message.Type = MT_CHAR;
    message.Character = ' ';
    message.IsRepeat = true;
    EXPECT_TRUE(Route(message));
    EXPECT_EQ(CountChanges(Tick), 2);
}

TEST_F(Buttons, APressEndsTheInputOfAField)
{
    TTextEdit edit(Host);
    edit.Build(TVector2(100, 18));
    edit.SetOrigin(TVector2(100, 10));
    Panel.AddObject(&edit);
    Click(110, 15);
    Type("abc");
    Press(20, 20);
    EXPECT_EQ(CountChanges(edit), 1);
    Release(20, 20);
}

TEST_F(Buttons, AClickMayTakeTheButtonAway)
{
    auto button = std::make_unique<TPushButton>(Host);
    button->Build("...", TVector2(20, 18));
    button->SetOrigin(TVector2(200, 10));
    Panel.AddObject(button.get());
    Panel.OnChange = [&] { button.reset(); };
    Click(205, 15);
    EXPECT_EQ(button, nullptr);
}

TEST_F(Buttons, AStaticTextTakesNoHitsAndIsCutAtItsWidth)
{
    TStatic text("A rather long label");
    text.SetOrigin(TVector2(10, 100));
    Panel.AddObject(&text);
    EXPECT_FALSE(Click(15, 105));
    const float whole = text.GetSize()[0];
    text.SetWidth(50);
    EXPECT_LE(text.GetSize()[0], 50.0f);
    EXPECT_GT(text.GetSize()[0], 20.0f);
    EXPECT_STREQ(text.GetText(), "A rather long label");
    text.SetWidth(0);
    EXPECT_EQ(text.GetSize()[0], whole);
    text.SetText("A");
    EXPECT_LT(text.GetSize()[0], 20.0f);
}

TEST_F(Buttons, ThePointerTellsWhatCanBeClicked)
{
    Mouse(MT_MOUSEMOVE, 20, 20);
    EXPECT_EQ(Host.PointerObject, &Button);
    EXPECT_EQ(Host.Pointer, PS_HAND);
    Button.SetEnabled(false);
    Mouse(MT_MOUSEMOVE, 300, 200);
    Host.PointerObject = nullptr;
    Mouse(MT_MOUSEMOVE, 20, 20);
    EXPECT_EQ(Host.PointerObject, nullptr);
}
